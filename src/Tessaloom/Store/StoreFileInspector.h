// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace RebrickableKit {
class SQLiteConnection;
}

// Tells what lies at the collection store's path before anything is written there, so
// that a file that is not ours (another program's database, a catalog, a damaged copy)
// is refused and stays exactly as it was: not a byte changed, no side file left behind.
class StoreFileInspector
{
public:
    enum class Identity {
        newStore,     // no file, an empty file, or a database with nothing in it
        ours,         // carries our application id
        oursUnmarked, // written before stores carried the id: our nine tables, a version we know
    };

    // Looks at the file read-only (its header with plain file reads, then SQLite in its
    // immutable mode, which takes no lock and creates no journal, WAL or shared-memory
    // file). Throws StoreError: pathIsFolder, unreadable, notADatabase, damaged,
    // foreignFile or newerVersion, with the path in the detail.
    static Identity inspect(const QString &path);

    // The same judgement on an open connection, by reading only: the application id, the
    // user_version and the names of the tables. Throws StoreError like inspect().
    static Identity identify(RebrickableKit::SQLiteConnection &connection, const QString &path);
};
