// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CSVExportImportService.h"

#include <QStringView>

class ManagedObjectContext;

// The row-by-row work behind CSVExportImportService::importCSV(): how a row finds or makes
// its catalog set, copy or wishlist item, what it overwrites and what it keeps, and the one
// save at the end. Kept apart from the service's export, which shares nothing with it but
// the column names.
class CollectionCSVImport
{
public:
    // See CSVExportImportService::importCSV().
    static CSVExportImportService::ImportResult run(QStringView text, ManagedObjectContext &context,
                                                    const CSVExportImportService::ImportProgress &progress);
};
