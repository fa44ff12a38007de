// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ChecklistEntryStore.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace {

// Values per OR-ed query: SQLite parses "a OR b OR …" into a tree as deep as it is long,
// and refuses expressions deeper than 1000.
constexpr qsizetype lookupChunk = 200;

QPair<qint64, qint64> lineKey(const ObjectID &part, const ObjectID &color)
{
    return {part.primaryKey, color.primaryKey};
}

} // namespace

QHash<QString, PartInventoryEntry> ChecklistEntryStore::loadEntries(ManagedObjectContext &context,
                                                                    const ObjectID &brickSet)
{
    const QList<PartInventoryEntry> entries = context.fetch(
        FetchRequest<PartInventoryEntry>(Predicate::equal(u"brickSet"_s, QVariant::fromValue(brickSet))));
    if (entries.isEmpty())
        return {};

    // The lines, parts and colours behind the entries, each kind in one query.
    QList<ObjectID> lineIDs;
    for (const PartInventoryEntry &entry : entries) {
        if (entry.catalogSetPart)
            lineIDs.append(*entry.catalogSetPart);
    }
    QHash<qint64, CatalogSetPart> lines;
    QList<ObjectID> partIDs;
    QList<ObjectID> colorIDs;
    for (const CatalogSetPart &line : context.fetch(FetchRequest<CatalogSetPart>(Predicate::objectIn(lineIDs)))) {
        lines.insert(line.objectID.primaryKey, line);
        if (line.catalogPart)
            partIDs.append(*line.catalogPart);
        if (line.catalogColor)
            colorIDs.append(*line.catalogColor);
    }
    QHash<qint64, CatalogPart> parts;
    if (!partIDs.isEmpty()) {
        for (const CatalogPart &part : context.fetch(FetchRequest<CatalogPart>(Predicate::objectIn(partIDs))))
            parts.insert(part.objectID.primaryKey, part);
    }
    QHash<qint64, CatalogColor> colors;
    if (!colorIDs.isEmpty()) {
        for (const CatalogColor &color : context.fetch(FetchRequest<CatalogColor>(Predicate::objectIn(colorIDs))))
            colors.insert(color.objectID.primaryKey, color);
    }

    QHash<QString, PartInventoryEntry> byKey;
    for (const PartInventoryEntry &entry : entries) {
        if (!entry.catalogSetPart)
            continue;
        const auto line = lines.constFind(entry.catalogSetPart->primaryKey);
        if (line == lines.cend() || !line->catalogPart || !line->catalogColor)
            continue;
        const auto part = parts.constFind(line->catalogPart->primaryKey);
        const auto color = colors.constFind(line->catalogColor->primaryKey);
        if (part == parts.cend() || color == colors.cend())
            continue;
        byKey.insert(ChecklistItem::key(part->partNumber.value_or(QString()), color->colorID), entry);
    }
    return byKey;
}

ChecklistEntryStore::ChecklistEntryStore(ManagedObjectContext &context, const ObjectID &brickSet,
                                         std::optional<ObjectID> catalogSet)
    : m_context(context)
    , m_brickSet(brickSet)
    , m_catalogSet(std::move(catalogSet))
{
}

