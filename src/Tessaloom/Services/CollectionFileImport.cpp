// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionFileImport.h"

#include "BrickLinkInventoryXML.h"
#include "RebrickableSetListFormat.h"
#include "Services/BackgroundImport.h"
#include "Services/CSVDocument.h"
#include "Services/ForeignCollectionImport.h"

using CSVExportImportService::ImportProgress;
using CSVExportImportService::ImportResult;

namespace CollectionFileImport {

Format formatOf(QStringView text)
{
    if (BrickLinkInventoryXML::recognises(text))
        return Format::brickLinkInventory;
    if (RebrickableSetListFormat::recognises(text))
        return Format::rebrickableSetList;
    return Format::collectionCSV;
}

ImportResult importText(QStringView text, ManagedObjectContext &context, const ImportProgress &progress)
{
    switch (formatOf(text)) {
    case Format::brickLinkInventory:
        return ForeignCollectionImport::run(BrickLinkInventoryXML::read(text), context, progress);
    case Format::rebrickableSetList:
        return ForeignCollectionImport::run(RebrickableSetListFormat::read(text), context, progress);
    case Format::collectionCSV:
        break;
    }
    return CSVExportImportService::importCSV(text, context, progress);
}

QCoro::Task<ImportResult> importInBackground(PersistentContainer &container, QString text, ImportProgress progress)
{
    return BackgroundImport::run(
        container,
        [text = std::move(text)](ManagedObjectContext &store, const ImportProgress &relay) {
            return importText(text, store, relay);
        },
        std::move(progress));
}

QCoro::Task<ImportResult> importFileInBackground(PersistentContainer &container, QString path,
                                                 ImportProgress progress)
{
    return BackgroundImport::run(
        container,
        [path = std::move(path)](ManagedObjectContext &store, const ImportProgress &relay) {
            return importText(CSVDocument::read(path).csv(), store, relay);
        },
        std::move(progress));
}

} // namespace CollectionFileImport
