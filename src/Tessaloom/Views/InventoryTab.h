// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/ManagedObjectContext.h"
#include "Store/ObjectID.h"

#include <QList>
#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <optional>

class CollectionTrash;
class QLabel;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTimer;
class QVBoxLayout;
class SetDetailViewModel;

// The second tab of an owned copy's detail: every copy of the set in the collection (not
// in the trash), oldest first, each with its condition, price paid, acquisition, build
// state and parts progress; a button that adds a copy; the way to a copy's parts
// checklist; and the editor of the selected copy. The list follows the store: it is read
// again after every commit that touches copies, their part counts or catalog sets.
//
// The editor is made by the owner through a factory, once the tab has shown for a moment
// (editorReady), so that switching to the tab is not held up by building a form.
class InventoryTab : public QWidget
{
    Q_OBJECT

public:
    // Makes the editor of one copy, parented to `parent`.
    using EditorFactory = std::function<QWidget *(const ObjectID &copy, QWidget *parent)>;
    // How long after the tab appears the editor is built.
    static constexpr int editorDelayMilliseconds = 50;

    // What one row of the list shows.
    struct RowFacts
    {
        ObjectID copy;
        QString condition;
        QString pricePaid;
        QString acquisition;
        QString buildStatus;
        bool isDisposed = false;
        ManagedObjectContext::PartsCount parts;
        bool allPartsComplete() const { return parts.entries > 0 && parts.owned >= parts.required; }
        // "12/30 parts · 40%", "All parts complete", or empty for a copy without counts.
        QString partsText() const;
    };

    InventoryTab(SetDetailViewModel &viewModel, QWidget *parent = nullptr);
    ~InventoryTab() override;

    void setEditorFactory(EditorFactory factory);
    // The trash the context menu moves copies to; one of its own unless set.
    void setCollectionTrash(CollectionTrash *trash);

    // The copies listed, oldest first.
    QList<BrickSet> activeInstances() const { return m_activeInstances; }
    QList<RowFacts> rows() const { return m_rows; }
    std::optional<ObjectID> selectedID() const { return m_selectedID; }
    void setSelectedID(const std::optional<ObjectID> &copy);
    // The listed copy whose id is selectedID, if any.
    std::optional<BrickSet> selectedCopy() const;
    bool isEditorReady() const { return m_editorReady; }
    // The editor on show for the selected copy, if any.
    QWidget *editor() const { return m_editor; }

    // Makes a new copy of the set and selects it; a failed save is dropped.
    void addCopy();
    void moveToTrash(const ObjectID &copy);
    // Asks for the checklist window of the selected copy.
    void openPartsChecklist();

    // ---- Parts, for tests ----
    QLabel *ownCountLabel() const { return m_ownCount; }
    QPushButton *addCopyButton() const { return m_addCopyButton; }
    QPushButton *partsChecklistButton() const { return m_partsChecklistButton; }
    QListWidget *list() const { return m_list; }
    QWidget *selectCopyPlaceholder() const { return m_selectCopy; }
    // The menu of a row, as its context menu shows it, with `owner` owning the actions.
    QList<QAction *> contextActions(const ObjectID &copy, QObject *owner);

Q_SIGNALS:
    // Open the parts checklist window for this URI of a copy's ObjectID.
    void partsChecklistRequested(const QUrl &copyURI);
    void selectedIDChanged();
    void editorReadyChanged(bool ready);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refetch();
    void rebuildList();
    void showEditor();
    void objectsChanged(const StoreChanges &changes);

    SetDetailViewModel &m_viewModel;
    EditorFactory m_editorFactory;
    QPointer<CollectionTrash> m_trash;
    CollectionTrash *m_ownTrash = nullptr;
    QList<BrickSet> m_activeInstances;
    QList<RowFacts> m_rows;
    std::optional<ObjectID> m_selectedID;
    std::optional<ObjectID> m_editorCopy; // the copy m_editor edits
    bool m_editorReady = false;

    QLabel *m_ownCount;
    QPushButton *m_addCopyButton;
    QPushButton *m_partsChecklistButton;
    QListWidget *m_list;
    QStackedWidget *m_editorArea;
    QWidget *m_selectCopy;
    QWidget *m_editorHolder;
    QVBoxLayout *m_editorLayout;
    QPointer<QWidget> m_editor;
    QTimer *m_editorDelay;
};
