// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "SyncLogRecord.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/RebrickableCatalog.h"
#include "Services/SyncError.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

// A small catalog: Star Wars > Ultimate Collector Series, and Castle.
CatalogFixture smallCatalog()
{
    CatalogFixture fixture;
    fixture.addRows(u"themes"_s, "1,Star Wars,\n2,Ultimate Collector Series,1\n3,Castle,\n");
    fixture.addRows(u"sets"_s,
                    "75192-1,Millennium Falcon,2017,2,7541,https://cdn.rebrickable.com/media/sets/75192-1.jpg\n"
                    "10305-1,Lion Knights' Castle,2022,3,4514,\n"
                    "21-1,Small Set,1960,3,2,https://cdn.rebrickable.com/media/sets/21-1.jpg\n"
                    "7000-1,Orphan Set,2001,999,1,\n"
                    "6000-1,Spare Set,2000,3,5,\n"
                    "8000-1,Odd Set,2003,3,1,\n");
    fixture.addRows(u"colors"_s, "0,Black,05131D,False\n47,Trans-Clear,FCFCFC,True\n");
    fixture.addRows(u"part_categories"_s, "11,Bricks\n");
    fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3002,Brick 2 x 3,11,Plastic\n3003,Brick 2 x 2,11,Plastic\n");
    fixture.addRows(u"inventories"_s, "1,1,75192-1\n2,1,10305-1\n3,1,6000-1\n4,1,8000-1\n");
    fixture.addRows(u"inventory_parts"_s,
                    "1,3001,0,4,False,\n"
                    "1,3002,47,2,False,\n"
                    "1,3003,0,1,True,\n"
                    "2,3001,0,6,False,\n"
                    "3,3001,0,4,False,\n"
                    "3,3001,0,1,True,\n"
                    "4,9999,12345,3,False,\n");
    return fixture;
}

} // namespace

