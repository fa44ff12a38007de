// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QDateTime>
#include <QUndoCommand>

#include <optional>

class ManagedObjectContext;

// The undo step of moving a copy to the trash or taking it back from there: it puts the
// copy's trash flag and date back as they were before, and a redo puts them as they were
// after. The step is pushed once the change is made and saved, so its first redo, which
// QUndoStack runs on push, does nothing.
//
// A copy that has gone from the store since (deleted for good) makes the step obsolete;
// the stack then drops it.
class CopyTrashStateCommand : public QUndoCommand
{
public:
    struct TrashState
    {
        bool isTrashed = false;
        std::optional<QDateTime> trashedDate;
    };

    CopyTrashStateCommand(ManagedObjectContext &viewContext, const ObjectID &copy, const TrashState &before,
                          const TrashState &after, const QString &text);

    ObjectID copy() const { return m_copy; }
    void undo() override;
    void redo() override;

private:
    void apply(const TrashState &state);

    ManagedObjectContext &m_viewContext;
    ObjectID m_copy;
    TrashState m_before;
    TrashState m_after;
    bool m_done = true; // the change was made before the step was pushed
};
