// SPDX-License-Identifier: GPL-3.0-or-later
// A collection of 2,000 copies with every field filled with values that are hard to carry
// through a CSV file, exported and imported into an empty store: what comes back is what
// went out, except what the file has no room for, which the test names one by one.
#include "CollectionCSVFixture.h"
#include "TestEnvironment.h"

#include "CSVFieldSyntax.h"
#include "CSVValueFormat.h"
#include "Services/CSVExportImportService.h"
#include "Services/RebrickableCatalog.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace CollectionCSVFixture;
using CSVExportImportService::ImportResult;

namespace {

constexpr int copyCount = 2000;
constexpr int catalogSetCount = 700;
constexpr int wishlistCount = 150;
constexpr int copiesWithoutCatalogSet = 5;

// Texts that survive the file: no line-end character of any kind and nothing a reader trims
// at either end, since both are lost by design (see the tests of the service).
const QStringList hardTexts{
    u"Millennium Falcon"_s,
    u"Police Station, Modular"_s,
    u"The \"Classic\" Space Set"_s,
    u"\"\""_s,
    u","_s,
    u"a,\"b\",c"_s,
    u"Geschenk von Oma – ungeöffnet"_s,
    u"レゴストアで購入"_s,
    u"Ελληνικά και עברית"_s,
    u"emoji 🧱🚀 and e\u0301 combined"_s,
    u"=SUM(A1:A9)"_s,
    u"+49 30 1234"_s,
    u"-minus"_s,
    u"@mention"_s,
    u"inner  spaces\tand tab"_s,
    u"back\\slash;semi'colon"_s,
    u"x"_s,
};

const QStringList hardDecimals{
    u"99999999999999999999999999999999999999"_s,
    u"-99999999999999999999999999999999999999"_s,
    u"0.00000000000000000000000000000000000001"_s,
    u"9999999999999999999999999999.9999999999"_s,
    u"0"_s,
    u"-0.01"_s,
    u"1234567.89"_s,
    u"1e30"_s,
};

// Instants at the edges of days, months, years and the epoch, and some in between with
// milliseconds, which the file does not keep.
QList<QDateTime> hardDates()
{
    const auto utc = [](int year, int month, int day, int hour, int minute, int second, int milliseconds = 0) {
        return QDateTime(QDate(year, month, day), QTime(hour, minute, second, milliseconds), Qt::UTC);
    };
    return {
        utc(1970, 1, 1, 0, 0, 0),       utc(1969, 12, 31, 23, 59, 59),  utc(2000, 2, 29, 0, 0, 0),
        utc(2024, 2, 29, 23, 59, 59),   utc(2025, 12, 31, 23, 59, 59),  utc(2026, 1, 1, 0, 0, 0),
        utc(1900, 1, 1, 0, 0, 0),       utc(2999, 12, 31, 23, 59, 59),  utc(2026, 3, 29, 1, 0, 0),
        utc(2026, 10, 25, 0, 59, 59),   utc(2021, 7, 4, 12, 30, 15, 999), utc(1955, 11, 5, 6, 15, 0, 1),
    };
}

// Stored texts of the enumerated attributes: every raw value, and texts no case has.
const QStringList conditionTexts{u"new"_s, u"used"_s, u"sealed"_s, u"good"_s, u"fair"_s, u"poor"_s, u"none"_s,
                                 u"mint, boxed"_s, u"\"like new\""_s, u"gebraucht – gut"_s};

QDateTime wholeSeconds(const QDateTime &date)
{
    const qint64 milliseconds = date.toMSecsSinceEpoch();
    const qint64 seconds = milliseconds / 1000 - (milliseconds % 1000 < 0 ? 1 : 0);
    return QDateTime::fromMSecsSinceEpoch(seconds * 1000, Qt::UTC);
}

std::optional<QDateTime> wholeSeconds(const std::optional<QDateTime> &date)
{
    return date ? std::optional<QDateTime>(wholeSeconds(*date)) : std::nullopt;
}

// The start of the local day of `date`: all the file keeps of a retired date.
std::optional<QDateTime> localDay(const std::optional<QDateTime> &date)
{
    return date ? std::optional<QDateTime>(date->toLocalTime().date().startOfDay(Qt::LocalTime).toUTC()) : std::nullopt;
}

class Generator
{
public:
    template <typename T>
    const T &pick(const QList<T> &values)
    {
        return values.at(m_random.bounded(int(values.size())));
    }
    // Absent one time in `oneIn`.
    std::optional<QString> text(int oneIn = 4)
    {
        return m_random.bounded(oneIn) == 0 ? std::nullopt : std::optional<QString>(pick(hardTexts));
    }
    std::optional<QString> condition()
    {
        return m_random.bounded(5) == 0 ? std::nullopt : std::optional<QString>(pick(conditionTexts));
    }
    std::optional<QDateTime> date()
    {
        return m_random.bounded(4) == 0 ? std::nullopt : std::optional<QDateTime>(pick(m_dates));
    }
    std::optional<Decimal> decimal()
    {
        return m_random.bounded(4) == 0 ? std::nullopt : Decimal::fromString(pick(hardDecimals));
    }
    bool flag() { return m_random.bounded(2) == 1; }
    int bounded(int lowest, int highest) { return m_random.bounded(lowest, highest); }

private:
    QRandomGenerator m_random{20261125};
    QList<QDateTime> m_dates = hardDates();
};

} // namespace

class CollectionCSVRoundTripTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::unique_ptr<PersistentContainer> m_source;
    QString m_file;

    void fillSource()
    {
        Generator generate;
        ManagedObjectContext &context = m_source->viewContext();
        QList<ObjectID> sets;
        for (int index = 0; index < catalogSetCount; ++index) {
            CatalogSet set;
            set.setNumber = QString::number(10000 + index) + u"-1"_s;
            if (index % 97 == 0)
                set.setNumber = u"MOC-Ñandú, \"custom\" "_s.trimmed() + QString::number(index);
            set.name = generate.text(5);
            set.themeName = generate.text(5);
            set.year = qint16(index % 50 == 0 ? (index % 100 == 0 ? -32768 : 32767) : generate.bounded(0, 2030));
            set.pieceCount = index % 60 == 0 ? std::numeric_limits<qint32>::max() : generate.bounded(0, 12000);
            if (index % 3 == 0)
                set.dateLastAvailable = QDate(2000 + index % 26, 1 + index % 12, 1 + index % 28).startOfDay(Qt::LocalTime).toUTC();
            else if (index % 3 == 1)
                set.dateLastAvailable = QDateTime(QDate(2010, 6, 30), QTime(23, 59, 59), Qt::LocalTime).toUTC();
            // Not in the file at all:
            set.themeGroup = u"Group"_s;
            set.thumbnailURL = u"https://cdn.rebrickable.com/media/thumbs/x.jpg"_s;
            set.retailPrice = Decimal::fromString(u"19.99");
            set.retailPriceCurrency = u"EUR"_s;
            set.dateFirstAvailable = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
            sets.append(context.insert(set).objectID);
        }
        for (int index = 0; index < copyCount; ++index) {
            BrickSet copy;
            copy.id = QUuid::createUuid();
            copy.catalogSet = index < copiesWithoutCatalogSet ? std::nullopt : std::optional<ObjectID>(generate.pick(sets));
            copy.dateAdded = generate.date();
            copy.isFavorite = generate.flag();
            copy.notes = generate.text();
            copy.rating = qint16(index % 100 == 0 ? -32768 : (index % 100 == 1 ? 32767 : generate.bounded(0, 6)));
            copy.acquisitionType = generate.condition();
            copy.pricePaid = generate.decimal();
            copy.priceCurrency = generate.text();
            copy.acquisitionDate = generate.date();
            copy.acquisitionSource = generate.text();
            copy.overallCondition = generate.condition();
            copy.boxCondition = generate.condition();
            copy.instructionsCondition = generate.condition();
            copy.builtStatus = generate.condition();
            copy.stickerStatus = generate.condition();
            copy.completeness = generate.condition();
            copy.isDisposed = generate.flag();
            copy.disposalType = generate.condition();
            copy.isTrashed = generate.flag();
            copy.trashedDate = generate.date();
            copy.disposalDate = generate.date();
            copy.disposalPrice = generate.decimal();
            copy.disposalCurrency = generate.text();
            copy.disposalNotes = generate.text();
            context.insert(copy);
        }
        for (int index = 0; index < wishlistCount; ++index) {
            WishlistItem item;
            item.setNumber = u"W"_s + QString::number(index) + u"-1"_s;
            item.setName = generate.text();
            item.year = qint16(generate.bounded(-5, 2030));
            item.pieceCount = generate.bounded(0, 100000);
            item.themeName = generate.text();
            item.dateAdded = generate.date();
            item.notes = u"not carried by the file"_s;
            item.imageURL = u"https://cdn.rebrickable.com/media/sets/x.jpg"_s;
            context.insert(item);
        }
        context.save();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        // No catalog: what comes back is what the file holds, nothing filled in.
        RebrickableCatalog::replaceShared(nullptr);
        QVERIFY(!RebrickableCatalog::shared());
        m_source = openStore(m_folder);
        fillSource();
        m_file = exportStore(*m_source);
        QCOMPARE(m_file.count(u'\n'), copyCount + wishlistCount);
    }

    void importIntoAnEmptyStoreGivesBackEveryFieldTheFileCarries()
    {
        const std::unique_ptr<PersistentContainer> target = openStore(m_folder);
        const QDateTime importStart = wholeSeconds(QDateTime::currentDateTimeUtc());
        const ImportResult result = importText(*target, m_file);
        const QDateTime importEnd = QDateTime::currentDateTimeUtc();

        // Copies without a catalog set have no set number in the file: their rows are skipped.
        QCOMPARE(result.created, copyCount - copiesWithoutCatalogSet + wishlistCount);
        QCOMPARE(result.updated, 0);
        QCOMPARE(result.errors.size(), copiesWithoutCatalogSet);
        for (int index = 0; index < copiesWithoutCatalogSet; ++index)
            QCOMPARE(result.errors.at(index), u"Line %1: missing set_number"_s.arg(index + 2));

        const StoreContents source = contents(*m_source);
        const StoreContents imported = contents(*target);
        QHash<qint64, CatalogSet> sourceSets;
        for (const CatalogSet &set : source.catalogSets)
            sourceSets.insert(set.objectID.primaryKey, set);
        QHash<QUuid, BrickSet> importedCopies;
        for (const BrickSet &copy : imported.copies)
            importedCopies.insert(copy.id, copy);
        QHash<qint64, CatalogSet> importedSets;
        for (const CatalogSet &set : imported.catalogSets)
            importedSets.insert(set.objectID.primaryKey, set);

        QCOMPARE(imported.copies.size(), copyCount - copiesWithoutCatalogSet);
        int comparedCopies = 0;
        for (const BrickSet &original : source.copies) {
            if (!original.catalogSet) {
                QVERIFY(!importedCopies.contains(original.id));
                continue;
            }
            QVERIFY(importedCopies.contains(original.id));
            const BrickSet &copy = importedCopies[original.id];
            BrickSet expected = original;
            expected.objectID = copy.objectID;
            expected.catalogSet = copy.catalogSet;
            // The file keeps dates to the second; a copy without a date is given the import's.
            expected.dateAdded = original.dateAdded ? wholeSeconds(original.dateAdded) : copy.dateAdded;
            if (!original.dateAdded)
                QVERIFY(copy.dateAdded && *copy.dateAdded >= importStart && *copy.dateAdded <= importEnd);
            expected.acquisitionDate = wholeSeconds(original.acquisitionDate);
            expected.disposalDate = wholeSeconds(original.disposalDate);
            expected.trashedDate = wholeSeconds(original.trashedDate);
            if (copy != expected)
                QFAIL(qPrintable(u"copy %1 differs"_s.arg(original.id.toString())));

            const CatalogSet &originalSet = sourceSets[original.catalogSet->primaryKey];
            const CatalogSet &set = importedSets[copy.catalogSet->primaryKey];
            CatalogSet expectedSet;
            expectedSet.objectID = set.objectID;
            expectedSet.setNumber = originalSet.setNumber;
            expectedSet.name = originalSet.name;
            expectedSet.themeName = originalSet.themeName;
            expectedSet.year = originalSet.year;
            expectedSet.pieceCount = originalSet.pieceCount;
            expectedSet.dateLastAvailable = localDay(originalSet.dateLastAvailable);
            QCOMPARE(set, expectedSet);
            ++comparedCopies;
        }
        QCOMPARE(comparedCopies, copyCount - copiesWithoutCatalogSet);

        QCOMPARE(imported.wishlist.size(), wishlistCount);
        for (qsizetype index = 0; index < wishlistCount; ++index) {
            const WishlistItem &original = source.wishlist.at(index);
            const WishlistItem &item = imported.wishlist.at(index);
            WishlistItem expected = original;
            expected.objectID = item.objectID;
            expected.dateAdded = original.dateAdded ? wholeSeconds(original.dateAdded) : item.dateAdded;
            expected.notes = std::nullopt;    // not written by the export
            expected.imageURL = std::nullopt; // not in the file
            QCOMPARE(item, expected);
        }
    }

    void importingTheSameFileAgainUpdatesEveryRowAndCreatesNothing()
    {
        const std::unique_ptr<PersistentContainer> target = openStore(m_folder);
        importText(*target, m_file);
        const StoreContents first = contents(*target);

        const ImportResult again = importText(*target, m_file);
        QCOMPARE(again.updated, copyCount - copiesWithoutCatalogSet);
        // Wishlist rows count as created although the items are already there.
        QCOMPARE(again.created, wishlistCount);
        QCOMPARE(again.errors.size(), copiesWithoutCatalogSet);
        QCOMPARE(contents(*target), first);
    }

    void exportOfTheImportedStoreIsTheSameFileApartFromTheLostRows()
    {
        const std::unique_ptr<PersistentContainer> target = openStore(m_folder);
        importText(*target, m_file);
        QStringList expected = m_file.split(u'\n');
        expected.remove(1, copiesWithoutCatalogSet);
        QStringList exported = exportStore(*target).split(u'\n');
        QCOMPARE(exported.size(), expected.size());
        // Rows without a date_added now carry the import's; every other field of every line
        // is as it was.
        int datedByImport = 0;
        for (qsizetype index = 0; index < expected.size(); ++index) {
            const QStringList before = CSVFieldSyntax::fields(expected[index]);
            QStringList after = CSVFieldSyntax::fields(exported[index]);
            QCOMPARE(after.size(), 31);
            if (before[6].isEmpty() && !after[6].isEmpty()) {
                after[6].clear();
                ++datedByImport;
            }
            QCOMPARE(after, before);
        }
        QVERIFY(datedByImport > 0);
    }
};

QTEST_GUILESS_MAIN(CollectionCSVRoundTripTest)
#include "CollectionCSVRoundTripTest.moc"
