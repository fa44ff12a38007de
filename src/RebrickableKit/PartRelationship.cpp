// SPDX-License-Identifier: GPL-3.0-or-later
#include "PartRelationship.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

QString PartRelationship::rawValue(RelationType type)
{
    switch (type) {
    case RelationType::print:
        return u"P"_s;
    case RelationType::pair:
        return u"R"_s;
    case RelationType::subPart:
        return u"B"_s;
    case RelationType::mold:
        return u"M"_s;
    case RelationType::pattern:
        return u"T"_s;
    case RelationType::alternate:
        return u"A"_s;
    }
    Q_UNREACHABLE();
    return QString();
}

std::optional<PartRelationship::RelationType> PartRelationship::relationType(QStringView rawValue)
{
    if (rawValue.size() != 1)
        return std::nullopt;
    switch (rawValue.front().unicode()) {
    case u'P':
        return RelationType::print;
    case u'R':
        return RelationType::pair;
    case u'B':
        return RelationType::subPart;
    case u'M':
        return RelationType::mold;
    case u'T':
        return RelationType::pattern;
    case u'A':
        return RelationType::alternate;
    default:
        return std::nullopt;
    }
}

} // namespace RebrickableKit
