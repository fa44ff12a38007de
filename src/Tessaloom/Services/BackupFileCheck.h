// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Decides whether a file may be brought in as the collection, before anything of the live
// store is touched: it must be a collection store (the same judgement as at start-up, see
// StoreFileInspector), of a version this program knows, and whole by SQLite's own
// integrity check. The file is only read, as immutable: no lock, no side file.
//
// Synchronous: run it on a worker thread.
class BackupFileCheck
{
public:
    struct Result
    {
        int schemaVersion = 0;
        // Carries our application id and the latest schema version: it can be brought in
        // as it is. Otherwise a copy of it is migrated first, as the store is at start-up.
        bool isCurrent = false;
    };

    // Throws CollectionBackupError: notABackup, damaged, foreignFile or newerVersion, with
    // the path and the reason in the detail.
    static Result check(const QString &path);
};
