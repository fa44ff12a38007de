// SPDX-License-Identifier: GPL-3.0-or-later
// Set lists from other collection tools brought into a real store in a temporary folder,
// with a tiny real catalog built by the real builder.
#include "CatalogFixture.h"
#include "CollectionCSVFixture.h"
#include "TestEnvironment.h"

#include "Services/ForeignCollectionImport.h"
#include "Services/ImportResultMessage.h"
#include "Services/RebrickableCatalog.h"
#include "Store/StoreError.h"
#include "Views/TranslationLoader.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace CollectionCSVFixture;
using CSVExportImportService::ImportError;
using CSVExportImportService::ImportResult;

namespace {

const QString knownSet = u"10497-1"_s;
const QString knownSetImage = u"https://cdn.rebrickable.com/media/sets/10497-1.jpg"_s;

ImportedSetList listOf(const QList<QPair<QString, qint64>> &counts, const QStringList &skipped = {})
{
    ImportedSetList list;
    qsizetype line = 1;
    for (const auto &[number, quantity] : counts)
        list.entries.append({number, quantity, ++line});
    list.skipped = skipped;
    return list;
}

} // namespace

class ForeignCollectionImportTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistentContainer> m_store;

    ImportResult import(const ImportedSetList &list, const CSVExportImportService::ImportProgress &progress = {})
    {
        const std::shared_ptr<ManagedObjectContext> context = m_store->newBackgroundContext();
        context->setName(u"backgroundContext"_s);
        context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
        return context->performAndWait(
            [&](ManagedObjectContext &store) { return ForeignCollectionImport::run(list, store, progress); });
    }

    // A copy saved under a catalog set numbered `number` with the user's own facts.
    void saveCopyUnder(const QString &number)
    {
        ManagedObjectContext &context = m_store->viewContext();
        CatalogSet set;
        set.setNumber = number;
        set.name = u"My Own Name"_s;
        set.themeName = u"My Own Theme"_s;
        set = context.insert(set);
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.catalogSet = set.objectID;
        context.insert(copy);
        context.save();
    }

    qsizetype copiesOf(const StoreContents &stored, const CatalogSet &set)
    {
        return std::count_if(stored.copies.cbegin(), stored.copies.cend(),
                             [&set](const BrickSet &copy) { return copy.catalogSet == set.objectID; });
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Test Theme,\n");
        fixture.addRows(u"sets"_s, "10497-1,Galaxy Explorer,2022,1,1254," + knownSetImage.toUtf8() + "\n");
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

    void eachEntryBecomesItsQuantityOfCopiesWithUnknownAcquisition()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const ImportResult result = import(listOf({{knownSet, 3}}));
        QCOMPARE(result.created, 3);
        QCOMPARE(result.updated, 0);
        QVERIFY(result.errors.isEmpty());

        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.copies.size(), 3);
        QSet<QUuid> ids;
        for (const BrickSet &copy : stored.copies) {
            QVERIFY(!copy.id.isNull());
            ids.insert(copy.id);
            QCOMPARE(copy.acquisitionType, std::optional<QString>(u"unknown"_s));
            QVERIFY(copy.dateAdded && *copy.dateAdded >= before.addSecs(-1));
            QCOMPARE(copy.dateAdded, stored.copies.first().dateAdded);
            QVERIFY(!copy.isTrashed);
            QVERIFY(!copy.isDisposed);
            QVERIFY(!copy.pricePaid);
        }
        QCOMPARE(ids.size(), 3);
    }

    void aSetTheCatalogKnowsGetsTheCatalogsFacts()
    {
        import(listOf({{knownSet, 1}}));
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, knownSet);
        QVERIFY(set);
        QCOMPARE(set->name, std::optional<QString>(u"Galaxy Explorer"_s));
        QCOMPARE(set->year, qint16(2022));
        QCOMPARE(set->pieceCount, 1254);
        QCOMPARE(set->imageURL, std::optional<QString>(knownSetImage));
        QCOMPARE(set->themeName, std::optional<QString>(u"Test Theme"_s));
        QCOMPARE(set->themeGroup, std::optional<QString>(u"Test Theme"_s));
        QVERIFY(set->lastSyncDate);
    }

    void aNumberWithoutItsVersionFindsTheCatalogsSet()
    {
        import(listOf({{u"10497"_s, 2}}));
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.catalogSets.size(), 1);
        QCOMPARE(stored.catalogSets.first().setNumber, std::optional<QString>(knownSet));
        QCOMPARE(stored.catalogSets.first().name, std::optional<QString>(u"Galaxy Explorer"_s));
        QCOMPARE(stored.copies.size(), 2);
    }

    void aSetTheCatalogLacksStillGetsItsCopiesUnderItsNumber()
    {
        const ImportResult result = import(listOf({{u"99999"_s, 2}}));
        QCOMPARE(result.created, 2);
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, u"99999-1"_s);
        QVERIFY(set);
        QVERIFY(!set->name);
        QVERIFY(!set->lastSyncDate);
        QCOMPARE(copiesOf(contents(*m_store), *set), 2);
    }

    void withoutACatalogEveryEntryStillGetsItsCopies()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const ImportResult result = import(listOf({{knownSet, 1}, {u"99999-1"_s, 1}}));
        QCOMPARE(result.created, 2);
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.copies.size(), 2);
        QCOMPARE(stored.catalogSets.size(), 2);
        QVERIFY(!catalogSetNumbered(*m_store, knownSet)->name);
    }

    void aSetAlreadyStoredIsReusedAndKeepsTheUsersTheme()
    {
        saveCopyUnder(knownSet);
        import(listOf({{knownSet, 1}}));
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.catalogSets.size(), 1);
        QCOMPARE(stored.copies.size(), 2);
        // The catalog's facts replace the name, as a sync does; the theme the user had stays.
        QCOMPARE(stored.catalogSets.first().name, std::optional<QString>(u"Galaxy Explorer"_s));
        QCOMPARE(stored.catalogSets.first().themeName, std::optional<QString>(u"My Own Theme"_s));
    }

    void aSetStoredUnderTheNumberWithoutItsVersionIsReused()
    {
        saveCopyUnder(u"10497"_s);
        import(listOf({{u"10497"_s, 1}}));
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.catalogSets.size(), 1);
        QCOMPARE(stored.catalogSets.first().setNumber, std::optional<QString>(u"10497"_s));
        QCOMPARE(copiesOf(stored, stored.catalogSets.first()), 2);
    }

    void entriesNamingOneSetTwiceShareItsCatalogSet()
    {
        const ImportResult result = import(listOf({{knownSet, 1}, {u"10497"_s, 2}, {knownSet, 1}}));
        QCOMPARE(result.created, 4);
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.catalogSets.size(), 1);
        QCOMPARE(copiesOf(stored, stored.catalogSets.first()), 4);
    }

    void skippedRowsComeBackAsTheResultsErrors()
    {
        const QStringList skipped{u"Line 3: missing set number"_s, u"Line 5: item type P skipped"_s};
        const ImportResult result = import(listOf({{knownSet, 2}}, skipped));
        QCOMPARE(result.errors, skipped);
        QCOMPARE(ImportResultMessage::text(result), u"2 set(s) added, 2 row(s) skipped."_s);
    }

    void aNumberHoldingALineBreakIsSkippedAndAddsNothing()
    {
        ImportedSetList list = listOf({{knownSet, 1}});
        list.entries.append({u"10497\n-1"_s, 2, 7});
        const ImportResult result = import(list);
        QCOMPARE(result.created, 1);
        QCOMPARE(result.errors, QStringList{u"Line 7: invalid set number"_s});
        QCOMPARE(contents(*m_store).copies.size(), 1);
        QCOMPARE(contents(*m_store).catalogSets.size(), 1);
    }

    void anEmptyListChangesNothing()
    {
        QSignalSpy changes(m_store.get(), &PersistentContainer::objectsDidChange);
        const ImportResult result = import(ImportedSetList{});
        QCOMPARE(result, ImportResult{});
        QCOMPARE(contents(*m_store), StoreContents{});
        QCoreApplication::processEvents();
        QCOMPARE(changes.count(), 0);
    }

    void anUnreadableListIsRefusedWithTheReadersWordsAndChangesNothing()
    {
        saveCopyUnder(knownSet);
        const StoreContents before = contents(*m_store);
        ImportedSetList list = listOf({{knownSet, 1}});
        list.unreadable = u"Opening and ending tag mismatch. (line 4)"_s;
        try {
            import(list);
            QFAIL("the import should have been refused");
        } catch (const ImportError &error) {
            QCOMPARE(error.kind(), ImportError::Kind::unreadableSetList);
            QCOMPARE(error.description(),
                     u"The BrickLink inventory file couldn’t be read: Opening and ending tag mismatch. (line 4)"_s);
        }
        QCOMPARE(contents(*m_store), before);
    }

    void aFailingSaveKeepsNothingAndLeavesNoPendingChange()
    {
        saveCopyUnder(u"12345-1"_s);
        const StoreContents before = contents(*m_store);
        QVERIFY(executeOnStoreFile(*m_store, "CREATE TRIGGER refuseCopies BEFORE INSERT ON BrickSet "
                                             "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
        const std::shared_ptr<ManagedObjectContext> context = m_store->newBackgroundContext();
        const ImportedSetList list = listOf({{knownSet, 2}});
        try {
            context->performAndWait([&list](ManagedObjectContext &store) { return ForeignCollectionImport::run(list, store); });
            QFAIL("the import should have failed");
        } catch (const StoreError &error) {
            QCOMPARE(error.kind(), StoreError::Kind::saveFailed);
        }
        QVERIFY(!context->performAndWait([](ManagedObjectContext &store) { return store.hasChanges(); }));
        QCOMPARE(contents(*m_store), before);
    }

    void progressIsReportedEveryFiveHundredEntriesAndAtTheEnd()
    {
        QList<QPair<QString, qint64>> counts;
        for (int index = 0; index < 1200; ++index)
            counts.append({u"%1-1"_s.arg(20000 + index), 1});
        QList<QPair<qint64, qint64>> reports;
        import(listOf(counts), [&reports](qint64 done, qint64 total) { reports.append({done, total}); });
        const QList<QPair<qint64, qint64>> expected{{500, 1200}, {1000, 1200}, {1200, 1200}};
        QCOMPARE(reports, expected);
        QCOMPARE(contents(*m_store).copies.size(), 1200);
    }
};

QTEST_GUILESS_MAIN(ForeignCollectionImportTest)
#include "ForeignCollectionImportTest.moc"
