// SPDX-License-Identifier: GPL-3.0-or-later
#include "InventoryFixtures.h"
#include "TestEnvironment.h"

#include "Store/ManagedObjectContext.h"
#include "ViewModels/InventoryRowReader.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace InventoryFixtures;

// Reading a copy into an inventory row: the keys its choice and order compare, and the
// days of its dates in the sheet's time zone, which the reader counts from the zone's
// table of clock changes rather than through a conversion per date.
class InventoryRowReaderTest : public QObject
{
    Q_OBJECT

private:
    static BrickSetWithCatalogSet copyAt(const QDateTime &instant)
    {
        BrickSetWithCatalogSet copy;
        copy.brickSet.acquisitionDate = instant;
        return copy;
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void daysAreThoseOfTheZonesOwnConversion_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::newRow("Berlin") << QByteArray("Europe/Berlin");
        QTest::newRow("New York") << QByteArray("America/New_York");
        QTest::newRow("Lord Howe") << QByteArray("Australia/Lord_Howe"); // half-hour clock changes
        QTest::newRow("Kolkata") << QByteArray("Asia/Kolkata");
        QTest::newRow("UTC") << QByteArray("UTC");
    }

    void daysAreThoseOfTheZonesOwnConversion()
    {
        QFETCH(QByteArray, zone);
        const QTimeZone timeZone(zone);
        QVERIFY(timeZone.isValid());
        const InventoryRowReader reader(timeZone);
        // Every 7 hours and 13 minutes from 1960 to 2060, and the minutes around each clock change.
        QList<QDateTime> instants;
        for (QDateTime instant(QDate(1960, 1, 1), QTime(0, 0), Qt::UTC); instant.date().year() < 2060;
             instant = instant.addSecs(7 * 3600 + 13 * 60))
            instants << instant;
        const auto transitions = timeZone.transitions(QDateTime(QDate(1960, 1, 1), QTime(0, 0), Qt::UTC),
                                                      QDateTime(QDate(2060, 1, 1), QTime(0, 0), Qt::UTC));
        for (const auto &transition : transitions) {
            for (const int minutes : {-61, -1, 0, 1, 61})
                instants << transition.atUtc.addSecs(minutes * 60);
        }
        for (const QDateTime &instant : std::as_const(instants)) {
            const auto row = reader.read(copyAt(instant));
            if (row->acquiredDay != instant.toTimeZone(timeZone).date())
                QFAIL(qPrintable(u"%1 reads as %2"_s.arg(instant.toString(Qt::ISODate), row->acquiredDay.toString(Qt::ISODate))));
        }
    }

    void datesOutsideTheTableAreCountedToo()
    {
        const QTimeZone berlin("Europe/Berlin");
        const InventoryRowReader reader(berlin);
        const QDateTime early(QDate(1850, 6, 30), QTime(23, 30), Qt::UTC);
        const QDateTime late(QDate(2300, 7, 1), QTime(22, 30), Qt::UTC);
        QCOMPARE(reader.read(copyAt(early))->acquiredDay, early.toTimeZone(berlin).date());
        QCOMPARE(reader.read(copyAt(late))->acquiredDay, QDate(2300, 7, 2));
    }

    void keysOfACopyWithoutAnyValue()
    {
        const auto row = InventoryRowReader(QTimeZone::utc()).read(BrickSetWithCatalogSet{});
        QCOMPARE(row->conditionKey, u"zzz"_s);
        QCOMPARE(row->builtKey, u"zzz"_s);
        QCOMPARE(row->paidKey, -1.0);
        QCOMPARE(row->disposedKey, -1.0);
        QCOMPARE(row->acquiredMsecs, InventoryRow::distantPast);
        QCOMPARE(row->disposedDateMsecs, InventoryRow::distantPast);
        QCOMPARE(row->addedMsecs, InventoryRow::distantPast);
        QCOMPARE(row->filterDateMsecs, InventoryRow::distantPast);
        QCOMPARE(row->year, 0);
        QVERIFY(row->setNumber.isEmpty());
        QVERIFY(!row->acquiredDay.isValid());
        QVERIFY(!row->hasCatalogSet);
    }

    void keysOfACopyWithItsValues()
    {
        BrickSetWithCatalogSet copy;
        copy.catalogSet = StoreFixtures::catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        copy.brickSet.overallCondition = u"new"_s;
        copy.brickSet.builtStatus = u"never_built"_s;
        copy.brickSet.pricePaid = amount(u"849.99"_s);
        copy.brickSet.disposalPrice = amount(u"1000"_s);
        copy.brickSet.dateAdded = utc(QDate(2020, 2, 2));
        const auto row = InventoryRowReader(QTimeZone::utc()).read(copy);
        QCOMPARE(row->setNumberLowered, u"75192-1"_s);
        QCOMPARE(row->nameLowered, u"millennium falcon"_s);
        QCOMPARE(row->year, 2017);
        QCOMPARE(row->conditionKey, u"new"_s);
        QCOMPARE(row->builtKey, u"never_built"_s);
        QCOMPARE(row->paidKey, 849.99);
        QCOMPARE(row->disposedKey, 1000.0);
        QCOMPARE(row->filterDateMsecs, utc(QDate(2020, 2, 2)).toMSecsSinceEpoch());
        QCOMPARE(row->filterDay, QDate(2020, 2, 2));
    }
};

QTEST_GUILESS_MAIN(InventoryRowReaderTest)
#include "InventoryRowReaderTest.moc"
