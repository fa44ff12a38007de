// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Copies a collection store into a new file with SQLite's online backup API, the way a
// backup is taken while the program runs: from a read connection of its own, inside one
// read transaction, so that the copy is the store as one commit left it even while a
// background context writes (in WAL mode the writer never waits for this reader, and
// the reader never sees half a transaction). The copy is made in steps of a few hundred
// pages and ends as a plain file with a rollback journal, readable without side files.
//
// Synchronous: run it on a worker thread.
class StoreSnapshotCopier
{
public:
    enum class Source {
        liveStore,   // the store the program has open: read with the usual locks
        frozenFile,  // a backup nobody writes: read as immutable, no lock, no side file
    };

    // Pages copied per step: 1 MB with 4 KB pages.
    static constexpr int pagesPerStep = 256;

    // Writes the copy to `destinationPath`, which must not exist. On failure the
    // destination and its side files are removed and CollectionBackupError is thrown:
    // storeUnreadable for the source, writeFailed for the destination. The source is
    // only read.
    static void copy(const QString &sourcePath, Source source, const QString &destinationPath);
};
