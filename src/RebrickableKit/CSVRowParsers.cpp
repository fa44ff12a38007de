// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVRowParsers.h"

#include "CSVFieldRules.h"

namespace RebrickableKit {

namespace {

// An empty field is absent; any other text stands as it is.
std::optional<QString> optionalText(const QString &field)
{
    if (field.isEmpty())
        return std::nullopt;
    return field;
}

} // namespace

std::optional<Theme> CSVRowParsers::parseTheme(const QStringList &row)
{
    if (row.size() < 3)
        return std::nullopt;
    const auto id = CSVFieldRules::integer(row[0]);
    if (!id)
        return std::nullopt;
    // The one forgiving integer: a top-level theme has an empty parent, and a parent that
    // doesn't parse is taken as none rather than losing the theme.
    return Theme{*id, row[1], CSVFieldRules::integer(row[2])};
}

std::optional<Color> CSVRowParsers::parseColor(const QStringList &row)
{
    if (row.size() < 4)
        return std::nullopt;
    const auto id = CSVFieldRules::integer(row[0]);
    if (!id)
        return std::nullopt;
    return Color{*id, row[1], row[2], CSVFieldRules::boolean(row[3])};
}

std::optional<PartCategory> CSVRowParsers::parsePartCategory(const QStringList &row)
{
    if (row.size() < 2)
        return std::nullopt;
    const auto id = CSVFieldRules::integer(row[0]);
    if (!id)
        return std::nullopt;
    return PartCategory{*id, row[1]};
}

std::optional<Part> CSVRowParsers::parsePart(const QStringList &row)
{
    if (row.size() < 4)
        return std::nullopt;
    const auto partCatID = CSVFieldRules::integer(row[2]);
    if (!partCatID)
        return std::nullopt;
    return Part{row[0], row[1], *partCatID, row[3]};
}

std::optional<Element> CSVRowParsers::parseElement(const QStringList &row)
{
    if (row.size() < 3)
        return std::nullopt;
    const auto colorID = CSVFieldRules::integer(row[2]);
    if (!colorID)
        return std::nullopt;
    // The only file whose last column may be missing altogether.
    const std::optional<QString> designID = row.size() > 3 ? optionalText(row[3]) : std::nullopt;
    return Element{row[0], row[1], *colorID, designID};
}

std::optional<Minifig> CSVRowParsers::parseMinifig(const QStringList &row)
{
    if (row.size() < 4)
        return std::nullopt;
    const auto numParts = CSVFieldRules::integer(row[2]);
    if (!numParts)
        return std::nullopt;
    return Minifig{row[0], row[1], *numParts, optionalText(row[3])};
}

std::optional<RebrickableSet> CSVRowParsers::parseSet(const QStringList &row)
{
    if (row.size() < 6)
        return std::nullopt;
    const auto year = CSVFieldRules::integer(row[2]);
    const auto themeID = CSVFieldRules::integer(row[3]);
    const auto numParts = CSVFieldRules::integer(row[4]);
    if (!year || !themeID || !numParts)
        return std::nullopt;
    return RebrickableSet{row[0], row[1], *year, *themeID, *numParts, optionalText(row[5])};
}

std::optional<Inventory> CSVRowParsers::parseInventory(const QStringList &row)
{
    if (row.size() < 3)
        return std::nullopt;
    const auto id = CSVFieldRules::integer(row[0]);
    const auto version = CSVFieldRules::integer(row[1]);
    if (!id || !version)
        return std::nullopt;
    return Inventory{*id, *version, row[2]};
}

std::optional<InventoryPart> CSVRowParsers::parseInventoryPart(const QStringList &row)
{
    if (row.size() < 6)
        return std::nullopt;
    const auto inventoryID = CSVFieldRules::integer(row[0]);
    const auto colorID = CSVFieldRules::integer(row[2]);
    const auto quantity = CSVFieldRules::integer(row[3]);
    if (!inventoryID || !colorID || !quantity)
        return std::nullopt;
    return InventoryPart{*inventoryID, row[1], *colorID, *quantity, CSVFieldRules::boolean(row[4]), optionalText(row[5])};
}

std::optional<InventorySet> CSVRowParsers::parseInventorySet(const QStringList &row)
{
    if (row.size() < 3)
        return std::nullopt;
    const auto inventoryID = CSVFieldRules::integer(row[0]);
    const auto quantity = CSVFieldRules::integer(row[2]);
    if (!inventoryID || !quantity)
        return std::nullopt;
    return InventorySet{*inventoryID, row[1], *quantity};
}

std::optional<InventoryMinifig> CSVRowParsers::parseInventoryMinifig(const QStringList &row)
{
    // The same columns as a contained set, with a fig number in the middle.
    const auto contained = parseInventorySet(row);
    if (!contained)
        return std::nullopt;
    return InventoryMinifig{contained->inventoryID, contained->setNum, contained->quantity};
}

} // namespace RebrickableKit