// CatalogSyncService over a real store file and a real catalog built from small dumps.
class CatalogSyncServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_controller;
    std::unique_ptr<CatalogSyncService> m_service;
    QString m_catalogPath;

    ManagedObjectContext &view() { return m_controller->container().viewContext(); }

    // The set's identifier; a failure of the sync fails the test.
    ObjectID sync(const QString &number)
    {
        const TaskOutcome<ObjectID> outcome = waitForOutcome(m_service->syncSet(number));
        if (!outcome.value)
            qFatal("syncing %s failed: %s", qUtf8Printable(number), qUtf8Printable(outcome.failureText()));
        return *outcome.value;
    }

    template <typename Error>
    std::optional<Error> syncFailure(const QString &number)
    {
        return waitForOutcome(m_service->syncSet(number)).template error<Error>();
    }

    CatalogSet storedSet(const ObjectID &id)
    {
        view().refresh(id, false);
        return view().existingObject<CatalogSet>(id).value_or(CatalogSet{});
    }

    CatalogSet saveSet(CatalogSet set)
    {
        set = view().insert(set);
        view().save();
        return set;
    }

    QList<CatalogSetPart> linesOf(const ObjectID &set)
    {
        return view().fetch(FetchRequest<CatalogSetPart>(Predicate::equal(u"catalogSet"_s, QVariant::fromValue(set))));
    }

    template <StoreEntity T>
    qint64 countOf()
    {
        return view().count(FetchRequest<T>(Predicate()));
    }

    CatalogPart partNamed(const QString &number)
    {
        const auto part = view().fetchFirst(FetchRequest<CatalogPart>(Predicate::equal(u"partNumber"_s, number)));
        return part.value_or(CatalogPart{});
    }

    CatalogColor colorWithID(int id)
    {
        const auto color = view().fetchFirst(FetchRequest<CatalogColor>(Predicate::equal(u"colorID"_s, id)));
        return color.value_or(CatalogColor{});
    }

    // Makes every write of `table` fail from now on, inside the store's own transaction.
    void refuseWritesTo(const QString &table)
    {
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(m_folder->filePath(u"Tessaloom.sqlite"_s)).constData(), &database), SQLITE_OK);
        const QByteArray sql = "CREATE TRIGGER refuse_" + table.toUtf8() + " BEFORE INSERT ON " + table.toUtf8()
            + " BEGIN SELECT RAISE(ABORT, 'writes refused by the test'); END";
        const int result = sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr);
        sqlite3_close(database);
        QCOMPARE(result, SQLITE_OK);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        m_catalogPath = smallCatalog().build(TestEnvironment::temporaryRoot() + u"/catalog"_s);
        QVERIFY(!m_catalogPath.isEmpty());
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_controller = PersistenceController::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        m_service = std::make_unique<CatalogSyncService>(*m_controller);
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(m_catalogPath));
        QVERIFY(RebrickableCatalog::shared());
    }

    void cleanup()
    {
        m_service.reset();
        m_controller.reset();
        m_folder.reset();
    }

    void firstSyncWritesTheSetFactsAndItsThemeChain()
    {
        const ObjectID id = sync(u"75192-1"_s);
        const CatalogSet set = storedSet(id);
        QCOMPARE(set.setNumber, u"75192-1"_s);
        QCOMPARE(set.name, u"Millennium Falcon"_s);
        QCOMPARE(set.year, qint16(2017));
        QCOMPARE(set.pieceCount, 7541);
        QCOMPARE(set.imageURL, u"https://cdn.rebrickable.com/media/sets/75192-1.jpg"_s);
        QCOMPARE(set.themeName, u"Ultimate Collector Series"_s);
        QCOMPARE(set.themeGroup, u"Star Wars > Ultimate Collector Series"_s);
        QVERIFY(set.lastSyncDate);
        QVERIFY(set.partsSyncDate);
        QVERIFY(qAbs(set.lastSyncDate->secsTo(QDateTime::currentDateTimeUtc())) < 60);
        QVERIFY(!set.retailPrice);
        QVERIFY(!set.thumbnailURL);
    }

    void firstSyncWritesOneLinePerRowWithItsPartAndColour()
    {
        const ObjectID id = sync(u"75192-1"_s);
        QList<CatalogSetPart> lines = linesOf(id);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0].catalogPart, partNamed(u"3001"_s).objectID);
        QCOMPARE(lines[0].catalogColor, colorWithID(0).objectID);
        QCOMPARE(lines[0].quantity, 4);
        QCOMPARE(lines[0].isSpare, false);
        QCOMPARE(lines[1].catalogPart, partNamed(u"3002"_s).objectID);
        QCOMPARE(lines[1].catalogColor, colorWithID(47).objectID);
        QCOMPARE(lines[1].quantity, 2);
        QCOMPARE(lines[2].catalogPart, partNamed(u"3003"_s).objectID);
        QCOMPARE(lines[2].isSpare, true);
        QCOMPARE(partNamed(u"3002"_s).name, u"Brick 2 x 3"_s);
        QVERIFY(!partNamed(u"3002"_s).imageURL);
        QVERIFY(!partNamed(u"3002"_s).categoryName);
        const CatalogColor clear = colorWithID(47);
        QCOMPARE(clear.name, u"Trans-Clear"_s);
        QCOMPARE(clear.hexCode, u"FCFCFC"_s);
        QCOMPARE(clear.isTransparent, true);
        QCOMPARE(countOf<CatalogColor>(), 2);
    }

    void partsAndColoursAreSharedBetweenSets()
    {
        sync(u"75192-1"_s);
        const ObjectID castle = sync(u"10305-1"_s);
        QCOMPARE(countOf<CatalogPart>(), 3);
        QCOMPARE(countOf<CatalogColor>(), 2);
        const QList<CatalogSetPart> lines = linesOf(castle);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0].catalogPart, partNamed(u"3001"_s).objectID);
        QCOMPARE(lines[0].quantity, 6);
    }

    void partAndColourValuesAreOverwrittenByEverySync()
    {
        CatalogPart part;
        part.partNumber = u"3001"_s;
        part.name = u"Renamed by hand"_s;
        part = view().insert(part);
        CatalogColor color;
        color.colorID = 47;
        color.name = u"Wrong"_s;
        color.hexCode = u"123456"_s;
        color = view().insert(color);
        view().save();

        sync(u"75192-1"_s);
        QCOMPARE(countOf<CatalogPart>(), 3);
        QCOMPARE(partNamed(u"3001"_s).objectID, part.objectID);
        QCOMPARE(partNamed(u"3001"_s).name, u"Brick 2 x 4"_s);
        QCOMPARE(colorWithID(47).objectID, color.objectID);
        QCOMPARE(colorWithID(47).name, u"Trans-Clear"_s);
        QCOMPARE(colorWithID(47).hexCode, u"FCFCFC"_s);
        QCOMPARE(colorWithID(47).isTransparent, true);
    }

    // A number without suffix, and with "-1" and blanks around it, is one CatalogSet.
    void numberWithAndWithoutSuffixAndBlanksLeadsToTheSameCatalogSet()
    {
        const ObjectID bare = sync(u"75192"_s);
        const ObjectID padded = sync(u"  75192-1 \t"_s);
        QCOMPARE(padded, bare);
        QCOMPARE(countOf<CatalogSet>(), 1);
        QCOMPARE(storedSet(bare).setNumber, u"75192-1"_s);
        QCOMPARE(linesOf(bare).size(), 3);
    }

    // Two screens adding the same set at once: both syncs end with the one CatalogSet.
    void twoSyncsOfOneNumberAtOnceMakeOneCatalogSet()
    {
        // Tasks start at once and run up to their first wait, so both are under way here.
        QCoro::Task<ObjectID> first = m_service->syncSet(u"75192-1"_s);
        QCoro::Task<ObjectID> second = m_service->syncSet(u"75192"_s);
        const TaskOutcome<ObjectID> firstOutcome = waitForOutcome(std::move(first));
        const TaskOutcome<ObjectID> secondOutcome = waitForOutcome(std::move(second));
        QVERIFY2(firstOutcome.value, qPrintable(firstOutcome.failureText()));
        QVERIFY2(secondOutcome.value, qPrintable(secondOutcome.failureText()));
        QCOMPARE(*secondOutcome.value, *firstOutcome.value);
        QCOMPARE(countOf<CatalogSet>(), 1);
        QCOMPARE(linesOf(*firstOutcome.value).size(), 3);
    }

    // A second sync refreshes the facts but keeps a theme that is filled already.
    void secondSyncRefreshesTheFactsButKeepsAFilledTheme()
    {
        const ObjectID id = sync(u"75192-1"_s);
        CatalogSet edited = storedSet(id);
        edited.name = u"My Falcon"_s;
        edited.year = 1999;
        edited.pieceCount = 12;
        edited.imageURL = u"https://example.org/mine.jpg"_s;
        edited.themeName = u"Imported Theme"_s;
        edited.themeGroup = u"Imported > Group"_s;
        view().update(edited);
        view().save();

        QCOMPARE(sync(u"75192-1"_s), id);
        const CatalogSet set = storedSet(id);
        QCOMPARE(set.name, u"Millennium Falcon"_s);
        QCOMPARE(set.year, qint16(2017));
        QCOMPARE(set.pieceCount, 7541);
        QCOMPARE(set.imageURL, u"https://cdn.rebrickable.com/media/sets/75192-1.jpg"_s);
        QCOMPARE(set.themeName, u"Imported Theme"_s);
        QCOMPARE(set.themeGroup, u"Imported > Group"_s);
    }

    // An empty theme name (and path) is filled from the catalog.
    void emptyThemeNameGetsTheCatalogsThemeName()
    {
        CatalogSet set;
        set.setNumber = u"75192-1"_s;
        set.themeName = u""_s;
        set.themeGroup = u""_s;
        set = saveSet(set);

        QCOMPARE(sync(u"75192-1"_s), set.objectID);
        const CatalogSet stored = storedSet(set.objectID);
        QCOMPARE(stored.themeName, u"Ultimate Collector Series"_s);
        QCOMPARE(stored.themeGroup, u"Star Wars > Ultimate Collector Series"_s);
    }

    void unknownThemeLeavesTheThemeNameAndWritesAnEmptyPath()
    {
        const CatalogSet stored = storedSet(sync(u"7000-1"_s));
        QCOMPARE(stored.themeName, std::nullopt);
        QCOMPARE(stored.themeGroup, u""_s);
    }

    // A catalog row without img_url clears an imageURL set before.
    void catalogRowWithoutImageClearsAnEarlierImageURL()
    {
        CatalogSet set;
        set.setNumber = u"10305-1"_s;
        set.imageURL = u"https://cdn.rebrickable.com/media/sets/10305-1.jpg"_s;
        set = saveSet(set);

        QCOMPARE(sync(u"10305-1"_s), set.objectID);
        QCOMPARE(storedSet(set.objectID).imageURL, std::nullopt);
    }

    // No inventory gives partsSyncDate, no lines, and the log line with the count 0.
    void setWithoutInventoryGetsItsPartsSyncDateNoLinesAndLogsZeroParts()
    {
        SyncLogRecord log;
        const ObjectID id = sync(u"21"_s);
        QVERIFY(storedSet(id).partsSyncDate);
        QVERIFY(linesOf(id).isEmpty());
        QCOMPARE(countOf<CatalogPart>(), 0);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced 0 parts for 21-1"_s}}));
    }

    void syncLogsTheNumberOfInventoryRowsRead()
    {
        SyncLogRecord log;
        sync(u"6000"_s);
        // Two rows read, one line written.
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced 2 parts for 6000-1"_s}}));
    }

    // A part missing from the part table is named by its number.
    void partMissingFromTheCatalogIsNamedByItsNumber()
    {
        const QList<CatalogSetPart> lines = linesOf(sync(u"8000-1"_s));
        QCOMPARE(lines.size(), 1);
        const CatalogPart part = partNamed(u"9999"_s);
        QCOMPARE(lines[0].catalogPart, part.objectID);
        QCOMPARE(part.name, u"9999"_s);
    }

    // A colour missing from the colour table is "Unknown", "000000", not transparent.
    void colourMissingFromTheCatalogIsUnknownBlackAndOpaque()
    {
        const QList<CatalogSetPart> lines = linesOf(sync(u"8000-1"_s));
        QCOMPARE(lines.size(), 1);
        const CatalogColor color = colorWithID(12345);
        QCOMPARE(lines[0].catalogColor, color.objectID);
        QCOMPARE(color.name, u"Unknown"_s);
        QCOMPARE(color.hexCode, u"000000"_s);
        QCOMPARE(color.isTransparent, false);
        QCOMPARE(lines[0].quantity, 3);
    }

    // A regular and a spare row of one part and colour share one line, holding one
    // row's quantity (not the sum) and that row's isSpare.
    void regularAndSpareRowsOfOnePartAndColourShareOneLine()
    {
        const ObjectID id = sync(u"6000-1"_s);
        const QList<CatalogSetPart> lines = linesOf(id);
        QCOMPARE(lines.size(), 1);
        // The rows of one part number come in no set order: either may be the last.
        QVERIFY2(lines[0].quantity == 4 || lines[0].quantity == 1, qPrintable(QString::number(lines[0].quantity)));
        QCOMPARE(lines[0].isSpare, lines[0].quantity == 1);

        sync(u"6000-1"_s);
        QCOMPARE(linesOf(id).size(), 1);
    }

    // A newer catalog that dropped a part leaves its line, and what hangs on it.
    void partDroppedByANewerCatalogKeepsItsLine()
    {
        const ObjectID id = sync(u"75192-1"_s);
        const CatalogSetPart dropped = linesOf(id).at(1); // 3002 in Trans-Clear
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc();
        copy.catalogSet = id;
        copy.setAcquisitionType(AcquisitionType::unknown);
        copy = view().insert(copy);
        PartInventoryEntry entry;
        entry.brickSet = copy.objectID;
        entry.catalogSetPart = dropped.objectID;
        entry.quantityOwned = 2;
        entry = view().insert(entry);
        view().save();

        CatalogFixture newer;
        newer.addRows(u"themes"_s, "1,Star Wars,\n2,Ultimate Collector Series,1\n");
        newer.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,2,7541,\n");
        newer.addRows(u"colors"_s, "0,Black,05131D,False\n");
        newer.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3003,Brick 2 x 2,11,Plastic\n");
        newer.addRows(u"inventories"_s, "1,1,75192-1\n");
        newer.addRows(u"inventory_parts"_s, "1,3001,0,5,False,\n1,3003,0,1,True,\n");
        const QTemporaryDir newerFolder;
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(newer.build(newerFolder.path())));
        QVERIFY(RebrickableCatalog::shared());

        QCOMPARE(sync(u"75192-1"_s), id);
        const QList<CatalogSetPart> lines = linesOf(id);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0].quantity, 5);
        QCOMPARE(lines[1], dropped);
        const auto entryAfter = view().existingObject<PartInventoryEntry>(entry.objectID);
        QVERIFY(entryAfter);
        QCOMPARE(entryAfter->catalogSetPart, dropped.objectID);
        QCOMPARE(entryAfter->quantityOwned, 2);
        RebrickableCatalog::replaceShared(nullptr);
    }

    void absentCatalogFailsAsUnavailableAndLeavesTheStoreUntouched()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const std::optional<SyncError> error = syncFailure<SyncError>(u"75192-1"_s);
        QVERIFY(error);
        QCOMPARE(error->kind(), SyncError::Kind::catalogUnavailable);
        QCOMPARE(error->description(), u"Rebrickable catalog database not available"_s);
        QCOMPARE(countOf<CatalogSet>(), 0);
    }

    void setMissingFromTheCatalogFailsWithItsNormalisedNumber()
    {
        SyncLogRecord log;
        const std::optional<SyncError> error = syncFailure<SyncError>(u" 424242 "_s);
        QVERIFY(error);
        QCOMPARE(error->kind(), SyncError::Kind::setNotFound);
        QCOMPARE(error->setNumber(), u"424242-1"_s);
        QCOMPARE(error->description(), u"Set 424242-1 not found"_s);
        QCOMPARE(countOf<CatalogSet>(), 0);
        QVERIFY(log.lines().isEmpty());
    }

    void failedSaveOfTheSetReachesTheCallerAndSkipsTheParts()
    {
        refuseWritesTo(u"CatalogSet"_s);
        SyncLogRecord log;
        const std::optional<StoreError> error = syncFailure<StoreError>(u"75192-1"_s);
        QVERIFY(error);
        QCOMPARE(error->kind(), StoreError::Kind::saveFailed);
        QCOMPARE(countOf<CatalogSet>(), 0);
        QCOMPARE(countOf<CatalogSetPart>(), 0);
        QVERIFY(log.lines().isEmpty());
    }

    void failedSaveOfThePartsIsLoggedAndTheSetStillComesBack()
    {
        refuseWritesTo(u"CatalogSetPart"_s);
        SyncLogRecord log;
        const ObjectID id = sync(u"75192-1"_s);
        QCOMPARE(storedSet(id).name, u"Millennium Falcon"_s);
        QVERIFY(!storedSet(id).partsSyncDate);
        QCOMPARE(countOf<CatalogSetPart>(), 0);
        QCOMPARE(countOf<CatalogPart>(), 0);
        const QList<SyncLogRecord::Line> lines = log.lines();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0].type, QtCriticalMsg);
        QVERIFY2(lines[0].text.startsWith(u"Failed to sync parts for 75192-1: "_s + StoreError::sentence(StoreError::Kind::saveFailed)),
                 qPrintable(lines[0].text));
        QVERIFY2(lines[0].text.contains(u"writes refused by the test"_s), qPrintable(lines[0].text));
    }

    void partsSyncWithoutCatalogLogsTheError()
    {
        const CatalogSet set = saveSet(CatalogSet{});
        RebrickableCatalog::replaceShared(nullptr);
        SyncLogRecord log;
        QCoro::waitFor(m_service->syncParts(u"75192-1"_s, set.objectID));
        QCOMPARE(log.lines(),
                 (QList<SyncLogRecord::Line>{{QtCriticalMsg, u"Catalog unavailable for parts sync of 75192-1"_s}}));
        QVERIFY(!storedSet(set.objectID).partsSyncDate);
    }

    void partsSyncForAVanishedSetWritesNothingAndStillLogsTheRowCount()
    {
        CatalogSet set = saveSet(CatalogSet{});
        view().deleteObject(set.objectID);
        view().save();
        SyncLogRecord log;
        QCoro::waitFor(m_service->syncParts(u"75192-1"_s, set.objectID));
        QCOMPARE(countOf<CatalogSetPart>(), 0);
        QCOMPARE(countOf<CatalogPart>(), 0);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced 3 parts for 75192-1"_s}}));
    }

    void partsSyncForAnIdentifierOfAnotherEntityWritesNothing()
    {
        const ObjectID id = sync(u"75192-1"_s);
        const ObjectID line = linesOf(id).first().objectID;
        const qint64 lines = countOf<CatalogSetPart>();
        SyncLogRecord log;
        QCoro::waitFor(m_service->syncParts(u"10305-1"_s, line));
        QCOMPARE(countOf<CatalogSetPart>(), lines);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced 1 parts for 10305-1"_s}}));
    }

    void syncedSetIsSeenByTheViewContextsChangeNotice()
    {
        QList<ObjectID> inserted;
        QObject::connect(&m_controller->container(), &PersistentContainer::objectsDidChange, this,
                         [&inserted](const StoreChanges &changes) { inserted += QList<ObjectID>(changes.inserted.cbegin(), changes.inserted.cend()); });
        const ObjectID id = sync(u"75192-1"_s);
        QTRY_VERIFY(inserted.contains(id));
    }
};

QTEST_GUILESS_MAIN(CatalogSyncServiceTest)
#include "CatalogSyncServiceTest.moc"
