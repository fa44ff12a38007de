// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ThemeBrowserView.h"

#include "Services/RebrickableCatalog.h"
#include "ViewModels/FlatThemeTableModel.h"
#include "Views/FillingColumnFitter.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QShowEvent>
#include <QTableView>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace {
constexpr std::array<ThemeBrowserView::ColumnWidth, FlatThemeTableModel::ColumnCount> columnWidths{{
    {200, 350}, // theme path
    {40, 60},   // sets
    {50, 65},   // first year
    {50, 65},   // last year
}};
constexpr int searchFieldWidth = 240;
constexpr int headerMargin = 8;
} // namespace

ThemeBrowserView::ColumnWidth ThemeBrowserView::columnWidth(int column)
{
    if (column < 0 || column >= int(columnWidths.size()))
        return {0, 0};
    return columnWidths.at(std::size_t(column));
}

ThemeBrowserView::ThemeBrowserView(QWidget *parent)
    : QWidget(parent)
    , m_model(new FlatThemeTableModel(this))
    , m_title(new QLabel(this))
    , m_searchField(new QLineEdit(this))
    , m_tableView(new QTableView(this))
{
    setObjectName(u"themeBrowserView"_s);
    //% "All Themes"
    const QString title = qtTrId("sidebar.catalog.allThemes");
    setWindowTitle(title);
    m_title->setText(title);
    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);

    m_searchField->setObjectName(u"themeSearchField"_s);
    //% "Search themes or a year"
    m_searchField->setPlaceholderText(qtTrId("catalog.themes.search.prompt"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->setMaximumWidth(searchFieldWidth);

    auto *header = new QHBoxLayout;
    header->setContentsMargins(headerMargin, headerMargin, headerMargin, 0);
    header->addWidget(m_title);
    header->addStretch();
    header->addWidget(m_searchField);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(header);
    layout->addWidget(m_tableView);

    m_tableView->setObjectName(u"themeTable"_s);
    m_tableView->setModel(m_model);
    m_tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tableView->setWordWrap(false);
    m_tableView->setAlternatingRowColors(true);
    m_tableView->setShowGrid(false);
    m_tableView->verticalHeader()->hide();
    configureColumns();

    connect(m_searchField, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_model->setSearchText(text);
        Q_EMIT searchTextChanged(text);
    });
    connect(m_model, &QAbstractItemModel::modelReset, this, &ThemeBrowserView::restoreSelection);
    connect(m_tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ThemeBrowserView::selectionChanged);
    // Enter on the current row and a double-click both arrive as activation.
    connect(m_tableView, &QAbstractItemView::activated, this, &ThemeBrowserView::activate);

    // Ctrl+F is the window's (see ContentView), which brings the focus here while the
    // browser is on show: a second shortcut for the same keys here would make both
    // ambiguous, and Qt would then run neither.
}

QString ThemeBrowserView::searchText() const
{
    return m_searchField->text();
}

void ThemeBrowserView::setSearchText(const QString &searchText)
{
    m_searchField->setText(searchText);
}

void ThemeBrowserView::reloadThemes()
{
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    m_selectedThemeID.reset();
    m_model->setThemes(catalog ? catalog->flatThemes() : QList<FlatThemeResult>());
}

void ThemeBrowserView::focusSearchField()
{
    m_searchField->setFocus(Qt::ShortcutFocusReason);
    m_searchField->selectAll();
}

void ThemeBrowserView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // A window coming back from being minimised is no new visit.
    if (!event->spontaneous())
        reloadThemes();
}

void ThemeBrowserView::configureColumns()
{
    QHeaderView *header = m_tableView->horizontalHeader();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setMinimumSectionSize(columnWidths.front().least);
    for (int column = 0; column < FlatThemeTableModel::ColumnCount; ++column) {
        header->setMinimumSectionSize(std::min(header->minimumSectionSize(), columnWidth(column).least));
        header->resizeSection(column, columnWidth(column).ideal);
    }
    // QHeaderView has one least width for all sections; each column's own is kept here.
    connect(header, &QHeaderView::sectionResized, this,
            [this](int column, int, int newSize) { keepLeastWidth(column, newSize); });
    // The theme's path takes the width the numbers leave, down to its least width.
    m_columnFitter = new FillingColumnFitter(*m_tableView, FlatThemeTableModel::ThemeColumn,
                                             columnWidth(FlatThemeTableModel::ThemeColumn).least,
                                             u"themeBrowser.columnWidths"_s);

    // No sort indicator at first: the rows stay in the catalog's order until a header is
    // clicked, and a third click on the same header returns to it.
    header->setSortIndicatorClearable(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    m_tableView->setSortingEnabled(true);
}

void ThemeBrowserView::keepLeastWidth(int column, int newSize)
{
    const int least = columnWidth(column).least;
    if (newSize < least)
        m_tableView->horizontalHeader()->resizeSection(column, least);
}

void ThemeBrowserView::selectionChanged()
{
    if (m_restoringSelection)
        return;
    const QModelIndexList rows = m_tableView->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        m_selectedThemeID.reset();
        return;
    }
    const int id = rows.constFirst().data(FlatThemeTableModel::ThemeIDRole).toInt();
    if (m_selectedThemeID == id)
        return;
    m_selectedThemeID = id;
    emitThemeSelected(id);
}

void ThemeBrowserView::activate(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    const int id = index.data(FlatThemeTableModel::ThemeIDRole).toInt();
    if (m_selectedThemeID == id && m_tableView->selectionModel()->isRowSelected(index.row(), QModelIndex())) {
        emitThemeSelected(id);
        return;
    }
    m_tableView->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ThemeBrowserView::restoreSelection()
{
    // A new search resets the rows, and with them the table's selection. The selected
    // theme stays selected while its row is shown, without counting as a new choice.
    if (!m_selectedThemeID)
        return;
    const int row = m_model->rowOfTheme(*m_selectedThemeID);
    if (row < 0)
        return;
    m_restoringSelection = true;
    const QModelIndex index = m_model->index(row, 0);
    m_tableView->selectionModel()->setCurrentIndex(
        index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_restoringSelection = false;
}

void ThemeBrowserView::emitThemeSelected(int id)
{
    // Looked up among all loaded themes, as the row may only just have been filtered.
    if (const std::optional<FlatThemeResult> theme = m_model->themeWithID(id))
        Q_EMIT themeSelected(theme->id, theme->name);
}
