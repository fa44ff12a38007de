// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ManagedObjectContext.h"
#include "Views/DestructiveConfirmation.h"

#include <QWidget>

#include <optional>

class CachedAsyncImage;
class CollectionTrash;
class QAction;
class QFormLayout;
class QLabel;
class QPushButton;
struct StoreChanges;

// The detail column for a copy in the trash: its picture, name, number, the day it was
// trashed, its condition and the price paid, with the two ways out of the trash: back to
// the collection (Ctrl+R), or deleted for good after the user confirms (Ctrl+Backspace).
// It follows changes of the copy made elsewhere; a copy that is gone leaves it blank.
class TrashDetailView : public QWidget
{
    Q_OBJECT

public:
    TrashDetailView(ManagedObjectContext &viewContext, CollectionTrash &trash, QWidget *parent = nullptr);
    ~TrashDetailView() override;

    // The copy shown, or none.
    void setBrickSet(const std::optional<ObjectID> &brickSet);
    std::optional<ObjectID> brickSet() const { return m_brickSet; }

    // How the user is asked before a permanent deletion; a dialog unless replaced.
    void setConfirmation(DestructiveConfirmation::Asker asker) { m_confirm = std::move(asker); }
    DestructiveConfirmation deleteConfirmation() const;

    // Takes the copy shown out of the trash.
    void restore();
    // Asks, and when the user agrees, deletes the copy shown from the store.
    void deletePermanently();

    QLabel *titleLabel() const { return m_title; }
    CachedAsyncImage *picture() const { return m_picture; }
    QString name() const;
    QString setNumber() const;
    QString trashedText() const;
    // The label of each further fact shown, with its value, in order.
    QList<std::pair<QString, QString>> facts() const { return m_facts; }
    QPushButton *restoreButton() const { return m_restoreButton; }
    QPushButton *deleteButton() const { return m_deleteButton; }
    QAction *restoreAction() const { return m_restoreAction; }
    QAction *deletePermanentlyAction() const { return m_deleteAction; }

private:
    void reload();
    void objectsChanged(const StoreChanges &changes);
    void showCopy(const std::optional<BrickSetWithCatalogSet> &copy);

    ManagedObjectContext &m_viewContext;
    CollectionTrash &m_trash;
    std::optional<ObjectID> m_brickSet;
    std::optional<BrickSetWithCatalogSet> m_copy;
    QLabel *m_title;
    CachedAsyncImage *m_picture;
    QLabel *m_name;
    QLabel *m_setNumber;
    QLabel *m_trashed;
    QWidget *m_factsBox;
    QFormLayout *m_factsLayout;
    QList<std::pair<QString, QString>> m_facts;
    QAction *m_restoreAction;
    QAction *m_deleteAction;
    QPushButton *m_restoreButton;
    QPushButton *m_deleteButton;
    DestructiveConfirmation::Asker m_confirm = &DestructiveConfirmation::askWithDialog;
};
