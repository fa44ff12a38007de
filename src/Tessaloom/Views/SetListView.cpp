// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetListView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/CatalogGridItemView.h"
#include "Views/CatalogTableView.h"
#include "Views/CellPictureLoader.h"
#include "Views/EmptyStateView.h"
#include "Views/GridTablePicker.h"
#include "Views/SetGridCellPainter.h"
#include "Views/SetGridItemView.h"
#include "Views/SetGridView.h"
#include "Views/SetTableView.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
// Scaled pictures of about 200 grid cells, some ten screens of them; cells further back get
// theirs again from the image cache, which keeps the large originals in memory and on disk.
// More would push a scrolled-through grid of a thousand sets past 250 MB in all.
constexpr qsizetype gridPictureBytesKept = 16 * 1024 * 1024;

// The row selected in a grid (one cell) or a table (the whole row), or -1.
int selectedRow(const QItemSelectionModel &selection)
{
    const QModelIndexList selected = selection.selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}
} // namespace

SetListView::SetListView(SetListViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_gridPictures(new CellPictureLoader(SetGridCellPainter::pictureSize(), gridPictureBytesKept, this))
    , m_title(new QLabel(this))
    , m_searchField(new QLineEdit(this))
    , m_limitNotice(new QLabel(this))
    , m_lists(new QStackedWidget(this))
    , m_copiesGrid(new SetGridView(m_lists))
    , m_copiesTable(new SetTableView(viewModel, m_lists))
    , m_catalogGrid(new SetGridView(m_lists))
    , m_catalogTable(new CatalogTableView(viewModel, m_lists))
    , m_copiesEmptyState(new EmptyStateView(m_lists))
    , m_catalogEmptyState(new EmptyStateView(m_lists))
    , m_copyCells(new SetGridItemView(*m_gridPictures, this))
    , m_catalogCells(new CatalogGridItemView(*m_gridPictures, this))
{
    setObjectName(u"setListView"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);
    buildBar();
    m_limitNotice->setObjectName(u"setListLimitNotice"_s);
    m_limitNotice->setTextFormat(Qt::RichText);
    m_limitNotice->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_limitNotice->setWordWrap(true);
    m_limitNotice->hide();
    connect(m_limitNotice, &QLabel::linkActivated, &m_viewModel, &SetListViewModel::showAllCatalogResults);
    layout->addWidget(m_limitNotice);
    layout->addWidget(m_lists, 1);
    buildCopyActions();

    m_copiesGrid->setObjectName(u"copiesGrid"_s);
    m_copiesGrid->setModel(viewModel.groups());
    // The name column: what typing in the grid jumps to and what a screen reader reads.
    m_copiesGrid->setModelColumn(SetListGroupModel::NameColumn);
    m_copiesGrid->setItemDelegate(m_copyCells);
    m_copiesTable->setObjectName(u"copiesTable"_s);
    // The grid and the table of one list share their selection: switching keeps it.
    m_copySelection = m_copiesGrid->selectionModel();
    m_copiesTable->setSelectionModel(m_copySelection);

    m_catalogGrid->setObjectName(u"catalogGrid"_s);
    m_catalogGrid->setModel(viewModel.catalogModel());
    m_catalogGrid->setModelColumn(CatalogSetListModel::NameColumn);
    m_catalogGrid->setItemDelegate(m_catalogCells);
    m_catalogTable->setObjectName(u"catalogResultsTable"_s);
    m_catalogSelection = m_catalogGrid->selectionModel();
    m_catalogTable->setSelectionModel(m_catalogSelection);

    m_copiesEmptyState->setObjectName(u"copiesEmptyState"_s);
    //% "No Sets"
    const QString noSetsTitle = qtTrId("setList.noSets.title");
    //% "Sets you add to your collection appear here."
    const QString noSetsDescription = qtTrId("setList.noSets.description");
    m_copiesEmptyState->setContent(u"square.grid.2x2.fill"_s, noSetsTitle, noSetsDescription);
    m_catalogEmptyState->setObjectName(u"catalogEmptyState"_s);
    updateCatalogEmptyState();

    for (QWidget *page : {static_cast<QWidget *>(m_copiesGrid), static_cast<QWidget *>(m_copiesTable),
                          static_cast<QWidget *>(m_catalogGrid), static_cast<QWidget *>(m_catalogTable),
                          static_cast<QWidget *>(m_copiesEmptyState), static_cast<QWidget *>(m_catalogEmptyState)})
        m_lists->addWidget(page);

    connect(m_copySelection, &QItemSelectionModel::selectionChanged, this, &SetListView::copySelectionChanged);
    connect(m_catalogSelection, &QItemSelectionModel::selectionChanged, this, &SetListView::catalogSelectionChanged);
    connect(viewModel.groups(), &SetListGroupModel::regrouped, this, [this] {
        reselectBrickSet();
        showCurrentList();
    });
    connect(viewModel.catalogModel(), &QAbstractItemModel::modelReset, this, &SetListView::reselectCatalogSet);

    connect(&m_viewModel, &SetListViewModel::selectionIDChanged, this, &SetListView::showCurrentList);
    connect(&m_viewModel, &SetListViewModel::selectionIDChanged, this, &SetListView::updateMoveToTrashAction);
    connect(&m_viewModel, &SetListViewModel::isGridViewChanged, this, &SetListView::showCurrentList);
    connect(&m_viewModel, &SetListViewModel::catalogResultsChanged, this, &SetListView::showCurrentList);
    connect(&m_viewModel, &SetListViewModel::catalogSearchStarted, this, &SetListView::showCurrentList);
    connect(&m_viewModel, &SetListViewModel::catalogResultsChanged, this, &SetListView::updateLimitNotice);
    connect(&m_viewModel, &SetListViewModel::selectionIDChanged, this, &SetListView::updateLimitNotice);
    connect(&m_viewModel, &SetListViewModel::searchTextChanged, this, &SetListView::updateCatalogEmptyState);
    setSidebarSelection(std::nullopt);
    showCurrentList();
}

SetListView::~SetListView() = default;

void SetListView::buildBar()
{
    auto *bar = new QHBoxLayout;
    bar->setSpacing(8);
    m_title->setObjectName(u"setListTitle"_s);
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    m_title->setFont(titleFont);
    m_title->setTextInteractionFlags(Qt::NoTextInteraction);
    bar->addWidget(m_title, 1);

    m_searchField->setObjectName(u"setListSearchField"_s);
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(SymbolIcon::icon(u"magnifyingglass"_s), QLineEdit::LeadingPosition);
    m_searchField->setMinimumWidth(180);
    bar->addWidget(m_searchField, 2);
    connect(m_searchField, &QLineEdit::textEdited, &m_viewModel, &SetListViewModel::setSearchText);
    connect(&m_viewModel, &SetListViewModel::searchTextChanged, this, [this](const QString &text) {
        if (m_searchField->text() != text)
            m_searchField->setText(text);
    });
    connect(&m_viewModel, &SetListViewModel::searchFocusTriggerChanged, m_searchField, [this] {
        m_searchField->setFocus(Qt::ShortcutFocusReason);
        m_searchField->selectAll();
    });
    m_searchField->installEventFilter(this);

    // The picker between grid and table: two exclusive buttons.
    //% "View"
    auto *picker = new GridTablePicker(m_viewModel, qtTrId("setList.viewPicker"), this);
    picker->setObjectName(u"setListViewPicker"_s);
    m_gridAction = picker->gridAction();
    m_tableAction = picker->tableAction();
    addAction(m_gridAction);
    addAction(m_tableAction);
    bar->addWidget(picker);
    static_cast<QVBoxLayout *>(layout())->addLayout(bar);
}

void SetListView::buildCopyActions()
{
    //% "Open Parts Checklist"
    m_partsChecklistAction = new QAction(SymbolIcon::icon(u"checklist"_s), qtTrId("setList.openPartsChecklist"), this);
    m_partsChecklistAction->setObjectName(u"openPartsChecklistAction"_s);
    m_partsChecklistAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    m_partsChecklistAction->setShortcutContext(Qt::WindowShortcut);
    addAction(m_partsChecklistAction);
    // The shortcut acts on the copy selected in the collection's list; it has none to act
    // on while the catalog is shown.
    connect(m_partsChecklistAction, &QAction::triggered, this, [this] {
        if (!m_viewModel.isCatalogList() && m_selectedBrickSet)
            Q_EMIT partsChecklistRequested(*m_selectedBrickSet);
    });

    //% "Move to Trash"
    m_moveToTrashAction = new QAction(SymbolIcon::icon(u"trash"_s), qtTrId("setList.moveToTrash"), this);
    m_moveToTrashAction->setObjectName(u"moveToTrashAction"_s);
    m_moveToTrashAction->setShortcuts({QKeySequence(QKeySequence::Delete), QKeySequence(Qt::Key_Backspace)});
    // Only while the copies' grid or table has the keyboard: in the search field the keys
    // edit the text.
    m_moveToTrashAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(m_moveToTrashAction, &QAction::triggered, this, [this] {
        if (!m_viewModel.isCatalogList() && m_selectedBrickSet)
            moveCopyToTrash(*m_selectedBrickSet);
    });
    updateMoveToTrashAction();
    for (QAbstractItemView *list : {static_cast<QAbstractItemView *>(m_copiesGrid), static_cast<QAbstractItemView *>(m_copiesTable)}) {
        list->addAction(m_moveToTrashAction);
        list->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(list, &QWidget::customContextMenuRequested, this,
                [this, list](const QPoint &position) { showCopyContextMenu(list, position); });
    }
}

std::optional<ObjectID> SetListView::copyAt(int row) const
{
    if (row < 0 || row >= m_viewModel.groups()->count())
        return std::nullopt;
    const SetListGroupModel::Group &group = m_viewModel.groups()->groupAt(row);
    if (!group.copy)
        return std::nullopt;
    return group.copy->brickSet.objectID;
}

QMenu *SetListView::copyContextMenu(int row)
{
    const std::optional<ObjectID> copy = copyAt(row);
    if (!copy)
        return nullptr;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *open = menu->addAction(m_partsChecklistAction->icon(), m_partsChecklistAction->text());
    open->setShortcut(m_partsChecklistAction->shortcut());
    connect(open, &QAction::triggered, this, [this, id = *copy] { Q_EMIT partsChecklistRequested(id); });
    if (m_moveToTrashAction->isEnabled()) {
        menu->addSeparator();
        QAction *trash = menu->addAction(m_moveToTrashAction->icon(), m_moveToTrashAction->text());
        trash->setObjectName(u"moveToTrashMenuAction"_s);
        trash->setShortcut(m_moveToTrashAction->shortcut());
        connect(trash, &QAction::triggered, this, [this, id = *copy] { moveCopyToTrash(id); });
    }
    return menu;
}

void SetListView::setCollectionTrash(CollectionTrash *trash)
{
    m_trash = trash;
    updateMoveToTrashAction();
}

void SetListView::updateMoveToTrashAction()
{
    // The trash's own list shows trashed copies: they cannot be moved there again.
    const bool copies = !m_viewModel.isCatalogList() && m_viewModel.selection().kind() != SidebarItem::Kind::trash;
    m_moveToTrashAction->setEnabled(m_trash && copies);
}

void SetListView::moveCopyToTrash(ObjectID brickSet)
{
    if (!m_trash)
        return;
    // The selection goes first, so the detail never shows a copy that left the list.
    if (m_selectedBrickSet == brickSet) {
        setSelectedBrickSet(std::nullopt);
        Q_EMIT brickSetSelected(std::nullopt);
    }
    m_trash->moveToTrash(brickSet);
}

void SetListView::showCopyContextMenu(QAbstractItemView *list, const QPoint &position)
{
    const QModelIndex index = list->indexAt(position);
    if (!index.isValid())
        return;
    if (QMenu *menu = copyContextMenu(index.row()))
        menu->popup(list->viewport()->mapToGlobal(position));
}

void SetListView::setSidebarSelection(const std::optional<SidebarItem> &item)
{
    //% "All Sets"
    m_title->setText(item ? item->title() : qtTrId("setList.allSets.title"));
    const bool catalog = item && item->isCatalogItem();
    //% "Search the catalog by name, number or year"
    const QString catalogPrompt = qtTrId("catalog.search.prompt");
    //% "Filter by name, number or year"
    const QString collectionPrompt = qtTrId("setList.filter.prompt");
    m_searchField->setPlaceholderText(catalog ? catalogPrompt : collectionPrompt);
}

QWidget *SetListView::currentList() const
{
    return m_lists->currentWidget();
}

bool SetListView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_searchField && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Down && key->modifiers() == Qt::NoModifier && moveIntoList())
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

