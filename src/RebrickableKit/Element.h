// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// A part in one colour, as LEGO numbers it.
struct Element
{
    QString elementID;
    QString partNum;
    qint64 colorID = 0;
    std::optional<QString> designID;

    friend bool operator==(const Element &, const Element &) = default;
};

inline size_t qHash(const Element &value, size_t seed = 0)
{
    return qHashMulti(seed, value.elementID, value.partNum, value.colorID, value.designID.has_value(), value.designID.value_or(QString()));
}

} // namespace RebrickableKit
