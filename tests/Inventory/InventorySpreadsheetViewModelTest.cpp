// SPDX-License-Identifier: GPL-3.0-or-later
#include "InventoryFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "Views/TranslationLoader.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace InventoryFixtures;

using SortColumn = InventorySpreadsheetViewModel::SortColumn;
using Column = InventorySpreadsheetModel::Column;

// The inventory sheet's view model over a real store file: which copies its five steps
// choose and in what order, the footer, the stored status filter, the live list, the
// copied text and the yearly totals.
class InventorySpreadsheetViewModelTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<InventoryStore> m_store;

    std::unique_ptr<InventorySpreadsheetViewModel> viewModel(const QTimeZone &zone = QTimeZone::utc())
    {
        auto model = std::make_unique<InventorySpreadsheetViewModel>(m_store->container());
        model->setTimeZone(zone);
        return model;
    }

    // The set numbers of the table's rows, top to bottom.
    static QStringList setNumbers(const InventorySpreadsheetViewModel &model)
    {
        QStringList numbers;
        const InventorySpreadsheetModel &table = model.tableModel();
        for (int row = 0; row < table.rowCount(); ++row)
            numbers << table.data(table.index(row, Column::setNumber)).toString();
        return numbers;
    }

    // The names of the table's rows, top to bottom.
    static QStringList names(const InventorySpreadsheetViewModel &model)
    {
        QStringList result;
        const InventorySpreadsheetModel &table = model.tableModel();
        for (int row = 0; row < table.rowCount(); ++row)
            result << table.data(table.index(row, Column::name)).toString();
        return result;
    }

    BrickSet copyOf(const QString &setNumber, const std::function<void(BrickSet &)> &configure = {})
    {
        return m_store->copy(m_store->catalogSet(setNumber, u"Set "_s + setNumber), configure);
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

    void startsWithTheDefaultState()
    {
        const auto model = viewModel();
        QCOMPARE(model->searchText(), QString());
        QCOMPARE(model->statusFilterRaw(), u"all"_s);
        QCOMPARE(model->sortOrder(), SortColumn::setNumber);
        QVERIFY(model->sortAscending());
        QCOMPARE(model->filterDateFrom(), std::nullopt);
        QCOMPARE(model->filterDateTo(), std::nullopt);
        QVERIFY(!model->showDateFilter());
        QCOMPARE(&model->viewContext(), &m_store->context());
    }

    void trashedCopiesNeverAppear()
    {
        copyOf(u"10001-1"_s);
        const BrickSet thrown = copyOf(u"10002-1"_s, [](BrickSet &copy) {
            copy.isTrashed = true;
            copy.trashedDate = QDateTime::currentDateTimeUtc();
        });
        const auto model = viewModel();
        QCOMPARE(setNumbers(*model), QStringList{u"10001-1"_s});
        QCOMPARE(model->allSets().count(), 1);
        QCOMPARE(model->tableModel().rowOf(thrown.objectID), -1);
        QCOMPARE(model->footerText(), u"1 item · 1 in stock"_s);
    }

    void aCopyMovedToTheTrashLeavesAndComesBackWhenRestored()
    {
        copyOf(u"10001-1"_s);
        BrickSet leaving = copyOf(u"10002-1"_s);
        const auto model = viewModel();
        QSignalSpy rowsChanged(model.get(), &InventorySpreadsheetViewModel::rowsChanged);

        leaving.isTrashed = true;
        leaving.trashedDate = QDateTime::currentDateTimeUtc();
        m_store->context().update(leaving);
        m_store->context().save();
        QTRY_COMPARE(setNumbers(*model), QStringList{u"10001-1"_s});
        QVERIFY(rowsChanged.size() >= 1);

        leaving.isTrashed = false;
        leaving.trashedDate.reset();
        m_store->context().update(leaving);
        m_store->context().save();
        QTRY_COMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10002-1"_s}));
    }

    void statusFilterKeepsDisposedOrInStockCopies()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.isDisposed = true; });
        const auto model = viewModel();
        model->setStatusFilterRaw(u"disposed"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"10002-1"_s});
        model->setStatusFilterRaw(u"inStock"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"10001-1"_s});
        model->setStatusFilterRaw(u"all"_s);
        QCOMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10002-1"_s}));
    }

    void storedStatusTextMatchingNoCaseShowsAllCopies()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.isDisposed = true; });
        QSettings().setValue(u"inventoryStatusFilter"_s, u"sold"_s);
        const auto model = viewModel();
        QCOMPARE(model->statusFilterRaw(), u"sold"_s);
        QCOMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10002-1"_s}));
        // The comparison is exact: a differently written known value is foreign too.
        model->setStatusFilterRaw(u"Disposed"_s);
        QCOMPARE(model->tableModel().rowCount(), 2);
    }

    void storedStatusFilterSurvivesANewViewModel()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.isDisposed = true; });
        {
            const auto first = viewModel();
            first->setStatusFilterRaw(u"disposed"_s);
        }
        QCOMPARE(QSettings().value(u"inventoryStatusFilter"_s).toString(), u"disposed"_s);
        const auto second = viewModel();
        QCOMPARE(second->statusFilterRaw(), u"disposed"_s);
        QCOMPARE(setNumbers(*second), QStringList{u"10002-1"_s});
    }

    void searchMatchesTheSetNumberOrTheNameWhateverTheCase()
    {
        m_store->copy(m_store->catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        m_store->copy(m_store->catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        m_store->copy(m_store->catalogSet(u"MINI-FALC"_s, u"Microfighter"_s));
        const auto model = viewModel();

        model->setSearchText(u"FALC"_s);
        QCOMPARE(setNumbers(*model), (QStringList{u"75192-1"_s, u"MINI-FALC"_s}));
        model->setSearchText(u"10305"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"10305-1"_s});
        model->setSearchText(u"knights'"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"10305-1"_s});
        model->setSearchText(QString());
        QCOMPARE(model->tableModel().rowCount(), 3);
    }

    void copyWithoutCatalogSetIsSearchedAsEmptyTexts()
    {
        m_store->copy(std::nullopt);
        m_store->copy(m_store->catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        const auto model = viewModel();
        QCOMPARE(model->tableModel().rowCount(), 2);
        model->setSearchText(u"a"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"75192-1"_s});
        // Ascending by set number, its empty text comes first.
        model->setSearchText(QString());
        QCOMPARE(setNumbers(*model), (QStringList{QString(), u"75192-1"_s}));
    }

    void searchAppliesToWhatTheStatusLeft()
    {
        m_store->copy(m_store->catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        m_store->copy(m_store->catalogSet(u"75375-1"_s, u"Millennium Falcon Midi"_s),
                      [](BrickSet &copy) { copy.isDisposed = true; });
        m_store->copy(m_store->catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s),
                      [](BrickSet &copy) { copy.isDisposed = true; });
        const auto model = viewModel();
        model->setStatusFilterRaw(u"disposed"_s);
        model->setSearchText(u"falcon"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"75375-1"_s});
        model->setFilterDateTo(QDate(2023, 5, 31));
        QCOMPARE(model->tableModel().rowCount(), 0);
        model->clearDateFilter();
        model->setStatusFilterRaw(u"inStock"_s);
        QCOMPARE(setNumbers(*model), QStringList{u"75192-1"_s});
        QCOMPARE(model->footerText(), u"1 item · 1 in stock"_s);
    }

    void copyWithoutAcquisitionDateIsFilteredByItsDateAdded()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) {
            copy.dateAdded = utc(QDate(2024, 5, 10));
            copy.acquisitionDate.reset();
        });
        copyOf(u"10002-1"_s, [](BrickSet &copy) {
            copy.dateAdded = utc(QDate(2024, 5, 10));
            copy.acquisitionDate = utc(QDate(2020, 1, 1));
        });
        const auto model = viewModel();
        model->setFilterDateFrom(QDate(2024, 5, 1));
        model->setFilterDateTo(QDate(2024, 5, 31));
        QCOMPARE(setNumbers(*model), QStringList{u"10001-1"_s});
        model->setFilterDateFrom(QDate(2019, 12, 1));
        model->setFilterDateTo(QDate(2020, 1, 31));
        QCOMPARE(setNumbers(*model), QStringList{u"10002-1"_s});
    }

    void lastMinuteOfTheLastDayIsInAndMidnightAfterIsOutAcrossADaylightSavingChange()
    {
        const QString berlin = u"Europe/Berlin"_s;
        // The clocks go forward in Berlin on 31 March 2024, inside the range.
        copyOf(u"10001-1"_s, [&](BrickSet &copy) { copy.acquisitionDate = at(berlin, QDate(2024, 3, 31), QTime(23, 59)); });
        copyOf(u"10002-1"_s, [&](BrickSet &copy) { copy.acquisitionDate = at(berlin, QDate(2024, 4, 1), QTime(0, 0)); });
        copyOf(u"10003-1"_s, [&](BrickSet &copy) { copy.acquisitionDate = at(berlin, QDate(2024, 3, 20), QTime(0, 0)); });
        copyOf(u"10004-1"_s, [&](BrickSet &copy) { copy.acquisitionDate = at(berlin, QDate(2024, 3, 19), QTime(23, 59)); });
        const auto model = viewModel(QTimeZone(berlin.toUtf8()));

        model->setFilterDateFrom(QDate(2024, 3, 20));
        model->setFilterDateTo(QDate(2024, 3, 31));

        QCOMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10003-1"_s}));
        // The two boundary copies are 60 seconds apart in Berlin, but in UTC both lie on 31 March.
        QCOMPARE(at(berlin, QDate(2024, 4, 1), QTime(0, 0)).date(), QDate(2024, 3, 31));
        QCOMPARE(model->tableModel().data(model->tableModel().index(0, Column::acquired)).toString(), u"3/31/24"_s);
    }

    void theSameInstantsCountInTheDaysOfAnotherZone()
    {
        const QString berlin = u"Europe/Berlin"_s;
        copyOf(u"10001-1"_s, [&](BrickSet &copy) { copy.acquisitionDate = at(berlin, QDate(2024, 4, 1), QTime(0, 0)); });
        const auto model = viewModel(QTimeZone(berlin.toUtf8()));
        model->setFilterDateTo(QDate(2024, 3, 31));
        QCOMPARE(model->tableModel().rowCount(), 0);
        // 22:00 UTC on 31 March: still that day in UTC.
        model->setTimeZone(QTimeZone::utc());
        QCOMPARE(model->tableModel().rowCount(), 1);
        QCOMPARE(model->tableModel().data(model->tableModel().index(0, Column::acquired)).toString(), u"3/31/24"_s);
    }

    void fromAloneAndToAloneEachBoundOneSide()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.acquisitionDate = utc(QDate(2022, 1, 1)); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.acquisitionDate = utc(QDate(2024, 1, 1)); });
        const auto model = viewModel();
        model->setFilterDateFrom(QDate(2023, 1, 1));
        QCOMPARE(setNumbers(*model), QStringList{u"10002-1"_s});
        model->setFilterDateFrom(std::nullopt);
        model->setFilterDateTo(QDate(2023, 1, 1));
        QCOMPARE(setNumbers(*model), QStringList{u"10001-1"_s});
    }

    void clearingTheDateFilterRemovesBothDatesAndKeepsTheBarOpen()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.acquisitionDate = utc(QDate(2022, 1, 1)); });
        const auto model = viewModel();
        model->setShowDateFilter(true);
        model->setFilterDateFrom(QDate(2023, 1, 1));
        model->setFilterDateTo(QDate(2023, 12, 31));
        QCOMPARE(model->tableModel().rowCount(), 0);
        QSignalSpy state(model.get(), &InventorySpreadsheetViewModel::stateChanged);

        model->clearDateFilter();

        QCOMPARE(state.size(), 1);
        QCOMPARE(model->filterDateFrom(), std::nullopt);
        QCOMPARE(model->filterDateTo(), std::nullopt);
        QVERIFY(model->showDateFilter());
        QCOMPARE(model->tableModel().rowCount(), 1);
    }

    void closingTheDateBarLeavesTheDatesInForce()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.acquisitionDate = utc(QDate(2022, 1, 1)); });
        const auto model = viewModel();
        model->setShowDateFilter(true);
        model->setFilterDateFrom(QDate(2023, 1, 1));
        model->setShowDateFilter(false);
        QCOMPARE(model->filterDateFrom(), std::optional<QDate>(QDate(2023, 1, 1)));
        QCOMPARE(model->tableModel().rowCount(), 0);
    }

    void everyStateChangeIsAnnouncedOnceAndChoosesTheRowsAgain()
    {
        copyOf(u"10001-1"_s);
        const auto model = viewModel();
        QSignalSpy state(model.get(), &InventorySpreadsheetViewModel::stateChanged);
        QSignalSpy rows(model.get(), &InventorySpreadsheetViewModel::rowsChanged);
        model->setSearchText(u"1"_s);
        model->setStatusFilterRaw(u"inStock"_s);
        model->setSort(SortColumn::paid, false);
        model->setFilterDateFrom(QDate(2020, 1, 1));
        model->setFilterDateTo(QDate(2030, 1, 1));
        QCOMPARE(state.size(), 5);
        QCOMPARE(rows.size(), 5);
        model->setShowDateFilter(true);
        QCOMPARE(state.size(), 6);
        QCOMPARE(rows.size(), 5);
        // Setting what is already there changes nothing.
        model->setSearchText(u"1"_s);
        model->setSort(SortColumn::paid, false);
        QCOMPARE(state.size(), 6);
        QCOMPARE(rows.size(), 5);
    }

    void sortingByConditionAscendingPutsACopyWithoutConditionAfterAllOthers()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.overallCondition.reset(); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        copyOf(u"10003-1"_s, [](BrickSet &copy) { copy.overallCondition = u"new"_s; });
        // A foreign value sorts by its text too, before "zzz".
        copyOf(u"10004-1"_s, [](BrickSet &copy) { copy.overallCondition = u"worn"_s; });
        const auto model = viewModel();
        model->setSort(SortColumn::condition, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10003-1"_s, u"10002-1"_s, u"10004-1"_s, u"10001-1"_s}));
        model->setSort(SortColumn::condition, false);
        QCOMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10004-1"_s, u"10002-1"_s, u"10003-1"_s}));
    }

    void sortingByBuiltReadsAnAbsentValueAsZzz()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.builtStatus.reset(); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.builtStatus = u"never_built"_s; });
        copyOf(u"10003-1"_s, [](BrickSet &copy) { copy.builtStatus = u"built"_s; });
        const auto model = viewModel();
        model->setSort(SortColumn::built, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10003-1"_s, u"10002-1"_s, u"10001-1"_s}));
    }

    void sortingByPaidAscendingPutsACopyWithoutPriceFirst()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"849.99"_s); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.pricePaid.reset(); });
        copyOf(u"10003-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"0"_s); });
        copyOf(u"10004-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"99.99"_s); });
        const auto model = viewModel();
        model->setSort(SortColumn::paid, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10002-1"_s, u"10003-1"_s, u"10004-1"_s, u"10001-1"_s}));
        model->setSort(SortColumn::paid, false);
        QCOMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10004-1"_s, u"10003-1"_s, u"10002-1"_s}));
    }

    void sortingByDisposalPriceReadsAnAbsentPriceAsMinusOne()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"120"_s);
        });
        copyOf(u"10002-1"_s);
        copyOf(u"10003-1"_s, [](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"-5"_s);
        });
        const auto model = viewModel();
        model->setSort(SortColumn::disposed, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10003-1"_s, u"10002-1"_s, u"10001-1"_s}));
    }

    void sortingByDatesPutsAnAbsentDateFirst()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) {
            copy.acquisitionDate = utc(QDate(2021, 1, 1));
            copy.disposalDate = utc(QDate(2024, 1, 1));
            copy.dateAdded = utc(QDate(2021, 1, 2));
        });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.dateAdded = utc(QDate(2020, 1, 1)); });
        copyOf(u"10003-1"_s, [](BrickSet &copy) {
            copy.acquisitionDate = utc(QDate(2019, 1, 1));
            copy.disposalDate = utc(QDate(2023, 1, 1));
            copy.dateAdded = utc(QDate(2022, 1, 1));
        });
        const auto model = viewModel();
        model->setSort(SortColumn::acquired, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10002-1"_s, u"10003-1"_s, u"10001-1"_s}));
        model->setSort(SortColumn::disposedDate, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10002-1"_s, u"10003-1"_s, u"10001-1"_s}));
        model->setSort(SortColumn::added, true);
        QCOMPARE(setNumbers(*model), (QStringList{u"10002-1"_s, u"10001-1"_s, u"10003-1"_s}));
        model->setSort(SortColumn::added, false);
        QCOMPARE(setNumbers(*model), (QStringList{u"10003-1"_s, u"10001-1"_s, u"10002-1"_s}));
    }

    void setNumbersSortWithoutCaseFoldingAndNamesWithIt()
    {
        m_store->copy(m_store->catalogSet(u"b-2"_s, u"apple"_s));
        m_store->copy(m_store->catalogSet(u"B-1"_s, u"Banana"_s));
        m_store->copy(m_store->catalogSet(u"a-3"_s, u"Cherry"_s));
        const auto model = viewModel();
        // Plain comparison: capitals before small letters.
        QCOMPARE(setNumbers(*model), (QStringList{u"B-1"_s, u"a-3"_s, u"b-2"_s}));
        model->setSort(SortColumn::name, true);
        QCOMPARE(names(*model), (QStringList{u"apple"_s, u"Banana"_s, u"Cherry"_s}));
        model->setSort(SortColumn::name, false);
        QCOMPARE(names(*model), (QStringList{u"Cherry"_s, u"Banana"_s, u"apple"_s}));
    }

    void sortingByYearReadsACopyWithoutCatalogSetAsZero()
    {
        m_store->copy(m_store->catalogSet(u"10001-1"_s, u"One"_s, 2015));
        m_store->copy(std::nullopt);
        m_store->copy(m_store->catalogSet(u"10002-1"_s, u"Two"_s, 1999));
        const auto model = viewModel();
        model->setSort(SortColumn::year, true);
        QCOMPARE(setNumbers(*model), (QStringList{QString(), u"10002-1"_s, u"10001-1"_s}));
    }

    void copiesThatCompareTheSameKeepTheLiveListsOrder()
    {
        // Ten copies of one set: every key is the same, whichever way the sort goes.
        const ObjectID set = m_store->catalogSet(u"10001-1"_s, u"One"_s);
        QList<ObjectID> inserted;
        for (int index = 0; index < 10; ++index)
            inserted << m_store->copy(set).objectID;
        const auto model = viewModel();
        auto order = [&model] {
            QList<ObjectID> ids;
            for (int row = 0; row < model->tableModel().rowCount(); ++row)
                ids << model->tableModel().objectIDAt(row);
            return ids;
        };
        QCOMPARE(order(), inserted);
        model->setSort(SortColumn::name, false);
        QCOMPARE(order(), inserted);
        model->setSort(SortColumn::paid, true);
        QCOMPARE(order(), inserted);
    }

    void aHeaderClickOnTheSameColumnTurnsTheOrderRound()
    {
        const auto model = viewModel();
        model->sortByColumn(SortColumn::setNumber);
        QCOMPARE(model->sortOrder(), SortColumn::setNumber);
        QVERIFY(!model->sortAscending());
        model->sortByColumn(SortColumn::setNumber);
        QVERIFY(model->sortAscending());
        model->sortByColumn(SortColumn::paid);
        QCOMPARE(model->sortOrder(), SortColumn::paid);
        QVERIFY(model->sortAscending());
        model->sortByColumn(SortColumn::paid);
        QVERIFY(!model->sortAscending());
        // Another column starts ascending again, whatever the direction was.
        model->sortByColumn(SortColumn::name);
        QCOMPARE(model->sortOrder(), SortColumn::name);
        QVERIFY(model->sortAscending());
    }

    void everyTableColumnHasItsSortColumn()
    {
        const QList<SortColumn> expected{SortColumn::setNumber, SortColumn::name,     SortColumn::year,
                                         SortColumn::condition, SortColumn::built,    SortColumn::paid,
                                         SortColumn::acquired,  SortColumn::disposed, SortColumn::disposedDate,
                                         SortColumn::added};
        for (int column = 0; column < InventorySpreadsheetModel::columnCount_; ++column) {
            QCOMPARE(InventorySpreadsheetViewModel::sortColumnOf(column), expected[column]);
            QCOMPARE(InventorySpreadsheetViewModel::columnOf(expected[column]), column);
        }
    }

    void footerCountsAndTotalsForEachStatusFilter()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"849.99"_s); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"170"_s); });
        copyOf(u"10003-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"100"_s);
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"150"_s);
        });
        copyOf(u"10004-1"_s, [](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalType = u"lost"_s;
        });
        const auto model = viewModel();
        QCOMPARE(model->footerText(),
                 u"4 items · 2 in stock · 2 disposed · Total paid: $1,119.99 · Total sold: $150.00"_s);
        model->setStatusFilterRaw(u"inStock"_s);
        QCOMPARE(model->footerText(), u"2 items · 2 in stock · Total paid: $1,019.99"_s);
        model->setStatusFilterRaw(u"disposed"_s);
        QCOMPARE(model->footerText(), u"2 items · 2 disposed · Total paid: $100.00 · Total sold: $150.00"_s);
    }

    void footerOfAnEmptySheetHasOnlyTheCount()
    {
        const auto model = viewModel();
        QCOMPARE(model->footerText(), u"0 items"_s);
    }

    void footerLeavesOutTotalPaidWhenNoCopyHasAPrice()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s, [](BrickSet &copy) {
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"40"_s);
        });
        const auto model = viewModel();
        QCOMPARE(model->footerText(), u"2 items · 1 in stock · 1 disposed · Total sold: $40.00"_s);
    }

    void footerLeavesOutTotalsThatAddUpToZero()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"0"_s); });
        copyOf(u"10002-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"25"_s);
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"0.00"_s);
        });
        copyOf(u"10003-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"-25"_s); });
        const auto model = viewModel();
        QCOMPARE(model->footerText(), u"3 items · 2 in stock · 1 disposed"_s);
    }

    void footerAddsAmountsInDifferentCurrenciesAsTheyStand()
    {
        // 849.99 USD + 120 EUR + 45.50 GBP: added as plain numbers, shown in the locale's currency.
        copyOf(u"10001-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"849.99"_s);
            copy.priceCurrency = u"USD"_s;
        });
        copyOf(u"10002-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"120"_s);
            copy.priceCurrency = u"EUR"_s;
        });
        copyOf(u"10003-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"45.50"_s);
            copy.priceCurrency = u"GBP"_s;
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"7000"_s);
            copy.disposalCurrency = u"JPY"_s;
        });
        const auto model = viewModel();
        QCOMPARE(model->footerText(),
                 u"3 items · 2 in stock · 1 disposed · Total paid: $1,015.49 · Total sold: $7,000.00"_s);
    }

    void aSaveOnABackgroundContextReachesTheTableAndTheSelectionFollowsItsCopy()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"10"_s); });
        const BrickSet moving = copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"20"_s); });
        copyOf(u"10003-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"30"_s); });
        const auto model = viewModel();
        model->setSort(SortColumn::paid, true);
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected(table.index(1, Column::paid));
        QCOMPARE(table.objectIDAt(selected.row()), moving.objectID);
        QSignalSpy resets(&table, &QAbstractItemModel::modelReset);
        QSignalSpy layouts(&table, &QAbstractItemModel::layoutChanged);

        auto background = m_store->container().newBackgroundContext();
        const ObjectID id = moving.objectID;
        background->perform([id](ManagedObjectContext &context) {
            BrickSet copy = *context.existingObject<BrickSet>(id);
            copy.pricePaid = amount(u"99.50"_s);
            context.update(copy);
            context.save();
        });

        QTRY_COMPARE(selected.row(), 2);
        QCOMPARE(selected.data().toString(), u"$99.50"_s);
        QCOMPARE(table.rowOf(moving.objectID), 2);
        QCOMPARE(resets.size(), 0);
        QVERIFY(layouts.size() >= 1);
        QCOMPARE(model->footerText(), u"3 items · 3 in stock · Total paid: $139.50"_s);
    }

    void aSaveOnTheViewContextChangesOnlyItsRowWhenTheOrderStays()
    {
        copyOf(u"10001-1"_s);
        BrickSet edited = copyOf(u"10002-1"_s);
        copyOf(u"10003-1"_s);
        const auto model = viewModel();
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected(table.index(1, Column::setNumber));
        QSignalSpy changed(&table, &QAbstractItemModel::dataChanged);
        QSignalSpy layouts(&table, &QAbstractItemModel::layoutChanged);
        QSignalSpy rowsChanged(model.get(), &InventorySpreadsheetViewModel::rowsChanged);

        edited.overallCondition = u"new"_s;
        m_store->context().update(edited);
        m_store->context().save();

        QTRY_COMPARE(table.data(table.index(1, Column::condition)).toString(), u"New/Sealed"_s);
        QCOMPARE(selected.row(), 1);
        QCOMPARE(layouts.size(), 0);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
        QCOMPARE(changed.first().at(1).toModelIndex().row(), 1);
        QCOMPARE(rowsChanged.size(), 1);
    }

    void aCopyThatLeavesTheFilterDropsItsPersistentIndex()
    {
        copyOf(u"10001-1"_s);
        BrickSet leaving = copyOf(u"10002-1"_s);
        copyOf(u"10003-1"_s);
        const auto model = viewModel();
        model->setStatusFilterRaw(u"inStock"_s);
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex gone(table.index(1, 0));
        const QPersistentModelIndex staying(table.index(2, 0));

        leaving.isDisposed = true;
        m_store->context().update(leaving);
        m_store->context().save();

        QTRY_COMPARE(table.rowCount(), 2);
        QVERIFY(!gone.isValid());
        QCOMPARE(staying.row(), 1);
        QCOMPARE(staying.data().toString(), u"10003-1"_s);
    }

    void newCopiesArriveInTheirPlaceOfTheOrder()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10003-1"_s);
        const auto model = viewModel();
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex last(table.index(1, 0));

        auto background = m_store->container().newBackgroundContext();
        background->perform([](ManagedObjectContext &context) {
            const CatalogSet set = context.insert(StoreFixtures::catalogSet(u"10002-1"_s, u"Two"_s));
            BrickSet copy = StoreFixtures::newCopy(set.objectID);
            context.insert(copy);
            context.save();
        });

        QTRY_COMPARE(setNumbers(*model), (QStringList{u"10001-1"_s, u"10002-1"_s, u"10003-1"_s}));
        QCOMPARE(last.row(), 2);
        QCOMPARE(model->allSets().count(), 3);
    }

    void aRenamedSetMovesItsCopyInTheNameOrder()
    {
        m_store->copy(m_store->catalogSet(u"10001-1"_s, u"Alpha"_s));
        const ObjectID renamed = m_store->catalogSet(u"10002-1"_s, u"Beta"_s);
        m_store->copy(renamed);
        m_store->copy(m_store->catalogSet(u"10003-1"_s, u"Gamma"_s));
        const auto model = viewModel();
        model->setSort(SortColumn::name, true);
        const QPersistentModelIndex selected(model->tableModel().index(1, Column::name));

        CatalogSet set = *m_store->context().existingObject<CatalogSet>(renamed);
        set.name = u"zeta"_s;
        m_store->context().update(set);
        m_store->context().save();

        QTRY_COMPARE(names(*model), (QStringList{u"Alpha"_s, u"Gamma"_s, u"zeta"_s}));
        QCOMPARE(selected.row(), 2);
        QCOMPARE(selected.data().toString(), u"zeta"_s);
    }

    void aRefetchOfTheLiveListKeepsTheTableWithoutAReset()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s);
        const auto model = viewModel();
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected(table.index(1, Column::setNumber));
        QSignalSpy resets(&table, &QAbstractItemModel::modelReset);
        QSignalSpy rowsChanged(model.get(), &InventorySpreadsheetViewModel::rowsChanged);

        model->allSets().refetch();

        QCOMPARE(rowsChanged.size(), 1);
        QCOMPARE(resets.size(), 0);
        QCOMPARE(selected.row(), 1);
        QCOMPARE(selected.data().toString(), u"10002-1"_s);
    }

    void filterChangesMoveRowsWithoutAResetAndKeepTheSelection()
    {
        copyOf(u"10001-1"_s);
        copyOf(u"10002-1"_s, [](BrickSet &copy) { copy.isDisposed = true; });
        const BrickSet kept = copyOf(u"10003-1"_s);
        const auto model = viewModel();
        InventorySpreadsheetModel &table = model->tableModel();
        QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected(table.index(2, Column::name));
        QSignalSpy resets(&table, &QAbstractItemModel::modelReset);

        model->setStatusFilterRaw(u"inStock"_s);
        QCOMPARE(selected.row(), 1);
        model->setSort(SortColumn::setNumber, false);
        QCOMPARE(selected.row(), 0);
        QCOMPARE(selected.column(), int(Column::name));
        model->setSearchText(u"10001"_s);
        QVERIFY(!selected.isValid());
        model->setSearchText(QString());
        QCOMPARE(table.rowOf(kept.objectID), 0);
        QCOMPARE(resets.size(), 0);
    }

    void clipboardTextOfThreeSelectedRowsIsTabSeparatedWithAHeaderLine()
    {
        m_store->copy(m_store->catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017), [](BrickSet &copy) {
            copy.pricePaid = amount(u"849.99"_s);
            copy.priceCurrency = u"USD"_s;
            copy.acquisitionDate = utc(QDate(2017, 10, 1));
            copy.dateAdded = utc(QDate(2017, 10, 2));
            copy.overallCondition = u"new"_s;
            copy.builtStatus = u"never_built"_s;
        });
        m_store->copy(m_store->catalogSet(u"10305-1"_s, u"Lion Knights'\tCastle\n(2022)"_s, 2022), [](BrickSet &copy) {
            copy.pricePaid = amount(u"399.99"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.dateAdded = utc(QDate(2022, 8, 1));
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"450"_s);
            copy.disposalCurrency = u"EUR"_s;
            copy.disposalDate = utc(QDate(2024, 2, 29));
        });
        m_store->copy(m_store->catalogSet(u"21318-1"_s, u"Tree House"_s, 2019), [](BrickSet &copy) {
            copy.dateAdded = utc(QDate(2020, 1, 5));
            copy.isDisposed = true;
            copy.disposalType = u"gifted"_s;
            copy.builtStatus = u"built"_s;
        });
        m_store->copy(m_store->catalogSet(u"40000-1"_s, u"Not Copied"_s));
        const auto model = viewModel();
        QCOMPARE(setNumbers(*model), (QStringList{u"10305-1"_s, u"21318-1"_s, u"40000-1"_s, u"75192-1"_s}));

        const QString text = model->clipboardText({3, 1, 0});

        const QString expected =
            u"Set #\tName\tYear\tCondition\tBuilt\tPaid\tPaid Currency\tAcquired\tDisposed\tDisposal Currency\tDisposal Date\tAdded\n"
            u"10305-1\tLion Knights' Castle (2022)\t2022\tUsed\tBuilt\t399.99\tEUR\t\t450\tEUR\t2024-02-29\t2022-08-01\n"
            u"21318-1\tTree House\t2019\tUsed\tBuilt\t\t\t\tGifted\t\t\t2020-01-05\n"
            u"75192-1\tMillennium Falcon\t2017\tNew/Sealed\tNever Built\t849.99\tUSD\t2017-10-01\t\t\t\t2017-10-02\n"_s;
        QCOMPARE(text.toUtf8(), expected.toUtf8());
    }

    void clipboardTextOfNoSelectionCopiesEveryRow()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) { copy.pricePaid = amount(u"5"_s); });
        copyOf(u"10002-1"_s);
        const auto model = viewModel();
        const QString text = model->clipboardText({});
        const QStringList lines = text.split(u'\n');
        QCOMPARE(lines.size(), 4); // header, two rows, and the empty rest after the last line feed
        QVERIFY(lines[1].startsWith(u"10001-1\tSet 10001-1\t2020\tUsed\tBuilt\t5\tUSD\t\t\t\t\t2023-06-01"_s));
        QVERIFY(lines[2].startsWith(u"10002-1\t"_s));
        QCOMPARE(lines[3], QString());
    }

    void copiedDatesAreDaysOfTheSheetsZone()
    {
        const QString berlin = u"Europe/Berlin"_s;
        copyOf(u"10001-1"_s, [&](BrickSet &copy) {
            copy.acquisitionDate = at(berlin, QDate(2024, 4, 1), QTime(0, 30));
            copy.dateAdded = at(berlin, QDate(2024, 4, 1), QTime(0, 30));
        });
        const auto model = viewModel(QTimeZone(berlin.toUtf8()));
        QVERIFY(model->clipboardText({0}).endsWith(u"\t2024-04-01\t\t\t\t2024-04-01\n"_s));
        QCOMPARE(model->yearTotals().entries.size(), 0);
        model->setTimeZone(QTimeZone::utc());
        QVERIFY(model->clipboardText({0}).endsWith(u"\t2024-03-31\t\t\t\t2024-03-31\n"_s));
    }

    void yearTotalsCountInTheYearOfTheSheetsZone()
    {
        const QString berlin = u"Europe/Berlin"_s;
        copyOf(u"10001-1"_s, [&](BrickSet &copy) {
            copy.pricePaid = amount(u"10"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.acquisitionDate = at(berlin, QDate(2024, 1, 1), QTime(0, 30));
        });
        const auto model = viewModel(QTimeZone(berlin.toUtf8()));
        QCOMPARE(model->yearTotals().entries.value(0).year, 2024);
        model->setTimeZone(QTimeZone::utc());
        QCOMPARE(model->yearTotals().entries.value(0).year, 2023);
    }

    void yearTotalsOfAKnownStore()
    {
        copyOf(u"10001-1"_s, [](BrickSet &copy) {
            copy.pricePaid = amount(u"100"_s);
            copy.priceCurrency = u"USD"_s;
            copy.acquisitionDate = utc(QDate(2022, 5, 1));
        });
        copyOf(u"10002-1"_s, [](BrickSet &copy) {
            // Without an acquisition date: the year of its date added.
            copy.pricePaid = amount(u"50"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.dateAdded = utc(QDate(2023, 1, 10));
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"80.5"_s);
            copy.disposalCurrency = u"EUR"_s;
            copy.disposalDate = utc(QDate(2024, 2, 1));
        });
        copyOf(u"10003-1"_s, [](BrickSet &copy) {
            // Without a currency: the locale's.
            copy.pricePaid = amount(u"20.25"_s);
            copy.acquisitionDate = utc(QDate(2022, 12, 31));
        });
        copyOf(u"10004-1"_s, [](BrickSet &copy) {
            // A sale without a date has no year.
            copy.isDisposed = true;
            copy.disposalPrice = amount(u"30"_s);
            copy.disposalCurrency = u"GBP"_s;
        });
        const auto model = viewModel();

        const InventoryYearTotals totals = model->yearTotals();

        QCOMPARE(totals.currencies(), (QStringList{u"EUR"_s, u"USD"_s}));
        QCOMPARE(totals.entries.size(), 3);
        QCOMPARE(totals.entries[0].currency, u"EUR"_s);
        QCOMPARE(totals.entries[0].year, 2023);
        QCOMPARE(totals.entries[0].paid.toString(), u"50"_s);
        QCOMPARE(totals.entries[0].received.toString(), u"0"_s);
        QCOMPARE(totals.entries[1].currency, u"EUR"_s);
        QCOMPARE(totals.entries[1].year, 2024);
        QCOMPARE(totals.entries[1].paid.toString(), u"0"_s);
        QCOMPARE(totals.entries[1].received.toString(), u"80.5"_s);
        QCOMPARE(totals.entries[2].currency, u"USD"_s);
        QCOMPARE(totals.entries[2].year, 2022);
        QCOMPARE(totals.entries[2].paid.toString(), u"120.25"_s);
        QCOMPARE(totals.entries[2].received.toString(), u"0"_s);

        // They follow the filters.
        model->setStatusFilterRaw(u"inStock"_s);
        QCOMPARE(model->yearTotals().currencies(), QStringList{u"USD"_s});
        model->setStatusFilterRaw(u"disposed"_s);
        QCOMPARE(model->yearTotals().entries.size(), 2);
    }
};

QTEST_GUILESS_MAIN(InventorySpreadsheetViewModelTest)
#include "InventorySpreadsheetViewModelTest.moc"
