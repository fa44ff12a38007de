// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// A theme of the catalog; themes nest through parentID.
struct Theme
{
    qint64 id = 0;
    QString name;
    std::optional<qint64> parentID;

    friend bool operator==(const Theme &, const Theme &) = default;
};

inline size_t qHash(const Theme &value, size_t seed = 0)
{
    return qHashMulti(seed, value.id, value.name, value.parentID.has_value(), value.parentID.value_or(0));
}

} // namespace RebrickableKit
