// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// A colour of the catalog; rgb is the six hex digits as the dump gives them.
struct Color
{
    qint64 id = 0;
    QString name;
    QString rgb;
    bool isTransparent = false;

    friend bool operator==(const Color &, const Color &) = default;
};

inline size_t qHash(const Color &value, size_t seed = 0)
{
    return qHashMulti(seed, value.id, value.name, value.rgb, value.isTransparent);
}

} // namespace RebrickableKit
