// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/ObjectID.h"

#include <QUndoCommand>

#include <optional>

class ManagedObjectContext;

// The undo step of adding a copy to the collection: undo deletes that copy and nothing
// else (its catalog set, prices and the wishlist stay); redo adds a copy with the same
// fields again, which gets an identifier of its own. The step is pushed once the copy is
// saved, so its first redo, which QUndoStack runs on push, does nothing.
class AddedCopyCommand : public QUndoCommand
{
public:
    AddedCopyCommand(ManagedObjectContext &viewContext, const ObjectID &copy, const QString &text);

    // The copy this step stands for now: the added one, or the one a redo made.
    ObjectID copy() const { return m_copy; }
    void undo() override;
    void redo() override;

private:
    ManagedObjectContext &m_viewContext;
    ObjectID m_copy;
    std::optional<BrickSet> m_removed; // the copy as it was when undone
    bool m_done = true;
};