void ChecklistEntryStore::prefetch(const QList<ChecklistItem> &items)
{
    if (!m_catalogSet)
        return;
    QStringList partNumbers;
    QList<int> colorIDs;
    {
        QSet<QString> seenParts;
        QSet<int> seenColors;
        for (const ChecklistItem &item : items) {
            if (!seenParts.contains(item.partNum) && !m_parts.contains(item.partNum)) {
                seenParts.insert(item.partNum);
                partNumbers.append(item.partNum);
            }
            if (!seenColors.contains(item.colorID) && !m_colors.contains(item.colorID)) {
                seenColors.insert(item.colorID);
                colorIDs.append(item.colorID);
            }
        }
    }

    // Sorted by primary key, as every fetch is, so the first one kept for a number is the
    // one a fetch with limit 1 would find.
    for (qsizetype start = 0; start < partNumbers.size(); start += lookupChunk) {
        QList<Predicate> any;
        const QStringList chunk = partNumbers.mid(start, lookupChunk);
        for (const QString &number : chunk)
            any.append(Predicate::equal(u"partNumber"_s, number));
        for (const CatalogPart &part : m_context.fetch(FetchRequest<CatalogPart>(Predicate::anyOf(any)))) {
            const QString number = part.partNumber.value_or(QString());
            if (!m_parts.contains(number))
                m_parts.insert(number, part);
        }
        for (const QString &number : chunk) {
            if (!m_parts.contains(number))
                m_parts.insert(number, std::nullopt);
        }
    }
    for (qsizetype start = 0; start < colorIDs.size(); start += lookupChunk) {
        QList<Predicate> any;
        const QList<int> chunk = colorIDs.mid(start, lookupChunk);
        for (const int id : chunk)
            any.append(Predicate::equal(u"colorID"_s, id));
        for (const CatalogColor &color : m_context.fetch(FetchRequest<CatalogColor>(Predicate::anyOf(any)))) {
            if (!m_colors.contains(color.colorID))
                m_colors.insert(color.colorID, color);
        }
        for (const int id : chunk) {
            if (!m_colors.contains(id))
                m_colors.insert(id, std::nullopt);
        }
    }
    const QList<CatalogSetPart> lines = m_context.fetch(
        FetchRequest<CatalogSetPart>(Predicate::equal(u"catalogSet"_s, QVariant::fromValue(*m_catalogSet))));
    for (const CatalogSetPart &line : lines) {
        if (!line.catalogPart || !line.catalogColor)
            continue;
        const auto key = lineKey(*line.catalogPart, *line.catalogColor);
        if (!m_lines.contains(key))
            m_lines.insert(key, line);
    }
    m_linesPrefetched = true;
}

std::optional<PartInventoryEntry> ChecklistEntryStore::createEntry(const ChecklistItem &item, qint32 quantityOwned)
{
    if (!m_catalogSet) {
        qCCritical(lcPersistence).noquote() << u"BrickSet has no catalogSet — cannot create inventory entry"_s;
        return std::nullopt;
    }
    const CatalogPart part = partFor(item);
    const CatalogColor color = colorFor(item);
    const CatalogSetPart line = lineFor(item, part, color);

    PartInventoryEntry entry;
    entry.quantityOwned = quantityOwned;
    entry.brickSet = m_brickSet;
    entry.catalogSetPart = line.objectID;
    return m_context.insert(entry);
}

CatalogPart ChecklistEntryStore::partFor(const ChecklistItem &item)
{
    auto found = m_parts.find(item.partNum);
    if (found == m_parts.end()) {
        found = m_parts.insert(item.partNum, m_context.fetchFirst(FetchRequest<CatalogPart>(
                                                 Predicate::equal(u"partNumber"_s, item.partNum))));
    }
    if (!found->has_value()) {
        // An existing part is left as the sync wrote it; only a missing one is made here.
        CatalogPart part;
        part.partNumber = item.partNum;
        part.name = item.partName;
        *found = m_context.insert(part);
    }
    return **found;
}

CatalogColor ChecklistEntryStore::colorFor(const ChecklistItem &item)
{
    auto found = m_colors.find(item.colorID);
    if (found == m_colors.end()) {
        found = m_colors.insert(item.colorID, m_context.fetchFirst(FetchRequest<CatalogColor>(
                                                  Predicate::equal(u"colorID"_s, item.colorID))));
    }
    if (!found->has_value()) {
        CatalogColor color;
        color.colorID = item.colorID;
        color.name = item.colorName;
        color.hexCode = item.colorHex;
        *found = m_context.insert(color);
    }
    return **found;
}

CatalogSetPart ChecklistEntryStore::lineFor(const ChecklistItem &item, const CatalogPart &part,
                                            const CatalogColor &color)
{
    const auto key = lineKey(part.objectID, color.objectID);
    auto found = m_lines.find(key);
    if (found == m_lines.end()) {
        std::optional<CatalogSetPart> line;
        if (!m_linesPrefetched) {
            line = m_context.fetchFirst(FetchRequest<CatalogSetPart>(
                Predicate::allOf({Predicate::equal(u"catalogSet"_s, QVariant::fromValue(*m_catalogSet)),
                                  Predicate::equal(u"catalogPart"_s, QVariant::fromValue(part.objectID)),
                                  Predicate::equal(u"catalogColor"_s, QVariant::fromValue(color.objectID))})));
        }
        found = m_lines.insert(key, line);
    }
    if (!found->has_value()) {
        // The way a line comes to exist for a set whose parts were never synchronised.
        CatalogSetPart line;
        line.catalogSet = m_catalogSet;
        line.catalogPart = part.objectID;
        line.catalogColor = color.objectID;
        line.quantity = item.quantity;
        line.isSpare = false;
        *found = m_context.insert(line);
    }
    return **found;
}
