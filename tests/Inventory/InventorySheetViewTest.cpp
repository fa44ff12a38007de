// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/PersistenceController.h"
#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/ContentView.h"
#include "Views/EmptyStateView.h"
#include "Views/InventoryDateFilterBar.h"
#include "Views/InventoryFilterView.h"
#include "Views/InventorySpreadsheetView.h"
#include "Views/InventoryYearChart.h"
#include "Views/OptionalDateEdit.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QBarSeries>
#include <QBarSet>
#include <QCheckBox>
#include <QClipboard>
#include <QDateEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QToolBar>
#include <QToolButton>

#include <ctime>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The inventory sheet in the window offscreen: its two columns, what the table, footer and
// chart show for a known store, and what the user's clicks, keys and edits do to them.
class InventorySheetViewTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<ContentView> m_content;
    CatalogSet m_falcon;
    CatalogSet m_castle;
    CatalogSet m_kingsCastle;
    BrickSet m_kept;     // in stock, paid in US dollars
    BrickSet m_sold;     // sold for euros
    BrickSet m_gifted;   // given away, no price, no acquisition date
    BrickSet m_trashed;  // in the trash: never on the sheet

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    ContentView &content() { return *m_content; }
    SidebarViewModel &sidebar() { return m_content->sidebarViewModel(); }
    InventorySpreadsheetView &sheet() { return *m_content->inventorySpreadsheet(); }
    InventorySpreadsheetViewModel &viewModel() { return *m_content->inventoryViewModel(); }
    QTableView &table() { return *sheet().table(); }

    static QDateTime at(int year, int month, int day, int hour = 12)
    {
        return QDateTime(QDate(year, month, day), QTime(hour, 0), Qt::UTC);
    }

    void showContent(ContentView &view)
    {
        view.resize(1400, 800);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }

    void chooseInventory()
    {
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::inventory));
        QVERIFY(m_content->inventorySpreadsheet());
    }

    QString cell(int row, int column) { return table().model()->index(row, column).data().toString(); }

    int rowOf(const BrickSet &copy) { return viewModel().tableModel().rowOf(copy.objectID); }

    QList<ObjectID> shownCopies()
    {
        QList<ObjectID> copies;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            copies.append(viewModel().tableModel().objectIDAt(row));
        return copies;
    }

    void clickFilterRow(int row)
    {
        QListWidget *list = content().inventoryFilterView()->list();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
    }

    void clickHeader(int column)
    {
        QHeaderView *header = table().horizontalHeader();
        const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    }

    void selectRows(const QList<int> &rows)
    {
        table().clearSelection();
        for (int row : rows)
            table().selectionModel()->select(table().model()->index(row, 0),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // Days and their boundaries counted in one zone whatever the machine's.
        qputenv("TZ", "UTC");
        tzset();
        qputenv("TESSALOOM_ENDPOINTS", "lego=http://127.0.0.1:9");
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n5,Castle,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,1,7541,\n"
                                   "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                                   "6080-1,King's Castle,1984,5,674,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_directory.path() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
    }

    void init()
    {
        QSettings().clear();
        QGuiApplication::clipboard()->clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        m_castle = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022));
        m_kingsCastle = context().insert(catalogSet(u"6080-1"_s, u"King's Castle"_s, 1984));
        context().save();
        m_kept = saveCopy(context(), m_falcon.objectID, [](BrickSet &copy) {
            copy.dateAdded = at(2023, 3, 12);
            copy.acquisitionDate = at(2023, 3, 10);
            copy.pricePaid = Decimal::fromString(u"679.99"_s);
            copy.priceCurrency = u"USD"_s;
            copy.overallCondition = u"new"_s;
            copy.builtStatus = u"built"_s;
        });
        m_sold = saveCopy(context(), m_castle.objectID, [](BrickSet &copy) {
            copy.dateAdded = at(2022, 9, 3);
            copy.acquisitionDate = at(2022, 9, 1);
            copy.pricePaid = Decimal::fromString(u"399.99"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.overallCondition = u"used"_s;
            copy.builtStatus = u"disassembled"_s;
            copy.isDisposed = true;
            copy.disposalType = u"sold"_s;
            copy.disposalDate = at(2024, 6, 1);
            copy.disposalPrice = Decimal::fromString(u"450"_s);
            copy.disposalCurrency = u"EUR"_s;
        });
        m_gifted = saveCopy(context(), m_kingsCastle.objectID, [](BrickSet &copy) {
            copy.dateAdded = at(2021, 12, 24);
            copy.isDisposed = true;
            copy.disposalType = u"gifted"_s;
            copy.disposalDate = at(2024, 12, 25);
        });
        m_trashed = saveCopy(context(), m_falcon.objectID, [](BrickSet &copy) {
            copy.dateAdded = at(2023, 1, 5);
            copy.pricePaid = Decimal::fromString(u"10"_s);
            copy.priceCurrency = u"USD"_s;
            copy.isTrashed = true;
            copy.trashedDate = at(2023, 2, 1);
        });
        m_content = std::make_unique<ContentView>(m_store->container(), *m_catalogService);
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
    }

    void cleanup()
    {
        m_content.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void choosingTheInventoryShowsTheFilterAndTheSheetAndAnotherItemGoesBack()
    {
        showContent(content());
        chooseInventory();
        QCOMPARE(content().middleColumn()->currentWidget(), content().inventoryFilterView());
        QCOMPARE(content().detailColumn()->currentWidget(), content().inventorySpreadsheet());
        QVERIFY(sheet().isVisible());

        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::favorites));
        QCOMPARE(content().middleColumn()->currentWidget(), content().setListView());
        QCOMPARE(content().detailColumn()->currentWidget(), content().detailPlaceholder());
    }

    void theHiddenSetListHoldsNoCopiesWhileTheSheetShows()
    {
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        QVERIFY(content().listViewModel().copies()->count() > 0);
        chooseInventory();
        QCOMPARE(content().listViewModel().selectionID(), SidebarItem(SidebarItem::Kind::inventory).id());
        QCOMPARE(content().listViewModel().copies()->count(), 0);
        QSignalSpy hiddenListRefetches(content().listViewModel().copies(), &BrickSetListModel::refetched);
        QSignalSpy sheetRows(&viewModel(), &InventorySpreadsheetViewModel::rowsChanged);
        auto edited = *context().existingObject<BrickSet>(m_sold.objectID);
        edited.notes = u"Sold at the fair"_s;
        context().update(edited);
        context().save();
        QTRY_VERIFY(!sheetRows.isEmpty());
        QCOMPARE(content().listViewModel().copies()->count(), 0);
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        QVERIFY(content().listViewModel().copies()->count() > 0);
    }

    void controlFPutsTheKeyboardInTheSheetsSearchField()
    {
        showContent(content());
        chooseInventory();
        content().activateWindow();
        content().findAction()->trigger();
        QVERIFY(sheet().searchField()->hasFocus());
    }

    void theSheetIsMadeOnTheFirstVisitAndKeptWithItsSearchAndOrder()
    {
        QCOMPARE(content().inventoryViewModel(), nullptr);
        QCOMPARE(content().inventorySpreadsheet(), nullptr);
        chooseInventory();
        InventorySpreadsheetViewModel *first = content().inventoryViewModel();
        QTest::keyClicks(sheet().searchField(), u"castle"_s);
        clickHeader(InventorySpreadsheetModel::name);
        clickHeader(InventorySpreadsheetModel::name);

        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        chooseInventory();
        QCOMPARE(content().inventoryViewModel(), first);
        QCOMPARE(sheet().searchField()->text(), u"castle"_s);
        QCOMPARE(viewModel().sortOrder(), InventorySpreadsheetViewModel::SortColumn::name);
        QCOMPARE(viewModel().sortAscending(), false);
        QCOMPARE(shownCopies(), (QList<ObjectID>{m_sold.objectID, m_gifted.objectID}));
    }

    void theCellsShowACopyInStockASoldCopyAndAGiftedCopy()
    {
        chooseInventory();
        QCOMPARE(table().model()->rowCount(), 3);
        QCOMPARE(table().model()->columnCount(), 10);
        QCOMPARE(rowOf(m_trashed), -1);

        using M = InventorySpreadsheetModel;
        const int kept = rowOf(m_kept);
        QCOMPARE(cell(kept, M::setNumber), u"75192-1"_s);
        QCOMPARE(cell(kept, M::name), u"Millennium Falcon"_s);
        QCOMPARE(cell(kept, M::year), u"2017"_s);
        QCOMPARE(cell(kept, M::condition), u"New/Sealed"_s);
        QCOMPARE(cell(kept, M::built), u"Built"_s);
        QCOMPARE(cell(kept, M::paid), u"$679.99"_s);
        QCOMPARE(cell(kept, M::acquired), u"3/10/23"_s);
        QCOMPARE(cell(kept, M::disposed), QString());
        QCOMPARE(cell(kept, M::disposedDate), QString());
        QCOMPARE(cell(kept, M::added), u"3/12/23"_s);

        const int sold = rowOf(m_sold);
        QCOMPARE(cell(sold, M::setNumber), u"10305-1"_s);
        QCOMPARE(cell(sold, M::year), u"2022"_s);
        QCOMPARE(cell(sold, M::condition), u"Used"_s);
        QCOMPARE(cell(sold, M::built), u"Disassembled"_s);
        QCOMPARE(cell(sold, M::paid), u"€399.99"_s);
        QCOMPARE(cell(sold, M::acquired), u"9/1/22"_s);
        QCOMPARE(cell(sold, M::disposed), u"€450.00"_s);
        QCOMPARE(cell(sold, M::disposedDate), u"6/1/24"_s);

        const int gifted = rowOf(m_gifted);
        QCOMPARE(cell(gifted, M::name), u"King's Castle"_s);
        QCOMPARE(cell(gifted, M::paid), u"N/A"_s);
        QCOMPARE(cell(gifted, M::acquired), QString());
        QCOMPARE(cell(gifted, M::disposed), u"Gifted"_s);
        QCOMPARE(cell(gifted, M::disposedDate), u"12/25/24"_s);
        QCOMPARE(cell(gifted, M::added), u"12/24/21"_s);
    }

    void theColumnsStartAtTheirIdealWidthsAndKeepTheirLeastWidths()
    {
        chooseInventory();
        QHeaderView *header = table().horizontalHeader();
        for (int column = 0; column < InventorySpreadsheetModel::columnCount_; ++column)
            QCOMPARE(header->sectionSize(column), InventorySpreadsheetModel::idealWidth(column));
        header->resizeSection(InventorySpreadsheetModel::name, 20);
        QCOMPARE(header->sectionSize(InventorySpreadsheetModel::name), 120);
        header->resizeSection(InventorySpreadsheetModel::setNumber, 10);
        QCOMPARE(header->sectionSize(InventorySpreadsheetModel::setNumber), 80);
        header->resizeSection(InventorySpreadsheetModel::name, 260);
        QCOMPARE(header->sectionSize(InventorySpreadsheetModel::name), 260);
        QCOMPARE(header->sectionResizeMode(InventorySpreadsheetModel::year), QHeaderView::Fixed);
    }

    void theFooterFollowsEachStatusChoiceClickedInTheFilterList()
    {
        showContent(content());
        chooseInventory();
        QListWidget *list = content().inventoryFilterView()->list();
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->item(0)->text(), u"All"_s);
        QCOMPARE(list->item(1)->text(), u"In Stock"_s);
        QCOMPARE(list->item(2)->text(), u"Disposed"_s);
        QCOMPARE(list->currentRow(), 0);

        clickFilterRow(1);
        QCOMPARE(viewModel().statusFilterRaw(), u"inStock"_s);
        // Written once the choices pause, as every stored filter of the window is.
        QTRY_COMPARE(QSettings().value(u"inventoryStatusFilter"_s).toString(), u"inStock"_s);
        QCOMPARE(shownCopies(), QList<ObjectID>{m_kept.objectID});
        QCOMPARE(sheet().footerLabel()->text(), viewModel().footerText());
        QCOMPARE(sheet().footerLabel()->text(), u"1 item · 1 in stock · Total paid: $679.99"_s);

        clickFilterRow(2);
        QCOMPARE(viewModel().statusFilterRaw(), u"disposed"_s);
        QCOMPARE(table().model()->rowCount(), 2);
        QCOMPARE(sheet().footerLabel()->text(), u"2 items · 2 disposed · Total paid: $399.99 · Total sold: $450.00"_s);

        clickFilterRow(0);
        QCOMPARE(viewModel().statusFilterRaw(), u"all"_s);
        QCOMPARE(table().model()->rowCount(), 3);
        QCOMPARE(sheet().footerLabel()->text(),
                 u"3 items · 1 in stock · 2 disposed · Total paid: $1,079.98 · Total sold: $450.00"_s);
    }

    void theArrowKeysMoveTheStatusChoice()
    {
        showContent(content());
        chooseInventory();
        QListWidget *list = content().inventoryFilterView()->list();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(viewModel().statusFilterRaw(), u"inStock"_s);
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(viewModel().statusFilterRaw(), u"disposed"_s);
        QTest::keyClick(list, Qt::Key_Up);
        QCOMPARE(viewModel().statusFilterRaw(), u"inStock"_s);
        QCOMPARE(list->selectedItems().size(), 1);
        QCOMPARE(list->currentRow(), 1);
    }

    void aStoredTextMatchingNoChoiceSelectsNothingAndShowsAll()
    {
        QSettings().setValue(u"inventoryStatusFilter"_s, u"sold"_s);
        chooseInventory();
        QCOMPARE(content().inventoryFilterView()->list()->selectedItems().size(), 0);
        QCOMPARE(table().model()->rowCount(), 3);
    }

    void theStoredFilterSurvivesANewWindow()
    {
        chooseInventory();
        clickFilterRow(2);
        QCOMPARE(viewModel().statusFilterRaw(), u"disposed"_s);
        m_content.reset();

        m_content = std::make_unique<ContentView>(m_store->container(), *m_catalogService);
        chooseInventory();
        QCOMPARE(viewModel().statusFilterRaw(), u"disposed"_s);
        QCOMPARE(content().inventoryFilterView()->list()->currentRow(), 2);
        QVERIFY(content().inventoryFilterView()->list()->item(2)->isSelected());
        QCOMPARE(table().model()->rowCount(), 2);
    }

    void aCopySavedElsewhereReachesTheTableKeepingSelectionAndScroll()
    {
        for (int index = 0; index < 80; ++index) {
            saveCopy(context(), m_falcon.objectID, [index](BrickSet &copy) {
                copy.dateAdded = at(2020, 1, 1).addDays(index);
            });
        }
        showContent(content());
        chooseInventory();
        QCOMPARE(table().model()->rowCount(), 83);
        const int selected = rowOf(m_sold);
        table().selectRow(selected);
        QScrollBar *scroll = table().verticalScrollBar();
        QVERIFY(scroll->maximum() > 20);
        scroll->setValue(scroll->maximum() / 2);
        const int position = scroll->value();

        auto background = m_store->container().newBackgroundContext();
        const ObjectID kept = m_kept.objectID;
        background->performAndWait([kept](ManagedObjectContext &other) {
            std::optional<BrickSet> copy = other.existingObject<BrickSet>(kept);
            copy->pricePaid = Decimal::fromString(u"700"_s);
            other.update(*copy);
            other.save();
        });
        QTRY_COMPARE(cell(rowOf(m_kept), InventorySpreadsheetModel::paid), u"$700.00"_s);
        QCOMPARE(scroll->value(), position);
        const QModelIndexList rows = table().selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(viewModel().tableModel().objectIDAt(rows.constFirst().row()), m_sold.objectID);

        // A copy added elsewhere appears; one moved to the trash leaves.
        const ObjectID castle = m_castle.objectID;
        background->performAndWait([castle](ManagedObjectContext &other) {
            other.insert(newCopy(castle, at(2025, 5, 5)));
            other.save();
        });
        QTRY_COMPARE(table().model()->rowCount(), 84);
        const ObjectID gifted = m_gifted.objectID;
        background->performAndWait([gifted](ManagedObjectContext &other) {
            std::optional<BrickSet> copy = other.existingObject<BrickSet>(gifted);
            copy->isTrashed = true;
            copy->trashedDate = QDateTime::currentDateTimeUtc();
            other.update(*copy);
            other.save();
        });
        QTRY_COMPARE(table().model()->rowCount(), 83);
        QCOMPARE(rowOf(m_gifted), -1);
        QCOMPARE(viewModel().tableModel().objectIDAt(table().selectionModel()->selectedRows().constFirst().row()),
                 m_sold.objectID);
    }

    void aHeaderClickSortsByItsColumnAndASecondClickTurnsTheOrderRound()
    {
        showContent(content());
        chooseInventory();
        QHeaderView *header = table().horizontalHeader();
        QVERIFY(header->isSortIndicatorShown());
        QCOMPARE(header->sortIndicatorSection(), int(InventorySpreadsheetModel::setNumber));

        clickHeader(InventorySpreadsheetModel::paid);
        QCOMPARE(viewModel().sortOrder(), InventorySpreadsheetViewModel::SortColumn::paid);
        QCOMPARE(viewModel().sortAscending(), true);
        // No price reads as -1, so the gifted copy comes first.
        QCOMPARE(shownCopies(), (QList<ObjectID>{m_gifted.objectID, m_sold.objectID, m_kept.objectID}));
        QCOMPARE(header->sortIndicatorSection(), int(InventorySpreadsheetModel::paid));
        QCOMPARE(header->sortIndicatorOrder(), Qt::AscendingOrder);

        clickHeader(InventorySpreadsheetModel::paid);
        QCOMPARE(viewModel().sortAscending(), false);
        QCOMPARE(shownCopies(), (QList<ObjectID>{m_kept.objectID, m_sold.objectID, m_gifted.objectID}));
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);

        clickHeader(InventorySpreadsheetModel::year);
        QCOMPARE(viewModel().sortOrder(), InventorySpreadsheetViewModel::SortColumn::year);
        QCOMPARE(viewModel().sortAscending(), true);
        QCOMPARE(shownCopies(), (QList<ObjectID>{m_gifted.objectID, m_kept.objectID, m_sold.objectID}));
        QCOMPARE(header->sortIndicatorSection(), int(InventorySpreadsheetModel::year));
    }

    void theSearchFieldFiltersAtEveryKeystroke()
    {
        showContent(content());
        chooseInventory();
        QCOMPARE(sheet().searchField()->placeholderText(), u"Search Inventory"_s);
        QTest::keyClicks(sheet().searchField(), u"cas"_s);
        QCOMPARE(viewModel().searchText(), u"cas"_s);
        QCOMPARE(table().model()->rowCount(), 2);
        for (int erased = 0; erased < 3; ++erased)
            QTest::keyClick(sheet().searchField(), Qt::Key_Backspace);
        QCOMPARE(table().model()->rowCount(), 3);
        QTest::keyClicks(sheet().searchField(), u"knig"_s);
        QCOMPARE(shownCopies(), QList<ObjectID>{m_sold.objectID});
        QCOMPARE(sheet().footerLabel()->text(), viewModel().footerText());
    }

    void theDateButtonOpensTheBarWhosePickersFilterAndClearEmptiesThem()
    {
        showContent(content());
        chooseInventory();
        InventoryDateFilterBar *bar = sheet().dateFilterBar();
        QVERIFY(!bar->isVisible());
        QAction *dateAction = sheet().dateFilterAction();
        QCOMPARE(dateAction->text(), u"Date Filter"_s);
        QVERIFY(dateAction->isCheckable());
        QWidget *button = sheet().toolBar()->widgetForAction(dateAction);
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(viewModel().showDateFilter());
        QVERIFY(bar->isVisible());
        QCOMPARE(bar->captionLabel()->text(), u"Date Range:"_s);
        QCOMPARE(bar->fromPicker()->presentBox()->text(), u"From"_s);
        QCOMPARE(bar->toPicker()->presentBox()->text(), u"To"_s);
        QCOMPARE(bar->clearButton()->text(), u"Clear"_s);
        QVERIFY(!bar->fromPicker()->dateEdit()->isEnabled());

        // From 2022-01-01: the gifted copy, added in 2021 and never acquired, goes.
        bar->fromPicker()->presentBox()->click();
        QVERIFY(bar->fromPicker()->dateEdit()->isEnabled());
        bar->fromPicker()->dateEdit()->setDate(QDate(2022, 1, 1));
        QCOMPARE(viewModel().filterDateFrom(), QDate(2022, 1, 1));
        QCOMPARE(shownCopies().size(), 2);
        QCOMPARE(rowOf(m_gifted), -1);
        // To 2022-12-31: the copy acquired in 2023 goes as well.
        bar->toPicker()->presentBox()->click();
        bar->toPicker()->dateEdit()->setDate(QDate(2022, 12, 31));
        QCOMPARE(viewModel().filterDateTo(), QDate(2022, 12, 31));
        QCOMPARE(shownCopies(), QList<ObjectID>{m_sold.objectID});

        QVERIFY(bar->clearButton()->isEnabled());
        bar->clearButton()->click();
        QCOMPARE(viewModel().filterDateFrom(), std::nullopt);
        QCOMPARE(viewModel().filterDateTo(), std::nullopt);
        QVERIFY(!bar->fromPicker()->presentBox()->isChecked());
        QVERIFY(!bar->toPicker()->presentBox()->isChecked());
        QCOMPARE(table().model()->rowCount(), 3);

        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(!viewModel().showDateFilter());
        QVERIFY(!bar->isVisible());
    }

    void controlCCopiesThreeSelectedRowsAsTabSeparatedText()
    {
        const CatalogSet treeHouse = context().insert(catalogSet(u"21318-1"_s, u"Tree House"_s, 2019));
        saveCopy(context(), treeHouse.objectID, [](BrickSet &copy) {
            copy.dateAdded = at(2019, 4, 2);
            copy.pricePaid = Decimal::fromString(u"89.5"_s);
            copy.priceCurrency = u"GBP"_s;
        });
        showContent(content());
        chooseInventory();
        QCOMPARE(table().model()->rowCount(), 4);
        // By set number as text: 10305-1, 21318-1, 6080-1, 75192-1; the gifted copy is left out.
        selectRows({3, 0, 1});
        table().setFocus();
        QTest::keySequence(&table(), QKeySequence::Copy);
        // Amounts as plain decimals beside their currency codes, dates as ISO dates, a
        // line feed after every line.
        const QString expected =
            u"Set #\tName\tYear\tCondition\tBuilt\tPaid\tPaid Currency\tAcquired\tDisposed\t"
            "Disposal Currency\tDisposal Date\tAdded\n"
            "10305-1\tLion Knights' Castle\t2022\tUsed\tDisassembled\t399.99\tEUR\t2022-09-01\t450\tEUR\t"
            "2024-06-01\t2022-09-03\n"
            "21318-1\tTree House\t2019\tUsed\tBuilt\t89.5\tGBP\t\t\t\t\t2019-04-02\n"
            "75192-1\tMillennium Falcon\t2017\tNew/Sealed\tBuilt\t679.99\tUSD\t2023-03-10\t\t\t\t2023-03-12\n"_s;
        QCOMPARE(QGuiApplication::clipboard()->text().toUtf8(), expected.toUtf8());
    }

    void controlCWithNothingSelectedCopiesEveryRow()
    {
        showContent(content());
        chooseInventory();
        table().clearSelection();
        table().setFocus();
        QTest::keySequence(&table(), QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), viewModel().clipboardText({}));
        QCOMPARE(QGuiApplication::clipboard()->text().count(u'\n'), 4);
    }

    void theChartShowsPaidAndReceivedPerYearForEachCurrency()
    {
        chooseInventory();
        QBarSeries *series = sheet().yearChart()->series();
        QVERIFY(series);
        const QList<QBarSet *> sets = series->barSets();
        QCOMPARE(sets.size(), 4);
        // Years 2022, 2023, 2024; the gifted copy was given away without a price.
        QCOMPARE(sets[0]->label(), u"Paid (EUR)"_s);
        QCOMPARE(sets[1]->label(), u"Received (EUR)"_s);
        QCOMPARE(sets[2]->label(), u"Paid (USD)"_s);
        QCOMPARE(sets[3]->label(), u"Received (USD)"_s);
        const auto values = [](const QBarSet *set) {
            QList<qreal> all;
            for (int index = 0; index < set->count(); ++index)
                all.append(set->at(index));
            return all;
        };
        QCOMPARE(values(sets[0]), (QList<qreal>{399.99, 0, 0}));
        QCOMPARE(values(sets[1]), (QList<qreal>{0, 0, 450}));
        QCOMPARE(values(sets[2]), (QList<qreal>{0, 679.99, 0}));
        QCOMPARE(values(sets[3]), (QList<qreal>{0, 0, 0}));

        // A new price keeps the years and currencies: the same bars take the new height.
        BrickSet kept = *context().existingObject<BrickSet>(m_kept.objectID);
        kept.pricePaid = Decimal::fromString(u"700"_s);
        context().update(kept);
        context().save();
        QTRY_COMPARE(values(sets[2]), (QList<qreal>{0, 700, 0}));
        QCOMPARE(sheet().yearChart()->series(), series);

        // It follows the filters: in stock leaves the dollars of 2023 alone.
        viewModel().setStatusFilterRaw(u"inStock"_s);
        series = sheet().yearChart()->series();
        QCOMPARE(series->barSets().size(), 2);
        QCOMPARE(values(series->barSets()[0]), QList<qreal>{700});
    }

    void doubleClickingARowShowsThatCopySelectedInAllSets()
    {
        showContent(content());
        chooseInventory();
        const int row = rowOf(m_sold);
        const QRect cellRect = table().visualRect(table().model()->index(row, InventorySpreadsheetModel::name));
        QSignalSpy activated(&sheet(), &InventorySpreadsheetView::copyActivated);
        // A double-click follows a first click on the same row, as a user's does.
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, cellRect.center());
        QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, cellRect.center());
        QCOMPARE(activated.size(), 1);
        QCOMPARE(sidebar().selectedItem(), SidebarItem(SidebarItem::Kind::allSets));
        QCOMPARE(content().selectedBrickSet(), m_sold.objectID);
        QCOMPARE(content().middleColumn()->currentWidget(), content().setListView());
        QSet<int> selected;
        SetGridView *grid = content().setListView()->copiesGrid();
        for (const QModelIndex &index : grid->selectionModel()->selectedIndexes())
            selected.insert(index.row());
        QCOMPARE(selected, QSet<int>{content().listViewModel().groups()->rowOf(m_sold.objectID)});
    }
};

QTEST_MAIN(InventorySheetViewTest)
#include "InventorySheetViewTest.moc"
