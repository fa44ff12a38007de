// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// One version of the contents of a set or minifigure.
struct Inventory
{
    qint64 id = 0;
    qint64 version = 0;
    QString setNum;

    friend bool operator==(const Inventory &, const Inventory &) = default;
};

inline size_t qHash(const Inventory &value, size_t seed = 0)
{
    return qHashMulti(seed, value.id, value.version, value.setNum);
}

} // namespace RebrickableKit
