// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <optional>

// One line of a set's parts inventory: a part in a colour. To-many: partInventoryEntries.
struct CatalogSetPart
{
    ObjectID objectID{EntityType::CatalogSetPart, 0};

    qint32 quantity = 0;
    bool isSpare = false;

    std::optional<ObjectID> catalogSet;   // inverse CatalogSet.catalogSetParts
    std::optional<ObjectID> catalogPart;  // inverse CatalogPart.catalogSetParts
    std::optional<ObjectID> catalogColor; // inverse CatalogColor.catalogSetParts

    friend bool operator==(const CatalogSetPart &, const CatalogSetPart &) = default;
};
