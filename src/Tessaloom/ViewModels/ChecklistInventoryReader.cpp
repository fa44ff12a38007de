// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ChecklistInventoryReader.h"

#include "Services/RebrickableCatalog.h"

#include <QHash>

using namespace Qt::StringLiterals;

QList<ChecklistItem> ChecklistInventoryReader::read(const RebrickableCatalog &catalog, const QString &setNumber)
{
    const QList<CatalogInventoryPartResult> rows = catalog.inventoryParts(setNumber);

    // An absent answer is remembered too, so a missing colour or part is asked for once.
    QHash<int, std::optional<CatalogColorResult>> colors;
    QHash<QString, std::optional<CatalogPartResult>> parts;
    QHash<int, QString> categories;

    QList<ChecklistItem> items;
    items.reserve(rows.size());
    for (const CatalogInventoryPartResult &row : rows) {
        // Spares come with the box as extras; they are never part of what a copy needs.
        if (row.isSpare)
            continue;
        auto color = colors.constFind(row.colorID);
        if (color == colors.cend())
            color = colors.insert(row.colorID, catalog.color(row.colorID));
        auto part = parts.constFind(row.partNum);
        if (part == parts.cend())
            part = parts.insert(row.partNum, catalog.part(row.partNum));
        const int categoryID = part->has_value() ? (*part)->partCatID : 0;
        auto category = categories.constFind(categoryID);
        if (category == categories.cend())
            category = categories.insert(categoryID, catalog.partCategoryName(categoryID).value_or(u"Other"_s));

        ChecklistItem item;
        item.id = ChecklistItem::key(row.partNum, row.colorID);
        item.partNum = row.partNum;
        item.partName = part->has_value() ? (*part)->name : row.partNum;
        item.colorID = row.colorID;
        item.colorName = color->has_value() ? (*color)->name : u"Unknown"_s;
        // Grey, not the black a synchronised colour without a value gets: an unknown
        // colour should not look like a real black brick.
        item.colorHex = color->has_value() ? (*color)->rgb : u"808080"_s;
        item.category = *category;
        item.quantity = row.quantity;
        item.imgURL = row.imgURL;
        items.append(std::move(item));
    }
    return items;
}
