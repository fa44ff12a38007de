// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// How two parts are related: a print or pattern of a base part, a mould variant, a
// sub-part, a mirrored pair, or an alternate.
struct PartRelationship
{
    // The raw value is the one letter that the dump holds and the database stores.
    enum class RelationType {
        print,
        pair,
        subPart,
        mold,
        pattern,
        alternate,
    };

    RelationType relType = RelationType::alternate;
    QString childPartNum;
    QString parentPartNum;

    // "P", "R", "B", "M", "T" or "A".
    static QString rawValue(RelationType type);
    // Exact, case-sensitive match of one of the six letters; anything else is absent.
    static std::optional<RelationType> relationType(QStringView rawValue);

    friend bool operator==(const PartRelationship &, const PartRelationship &) = default;
};

inline size_t qHash(const PartRelationship &value, size_t seed = 0)
{
    return qHashMulti(seed, int(value.relType), value.childPartNum, value.parentPartNum);
}

} // namespace RebrickableKit
