// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/CatalogColor.h"
#include "Store/CatalogPart.h"
#include "Store/CatalogSetPart.h"
#include "Store/PartInventoryEntry.h"
#include "ViewModels/ChecklistItem.h"

#include <QHash>

#include <optional>

class ManagedObjectContext;

// The stored side of one copy's checklist, in the context it is given: reading the copy's
// PartInventoryEntry objects by item key, and finding or creating the entry of an item,
// together with the CatalogPart, CatalogColor and CatalogSetPart it hangs on when a sync
// never wrote them. Nothing is saved here; the caller saves.
//
// Fetches throw StoreError. One instance serves one user action: what it found or created
// is remembered for the length of that action, so an action over a thousand items asks
// the store a handful of questions (after prefetch()) instead of three per item, and
// never reads while its own inserts pile up as pending changes.
class ChecklistEntryStore
{
public:
    // The copy's entries by the key partNumber "-" colorID of their line. Entries without
    // a line, or whose line lacks its part or its colour, are left out (and left alone in
    // the store); of two entries with one key the later fetched stands.
    static QHash<QString, PartInventoryEntry> loadEntries(ManagedObjectContext &context, const ObjectID &brickSet);

    ChecklistEntryStore(ManagedObjectContext &context, const ObjectID &brickSet, std::optional<ObjectID> catalogSet);

    // Reads at once what finding the entries of all `items` needs: the parts by number, the
    // colours by ID, and the copy's catalog set's lines.
    void prefetch(const QList<ChecklistItem> &items);

    // Creates the entry of `item` with `quantityOwned`, after finding (by part number, by
    // colour ID, by set, part and colour; the first stored one each) or creating the part,
    // the colour and the inventory line. Nothing, with an error line, when the copy has no
    // catalog set to hang a line on.
    std::optional<PartInventoryEntry> createEntry(const ChecklistItem &item, qint32 quantityOwned);

private:
    CatalogPart partFor(const ChecklistItem &item);
    CatalogColor colorFor(const ChecklistItem &item);
    CatalogSetPart lineFor(const ChecklistItem &item, const CatalogPart &part, const CatalogColor &color);

    ManagedObjectContext &m_context;
    ObjectID m_brickSet;
    std::optional<ObjectID> m_catalogSet;
    // Found or created during this action; an absent value records a fetch that found none.
    QHash<QString, std::optional<CatalogPart>> m_parts;
    QHash<int, std::optional<CatalogColor>> m_colors;
    QHash<QPair<qint64, qint64>, std::optional<CatalogSetPart>> m_lines;
    bool m_linesPrefetched = false;
};
