// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BuildReport.h"

#include <QString>

#include <functional>
#include <stop_token>

namespace RebrickableKit {

// Builds the catalog database from the twelve unpacked dumps, always from nothing, in one
// pass, with durability switched off. Until build() returns the file is unusable, so
// callers build at a temporary name and move the result into place.
class RebrickableDatabaseBuilder
{
public:
    struct BuildPhase {
        enum class Kind {
            importing,       // before each table, and once more at the end with "" and 1.0
            complete,        // the last message
            creatingIndexes, // before the indexes and the full-text table
            vacuuming,       // before VACUUM
        };

        Kind kind = Kind::importing;
        QString tableName;   // importing
        double progress = 0; // importing: share of the expected rows already imported
        qint64 fileSize = 0; // complete
        double duration = 0; // complete, in seconds

        static BuildPhase importing(const QString &tableName, double progress);
        static BuildPhase complete(qint64 fileSize, double duration);
        static BuildPhase creatingIndexes();
        static BuildPhase vacuuming();

        friend bool operator==(const BuildPhase &, const BuildPhase &) = default;
    };

    using ProgressHandler = std::function<void(const BuildPhase &phase)>;

    // Synchronous, on the caller's thread; progress is called on that thread too. Throws
    // SQLiteError, CSVFileError, and CancellationError when a stop was requested: that is
    // looked at before each table and before the indexes, never in the middle of a step.
    // On an error nothing is cleaned up: the file at outputPath is the caller's to remove.
    //
    // Rows that a table refuses never make the build fail; they are passed over. What
    // became of each table's rows comes back in the report, and each table that isn't
    // clean (see TableImportReport) gets one warning line in the log, so that a damaged
    // dump doesn't go unnoticed. Whether to accept such a catalog is the caller's choice.
    static BuildReport build(const QString &csvDirectory, const QString &outputPath,
                             const ProgressHandler &progress = {}, std::stop_token stopToken = {});

    // The same build without the row accounting and without its warnings; the report has
    // no tables. Only there to measure what the accounting costs.
    static void buildWithoutRowAccounting(const QString &csvDirectory, const QString &outputPath,
                                          const ProgressHandler &progress = {}, std::stop_token stopToken = {});

private:
    static BuildReport run(const QString &csvDirectory, const QString &outputPath, const ProgressHandler &progress,
                           const std::stop_token &stopToken, bool countRows);
};

} // namespace RebrickableKit
