// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "Views/DestructiveConfirmation.h"
#include "Views/TrashRowDelegate.h"

#include <QWidget>

#include <optional>

class BrickSetListModel;
class CellPictureLoader;
class CollectionTrash;
class EmptyStateView;
class PersistentContainer;
class QAction;
class QItemSelectionModel;
class QLabel;
class QListView;
class QStackedWidget;
class QToolButton;

// The middle column for the trash: the copies moved to the trash, the latest first, each
// with its picture, name, number and the day it was trashed; or, with none, an empty
// state. A button in its bar (Ctrl+Shift+Backspace) empties the trash after the user
// confirms, deleting every copy in it with one save.
//
// The selected copy is the window's business, as in the set list: a click reports it
// through copySelected(), and the window tells the list what is selected. A selected copy
// that leaves the trash (restored, deleted) is reported as no selection.
class TrashListView : public QWidget
{
    Q_OBJECT

public:
    TrashListView(PersistentContainer &container, CollectionTrash &trash, QWidget *parent = nullptr);
    ~TrashListView() override;

    // Shows `copy` (or none) as selected, without reporting it back.
    void setSelectedCopy(const std::optional<ObjectID> &copy);
    std::optional<ObjectID> selectedCopy() const { return m_selectedCopy; }

    // How the user is asked before the trash is emptied; a dialog unless replaced.
    void setConfirmation(DestructiveConfirmation::Asker asker) { m_confirm = std::move(asker); }
    // The question for the trash as it is now.
    DestructiveConfirmation emptyTrashConfirmation() const;
    // Asks, and when the user agrees, clears the selection and deletes every copy in the
    // trash with one save.
    void emptyTrash();

    // The live list of trashed copies, in the order shown.
    BrickSetListModel *trashedSets() const { return m_trashedSets; }
    TrashRow rowAt(int row) const;

    QLabel *titleLabel() const { return m_title; }
    QAction *emptyTrashAction() const { return m_emptyTrashAction; }
    QToolButton *emptyTrashButton() const { return m_emptyTrashButton; }
    QListView *list() const { return m_list; }
    EmptyStateView *emptyState() const { return m_emptyState; }
    // The page on show: the list or the empty state.
    QWidget *currentPage() const;

Q_SIGNALS:
    // The user chose a copy, or none.
    void copySelected(const std::optional<ObjectID> &copy);

private:
    void listChanged();
    void selectionChanged();
    void reselect();

    CollectionTrash &m_trash;
    BrickSetListModel *m_trashedSets;
    CellPictureLoader *m_pictures;
    QLabel *m_title;
    QAction *m_emptyTrashAction;
    QToolButton *m_emptyTrashButton;
    QStackedWidget *m_pages;
    QListView *m_list;
    EmptyStateView *m_emptyState;
    QItemSelectionModel *m_selection = nullptr;
    DestructiveConfirmation::Asker m_confirm = &DestructiveConfirmation::askWithDialog;
    std::optional<ObjectID> m_selectedCopy;
    bool m_applyingSelection = false;
};
