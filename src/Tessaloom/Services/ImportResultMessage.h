// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CSVExportImportService.h"

#include <QString>

// The texts of the alerts that end an import: the message that sums up a finished import,
// and the titles and words around it. The row errors themselves are never shown, only
// their number.
class ImportResultMessage
{
public:
    // Up to three parts, in this order and each only when its number is positive: the
    // copies and wishlist rows added, the copies updated, the rows skipped; joined by ", "
    // and closed by ".": "3 set(s) added, 1 row(s) skipped.". With no part at all, the
    // text that says nothing changed.
    static QString text(const CSVExportImportService::ImportResult &result);

    static QString completeTitle();
    static QString failedTitle();
    static QString okButton();
    // Why an import stops before reading: the chosen file could not be opened for reading.
    static QString fileAccessError();
};
