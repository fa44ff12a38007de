// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QDateTime>
#include <QObject>

#include <optional>

class ManagedObjectContext;
class QUndoStack;

// What the user can take back in the collection: adding a copy from the catalog, moving a
// copy to the trash and restoring one. The screens make the change and save it, then record
// it here; Edit → Undo (Ctrl+Z) takes the latest back. Each record is announced with a
// sentence that names the set ("Moved 75192-1 to the trash") for the status bar.
//
// Deleting for good is not recorded: the trash is where second thoughts are had, and its
// confirmation is asked first.
class CollectionUndoStack : public QObject
{
    Q_OBJECT

public:
    explicit CollectionUndoStack(ManagedObjectContext &viewContext, QObject *parent = nullptr);
    ~CollectionUndoStack() override;

    QUndoStack *stack() const { return m_stack; }

    // `copy` was just added to the collection and saved.
    void recordAddedCopy(const ObjectID &copy);
    // `copy` was just moved to the trash and saved.
    void recordMovedToTrash(const ObjectID &copy);
    // `copy` was just taken out of the trash, where it had lain since `trashedDate`.
    void recordRestored(const ObjectID &copy, const std::optional<QDateTime> &trashedDate);

    // The sentence of the latest record that can still be undone; empty when none.
    QString lastActionText() const { return m_lastActionText; }

    // The set number of the copy as the sentences name it: its catalog set's number, or
    // "Unknown Set".
    QString copyName(const ObjectID &copy) const;

public Q_SLOTS:
    void undo();

Q_SIGNALS:
    // A change was recorded; `statusText` names it for the status bar.
    void actionRecorded(const QString &statusText);
    // The latest change was taken back (`statusText` names what was undone).
    void actionUndone(const QString &statusText);

private:
    ManagedObjectContext &m_viewContext;
    QUndoStack *m_stack;
    QString m_lastActionText;
};
