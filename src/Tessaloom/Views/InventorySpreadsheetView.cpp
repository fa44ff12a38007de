// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventorySpreadsheetView.h"

#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "Views/InventoryDateFilterBar.h"
#include "Views/InventoryYearChart.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int chartHeight = 220;
}

InventorySpreadsheetView::InventorySpreadsheetView(InventorySpreadsheetViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_toolBar(new QToolBar(this))
    , m_search(new QLineEdit(m_toolBar))
    , m_dateAction(new QAction(this))
    , m_dateBar(new InventoryDateFilterBar(viewModel, this))
    , m_table(new QTableView(this))
    , m_footer(new QLabel(this))
    , m_chart(new InventoryYearChart(this))
    , m_copyAction(new QAction(this))
{
    setObjectName(u"inventorySpreadsheet"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolBar);
    layout->addWidget(m_dateBar);
    // The table and the chart share the height; the user may give either more.
    auto *split = new QSplitter(Qt::Vertical, this);
    auto *sheet = new QWidget(split);
    auto *sheetLayout = new QVBoxLayout(sheet);
    sheetLayout->setContentsMargins(0, 0, 0, 0);
    sheetLayout->addWidget(m_table, 1);
    sheetLayout->addWidget(m_footer);
    split->addWidget(sheet);
    split->addWidget(m_chart);
    split->setChildrenCollapsible(false);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 0);
    m_chart->setMinimumHeight(chartHeight / 2);
    split->setSizes({600, chartHeight});
    layout->addWidget(split, 1);

    m_toolBar->setObjectName(u"inventoryToolBar"_s);
    m_search->setObjectName(u"inventorySearch"_s);
    //% "Search Inventory"
    m_search->setPlaceholderText(qtTrId("inventory.search.prompt"));
    m_search->setClearButtonEnabled(true);
    m_toolBar->addWidget(m_search);
    //% "Date Filter"
    m_dateAction->setText(qtTrId("inventory.filter.date"));
    m_dateAction->setIcon(SymbolIcon::icon(u"line.3.horizontal.decrease.circle"_s));
    m_dateAction->setCheckable(true);
    m_toolBar->addAction(m_dateAction);
    m_dateBar->setObjectName(u"inventoryDateBar"_s);
    m_footer->setObjectName(u"inventoryFooter"_s);
    m_footer->setContentsMargins(6, 3, 6, 3);

    m_table->setObjectName(u"inventoryTable"_s);
    m_table->setModel(&m_viewModel.tableModel());
    m_table->setAlternatingRowColors(true);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    // Rows of one height let the view place 10,000 rows without asking each its size.
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    // The view never sorts the model itself: a click asks the view model, which knows the
    // order each column sorts by and keeps the choice.
    m_table->setSortingEnabled(false);
    QHeaderView *header = m_table->horizontalHeader();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setHighlightSections(false);
    header->setStretchLastSection(false);
    // The header's own floor is the narrowest column's; each column's is kept below.
    int narrowest = InventorySpreadsheetModel::leastWidth(0);
    for (int column = 1; column < InventorySpreadsheetModel::columnCount_; ++column)
        narrowest = std::min(narrowest, InventorySpreadsheetModel::leastWidth(column));
    header->setMinimumSectionSize(narrowest);
    for (int column = 0; column < InventorySpreadsheetModel::columnCount_; ++column) {
        const int least = InventorySpreadsheetModel::leastWidth(column);
        const int ideal = InventorySpreadsheetModel::idealWidth(column);
        header->setSectionResizeMode(column, least == ideal ? QHeaderView::Fixed : QHeaderView::Interactive);
        header->resizeSection(column, ideal);
    }
    connect(header, &QHeaderView::sectionResized, this, &InventorySpreadsheetView::keepLeastWidth);
    connect(header, &QHeaderView::sectionClicked, this, &InventorySpreadsheetView::headerClicked);

    // Ctrl+C anywhere in the sheet but the search field, which copies its own text.
    m_copyAction->setShortcut(QKeySequence::Copy);
    m_copyAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(m_copyAction);
    connect(m_copyAction, &QAction::triggered, this, &InventorySpreadsheetView::copyRows);
    connect(m_table, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.isValid())
            Q_EMIT copyActivated(m_viewModel.tableModel().objectIDAt(index.row()));
    });

    // Every keystroke filters at once: the sheet answers well within a keystroke's time.
    connect(m_search, &QLineEdit::textEdited, &m_viewModel, &InventorySpreadsheetViewModel::setSearchText);
    connect(m_dateAction, &QAction::toggled, &m_viewModel, &InventorySpreadsheetViewModel::setShowDateFilter);
    connect(&m_viewModel, &InventorySpreadsheetViewModel::stateChanged, this, &InventorySpreadsheetView::showState);
    connect(&m_viewModel, &InventorySpreadsheetViewModel::rowsChanged, this, &InventorySpreadsheetView::showRows);
    showState();
    showRows();
}

void InventorySpreadsheetView::showState()
{
    if (m_search->text() != m_viewModel.searchText())
        m_search->setText(m_viewModel.searchText());
    const bool dateBarShown = m_viewModel.showDateFilter();
    if (m_dateAction->isChecked() != dateBarShown)
        m_dateAction->setChecked(dateBarShown);
    m_dateBar->setVisible(dateBarShown);
    showSortIndicator();
}

void InventorySpreadsheetView::showRows()
{
    m_footer->setText(m_viewModel.footerText());
    m_chart->setTotals(m_viewModel.yearTotals());
}

void InventorySpreadsheetView::showSortIndicator()
{
    for (int column = 0; column < InventorySpreadsheetModel::columnCount_; ++column) {
        if (InventorySpreadsheetViewModel::sortColumnOf(column) == m_viewModel.sortOrder()) {
            m_table->horizontalHeader()->setSortIndicator(
                column, m_viewModel.sortAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
            return;
        }
    }
}

void InventorySpreadsheetView::headerClicked(int column)
{
    m_viewModel.sortByColumn(InventorySpreadsheetViewModel::sortColumnOf(column));
    // The header turned its own indicator on the click; the order the rows really have
    // is shown again, also when the view model kept it.
    showSortIndicator();
}

void InventorySpreadsheetView::keepLeastWidth(int column, int, int newWidth)
{
    const int least = InventorySpreadsheetModel::leastWidth(column);
    if (newWidth < least)
        m_table->horizontalHeader()->resizeSection(column, least);
}

void InventorySpreadsheetView::copyRows()
{
    QList<int> rows;
    const QModelIndexList selected = m_table->selectionModel()->selectedRows();
    rows.reserve(selected.size());
    for (const QModelIndex &index : selected)
        rows.append(index.row());
    QGuiApplication::clipboard()->setText(m_viewModel.clipboardText(rows));
}
