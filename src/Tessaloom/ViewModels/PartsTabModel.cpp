// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/PartsTabModel.h"

#include "Services/RebrickableCatalog.h"

#include <QHash>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

QList<PartRow> PartsTabModel::readRows(const RebrickableCatalog &catalog, const QString &setNum)
{
    const QList<CatalogInventoryPartResult> inventory = catalog.inventoryParts(setNum);
    // A set lists the same few colours and categories on hundreds of rows, and the largest
    // inventories hold hundreds of distinct parts: the colours and parts are asked in one
    // batch each rather than one statement per line, and each category once per read.
    QList<int> colorIDs;
    QStringList partNums;
    {
        QSet<int> seenColors;
        QSet<QString> seenParts;
        for (const CatalogInventoryPartResult &line : inventory) {
            if (!seenColors.contains(line.colorID)) {
                seenColors.insert(line.colorID);
                colorIDs.append(line.colorID);
            }
            if (!seenParts.contains(line.partNum)) {
                seenParts.insert(line.partNum);
                partNums.append(line.partNum);
            }
        }
    }
    const QHash<int, CatalogColorResult> colors = catalog.colors(colorIDs);
    const QHash<QString, CatalogPartResult> parts = catalog.parts(partNums);
    QHash<int, QString> categories;

    QList<PartRow> rows;
    rows.reserve(inventory.size());
    for (const CatalogInventoryPartResult &line : inventory) {
        const auto color = colors.constFind(line.colorID);
        const bool hasColor = color != colors.cend();
        const auto part = parts.constFind(line.partNum);
        const bool hasPart = part != parts.cend();
        const int categoryID = hasPart ? part->partCatID : 0;
        auto category = categories.find(categoryID);
        if (category == categories.end())
            category = categories.insert(categoryID, catalog.partCategoryName(categoryID).value_or(u"Other"_s));

        PartRow row;
        row.id = line.partNum + u'-' + QString::number(line.colorID) + (line.isSpare ? u"-spare"_s : QString());
        row.partNum = line.partNum;
        row.partName = hasPart ? part->name : line.partNum;
        row.colorID = line.colorID;
        row.colorName = hasColor ? color->name : u"Unknown"_s;
        row.colorHex = hasColor ? color->rgb : u"808080"_s;
        row.category = category.value();
        row.quantity = line.quantity;
        row.isSpare = line.isSpare;
        row.imgURL = line.imgURL;
        rows.append(row);
    }
    return rows;
}

QList<PartRow> PartsTabModel::regularParts() const
{
    QList<PartRow> rows;
    std::copy_if(m_parts.cbegin(), m_parts.cend(), std::back_inserter(rows), [](const PartRow &row) { return !row.isSpare; });
    return rows;
}

QList<PartRow> PartsTabModel::spareParts() const
{
    QList<PartRow> rows;
    std::copy_if(m_parts.cbegin(), m_parts.cend(), std::back_inserter(rows), [](const PartRow &row) { return row.isSpare; });
    return rows;
}

int PartsTabModel::uniqueCount() const
{
    return int(std::count_if(m_parts.cbegin(), m_parts.cend(), [](const PartRow &row) { return !row.isSpare; }));
}

int PartsTabModel::totalPieces() const
{
    int pieces = 0;
    for (const PartRow &row : m_parts) {
        if (!row.isSpare)
            pieces += row.quantity;
    }
    return pieces;
}

int PartsTabModel::spareCount() const
{
    return int(std::count_if(m_parts.cbegin(), m_parts.cend(), [](const PartRow &row) { return row.isSpare; }));
}

bool PartsTabModel::matches(const PartRow &row) const
{
    if (m_searchText.isEmpty())
        return true;
    // A plain containment of the whole text: "dark red" must stand as written.
    const QString text = m_searchText.toLower();
    return row.partName.toLower().contains(text) || row.partNum.toLower().contains(text)
        || row.colorName.toLower().contains(text) || row.category.toLower().contains(text);
}

QList<PartRow> PartsTabModel::filteredAndSorted(const QList<PartRow> &rows) const
{
    QList<PartRow> kept;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(kept), [this](const PartRow &row) { return matches(row); });
    sort(kept, m_sortBy);
    return kept;
}

void PartsTabModel::sort(QList<PartRow> &rows, SortMode sortBy)
{
    switch (sortBy) {
    case SortMode::name:
        std::stable_sort(rows.begin(), rows.end(), [](const PartRow &a, const PartRow &b) { return a.partName < b.partName; });
        break;
    case SortMode::quantity:
        // The most used parts first: that is what one looks for when sorting by count.
        std::stable_sort(rows.begin(), rows.end(), [](const PartRow &a, const PartRow &b) { return a.quantity > b.quantity; });
        break;
    case SortMode::partNumber:
        // Plain text order, so "10" stands before "9", as the catalog itself orders them.
        std::stable_sort(rows.begin(), rows.end(), [](const PartRow &a, const PartRow &b) { return a.partNum < b.partNum; });
        break;
    }
}

QList<PartsTabModel::Block> PartsTabModel::group(const QList<PartRow> &rows, GroupMode groupBy)
{
    if (groupBy == GroupMode::none)
        return {Block{QString(), std::nullopt, QString(), rows}};

    QList<Block> blocks;
    QHash<QString, qsizetype> blockOfKey;
    for (const PartRow &row : rows) {
        const bool byColor = groupBy == GroupMode::color;
        const QString key = byColor ? QString::number(row.colorID) : row.category;
        auto found = blockOfKey.constFind(key);
        if (found == blockOfKey.cend()) {
            Block block;
            block.title = byColor ? row.colorName : row.category;
            if (byColor) {
                block.colorID = row.colorID;
                block.colorHex = row.colorHex;
            }
            blocks.append(block);
            found = blockOfKey.insert(key, blocks.size() - 1);
        }
        blocks[found.value()].rows.append(row);
    }
    // Blocks in the order of their headings; two colours of one name stay apart, the
    // lower ID first.
    std::stable_sort(blocks.begin(), blocks.end(), [](const Block &a, const Block &b) {
        if (a.title != b.title)
            return a.title < b.title;
        return a.colorID.value_or(0) < b.colorID.value_or(0);
    });
    return blocks;
}

QList<PartsTabModel::Section> PartsTabModel::sections() const
{
    if (m_parts.isEmpty())
        return {};
    QList<Section> result;
    result.append(Section{Section::Kind::regular, group(filteredAndSorted(regularParts()), m_groupBy)});
    const QList<PartRow> spares = spareParts();
    if (!spares.isEmpty())
        result.append(Section{Section::Kind::spare, group(filteredAndSorted(spares), GroupMode::none)});
    return result;
}
