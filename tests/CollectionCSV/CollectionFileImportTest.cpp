// SPDX-License-Identifier: GPL-3.0-or-later
// Every file the import command takes, told apart by how it begins and read into a real
// store in a temporary folder, and the Rebrickable set list the collection exports.
#include "CatalogFixture.h"
#include "CollectionCSVFixture.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "RebrickableSetListFormat.h"
#include "Services/CSVDocument.h"
#include "Services/CollectionFileImport.h"
#include "Services/ImportResultMessage.h"
#include "Services/RebrickableCatalog.h"
#include "Services/RebrickableSetListExport.h"
#include "Views/TranslationLoader.h"

#include <QCoroTask>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace CollectionCSVFixture;
using CSVExportImportService::ImportError;
using CSVExportImportService::ImportResult;
using Format = CollectionFileImport::Format;

namespace {

const QString knownSet = u"10497-1"_s;
const QString rebrickableHeader = u"Set Number,Quantity,Includes Spares,Inventory Ver"_s;

QString brickLinkFile(const QString &items)
{
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<INVENTORY>\n"_s + items + u"</INVENTORY>\n"_s;
}

QString brickLinkItem(const QString &type, const QString &id, const QString &quantity)
{
    return u"<ITEM><ITEMTYPE>%1</ITEMTYPE><ITEMID>%2</ITEMID><MINQTY>%3</MINQTY></ITEM>\n"_s.arg(type, id, quantity);
}

} // namespace

class CollectionFileImportTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistentContainer> m_store;

    ImportResult import(const QString &text)
    {
        const std::shared_ptr<ManagedObjectContext> context = m_store->newBackgroundContext();
        return context->performAndWait(
            [&text](ManagedObjectContext &store) { return CollectionFileImport::importText(text, store); });
    }

    QString exportSetList()
    {
        const std::shared_ptr<ManagedObjectContext> context = m_store->newBackgroundContext();
        return context->performAndWait([](ManagedObjectContext &store) { return RebrickableSetListExport::text(store); });
    }

    // A copy of a set numbered `number`, in the given state.
    void saveCopy(const QString &number, bool isTrashed = false, bool isDisposed = false)
    {
        ManagedObjectContext &context = m_store->viewContext();
        std::optional<CatalogSet> set
            = context.fetchFirst(FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, number)));
        if (!set) {
            CatalogSet made;
            made.setNumber = number;
            set = context.insert(made);
        }
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.catalogSet = set->objectID;
        copy.isTrashed = isTrashed;
        copy.isDisposed = isDisposed;
        context.insert(copy);
        context.save();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Test Theme,\n");
        fixture.addRows(u"sets"_s, "10497-1,Galaxy Explorer,2022,1,1254,\n");
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_folder.filePath(u"catalog"_s)));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = openStore(m_folder);
        QVERIFY(m_store);
    }

    void cleanup()
    {
        m_store.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    // --- Telling the formats apart

    void theCollectionsOwnFileIsReadAsTheCollectionCSV()
    {
        QCOMPARE(CollectionFileImport::formatOf(file({})), Format::collectionCSV);
    }

    void aRebrickableSetListIsRecognisedByItsHeaderInAnyCase()
    {
        QCOMPARE(CollectionFileImport::formatOf(QString(rebrickableHeader + u"\n75192-1,1,True,1"_s)), Format::rebrickableSetList);
        QCOMPARE(CollectionFileImport::formatOf(rebrickableHeader.toLower()), Format::rebrickableSetList);
    }

    void aBrickLinkInventoryIsRecognisedByItsRootElement()
    {
        QCOMPARE(CollectionFileImport::formatOf(brickLinkFile({})), Format::brickLinkInventory);
    }

    void anythingElseGoesToTheCollectionCSVAndItsOwnRefusal()
    {
        QCOMPARE(CollectionFileImport::formatOf(u"Part,Color,Quantity\n3001,4,2"_s), Format::collectionCSV);
        try {
            import(u"Part,Color,Quantity\n3001,4,2"_s);
            QFAIL("the import should have been refused");
        } catch (const ImportError &error) {
            QCOMPARE(error.kind(), ImportError::Kind::missingRequiredColumns);
        }
        QCOMPARE(contents(*m_store), StoreContents{});
    }

    // --- Importing them

    void aRebrickableSetListAddsItsCopiesAndCountsItsSkippedRows()
    {
        const ImportResult result
            = import(rebrickableHeader + u"\n10497-1,2,True,1\n75192,1,False,1\n,3,True,1\n10497-1,zero,True,1"_s);
        QCOMPARE(result.created, 3);
        QCOMPARE(result.errors.size(), 2);
        QCOMPARE(ImportResultMessage::text(result), u"3 set(s) added, 2 row(s) skipped."_s);
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.copies.size(), 3);
        QCOMPARE(catalogSetNumbered(*m_store, knownSet)->name, std::optional<QString>(u"Galaxy Explorer"_s));
        QVERIFY(catalogSetNumbered(*m_store, u"75192-1"_s));
    }

    void aBrickLinkInventoryAddsItsSetsAndSkipsItsOtherItems()
    {
        const ImportResult result = import(brickLinkFile(brickLinkItem(u"S"_s, u"10497-1"_s, u"2"_s)
                                                         + brickLinkItem(u"P"_s, u"3001"_s, u"40"_s)
                                                         + brickLinkItem(u"M"_s, u"sw0001a"_s, u"1"_s)));
        QCOMPARE(result.created, 2);
        QCOMPARE(result.errors.size(), 2);
        QCOMPARE(ImportResultMessage::text(result), u"2 set(s) added, 2 row(s) skipped."_s);
        QCOMPARE(contents(*m_store).copies.size(), 2);
    }

    void aBrokenBrickLinkInventoryIsRefusedAndChangesNothing()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        try {
            import(brickLinkFile(u"<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>10497-1</ITEM>"_s));
            QFAIL("the import should have been refused");
        } catch (const ImportError &error) {
            QCOMPARE(error.kind(), ImportError::Kind::unreadableSetList);
            QVERIFY(error.description().startsWith(u"The BrickLink inventory file couldn’t be read: "_s));
        }
        QCOMPARE(contents(*m_store), before);
    }

    void aFileReadOffTheMainThreadEndsInTheSameResult()
    {
        const QString path = m_folder.filePath(u"list.csv"_s);
        CSVDocument(rebrickableHeader + u"\n10497-1,4,True,1"_s).write(path);
        const TaskOutcome<ImportResult> outcome
            = waitForOutcome(CollectionFileImport::importFileInBackground(*m_store, path));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->created, 4);
        QCOMPARE(contents(*m_store).copies.size(), 4);
    }

    void aFileOfTwoHundredMegabytesIsRefusedAndChangesNothing()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        // Sparse: the file claims its size without taking the disk space.
        const QString path = m_folder.filePath(u"huge.csv"_s);
        {
            QFile huge(path);
            QVERIFY(huge.open(QIODevice::WriteOnly));
            QVERIFY(huge.resize(qint64(200) * 1024 * 1024));
        }
        const TaskOutcome<ImportResult> outcome
            = waitForOutcome(CollectionFileImport::importFileInBackground(*m_store, path));
        const std::optional<CSVDocument::FileError> error = outcome.error<CSVDocument::FileError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), CSVDocument::FileError::Kind::tooLarge);
        QCOMPARE(error->description(), u"The file “huge.csv” couldn’t be opened because it is larger than 64 MB."_s);
        QCOMPARE(contents(*m_store), before);
        QFile::remove(path);
    }

    // --- The Rebrickable set list out

    void theSetListCountsTheCopiesTheUserHasPerSet()
    {
        saveCopy(knownSet);
        saveCopy(u"75192-1"_s);
        saveCopy(knownSet);
        saveCopy(knownSet, /*isTrashed=*/true);
        saveCopy(u"75192-1"_s, false, /*isDisposed=*/true);
        saveCopy(u"60000-1"_s, /*isTrashed=*/true);
        QCOMPARE(exportSetList(), rebrickableHeader + u"\n10497-1,2,True,1\n75192-1,1,True,1\n"_s);
    }

    void aSetStoredWithoutItsVersionIsCountedWithTheSameSet()
    {
        saveCopy(u"10497"_s);
        saveCopy(knownSet);
        QCOMPARE(exportSetList(), rebrickableHeader + u"\n10497-1,2,True,1\n"_s);
    }

    void anEmptyCollectionGivesTheHeaderAlone()
    {
        QCOMPARE(exportSetList(), rebrickableHeader + u"\n"_s);
    }

    void theSetListComesBackAsTheSameCopiesInAnEmptyStore()
    {
        saveCopy(knownSet);
        saveCopy(knownSet);
        saveCopy(u"75192-1"_s);
        const QString exported = exportSetList();
        m_store = openStore(m_folder);
        const ImportResult result = import(exported);
        QCOMPARE(result.created, 3);
        QVERIFY(result.errors.isEmpty());
        QCOMPARE(exportSetList(), exported);
    }
};

QTEST_GUILESS_MAIN(CollectionFileImportTest)
#include "CollectionFileImportTest.moc"
