// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CopyTrashStateCommand.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"

CopyTrashStateCommand::CopyTrashStateCommand(ManagedObjectContext &viewContext, const ObjectID &copy,
                                             const TrashState &before, const TrashState &after, const QString &text)
    : QUndoCommand(text)
    , m_viewContext(viewContext)
    , m_copy(copy)
    , m_before(before)
    , m_after(after)
{
}

void CopyTrashStateCommand::undo()
{
    apply(m_before);
    m_done = false;
}

void CopyTrashStateCommand::redo()
{
    if (std::exchange(m_done, true))
        return;
    apply(m_after);
}

void CopyTrashStateCommand::apply(const TrashState &state)
{
    try {
        std::optional<BrickSet> copy = m_viewContext.existingObject<BrickSet>(m_copy);
        if (!copy) {
            setObsolete(true);
            return;
        }
        copy->isTrashed = state.isTrashed;
        copy->trashedDate = state.trashedDate;
        m_viewContext.update(*copy);
        m_viewContext.save();
    } catch (const StoreError &error) {
        // As every save of the collection's screens: the change stays in the context and
        // goes out with the next save.
        qCWarning(lcPersistence) << "Saving an undone trash change failed:" << error.description();
    }
}
