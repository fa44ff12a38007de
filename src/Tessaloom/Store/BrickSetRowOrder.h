// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ManagedObjectContext.h"
#include "Store/SortDescriptor.h"

#include <optional>
#include <variant>

// Orders rows of copies (each with its catalog set) in memory exactly as the store's fetch
// orders them for the same sort descriptors: text by its UTF-8 bytes, numbers and dates by
// value, an absent value before any value, each key in its own direction, and equal rows
// by the copy's primary key. A list already in memory can so change its sort without
// reading the store again.
//
// Only the key paths whose values the rows carry can be ordered here: the catalog set's
// name, number, year and piece count, and the copy's date added and overall condition.
class BrickSetRowOrder
{
public:
    // The order for `descriptors`, or nothing when one of their key paths is not one of
    // the above.
    static std::optional<BrickSetRowOrder> forDescriptors(const QList<SortDescriptor> &descriptors);

    // `rows` in this order.
    QList<BrickSetWithCatalogSet> sorted(const QList<BrickSetWithCatalogSet> &rows) const;

    // Whether `left` comes before `right` in this order.
    bool lessThan(const BrickSetWithCatalogSet &left, const BrickSetWithCatalogSet &right) const;

private:
    // A sort key as the store sees it: absent, a number, or text as UTF-8 bytes.
    using KeyValue = std::variant<std::monostate, qint64, QByteArray>;

    QList<KeyValue> keysOf(const BrickSetWithCatalogSet &row) const;
    bool lessThan(const QList<KeyValue> &leftKeys, qint64 leftKey, const QList<KeyValue> &rightKeys,
                  qint64 rightKey) const;

    enum class Key { name, setNumber, year, pieceCount, dateAdded, overallCondition };
    struct Term
    {
        Key key;
        bool ascending;
    };

    explicit BrickSetRowOrder(QList<Term> terms)
        : m_terms(std::move(terms))
    {
    }

    QList<Term> m_terms;
};
