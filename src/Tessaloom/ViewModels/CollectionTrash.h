// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QDateTime>
#include <QList>
#include <QObject>

class ManagedObjectContext;

// How copies leave the collection, in two stages, on the view context. Moving to the trash
// only sets a flag (and the day it was set), so it can be undone; restoring clears both.
// Only deleting from the trash removes the copy from the store, and with it what the store's
// delete rules take along (its part inventory entries) and nothing else: the catalog set,
// its inventory lines, cached prices and instruction links, and every wishlist entry stay,
// so adding the set again finds them.
//
// A save that fails is dropped without a message: the change stays pending in the context
// and goes out with the next save. Each operation announces what it did afterwards, so the
// window can name it in the status bar and offer to undo a move to the trash.
class CollectionTrash : public QObject
{
    Q_OBJECT

public:
    explicit CollectionTrash(ManagedObjectContext &viewContext, QObject *parent = nullptr);

    ManagedObjectContext &viewContext() const { return m_viewContext; }

    // Marks the copy trashed as of now and saves. A copy already in the trash keeps its date.
    void moveToTrash(const ObjectID &brickSet);
    // Takes the copy out of the trash (no trashed date any more) and saves; nothing else
    // of the copy changes, its date added included.
    void restore(const ObjectID &brickSet);
    // Deletes the copy from the store and saves.
    void deletePermanently(const ObjectID &brickSet);
    // Deletes every copy of `brickSets` and then saves once.
    void emptyTrash(const QList<ObjectID> &brickSets);

Q_SIGNALS:
    void copyMovedToTrash(const ObjectID &brickSet);
    // `trashedDate` is when the copy had been moved to the trash, for an undo to put back.
    void copyRestored(const ObjectID &brickSet, const std::optional<QDateTime> &trashedDate);
    // After a permanent deletion of one copy or the emptying of the trash.
    void copiesDeleted(int count);

private:
    // Whether the flag changed; `previousDate` takes the trashed date the copy had.
    bool setTrashed(const ObjectID &brickSet, bool trashed, std::optional<QDateTime> *previousDate = nullptr);
    void save();

    ManagedObjectContext &m_viewContext;
};
