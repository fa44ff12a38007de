// SPDX-License-Identifier: GPL-3.0-or-later
#include "InventoryFixtures.h"
#include "TestEnvironment.h"

#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "Views/TranslationLoader.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace InventoryFixtures;

using Column = InventorySpreadsheetModel::Column;

// The sheet's table: its columns, widths and titles, and the text of every cell for a
// copy in each state it can be in, read from a real store file.
class InventorySpreadsheetModelTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<InventoryStore> m_store;

    // The ten cells of the only row the store holds.
    QStringList onlyRowCells()
    {
        InventorySpreadsheetViewModel model(m_store->container());
        model.setTimeZone(QTimeZone::utc());
        const InventorySpreadsheetModel &table = model.tableModel();
        QAbstractItemModelTester tester(&model.tableModel(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        if (table.rowCount() != 1)
            return {};
        QStringList cells;
        for (int column = 0; column < table.columnCount(); ++column)
            cells << table.data(table.index(0, column)).toString();
        return cells;
    }

    BrickSet falconCopy(const std::function<void(BrickSet &)> &configure)
    {
        return m_store->copy(m_store->catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017), configure);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QLocale::setDefault(QLocale(u"en_US"_s));
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(u"en_US"_s)));
    }

    void init()
    {
        QSettings().remove(u"inventoryStatusFilter"_s);
        m_store = std::make_unique<InventoryStore>();
    }

    void cleanup() { m_store.reset(); }

    void tenColumnsWithTheirLeastAndIdealWidths()
    {
        InventorySpreadsheetModel table;
        QCOMPARE(table.columnCount(), 10);
        const QList<int> least{80, 120, 50, 60, 50, 60, 70, 60, 70, 70};
        const QList<int> ideal{100, 200, 50, 80, 80, 80, 85, 80, 85, 85};
        for (int column = 0; column < 10; ++column) {
            QCOMPARE(InventorySpreadsheetModel::leastWidth(column), least[column]);
            QCOMPARE(InventorySpreadsheetModel::idealWidth(column), ideal[column]);
        }
        QCOMPARE(InventorySpreadsheetModel::leastWidth(10), 0);
    }

    void columnTitlesAreTheLocalisedTableTitles()
    {
        InventorySpreadsheetModel table;
        QStringList titles;
        for (int column = 0; column < table.columnCount(); ++column)
            titles << table.headerData(column, Qt::Horizontal).toString();
        QCOMPARE(titles, (QStringList{u"Set #"_s, u"Name"_s, u"Year"_s, u"Condition"_s, u"Built"_s, u"Paid"_s,
                                      u"Acquired"_s, u"Disposed"_s, u"Disposal Date"_s, u"Added"_s}));
    }

    void cellsOfACopyInStock()
    {
        falconCopy([](BrickSet &copy) {
            copy.overallCondition = u"new"_s;
            copy.builtStatus = u"partially_built"_s;
            copy.pricePaid = amount(u"849.99"_s);
            copy.priceCurrency = u"USD"_s;
            copy.acquisitionDate = utc(QDate(2017, 10, 1));
            copy.dateAdded = utc(QDate(2017, 10, 2));
        });
        QCOMPARE(onlyRowCells(), (QStringList{u"75192-1"_s, u"Millennium Falcon"_s, u"2017"_s, u"New/Sealed"_s,
                                             u"Partially Built"_s, u"$849.99"_s, u"10/1/17"_s, QString(), QString(),
                                             u"10/2/17"_s}));
    }

    void cellsOfACopyWithoutAnyRecordedValue()
    {
        // Condition and built status read through their fallbacks; the absent price prints "N/A".
        falconCopy([](BrickSet &copy) {
            copy.overallCondition.reset();
            copy.builtStatus.reset();
            copy.dateAdded = utc(QDate(2024, 2, 29));
        });
        QCOMPARE(onlyRowCells(), (QStringList{u"75192-1"_s, u"Millennium Falcon"_s, u"2017"_s, u"Used"_s, u"Built"_s,
                                             u"N/A"_s, QString(), QString(), QString(), u"2/29/24"_s}));
    }

    void cellsOfACopyWithForeignStoredValuesShowTheFallbacks()
    {
        falconCopy([](BrickSet &copy) {
            copy.overallCondition = u"mint"_s;
            copy.builtStatus = u"Built"_s;
        });
        const QStringList cells = onlyRowCells();
        QCOMPARE(cells.value(Column::condition), u"Used"_s);
        QCOMPARE(cells.value(Column::built), u"Built"_s);
    }

    void cellsOfACopyWithoutCatalogSetAreEmptyForTheSet()
    {
        m_store->copy(std::nullopt, [](BrickSet &copy) { copy.dateAdded = utc(QDate(2021, 3, 4)); });
        QCOMPARE(onlyRowCells(), (QStringList{QString(), QString(), QString(), u"Used"_s, u"Built"_s, u"N/A"_s,
                                             QString(), QString(), QString(), u"3/4/21"_s}));
    }

    void cellsOfADisposedCopyWithASalePriceShowThePriceNotTheType()
    {
        falconCopy([](BrickSet &copy) {
            copy.pricePaid = amount(u"120"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.acquisitionDate = utc(QDate(2019, 5, 4));
            copy.dateAdded = utc(QDate(2019, 5, 5));
            copy.isDisposed = true;
            copy.disposalType = u"traded"_s;
            copy.disposalPrice = amount(u"45.5"_s);
            copy.disposalCurrency = u"GBP"_s;
            copy.disposalDate = utc(QDate(2024, 12, 24));
        });
        QCOMPARE(onlyRowCells(), (QStringList{u"75192-1"_s, u"Millennium Falcon"_s, u"2017"_s, u"Used"_s, u"Built"_s,
                                             u"€120.00"_s, u"5/4/19"_s, u"£45.50"_s, u"12/24/24"_s, u"5/5/19"_s}));
    }

    void disposalCellWithoutPrice_data()
    {
        // A null text stands for an absent type.
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("cell");
        QTest::newRow("sold") << u"sold"_s << u"Sold"_s;
        QTest::newRow("gifted") << u"gifted"_s << u"Gifted"_s;
        QTest::newRow("traded") << u"traded"_s << u"Traded"_s;
        QTest::newRow("returned") << u"returned"_s << u"Returned"_s;
        QTest::newRow("lost") << u"lost"_s << u"Lost"_s;
        QTest::newRow("damaged") << u"damaged"_s << u"Damaged"_s;
        QTest::newRow("other") << u"other"_s << u"Other"_s;
        QTest::newRow("absent") << QString() << u"Yes"_s;
        QTest::newRow("foreign") << u"stolen"_s << u"Yes"_s;
        QTest::newRow("acquisition spelling") << u"gift"_s << u"Yes"_s;
    }

    void disposalCellWithoutPrice()
    {
        QFETCH(QString, type);
        QFETCH(QString, cell);
        falconCopy([&type](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalType = type.isNull() ? std::nullopt : std::optional<QString>(type);
            copy.disposalDate = utc(QDate(2025, 1, 2));
        });
        const QStringList cells = onlyRowCells();
        QCOMPARE(cells.value(Column::disposed), cell);
        QCOMPARE(cells.value(Column::disposedDate), u"1/2/25"_s);
    }

    void disposalCellOfACopyInStockIsEmptyWhateverItHolds()
    {
        // Values left behind by an undone disposal do not show while the copy is in stock.
        falconCopy([](BrickSet &copy) {
            copy.isDisposed = false;
            copy.disposalType = u"sold"_s;
            copy.disposalPrice = amount(u"10"_s);
        });
        QCOMPARE(onlyRowCells().value(Column::disposed), QString());
    }

    void disposalPriceWithoutCurrencyIsInTheLocalesCurrency()
    {
        falconCopy([](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"1234.5"_s);
        });
        QCOMPARE(onlyRowCells().value(Column::disposed), u"$1,234.50"_s);
    }

    void yearAndMoneyColumnsAreAlignedRight()
    {
        falconCopy({});
        InventorySpreadsheetViewModel model(m_store->container());
        const InventorySpreadsheetModel &table = model.tableModel();
        for (int column = 0; column < table.columnCount(); ++column) {
            const auto alignment = table.data(table.index(0, column), Qt::TextAlignmentRole).value<Qt::Alignment>();
            const bool right = column == Column::year || column == Column::paid || column == Column::disposed;
            QCOMPARE(bool(alignment & Qt::AlignRight), right);
        }
    }

    void everyCellCarriesItsCopysObjectID()
    {
        const BrickSet copy = falconCopy({});
        InventorySpreadsheetViewModel model(m_store->container());
        const InventorySpreadsheetModel &table = model.tableModel();
        for (int column = 0; column < table.columnCount(); ++column) {
            QCOMPARE(table.data(table.index(0, column), InventorySpreadsheetModel::ObjectIDRole).value<ObjectID>(),
                     copy.objectID);
        }
        QCOMPARE(table.objectIDAt(0), copy.objectID);
        QVERIFY(!table.objectIDAt(1).isValid());
        QCOMPARE(table.rowOf(copy.objectID), 0);
        QCOMPARE(table.rowOf(ObjectID{EntityType::CatalogSet, copy.objectID.primaryKey}), -1);
    }
};

QTEST_GUILESS_MAIN(InventorySpreadsheetModelTest)
#include "InventorySpreadsheetModelTest.moc"
