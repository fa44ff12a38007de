// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/AddedCopyCommand.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"

AddedCopyCommand::AddedCopyCommand(ManagedObjectContext &viewContext, const ObjectID &copy, const QString &text)
    : QUndoCommand(text)
    , m_viewContext(viewContext)
    , m_copy(copy)
{
}

void AddedCopyCommand::undo()
{
    m_done = false;
    try {
        m_removed = m_viewContext.existingObject<BrickSet>(m_copy);
        if (!m_removed) {
            setObsolete(true); // deleted for good in the meantime
            return;
        }
        m_viewContext.deleteObject(m_copy);
        m_viewContext.save();
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Saving an undone add failed:" << error.description();
    }
}

void AddedCopyCommand::redo()
{
    if (std::exchange(m_done, true) || !m_removed)
        return;
    try {
        BrickSet again = *m_removed;
        again.objectID = ObjectID{EntityType::BrickSet, 0};
        if (again.catalogSet && !m_viewContext.existingObject<CatalogSet>(*again.catalogSet))
            again.catalogSet.reset();
        m_copy = m_viewContext.insert(again).objectID;
        m_viewContext.save();
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Saving a redone add failed:" << error.description();
    }
}
