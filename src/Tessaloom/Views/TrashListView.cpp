// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TrashListView.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "ViewModels/CollectionTrash.h"
#include "Views/CellPictureLoader.h"
#include "Views/EmptyStateView.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TrashListView::TrashListView(PersistentContainer &container, CollectionTrash &trash, QWidget *parent)
    : QWidget(parent)
    , m_trash(trash)
    , m_trashedSets(new BrickSetListModel(
          container, FetchRequest<BrickSet>(BrickSetQueries::trashed(), {{u"trashedDate"_s, false}}), this))
    , m_pictures(new CellPictureLoader(QSize(), 4 * 1024 * 1024, this))
    , m_title(new QLabel(this))
    , m_emptyTrashAction(new QAction(this))
    , m_emptyTrashButton(new QToolButton(this))
    , m_pages(new QStackedWidget(this))
    , m_list(new QListView(m_pages))
    , m_emptyState(new EmptyStateView(m_pages))
{
    setObjectName(u"trashListView"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);

    auto *bar = new QHBoxLayout;
    m_title->setObjectName(u"trashTitle"_s);
    //% "Trash"
    m_title->setText(qtTrId("trash.title"));
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    m_title->setFont(titleFont);
    bar->addWidget(m_title, 1);

    m_emptyTrashAction->setObjectName(u"emptyTrashAction"_s);
    m_emptyTrashAction->setIcon(SymbolIcon::icon(u"trash"_s));
    //% "Empty Trash"
    m_emptyTrashAction->setText(qtTrId("trash.empty.button"));
    m_emptyTrashAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backspace));
    // Window-wide while the trash is on show, so it works from the sidebar too; a hidden
    // page's shortcut does not fire.
    m_emptyTrashAction->setShortcutContext(Qt::WindowShortcut);
    addAction(m_emptyTrashAction);
    connect(m_emptyTrashAction, &QAction::triggered, this, &TrashListView::emptyTrash);
    m_emptyTrashButton->setObjectName(u"emptyTrashButton"_s);
    m_emptyTrashButton->setDefaultAction(m_emptyTrashAction);
    m_emptyTrashButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_emptyTrashButton->setAutoRaise(true);
    bar->addWidget(m_emptyTrashButton);
    layout->addLayout(bar);
    layout->addWidget(m_pages, 1);

    m_list->setObjectName(u"trashList"_s);
    m_list->setModel(m_trashedSets);
    m_list->setItemDelegate(new TrashRowDelegate(*m_trashedSets, *m_pictures, m_list));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformItemSizes(true);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAlternatingRowColors(true);
    m_selection = m_list->selectionModel();

    m_emptyState->setObjectName(u"trashEmptyState"_s);
    //% "Trash is Empty"
    m_emptyState->setContent(u"trash"_s, qtTrId("trash.empty"), QString());
    m_pages->addWidget(m_list);
    m_pages->addWidget(m_emptyState);

    connect(m_selection, &QItemSelectionModel::selectionChanged, this, &TrashListView::selectionChanged);
    connect(m_trashedSets, &BrickSetListModel::refetched, this, &TrashListView::listChanged);
    listChanged();
}

TrashListView::~TrashListView() = default;

QWidget *TrashListView::currentPage() const
{
    return m_pages->currentWidget();
}

TrashRow TrashListView::rowAt(int row) const
{
    return TrashRowDelegate::row(m_trashedSets->rowAt(row));
}

DestructiveConfirmation TrashListView::emptyTrashConfirmation() const
{
    const int count = m_trashedSets->count();
    DestructiveConfirmation confirmation;
    //% "Empty Trash?"
    confirmation.title = qtTrId("trash.empty.confirm");
    //% "The sets in the trash will be deleted permanently, with their parts checklists. This cannot be undone."
    confirmation.message = qtTrId("trash.empty.warning");
    //% "Delete %Ln Set(s)"
    confirmation.destructiveButtonText = qtTrId("trash.empty.deleteCount ", count);
    return confirmation;
}

void TrashListView::emptyTrash()
{
    if (m_trashedSets->count() == 0)
        return;
    if (!m_confirm(this, emptyTrashConfirmation()))
        return;
    // The selection goes first, so the detail never shows a copy that is being deleted.
    if (m_selectedCopy) {
        setSelectedCopy(std::nullopt);
        Q_EMIT copySelected(std::nullopt);
    }
    QList<ObjectID> copies;
    copies.reserve(m_trashedSets->count());
    for (const BrickSetWithCatalogSet &row : m_trashedSets->rows())
        copies.append(row.brickSet.objectID);
    m_trash.emptyTrash(copies);
}

void TrashListView::listChanged()
{
    const bool empty = m_trashedSets->count() == 0;
    m_emptyTrashAction->setEnabled(!empty);
    m_pages->setCurrentWidget(empty ? static_cast<QWidget *>(m_emptyState) : m_list);
    if (m_selectedCopy && m_trashedSets->rowOf(*m_selectedCopy) < 0) {
        // Restored or deleted, here or elsewhere: nothing of the trash is selected any more.
        m_selectedCopy.reset();
        reselect();
        Q_EMIT copySelected(std::nullopt);
        return;
    }
    reselect();
}

void TrashListView::setSelectedCopy(const std::optional<ObjectID> &copy)
{
    m_selectedCopy = copy;
    reselect();
}

void TrashListView::reselect()
{
    const int row = m_selectedCopy ? m_trashedSets->rowOf(*m_selectedCopy) : -1;
    const QModelIndex index = m_trashedSets->index(row, 0);
    const QModelIndexList selected = m_selection->selectedIndexes();
    if (row >= 0 && !selected.isEmpty() && selected.first().row() == row)
        return;
    m_applyingSelection = true;
    if (index.isValid()) {
        m_selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        m_list->scrollTo(index);
    } else {
        m_selection->clear();
    }
    m_applyingSelection = false;
}

void TrashListView::selectionChanged()
{
    if (m_applyingSelection)
        return;
    const QModelIndexList selected = m_selection->selectedIndexes();
    std::optional<ObjectID> chosen;
    if (!selected.isEmpty())
        chosen = m_trashedSets->rowAt(selected.first().row()).brickSet.objectID;
    // Rows removed above the selected one move it without changing what is selected.
    if (chosen && chosen == m_selectedCopy)
        return;
    m_selectedCopy = chosen;
    Q_EMIT copySelected(chosen);
}
