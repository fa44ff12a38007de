// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CollectionUndoStack.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"
#include "ViewModels/AddedCopyCommand.h"
#include "ViewModels/CopyTrashStateCommand.h"

#include <QUndoStack>

using namespace Qt::StringLiterals;

namespace {
// Enough to take back a run of changes; older steps are let go.
constexpr int undoLimit = 50;
} // namespace

CollectionUndoStack::CollectionUndoStack(ManagedObjectContext &viewContext, QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
    , m_stack(new QUndoStack(this))
{
    m_stack->setUndoLimit(undoLimit);
}

CollectionUndoStack::~CollectionUndoStack() = default;

QString CollectionUndoStack::copyName(const ObjectID &copy) const
{
    try {
        const std::optional<BrickSet> brickSet = m_viewContext.existingObject<BrickSet>(copy);
        if (brickSet && brickSet->catalogSet) {
            const std::optional<CatalogSet> set = m_viewContext.existingObject<CatalogSet>(*brickSet->catalogSet);
            if (set && set->setNumber && !set->setNumber->isEmpty())
                return *set->setNumber;
        }
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading a copy for its undo text failed:" << error.description();
    }
    return u"Unknown Set"_s;
}

void CollectionUndoStack::recordAddedCopy(const ObjectID &copy)
{
    const QString name = copyName(copy);
    //% "Add to Collection"
    m_stack->push(new AddedCopyCommand(m_viewContext, copy, qtTrId("undo.action.addToCollection")));
    //% "Added %1 to the collection"
    m_lastActionText = qtTrId("undo.status.addedToCollection.").arg(name);
    Q_EMIT actionRecorded(m_lastActionText);
}

void CollectionUndoStack::recordMovedToTrash(const ObjectID &copy)
{
    const QString name = copyName(copy);
    std::optional<QDateTime> trashedDate;
    try {
        if (const std::optional<BrickSet> brickSet = m_viewContext.existingObject<BrickSet>(copy))
            trashedDate = brickSet->trashedDate;
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading a trashed copy failed:" << error.description();
    }
    //% "Move to Trash"
    const QString stepName = qtTrId("undo.action.moveToTrash");
    m_stack->push(new CopyTrashStateCommand(m_viewContext, copy, {false, std::nullopt}, {true, trashedDate}, stepName));
    //% "Moved %1 to the trash"
    m_lastActionText = qtTrId("undo.status.movedToTrash.").arg(name);
    Q_EMIT actionRecorded(m_lastActionText);
}

void CollectionUndoStack::recordRestored(const ObjectID &copy, const std::optional<QDateTime> &trashedDate)
{
    const QString name = copyName(copy);
    //% "Restore from Trash"
    const QString stepName = qtTrId("undo.action.restore");
    m_stack->push(new CopyTrashStateCommand(m_viewContext, copy, {true, trashedDate}, {false, std::nullopt}, stepName));
    //% "Restored %1 from the trash"
    m_lastActionText = qtTrId("undo.status.restored.").arg(name);
    Q_EMIT actionRecorded(m_lastActionText);
}

void CollectionUndoStack::undo()
{
    if (!m_stack->canUndo())
        return;
    const QString undone = m_lastActionText;
    m_stack->undo();
    m_lastActionText.clear();
    Q_EMIT actionUndone(undone);
}
