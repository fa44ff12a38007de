// SPDX-License-Identifier: GPL-3.0-or-later
// The collection's import and export on real stores in temporary folders, with a tiny real
// catalog built by the real builder.
#include "CatalogFixture.h"
#include "CollectionCSVFixture.h"
#include "TestEnvironment.h"

#include "CSVFieldSyntax.h"
#include "CSVValueFormat.h"
#include "Services/CSVExportImportService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/StoreError.h"
#include "Views/TranslationLoader.h"

#include <QCoroTask>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace CollectionCSVFixture;
using CSVExportImportService::ImportError;
using CSVExportImportService::ImportResult;

namespace {

const QString knownSet = u"10497-1"_s;
const QString knownSetImage = u"https://cdn.rebrickable.com/media/sets/10497-1.jpg"_s;
const QString unknownSet = u"99999-9"_s;
const QString firstId = u"8D5B2C4E-0F1A-4B7C-9E3D-2A6F1B0C9D8E"_s;
const QString secondId = u"1C2D3E4F-5A6B-4C7D-8E9F-0A1B2C3D4E5F"_s;

std::optional<QString> some(const QString &text)
{
    return text;
}

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

} // namespace

class CSVExportImportServiceTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistentContainer> m_store;

    // A copy of `number` saved in the store, shaped by `configure`; creates the catalog set.
    BrickSet saveCopy(const QString &number, const std::function<void(BrickSet &)> &configure = {})
    {
        ManagedObjectContext &context = m_store->viewContext();
        std::optional<CatalogSet> set
            = context.fetchFirst(FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, number)));
        if (!set) {
            CatalogSet created;
            created.setNumber = number;
            created.name = u"Stored Name"_s;
            created.year = 2001;
            created.pieceCount = 100;
            created.themeName = u"Stored Theme"_s;
            set = context.insert(created);
        }
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = utc(2020, 5, 6, 7, 8, 9);
        copy.catalogSet = set->objectID;
        copy.setAcquisitionType(AcquisitionType::purchased);
        if (configure)
            configure(copy);
        copy = context.insert(copy);
        context.save();
        return copy;
    }

    WishlistItem saveWishlistItem(const QString &number, const QString &name)
    {
        WishlistItem item;
        item.setNumber = number;
        item.setName = name;
        item.year = 2015;
        item.pieceCount = 321;
        item.themeName = u"Wanted Theme"_s;
        item.notes = u"Wanted badly"_s;
        item.dateAdded = utc(2019, 1, 2, 3, 4, 5);
        item = m_store->viewContext().insert(item);
        m_store->viewContext().save();
        return item;
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

    // --- Export

    void exportStartsWithTheHeaderOfThirtyOneColumns()
    {
        const QString text = CSVExportImportService::exportCSV({}, {});
        QCOMPARE(text, header());
        QCOMPARE(text.split(u',').size(), 31);
        QVERIFY(text.endsWith(u",trashed_date,retired_date,entry_type"_s));
    }

    void exportWritesCopiesThenWishlistItemsWithNoLineEndAfterTheLast()
    {
        saveWishlistItem(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(knownSet);
        const QStringList lines = exportStore(*m_store).split(u'\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[1].startsWith(CSVValueFormat::uuidText(copy.id) + u",10497-1,Stored Name,2001,Stored Theme,100,"_s));
        QVERIFY(lines[1].endsWith(u",owned"_s));
        QVERIFY(lines[2].endsWith(u",wishlist"_s));
        QVERIFY(!lines[2].isEmpty());
    }

    void exportOfAWishlistItemHasNoIdNoNotesAndTwentyThreeEmptyFields()
    {
        WishlistItem item;
        item.setNumber = u"75192-1"_s;
        item.setName = u"Millennium Falcon"_s;
        item.year = 0;
        item.pieceCount = 7541;
        item.themeName = u"Star Wars"_s;
        item.notes = u"Not in the file"_s;
        item.dateAdded = utc(2024, 2, 29, 23, 59, 59);
        const QString text = CSVExportImportService::exportCSV({}, {item});
        QCOMPARE(text.split(u'\n').at(1),
                 u",75192-1,Millennium Falcon,0,Star Wars,7541,2024-02-29T23:59:59Z,,,,,,,,,,,,,,,,,,,,,,,,wishlist"_s);
    }

    void exportOfACopyWithoutCatalogSetLeavesTheSetColumnsEmpty()
    {
        BrickSet copy;
        copy.id = QUuid(firstId);
        copy.dateAdded = utc(2021, 1, 1);
        copy.rating = 4;
        const QString line = CSVExportImportService::exportCSV({BrickSetWithCatalogSet{copy, std::nullopt}}, {}).split(u'\n').at(1);
        QCOMPARE(line, firstId + u",,,,,,2021-01-01T00:00:00Z,false,4,,,,,,,,,,,,,false,,,,,,false,,,owned"_s);
    }

    void exportQuotesCommasQuotesAndLineFeedsButNotALoneCarriageReturn()
    {
        BrickSet copy;
        copy.id = QUuid(firstId);
        copy.notes = u"a, \"b\""_s;
        copy.acquisitionSource = u"one\rtwo"_s;
        copy.disposalNotes = u"one\ntwo"_s;
        const QString text = CSVExportImportService::exportCSV({BrickSetWithCatalogSet{copy, std::nullopt}}, {});
        QVERIFY(text.contains(u",\"a, \"\"b\"\"\","_s));
        QVERIFY(text.contains(u",one\rtwo,"_s));
        QVERIFY(text.contains(u",\"one\ntwo\","_s));
    }

    void exportWritesTheRetiredDateAsTheLocalDay()
    {
        CatalogSet set;
        set.setNumber = knownSet;
        set.dateLastAvailable = QDateTime(QDate(2023, 12, 31), QTime(23, 30), Qt::LocalTime).toUTC();
        BrickSet copy;
        copy.id = QUuid(firstId);
        const QString line = CSVExportImportService::exportCSV({BrickSetWithCatalogSet{copy, set}}, {}).split(u'\n').at(1);
        QVERIFY(line.endsWith(u",2023-12-31,owned"_s));
    }

    // --- Edge cases of the import

    void exportThenImportReportsEveryCopyUpdatedAndEveryWishlistRowCreatedWithTheDatesAsTheyWere()
    {
        const BrickSet first = saveCopy(knownSet, [](BrickSet &copy) {
            copy.dateAdded = utc(2020, 1, 1, 0, 0, 0);
            copy.acquisitionDate = utc(2019, 12, 31, 23, 59, 59);
        });
        const BrickSet second = saveCopy(unknownSet, [](BrickSet &copy) {
            copy.dateAdded = utc(1999, 6, 30, 12, 0, 1);
            copy.disposalDate = utc(2024, 2, 29, 0, 0, 0);
            copy.trashedDate = utc(2025, 3, 1, 23, 0, 0);
            copy.isTrashed = true;
        });
        saveWishlistItem(u"75192-1"_s, u"Millennium Falcon"_s);
        saveWishlistItem(u"21330-1"_s, u"Home Alone"_s);
        const StoreContents before = contents(*m_store);

        const ImportResult result = importText(*m_store, exportStore(*m_store));
        QCOMPARE(result.updated, 2);
        QCOMPARE(result.created, 2);
        QVERIFY(result.errors.isEmpty());
        const StoreContents after = contents(*m_store);
        QCOMPARE(after.copies, before.copies);
        QCOMPARE(after.wishlist, before.wishlist);
        QCOMPARE(copyWithId(*m_store, first.id)->acquisitionDate, first.acquisitionDate);
        QCOMPARE(copyWithId(*m_store, second.id)->trashedDate, second.trashedDate);
    }

    void fileWithoutIdColumnSkipsEachOwnedRowAndImportsWishlistRows()
    {
        const QString text = u"set_number,set_name,entry_type\n10497-1,Galaxy Explorer,owned\n"
                             "75192-1,Millennium Falcon,wishlist\n60000-1,Fire Truck,\n"_s;
        const ImportResult result = importText(*m_store, text);
        QCOMPARE(result.created, 1);
        QCOMPARE(result.updated, 0);
        QCOMPARE(result.errors, (QStringList{u"Line 2: missing id"_s, u"Line 4: missing id"_s}));
        const StoreContents stored = contents(*m_store);
        QVERIFY(stored.copies.isEmpty());
        QVERIFY(stored.catalogSets.isEmpty());
        QCOMPARE(stored.wishlist.size(), 1);
        QCOMPARE(stored.wishlist[0].setNumber, some(u"75192-1"_s));
        QCOMPARE(stored.wishlist[0].setName, some(u"Millennium Falcon"_s));
    }

    void ownedRowForASetTheCatalogDoesNotKnowGetsACatalogSetWithOnlyWhatTheRowHolds()
    {
        const ImportResult result = importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, unknownSet},
                                                                   {u"set_name"_s, u"Home Made"_s}, {u"year"_s, u"1987"_s}})}));
        QCOMPARE(result.created, 1);
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, unknownSet);
        QVERIFY(set);
        QCOMPARE(set->name, some(u"Home Made"_s));
        QCOMPARE(set->year, qint16(1987));
        QCOMPARE(set->pieceCount, 0);
        QCOMPARE(set->themeName, std::nullopt);
        QCOMPARE(set->imageURL, std::nullopt);
        QCOMPARE(copyWithId(*m_store, QUuid(firstId))->catalogSet, set->objectID);
    }

    void emptyNotesFieldClearsTheNotesAndEmptyRatingFieldKeepsTheRatingOfAnExistingCopy()
    {
        const BrickSet copy = saveCopy(knownSet, [](BrickSet &copy) {
            copy.notes = u"Keep me?"_s;
            copy.rating = 4;
        });
        const ImportResult result = importText(*m_store, file({row({{u"id"_s, CSVValueFormat::uuidText(copy.id)},
                                                                   {u"set_number"_s, knownSet}, {u"notes"_s, u""_s},
                                                                   {u"rating"_s, u""_s}})}));
        QCOMPARE(result.updated, 1);
        const std::optional<BrickSet> stored = copyWithId(*m_store, copy.id);
        QCOMPARE(stored->notes, std::nullopt);
        QCOMPARE(stored->rating, qint16(4));
    }

    void entryTypeOtherThanWishlistAlsoItsCapitalisedFormCountsAsOwned()
    {
        const ImportResult result = importText(
            *m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}, {u"entry_type"_s, u"Wishlist"_s}}),
                            row({{u"id"_s, secondId}, {u"set_number"_s, knownSet}, {u"entry_type"_s, u"WISHLIST"_s}}),
                            row({{u"set_number"_s, u"75192-1"_s}, {u"entry_type"_s, u"wanted"_s}})}));
        QCOMPARE(result.created, 2);
        QCOMPARE(result.errors, QStringList{u"Line 4: missing id"_s});
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.copies.size(), 2);
        QVERIFY(stored.wishlist.isEmpty());
    }

    void overallConditionThatNoCaseHasIsStoredAsItStands()
    {
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet},
                                         {u"overall_condition"_s, u"mint-ish"_s}, {u"built_status"_s, u"\"half, built\""_s}})}));
        const std::optional<BrickSet> stored = copyWithId(*m_store, QUuid(firstId));
        QCOMPARE(stored->overallCondition, some(u"mint-ish"_s));
        QCOMPARE(stored->builtStatus, some(u"half, built"_s));
    }

    void emptyDateAddedKeepsTheDateOfAnExistingCopyAndGivesANewCopyTheCurrentTime()
    {
        const BrickSet existing = saveCopy(knownSet);
        const QDateTime before = QDateTime::currentDateTimeUtc();
        importText(*m_store, file({row({{u"id"_s, CSVValueFormat::uuidText(existing.id)}, {u"set_number"_s, knownSet}}),
                                   row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}})}));
        const QDateTime after = QDateTime::currentDateTimeUtc();
        QCOMPARE(copyWithId(*m_store, existing.id)->dateAdded, existing.dateAdded);
        const std::optional<QDateTime> added = copyWithId(*m_store, QUuid(firstId))->dateAdded;
        QVERIFY(added);
        QVERIFY2(*added >= before.addMSecs(-1) && *added <= after, qPrintable(added->toString(Qt::ISODateWithMs)));
    }

    void trashedCopyExportedAndImportedStaysTrashedWithItsTrashedDate()
    {
        const BrickSet trashed = saveCopy(knownSet, [](BrickSet &copy) {
            copy.isTrashed = true;
            copy.trashedDate = utc(2026, 1, 31, 23, 59, 59);
        });
        const QString text = exportStore(*m_store);
        QTemporaryDir emptyFolder;
        const std::unique_ptr<PersistentContainer> empty = openStore(emptyFolder);
        QCOMPARE(importText(*empty, text).created, 1);
        const std::optional<BrickSet> stored = copyWithId(*empty, trashed.id);
        QVERIFY(stored);
        QVERIFY(stored->isTrashed);
        QCOMPARE(stored->trashedDate, trashed.trashedDate);
    }

    void wishlistRowForASetAlreadyOnTheWishlistLeavesTheItemUntouched()
    {
        const WishlistItem item = saveWishlistItem(u"75192-1"_s, u"Millennium Falcon"_s);
        const ImportResult result = importText(
            *m_store, file({row({{u"set_number"_s, u"75192-1"_s}, {u"set_name"_s, u"Renamed"_s}, {u"year"_s, u"2030"_s},
                                 {u"notes"_s, u"Other notes"_s}, {u"entry_type"_s, u"wishlist"_s}})}));
        QCOMPARE(result.created, 1); // counted, although nothing was made
        const QList<WishlistItem> wishlist = contents(*m_store).wishlist;
        QCOMPARE(wishlist.size(), 1);
        QCOMPARE(wishlist[0], item);
    }

    void noteWithALineFeedIsExportedQuotedAndReimportedCutWithTheSecondHalfSkipped()
    {
        const BrickSet copy = saveCopy(knownSet, [](BrickSet &copy) { copy.notes = u"first half\nsecond half"_s; });
        const QString text = exportStore(*m_store);
        QVERIFY(text.contains(u",\"first half\nsecond half\","_s));
        const ImportResult result = importText(*m_store, text);
        QCOMPARE(result.updated, 1);
        QCOMPARE(result.errors, QStringList{u"Line 3: missing set_number"_s});
        const std::optional<BrickSet> stored = copyWithId(*m_store, copy.id);
        QCOMPARE(stored->notes, some(u"first half"_s));
        // The columns after the break were cut off the row: read as absent.
        QCOMPARE(stored->acquisitionType, std::nullopt);
        QVERIFY(!stored->isTrashed);
    }

    // --- Finding and creating catalog sets

    void newCatalogSetTakesImageNameYearAndPiecesFromTheCatalogWhereTheRowIsSilent()
    {
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}, {u"theme"_s, u"Space"_s}})}));
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, knownSet);
        QCOMPARE(set->imageURL, some(knownSetImage));
        QCOMPARE(set->name, some(u"Galaxy Explorer"_s));
        QCOMPARE(set->year, qint16(2022));
        QCOMPARE(set->pieceCount, 1254);
        QCOMPARE(set->themeName, some(u"Space"_s));
    }

    void rowValuesOverrideWhatTheCatalogAndASyncWrote()
    {
        saveCopy(knownSet);
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}, {u"set_name"_s, u"Mine"_s},
                                         {u"year"_s, u"1979"_s}, {u"piece_count"_s, u"12"_s}, {u"theme"_s, u"Classic"_s},
                                         {u"retired_date"_s, u"1982-12-31"_s}})}));
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, knownSet);
        QCOMPARE(set->name, some(u"Mine"_s));
        QCOMPARE(set->year, qint16(1979));
        QCOMPARE(set->pieceCount, 12);
        QCOMPARE(set->themeName, some(u"Classic"_s));
        QCOMPARE(set->dateLastAvailable, QDate(1982, 12, 31).startOfDay(Qt::LocalTime).toUTC());
        // The stored set had no picture; the catalog gives it one.
        QCOMPARE(set->imageURL, some(knownSetImage));
    }

    void yearAndPieceCountOutOfRangeLeaveTheStoredValues()
    {
        saveCopy(knownSet);
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}, {u"year"_s, u"40000"_s},
                                         {u"piece_count"_s, u"3000000000"_s}, {u"rating"_s, u"70000"_s}})}));
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, knownSet);
        QCOMPARE(set->year, qint16(2001));
        QCOMPARE(set->pieceCount, 100);
        QCOMPARE(copyWithId(*m_store, QUuid(firstId))->rating, qint16(0));
    }

    void setNumberIsLookedUpAsItStandsNotNormalised()
    {
        saveCopy(knownSet);
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, u"10497"_s}})}));
        QCOMPARE(contents(*m_store).catalogSets.size(), 2);
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, u"10497"_s);
        QVERIFY(set);
        QCOMPARE(set->imageURL, std::nullopt);
    }

    void withoutCatalogRowsComeInWithWhatTheFileHolds()
    {
        RebrickableCatalog::replaceShared(nullptr);
        // As when neither the user's catalog nor the bundled one could be opened.
        QVERIFY(!RebrickableCatalog::shared());
        const ImportResult result = importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}})}));
        QCOMPARE(result.created, 1);
        const std::optional<CatalogSet> set = catalogSetNumbered(*m_store, knownSet);
        QCOMPARE(set->imageURL, std::nullopt);
        QCOMPARE(set->name, std::nullopt);
    }

    // --- Bad input

    void textWithOnlyBlankLinesFailsAsEmptyFileAndChangesNothing()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        try {
            importText(*m_store, u"\n\r\n\n"_s);
            QFAIL("the import should have failed");
        } catch (const ImportError &error) {
            QCOMPARE(error.kind(), ImportError::Kind::emptyFile);
            QCOMPARE(error.description(), u"The CSV file is empty."_s);
        }
        QCOMPARE(contents(*m_store), before);
    }

    void headerWithoutSetNumberFailsAsMissingColumnsAndChangesNothing()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        try {
            importText(*m_store, u"id,set_name\n"_s + firstId + u",Galaxy Explorer"_s);
            QFAIL("the import should have failed");
        } catch (const ImportError &error) {
            QCOMPARE(error.kind(), ImportError::Kind::missingRequiredColumns);
            QCOMPARE(error.description(), u"The CSV file is missing required columns (id, set_number)."_s);
        }
        QCOMPARE(contents(*m_store), before);
    }

    void binaryTextThatHappensToBeUtf8FailsAsMissingColumns()
    {
        const QByteArray bytes("\x00\x01\x02PK\x03\x04\x14\x00,\x08\x00\n\x7f\x1b[0m", 17);
        QVERIFY_THROWS_EXCEPTION(ImportError, importText(*m_store, QString::fromUtf8(bytes)));
        QCOMPARE(contents(*m_store), StoreContents{});
    }

    void idColumnAfterAByteOrderMarkIsNotFoundSoOwnedRowsAreSkipped()
    {
        const ImportResult result = importText(*m_store, u"\uFEFFid,set_number\n"_s + firstId + u",10497-1"_s);
        QCOMPARE(result.errors, QStringList{u"Line 2: missing id"_s});
        QCOMPARE(contents(*m_store), StoreContents{});
    }

    void rowWithoutSetNumberOrWithABadIdIsSkippedAndTheOthersComeIn()
    {
        const ImportResult result = importText(
            *m_store, file({row({{u"id"_s, firstId}}), row({{u"id"_s, u"not-a-uuid"_s}, {u"set_number"_s, knownSet}}),
                            row({{u"id"_s, u"{"_s + secondId + u"}"_s}, {u"set_number"_s, knownSet}}),
                            row({{u"id"_s, secondId.toLower()}, {u"set_number"_s, knownSet}})}));
        QCOMPARE(result.created, 1);
        QCOMPARE(result.errors, (QStringList{u"Line 2: missing set_number"_s, u"Line 3: missing id"_s,
                                             u"Line 4: missing id"_s}));
        QVERIFY(copyWithId(*m_store, QUuid(secondId)));
    }

    void unreadableDatesAndPricesAreStoredAsAbsent()
    {
        const BrickSet copy = saveCopy(knownSet, [](BrickSet &copy) {
            copy.acquisitionDate = utc(2020, 1, 1);
            copy.pricePaid = Decimal::fromString(u"12.50");
            copy.disposalPrice = Decimal::fromString(u"3");
            copy.trashedDate = utc(2021, 1, 1);
        });
        const ImportResult result = importText(
            *m_store, file({row({{u"id"_s, CSVValueFormat::uuidText(copy.id)}, {u"set_number"_s, knownSet},
                                 {u"date_added"_s, u"06/05/2020"_s}, {u"acquisition_date"_s, u"2020/01/01"_s},
                                 {u"price_paid"_s, u"\"12,50\""_s}, {u"disposal_price"_s, u"NaN"_s},
                                 {u"disposal_date"_s, u"2024-02-30"_s}, {u"trashed_date"_s, u"yesterday"_s},
                                 {u"retired_date"_s, u"2020-13-01"_s}})}));
        QCOMPARE(result.updated, 1);
        QVERIFY(result.errors.isEmpty());
        const std::optional<BrickSet> stored = copyWithId(*m_store, copy.id);
        QCOMPARE(stored->dateAdded, copy.dateAdded); // unreadable: kept, as when empty
        QCOMPARE(stored->acquisitionDate, std::nullopt);
        QCOMPARE(stored->pricePaid, std::nullopt);
        QCOMPARE(stored->disposalPrice, std::nullopt);
        QCOMPARE(stored->disposalDate, std::nullopt);
        QCOMPARE(stored->trashedDate, std::nullopt);
        QCOMPARE(catalogSetNumbered(*m_store, knownSet)->dateLastAvailable, std::nullopt);
    }

    void emptyTrashedDateKeepsTheStoredOne()
    {
        const BrickSet copy = saveCopy(knownSet, [](BrickSet &copy) { copy.trashedDate = utc(2021, 1, 1); });
        importText(*m_store, file({row({{u"id"_s, CSVValueFormat::uuidText(copy.id)}, {u"set_number"_s, knownSet}})}));
        QCOMPARE(copyWithId(*m_store, copy.id)->trashedDate, copy.trashedDate);
    }

    void duplicateIdsInOneFileMakeOneCopyThatTheLaterRowUpdates()
    {
        const ImportResult result = importText(
            *m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet}, {u"notes"_s, u"first"_s}}),
                            row({{u"id"_s, firstId}, {u"set_number"_s, unknownSet}, {u"notes"_s, u"second"_s}})}));
        QCOMPARE(result.created, 1);
        QCOMPARE(result.updated, 1);
        const StoreContents stored = contents(*m_store);
        QCOMPARE(stored.copies.size(), 1);
        QCOMPARE(stored.copies[0].notes, some(u"second"_s));
        QCOMPARE(stored.copies[0].catalogSet, catalogSetNumbered(*m_store, unknownSet)->objectID);
        QCOMPARE(stored.catalogSets.size(), 2);
    }

    void formulaLookingCellsAreStoredAndExportedAsTheyStand()
    {
        const QString formula = u"=HYPERLINK(\"http://example.invalid\",\"x\")"_s;
        importText(*m_store, file({row({{u"id"_s, firstId}, {u"set_number"_s, knownSet},
                                         {u"notes"_s, CSVFieldSyntax::escapedField(formula)},
                                         {u"acquisition_source"_s, u"+1-2"_s}, {u"disposal_notes"_s, u"@SUM(A1)"_s},
                                         {u"set_name"_s, u"-cmd"_s}})}));
        const std::optional<BrickSet> stored = copyWithId(*m_store, QUuid(firstId));
        QCOMPARE(stored->notes, some(formula));
        QCOMPARE(stored->acquisitionSource, some(u"+1-2"_s));
        QCOMPARE(stored->disposalNotes, some(u"@SUM(A1)"_s));
        const QString exported = exportStore(*m_store);
        QVERIFY(exported.contains(u",-cmd,"_s));
        QVERIFY(exported.contains(u",\"=HYPERLINK(\"\"http://example.invalid\"\",\"\"x\"\")\","_s));
    }

    void failingSaveKeepsNothingAndLeavesNoPendingChange()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        QVERIFY(executeOnStoreFile(*m_store, "CREATE TRIGGER refuseWishlist BEFORE INSERT ON WishlistItem "
                                             "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
        const std::shared_ptr<ManagedObjectContext> context = m_store->newBackgroundContext();
        const QString text = file({row({{u"id"_s, firstId}, {u"set_number"_s, unknownSet}}),
                                   row({{u"set_number"_s, u"75192-1"_s}, {u"entry_type"_s, u"wishlist"_s}})});
        QSignalSpy changes(m_store.get(), &PersistentContainer::objectsDidChange);
        try {
            context->performAndWait([&text](ManagedObjectContext &store) { return CSVExportImportService::importCSV(text, store); });
            QFAIL("the import should have failed");
        } catch (const StoreError &error) {
            QCOMPARE(error.kind(), StoreError::Kind::saveFailed);
        }
        QVERIFY(!context->performAndWait([](ManagedObjectContext &store) { return store.hasChanges(); }));
        QCOMPARE(contents(*m_store), before);
        QCoreApplication::processEvents();
        QCOMPARE(changes.count(), 0);
    }

    void headerNamingAColumnTwiceStopsTheProcessAndChangesNothing()
    {
        saveCopy(knownSet);
        const StoreContents before = contents(*m_store);
        QProcess importer;
        importer.start(QStringLiteral(DUPLICATE_HEADER_IMPORT_PROCESS), {m_store->path()});
        QVERIFY(importer.waitForFinished(60'000));
        // Which of the two columns a value came from would be a guess: the process stops.
        QCOMPARE(importer.exitStatus(), QProcess::CrashExit);
        QVERIFY2(importer.readAllStandardError().contains("CSV header names the column \"notes\" twice"),
                 "the fault names the column");
        QCOMPARE(contents(*m_store), before);
    }

    // --- Running off the main thread

    void backgroundImportEndsWithItsResultAndReportsProgressOnTheMainThread()
    {
        QStringList rows;
        for (int index = 0; index < 1200; ++index)
            rows.append(row({{u"id"_s, CSVValueFormat::uuidText(QUuid::createUuid())}, {u"set_number"_s, knownSet}}));
        QList<std::pair<qint64, qint64>> reports;
        bool onMainThread = true;
        QSignalSpy changes(m_store.get(), &PersistentContainer::objectsDidChange);
        const ImportResult result = QCoro::waitFor(CSVExportImportService::importInBackground(
            *m_store, file(rows), [&reports, &onMainThread](qint64 done, qint64 total) {
                onMainThread = onMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
                reports.append({done, total});
            }));
        QCOMPARE(result.created, 1200);
        QTRY_COMPARE(reports.size(), 3);
        QVERIFY(onMainThread);
        QCOMPARE(reports.last(), (std::pair<qint64, qint64>(1200, 1200)));
        QCOMPARE(reports.first(), (std::pair<qint64, qint64>(500, 1200)));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(contents(*m_store).copies.size(), 1200);
    }

    void backgroundImportFailureArrivesAsItsError()
    {
        bool failedAsEmpty = false;
        QCoro::waitFor([this, &failedAsEmpty]() -> QCoro::Task<void> {
            try {
                co_await CSVExportImportService::importInBackground(*m_store, u"\n\n"_s);
            } catch (const ImportError &error) {
                failedAsEmpty = error.kind() == ImportError::Kind::emptyFile;
            }
        }());
        QVERIFY(failedAsEmpty);
    }
};

QTEST_GUILESS_MAIN(CSVExportImportServiceTest)
#include "CSVExportImportServiceTest.moc"
