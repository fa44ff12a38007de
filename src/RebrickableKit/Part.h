// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// A part design, identified by its part number.
struct Part
{
    QString partNum;
    QString name;
    qint64 partCatID = 0;
    QString partMaterial;

    friend bool operator==(const Part &, const Part &) = default;
};

inline size_t qHash(const Part &value, size_t seed = 0)
{
    return qHashMulti(seed, value.partNum, value.name, value.partCatID, value.partMaterial);
}

} // namespace RebrickableKit
