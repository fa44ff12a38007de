// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Color.h"
#include "Element.h"
#include "Inventory.h"
#include "InventoryMinifig.h"
#include "InventoryPart.h"
#include "InventorySet.h"
#include "Minifig.h"
#include "Part.h"
#include "PartCategory.h"
#include "RebrickableSet.h"
#include "Theme.h"

#include <QStringList>

#include <optional>

namespace RebrickableKit {

// One row of a dump to one record, by column position. A row with fewer fields than its
// file needs, or a required integer that doesn't parse, is refused (absent); fields
// beyond the known ones are ignored. Relationship rows have no parser here: the builder
// reads them in its own loop.
class CSVRowParsers
{
public:
    static std::optional<Theme> parseTheme(const QStringList &row);
    static std::optional<Color> parseColor(const QStringList &row);
    static std::optional<PartCategory> parsePartCategory(const QStringList &row);
    static std::optional<Part> parsePart(const QStringList &row);
    static std::optional<Element> parseElement(const QStringList &row);
    static std::optional<Minifig> parseMinifig(const QStringList &row);
    static std::optional<RebrickableSet> parseSet(const QStringList &row);
    static std::optional<Inventory> parseInventory(const QStringList &row);
    static std::optional<InventoryPart> parseInventoryPart(const QStringList &row);
    static std::optional<InventorySet> parseInventorySet(const QStringList &row);
    static std::optional<InventoryMinifig> parseInventoryMinifig(const QStringList &row);
};

} // namespace RebrickableKit
