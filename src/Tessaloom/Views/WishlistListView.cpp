// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/WishlistListView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/WishlistListModel.h"
#include "Views/CatalogGridItemView.h"
#include "Views/CellPictureLoader.h"
#include "Views/EmptyStateView.h"
#include "Views/GridTablePicker.h"
#include "Views/SetGridCellPainter.h"
#include "Views/SetGridView.h"
#include "Views/SymbolIcon.h"
#include "Views/WishlistTableView.h"

#include <QAction>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
// As in the set list's grids: the scaled pictures of some ten screens of cells.
constexpr qsizetype gridPictureBytesKept = 16 * 1024 * 1024;

int selectedRow(const QItemSelectionModel &selection)
{
    const QModelIndexList selected = selection.selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}
} // namespace

WishlistListView::WishlistListView(ManagedObjectContext &viewContext, SetListViewModel &listViewModel, QWidget *parent)
    : QWidget(parent)
    , m_listViewModel(listViewModel)
    , m_items(new WishlistListModel(viewContext, this))
    , m_pictures(new CellPictureLoader(SetGridCellPainter::pictureSize(), gridPictureBytesKept, this))
    , m_title(new QLabel(this))
    , m_lists(new QStackedWidget(this))
    , m_grid(new SetGridView(m_lists))
    , m_table(new WishlistTableView(*m_items, m_lists))
    , m_emptyState(new EmptyStateView(m_lists))
    , m_cells(new CatalogGridItemView(*m_pictures, this))
{
    setObjectName(u"wishlistListView"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);
    buildBar();
    layout->addWidget(m_lists, 1);

    m_grid->setObjectName(u"wishlistGrid"_s);
    m_grid->setModel(m_items);
    m_grid->setModelColumn(WishlistListModel::NameColumn);
    m_grid->setItemDelegate(m_cells);
    m_table->setObjectName(u"wishlistTable"_s);
    // The grid and the table share their selection: switching keeps it.
    m_selection = m_grid->selectionModel();
    m_table->setSelectionModel(m_selection);

    m_emptyState->setObjectName(u"wishlistEmptyState"_s);
    //% "No Wishlist Items"
    const QString emptyTitle = qtTrId("wishlist.empty.title");
    //% "Sets you add to your wishlist from the catalog appear here."
    const QString emptyDescription = qtTrId("wishlist.empty.description");
    m_emptyState->setContent(u"heart"_s, emptyTitle, emptyDescription);
    for (QWidget *page : {static_cast<QWidget *>(m_grid), static_cast<QWidget *>(m_table),
                          static_cast<QWidget *>(m_emptyState)})
        m_lists->addWidget(page);
    buildRemoveAction();

    connect(m_selection, &QItemSelectionModel::selectionChanged, this, &WishlistListView::selectionChanged);
    connect(m_items, &WishlistListModel::refetched, this, [this] {
        reselect();
        showCurrentList();
    });
    connect(&m_listViewModel, &SetListViewModel::isGridViewChanged, this, &WishlistListView::showCurrentList);
    showCurrentList();
}

WishlistListView::~WishlistListView() = default;

void WishlistListView::buildBar()
{
    auto *bar = new QHBoxLayout;
    bar->setSpacing(8);
    m_title->setObjectName(u"wishlistTitle"_s);
    //% "Wishlist"
    m_title->setText(qtTrId("wishlist.title"));
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    m_title->setFont(titleFont);
    bar->addWidget(m_title, 1);

    // The same two exclusive buttons as the set list's picker, on the same setting.
    //% "View"
    auto *picker = new GridTablePicker(m_listViewModel, qtTrId("wishlist.viewPicker"), this);
    picker->setObjectName(u"wishlistViewPicker"_s);
    m_picker = picker;
    m_gridAction = picker->gridAction();
    m_tableAction = picker->tableAction();
    m_gridAction->setObjectName(u"wishlistGridAction"_s);
    m_tableAction->setObjectName(u"wishlistTableAction"_s);
    bar->addWidget(picker);
    static_cast<QVBoxLayout *>(layout())->addLayout(bar);
}

