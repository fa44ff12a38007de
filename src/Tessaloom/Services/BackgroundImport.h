// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CSVExportImportService.h"

#include <QCoroTask>

#include <functional>

class ManagedObjectContext;
class PersistentContainer;

// Runs an import the way the main window runs every import: on a new background context
// named "backgroundContext" with the property-by-property merge policy, off the main
// thread, with its progress reports carried to the main thread.
class BackgroundImport
{
public:
    // The import itself, run inside the context's perform() block on its worker thread.
    using Work = std::function<CSVExportImportService::ImportResult(
        ManagedObjectContext &context, const CSVExportImportService::ImportProgress &progress)>;

    // Runs `work` and gives its result, or throws what it threw. `progress`, when given, is
    // called on the main thread. The container must outlive the task.
    static QCoro::Task<CSVExportImportService::ImportResult> run(PersistentContainer &container, Work work,
                                                                 CSVExportImportService::ImportProgress progress);
};
