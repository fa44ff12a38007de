// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetRowOrder.h"

#include <algorithm>
#include <numeric>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

// The same type as the order's own key (the store compares text bytewise, which orders
// some characters unlike UTF-16 would).
using KeyValue = std::variant<std::monostate, qint64, QByteArray>;

int compareValues(const KeyValue &left, const KeyValue &right)
{
    // The variant's index orders absent before numbers before text, as the store does.
    if (left.index() != right.index())
        return left.index() < right.index() ? -1 : 1;
    if (const auto *number = std::get_if<qint64>(&left)) {
        const qint64 other = std::get<qint64>(right);
        return *number < other ? -1 : (*number > other ? 1 : 0);
    }
    if (const auto *text = std::get_if<QByteArray>(&left)) {
        const int order = text->compare(std::get<QByteArray>(right));
        return order < 0 ? -1 : (order > 0 ? 1 : 0);
    }
    return 0;
}

KeyValue text(const std::optional<QString> &value)
{
    return value ? KeyValue(value->toUtf8()) : KeyValue();
}

} // namespace

std::optional<BrickSetRowOrder> BrickSetRowOrder::forDescriptors(const QList<SortDescriptor> &descriptors)
{
    static const QHash<QString, Key> keys{
        {u"catalogSet.name"_s, Key::name},          {u"catalogSet.setNumber"_s, Key::setNumber},
        {u"catalogSet.year"_s, Key::year},          {u"catalogSet.pieceCount"_s, Key::pieceCount},
        {u"dateAdded"_s, Key::dateAdded},           {u"overallCondition"_s, Key::overallCondition},
    };
    QList<Term> terms;
    for (const SortDescriptor &descriptor : descriptors) {
        const auto key = keys.constFind(descriptor.keyPath);
        if (key == keys.cend())
            return std::nullopt;
        terms.append(Term{*key, descriptor.ascending});
    }
    return BrickSetRowOrder(std::move(terms));
}

QList<BrickSetRowOrder::KeyValue> BrickSetRowOrder::keysOf(const BrickSetWithCatalogSet &copy) const
{
    const std::optional<CatalogSet> &set = copy.catalogSet;
    QList<KeyValue> keys;
    keys.reserve(m_terms.size());
    for (const Term &term : m_terms) {
        switch (term.key) {
        case Key::name:
            keys.append(set ? text(set->name) : KeyValue());
            break;
        case Key::setNumber:
            keys.append(set ? text(set->setNumber) : KeyValue());
            break;
        case Key::year:
            keys.append(set ? KeyValue(qint64(set->year)) : KeyValue());
            break;
        case Key::pieceCount:
            keys.append(set ? KeyValue(qint64(set->pieceCount)) : KeyValue());
            break;
        case Key::dateAdded:
            keys.append(copy.brickSet.dateAdded ? KeyValue(copy.brickSet.dateAdded->toMSecsSinceEpoch()) : KeyValue());
            break;
        case Key::overallCondition:
            keys.append(text(copy.brickSet.overallCondition));
            break;
        }
    }
    return keys;
}

bool BrickSetRowOrder::lessThan(const QList<KeyValue> &leftKeys, qint64 leftKey, const QList<KeyValue> &rightKeys,
                                qint64 rightKey) const
{
    for (qsizetype term = 0; term < m_terms.size(); ++term) {
        const int comparison = compareValues(leftKeys[term], rightKeys[term]);
        if (comparison != 0)
            return m_terms[term].ascending ? comparison < 0 : comparison > 0;
    }
    return leftKey < rightKey;
}

bool BrickSetRowOrder::lessThan(const BrickSetWithCatalogSet &left, const BrickSetWithCatalogSet &right) const
{
    return lessThan(keysOf(left), left.brickSet.objectID.primaryKey, keysOf(right), right.brickSet.objectID.primaryKey);
}

QList<BrickSetWithCatalogSet> BrickSetRowOrder::sorted(const QList<BrickSetWithCatalogSet> &rows) const
{
    // The keys are read once per row, not once per comparison.
    QList<QList<KeyValue>> keys(rows.size());
    for (qsizetype row = 0; row < rows.size(); ++row)
        keys[row] = keysOf(rows[row]);
    QList<qsizetype> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
        return lessThan(keys[left], rows[left].brickSet.objectID.primaryKey, keys[right],
                        rows[right].brickSet.objectID.primaryKey);
    });
    // Read through a const list: the rows are often shared with the list being re-sorted,
    // and writing would copy all of them first.
    QList<BrickSetWithCatalogSet> result;
    result.reserve(rows.size());
    for (const qsizetype index : std::as_const(order))
        result.append(rows[index]);
    return result;
}
