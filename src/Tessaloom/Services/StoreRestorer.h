// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/StoreChanges.h"

#include <QString>

#include <array>

class PersistentContainer;

// Brings a checked backup into the open collection store in place, while the program runs:
// SQLite's backup API in the other direction, from the backup file into the live store's
// database, in one step, which is one write transaction of the store: it commits whole or,
// failing, changes nothing. The other connections stay open; SQLite notices the new schema
// cookie and prepares their statements again. Then one change notice names every object
// that came, went or may have changed, so that every live list and screen reloads.
class StoreRestorer
{
public:
    struct Outcome
    {
        StoreChanges changes;
        std::array<qint64, 9> largestKeys{}; // per entity, after the restore
    };

    // On a worker thread: waits for the store's write turn, so that no context of this
    // process is in the middle of a save, and copies `sourcePath` (a file nobody writes,
    // with the latest schema) over the store. Throws CollectionBackupError::restoreFailed.
    static Outcome bringIn(PersistentContainer &container, const QString &sourcePath);

    // On the main thread, after bringIn(): new keys continue above the restored rows, the
    // view context forgets what it read of the old rows, and the notice goes out.
    static void announce(PersistentContainer &container, const Outcome &outcome);
};
