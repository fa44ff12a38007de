// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"

#include <QHash>
#include <QPair>
#include <QString>

// Compares the parts lines that a sync stored for a set with the catalog's inventory of
// that set: one line per part and colour, each with the quantity and isSpare of one of
// its rows, each part named as the catalog names it (or by its number) and each colour
// with the catalog's values. Gives the first difference, or an empty text.
inline QString differenceFromCatalog(ManagedObjectContext &context, const RebrickableCatalog &catalog,
                                     const QString &setNumber, const ObjectID &catalogSet)
{
    using namespace Qt::StringLiterals;
    using Key = QPair<QString, int>;
    QHash<Key, QList<CatalogInventoryPartResult>> rowsByLine;
    for (const CatalogInventoryPartResult &row : catalog.inventoryParts(setNumber))
        rowsByLine[Key(row.partNum, row.colorID)].append(row);

    const QList<CatalogSetPart> lines = context.fetch(
        FetchRequest<CatalogSetPart>(Predicate::equal(u"catalogSet"_s, QVariant::fromValue(catalogSet))));
    if (lines.size() != rowsByLine.size())
        return u"%1 lines stored for %2 part and colour pairs"_s.arg(lines.size()).arg(rowsByLine.size());
    QSet<Key> seen;
    for (const CatalogSetPart &line : lines) {
        const auto part = context.existingObject<CatalogPart>(line.catalogPart.value_or(ObjectID{}));
        const auto color = context.existingObject<CatalogColor>(line.catalogColor.value_or(ObjectID{}));
        if (!part || !color || !part->partNumber)
            return u"line %1 lacks its part or colour"_s.arg(line.objectID.primaryKey);
        const Key key(*part->partNumber, color->colorID);
        if (seen.contains(key))
            return u"two lines for part %1 in colour %2"_s.arg(key.first).arg(key.second);
        seen.insert(key);
        const QList<CatalogInventoryPartResult> rows = rowsByLine.value(key);
        const bool fromOneRow = std::any_of(rows.cbegin(), rows.cend(), [&line](const CatalogInventoryPartResult &row) {
            return row.quantity == line.quantity && row.isSpare == line.isSpare;
        });
        if (!fromOneRow)
            return u"line of part %1 in colour %2 holds no row's quantity"_s.arg(key.first).arg(key.second);
        const std::optional<CatalogPartResult> catalogPart = catalog.part(key.first);
        if (part->name != (catalogPart ? catalogPart->name : key.first))
            return u"part %1 is named %2"_s.arg(key.first, part->name.value_or(u"(nothing)"_s));
        const std::optional<CatalogColorResult> catalogColor = catalog.color(key.second);
        const bool colorMatches = catalogColor
            ? color->name == catalogColor->name && color->hexCode == catalogColor->rgb
                && color->isTransparent == catalogColor->isTransparent
            : color->name == u"Unknown"_s && color->hexCode == u"000000"_s && !color->isTransparent;
        if (!colorMatches)
            return u"colour %1 does not hold the catalog's values"_s.arg(key.second);
    }
    return {};
}
