// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ImportedSetList.h"
#include "Services/CSVExportImportService.h"

class ManagedObjectContext;

// Brings a set list exported by another collection tool into the store: each entry becomes
// as many owned copies of its set as it counts, each with a new id, the time of the import
// as its date added and "unknown" as its acquisition, the way adding a set from the catalog
// makes one. The set's facts come from the local catalog where it knows the number; a
// number it does not know still gets its copies, under a set that holds only the number.
//
// Like the collection CSV import, everything is saved once, after the last entry, and a
// failed save keeps nothing.
class ForeignCollectionImport
{
public:
    // Adds the copies of `list` to `context` and saves. The result counts the copies added
    // as created and carries the list's skipped rows as its errors, followed by the entries
    // whose number holds a line break ("Line 7: invalid set number"), which add nothing. Throws ImportError
    // (unreadableSetList) when the list could not be read as a whole, and the store's
    // StoreError when the save fails; then nothing is kept and the context holds no pending
    // change. `progress` hears of the entries handled every 500 entries and at the end.
    // Call it inside a perform() block of the context.
    static CSVExportImportService::ImportResult run(const ImportedSetList &list, ManagedObjectContext &context,
                                                    const CSVExportImportService::ImportProgress &progress = {});
};