void WishlistListView::buildRemoveAction()
{
    //% "Remove from Wishlist"
    m_removeAction = new QAction(SymbolIcon::icon(u"minus.circle"_s), qtTrId("wishlist.removeFromWishlist"), this);
    m_removeAction->setObjectName(u"removeFromWishlistAction"_s);
    m_removeAction->setShortcuts({QKeySequence(QKeySequence::Delete), QKeySequence(Qt::Key_Backspace)});
    // Only while the grid or the table has the keyboard.
    m_removeAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(m_removeAction, &QAction::triggered, this, [this] {
        const int row = selectedRow(*m_selection);
        if (row >= 0)
            removeFromWishlist(row);
    });
    for (QAbstractItemView *list : {static_cast<QAbstractItemView *>(m_grid), static_cast<QAbstractItemView *>(m_table)}) {
        list->addAction(m_removeAction);
        list->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(list, &QWidget::customContextMenuRequested, this,
                [this, list](const QPoint &position) { showContextMenu(list, position); });
    }
}

QMenu *WishlistListView::itemContextMenu(int row)
{
    if (row < 0 || row >= m_items->count())
        return nullptr;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *remove = menu->addAction(m_removeAction->icon(), m_removeAction->text());
    remove->setObjectName(u"removeFromWishlistMenuAction"_s);
    remove->setShortcut(m_removeAction->shortcut());
    const ObjectID item = m_items->itemAt(row).objectID;
    connect(remove, &QAction::triggered, this, [this, item] {
        // The list may have changed while the menu was open: find the entry again.
        const int current = m_items->rowOf(item);
        if (current >= 0)
            removeFromWishlist(current);
    });
    return menu;
}

void WishlistListView::showContextMenu(QAbstractItemView *list, const QPoint &position)
{
    const QModelIndex index = list->indexAt(position);
    if (!index.isValid())
        return;
    if (QMenu *menu = itemContextMenu(index.row()))
        menu->popup(list->viewport()->mapToGlobal(position));
}

void WishlistListView::removeFromWishlist(int row)
{
    if (row < 0 || row >= m_items->count())
        return;
    const WishlistItem item = m_items->itemAt(row);
    const QString setNumber = m_items->resultAt(row).setNum;
    // The detail goes before its entry, so it never shows a set that is being removed.
    if (m_selectedSetNumber && *m_selectedSetNumber == setNumber) {
        setSelectedSetNumber(std::nullopt);
        Q_EMIT catalogSetSelected(std::nullopt);
    }
    m_items->removeItem(item.objectID);
}

QWidget *WishlistListView::currentList() const
{
    return m_lists->currentWidget();
}

void WishlistListView::showCurrentList()
{
    QWidget *page = m_emptyState;
    if (m_items->count() > 0)
        page = m_listViewModel.isGridView() ? static_cast<QWidget *>(m_grid) : m_table;
    if (m_lists->currentWidget() != page) {
        // The keyboard moves along with the page, so Delete keeps working after a switch.
        const bool hadFocus = m_lists->currentWidget() && m_lists->currentWidget()->hasFocus();
        m_lists->setCurrentWidget(page);
        if (hadFocus)
            page->setFocus(Qt::OtherFocusReason);
    }
}

void WishlistListView::setSelectedSetNumber(const std::optional<QString> &setNumber)
{
    m_selectedSetNumber = setNumber;
    reselect();
}

void WishlistListView::reselect()
{
    const int row = m_selectedSetNumber ? m_items->rowOf(*m_selectedSetNumber) : -1;
    if (row >= 0 && selectedRow(*m_selection) == row)
        return;
    const QModelIndex index = m_items->index(row, WishlistListModel::NameColumn);
    m_applyingSelection = true;
    if (index.isValid()) {
        m_selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        m_grid->scrollTo(index);
        m_table->scrollTo(index);
    } else {
        m_selection->clear();
    }
    m_applyingSelection = false;
}

void WishlistListView::selectionChanged()
{
    if (m_applyingSelection)
        return;
    const int row = selectedRow(*m_selection);
    std::optional<CatalogSetResult> chosen;
    if (row >= 0)
        chosen = m_items->resultAt(row);
    const std::optional<QString> setNumber = chosen ? std::optional<QString>(chosen->setNum) : std::nullopt;
    // Rows removed above the selected one move it without changing what is selected.
    if (setNumber && setNumber == m_selectedSetNumber)
        return;
    m_selectedSetNumber = setNumber;
    Q_EMIT catalogSetSelected(chosen);
}