// From the search field to the results, as in a file manager: the keyboard goes to the
// grid or table on show, and its first row is chosen when none is, so the arrows go on
// from there. An empty list or an empty state leaves the Down key to the field.
bool SetListView::moveIntoList()
{
    auto *list = qobject_cast<QAbstractItemView *>(m_lists->currentWidget());
    if (!list || !list->model() || list->model()->rowCount() == 0)
        return false;
    list->setFocus(Qt::TabFocusReason);
    QItemSelectionModel *selection = list->selectionModel();
    if (selection->hasSelection())
        return true;
    // The grids show one column of their model; the tables start at their first visible one.
    int column = 0;
    if (const auto *grid = qobject_cast<QListView *>(list))
        column = grid->modelColumn();
    else if (const auto *table = qobject_cast<QTableView *>(list))
        column = table->horizontalHeader()->logicalIndex(0);
    selection->setCurrentIndex(list->model()->index(0, column),
                               QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
}

void SetListView::showCurrentList()
{
    const bool grid = m_viewModel.isGridView();
    QWidget *page = nullptr;
    if (m_viewModel.isCatalogList()) {
        // While a search is on its way an emptied list waits for it instead of saying
        // that nothing matched.
        const bool nothingFound = m_viewModel.catalogResults().isEmpty() && !m_viewModel.isCatalogSearchRunning();
        if (nothingFound)
            page = m_catalogEmptyState;
        else
            page = grid ? static_cast<QWidget *>(m_catalogGrid) : m_catalogTable;
    } else if (m_viewModel.groups()->count() == 0) {
        page = m_copiesEmptyState;
    } else {
        page = grid ? static_cast<QWidget *>(m_copiesGrid) : m_copiesTable;
    }
    if (m_lists->currentWidget() != page)
        m_lists->setCurrentWidget(page);
}

void SetListView::updateCatalogEmptyState()
{
    //% "No Results"
    const QString title = qtTrId("catalog.noResults.title");
    //% "No catalog set matches “%1”."
    const QString description = qtTrId("catalog.noResults.description.").arg(m_viewModel.searchText());
    m_catalogEmptyState->setContent(u"magnifyingglass"_s, title, description);
}

void SetListView::updateLimitNotice()
{
    // Only a catalog list is ever cut; a search on its way keeps the notice of the list shown.
    const bool cut = m_viewModel.isCatalogList() && m_viewModel.isCatalogListCut();
    if (!cut) {
        m_limitNotice->hide();
        return;
    }
    const QLocale locale;
    //% "show all"
    const QString showAll = qtTrId("setList.limitNotice.showAll");
    //% "%1 of %2 sets — refine the search or %3"
    const QString text = qtTrId("setList.limitNotice.")
                             .arg(locale.toString(m_viewModel.catalogResults().size()),
                                  locale.toString(m_viewModel.catalogTotalCount()),
                                  u"<a href=\"showAll\">"_s + showAll.toHtmlEscaped() + u"</a>"_s);
    m_limitNotice->setText(text);
    m_limitNotice->show();
}

void SetListView::setSelectedBrickSet(const std::optional<ObjectID> &brickSet)
{
    m_selectedBrickSet = brickSet;
    reselectBrickSet();
}

void SetListView::setSelectedCatalogSet(const std::optional<QString> &setNum)
{
    m_selectedCatalogSet = setNum;
    reselectCatalogSet();
}

void SetListView::reselectBrickSet()
{
    const int row = m_selectedBrickSet ? m_viewModel.groups()->rowOf(*m_selectedBrickSet) : -1;
    const QModelIndex index = m_viewModel.groups()->index(row, SetListGroupModel::NameColumn);
    if (row >= 0 && selectedRow(*m_copySelection) == row)
        return;
    m_applyingSelection = true;
    if (index.isValid()) {
        m_copySelection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        m_copiesGrid->scrollTo(index);
        m_copiesTable->scrollTo(index);
    } else {
        m_copySelection->clear();
    }
    m_applyingSelection = false;
}

void SetListView::reselectCatalogSet()
{
    const int row = m_selectedCatalogSet ? m_viewModel.catalogModel()->rowOf(*m_selectedCatalogSet) : -1;
    const QModelIndex index = m_viewModel.catalogModel()->index(row, CatalogSetListModel::NameColumn);
    if (row >= 0 && selectedRow(*m_catalogSelection) == row)
        return;
    m_applyingSelection = true;
    if (index.isValid()) {
        m_catalogSelection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        m_catalogGrid->scrollTo(index);
        m_catalogTable->scrollTo(index);
    } else {
        m_catalogSelection->clear();
    }
    m_applyingSelection = false;
}

void SetListView::copySelectionChanged()
{
    if (m_applyingSelection)
        return;
    const int row = selectedRow(*m_copySelection);
    std::optional<ObjectID> chosen;
    if (row >= 0)
        chosen = m_viewModel.groups()->groupAt(row).copy->brickSet.objectID;
    m_selectedBrickSet = chosen;
    Q_EMIT brickSetSelected(chosen);
}

void SetListView::catalogSelectionChanged()
{
    if (m_applyingSelection)
        return;
    const int row = selectedRow(*m_catalogSelection);
    std::optional<CatalogSetResult> chosen;
    if (row >= 0)
        chosen = m_viewModel.catalogModel()->resultAt(row);
    m_selectedCatalogSet = chosen ? std::optional<QString>(chosen->setNum) : std::nullopt;
    Q_EMIT catalogSetSelected(chosen);
}
