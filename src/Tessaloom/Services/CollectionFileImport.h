// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CSVExportImportService.h"

#include <QCoroTask>
#include <QString>
#include <QStringView>

class ManagedObjectContext;
class PersistentContainer;

// The one import command for every file a collector brings: the application's own
// collection CSV, and the set lists that other collection tools export, told apart by how
// the file begins.
namespace CollectionFileImport {

enum class Format {
    collectionCSV,      // this application's export; anything not recognised as another
    rebrickableSetList, // "Set Number,Quantity,Includes Spares,Inventory Ver"
    brickLinkInventory, // <INVENTORY><ITEM>… XML
};

Format formatOf(QStringView text);

// Imports `text` in its format into `context` and saves once (see
// CSVExportImportService::importCSV() and ForeignCollectionImport::run()). Call it inside
// a perform() block of the context.
CSVExportImportService::ImportResult importText(QStringView text, ManagedObjectContext &context,
                                                const CSVExportImportService::ImportProgress &progress = {});

// The same as the main window runs it, off the main thread (see BackgroundImport).
QCoro::Task<CSVExportImportService::ImportResult> importInBackground(
    PersistentContainer &container, QString text, CSVExportImportService::ImportProgress progress = {});

// Reads the file at `path` (see CSVDocument::read(), whose FileError it throws) and imports
// it, both off the main thread, so that a large file never stalls the window.
QCoro::Task<CSVExportImportService::ImportResult> importFileInBackground(
    PersistentContainer &container, QString path, CSVExportImportService::ImportProgress progress = {});

} // namespace CollectionFileImport
