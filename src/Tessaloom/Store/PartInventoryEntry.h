// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QString>

#include <optional>

// How many of one inventory line one copy holds. A count of zero is represented by no row.
// Deleting the copy deletes its entries (the store's only cascade).
struct PartInventoryEntry
{
    ObjectID objectID{EntityType::PartInventoryEntry, 0};

    qint32 quantityOwned = 0;
    std::optional<QString> partCondition;
    std::optional<QString> notes;

    std::optional<ObjectID> brickSet;       // inverse BrickSet.partInventoryEntries
    std::optional<ObjectID> catalogSetPart; // inverse CatalogSetPart.partInventoryEntries

    friend bool operator==(const PartInventoryEntry &, const PartInventoryEntry &) = default;
};
