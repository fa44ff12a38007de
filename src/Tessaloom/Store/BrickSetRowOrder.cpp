// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetRowOrder.h"

#include <algorithm>
#include <numeric>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

// A sort key as the store sees it: absent, a number, or text as UTF-8 bytes (the store
// compares text bytewise, which orders some characters unlike UTF-16 would).
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

QList<BrickSetWithCatalogSet> BrickSetRowOrder::sorted(const QList<BrickSetWithCatalogSet> &rows) const
{
    // The keys are read once per row, not once per comparison.
    QList<QList<KeyValue>> keys(rows.size());
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const BrickSetWithCatalogSet &copy = rows[row];
        const std::optional<CatalogSet> &set = copy.catalogSet;
        QList<KeyValue> &rowKeys = keys[row];
        rowKeys.reserve(m_terms.size());
        for (const Term &term : m_terms) {
            switch (term.key) {
            case Key::name:
                rowKeys.append(set ? text(set->name) : KeyValue());
                break;
            case Key::setNumber:
                rowKeys.append(set ? text(set->setNumber) : KeyValue());
                break;
            case Key::year:
                rowKeys.append(set ? KeyValue(qint64(set->year)) : KeyValue());
                break;
            case Key::pieceCount:
                rowKeys.append(set ? KeyValue(qint64(set->pieceCount)) : KeyValue());
                break;
            case Key::dateAdded:
                rowKeys.append(copy.brickSet.dateAdded ? KeyValue(copy.brickSet.dateAdded->toMSecsSinceEpoch())
                                                       : KeyValue());
                break;
            case Key::overallCondition:
                rowKeys.append(text(copy.brickSet.overallCondition));
                break;
            }
        }
    }
    QList<qsizetype> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
        for (qsizetype term = 0; term < m_terms.size(); ++term) {
            const int comparison = compareValues(keys[left][term], keys[right][term]);
            if (comparison != 0)
                return m_terms[term].ascending ? comparison < 0 : comparison > 0;
        }
        return rows[left].brickSet.objectID.primaryKey < rows[right].brickSet.objectID.primaryKey;
    });
    // Read through a const list: the rows are often shared with the list being re-sorted,
    // and writing would copy all of them first.
    QList<BrickSetWithCatalogSet> result;
    result.reserve(rows.size());
    for (const qsizetype index : std::as_const(order))
        result.append(rows[index]);
    return result;
}
