// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// A category of parts, such as "Bricks Sloped".
struct PartCategory
{
    qint64 id = 0;
    QString name;

    friend bool operator==(const PartCategory &, const PartCategory &) = default;
};

inline size_t qHash(const PartCategory &value, size_t seed = 0)
{
    return qHashMulti(seed, value.id, value.name);
}

} // namespace RebrickableKit
