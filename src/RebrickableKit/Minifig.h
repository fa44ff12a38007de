// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// A minifigure, identified by its fig number.
struct Minifig
{
    QString figNum;
    QString name;
    qint64 numParts = 0;
    std::optional<QString> imgURL;

    friend bool operator==(const Minifig &, const Minifig &) = default;
};

inline size_t qHash(const Minifig &value, size_t seed = 0)
{
    return qHashMulti(seed, value.figNum, value.name, value.numParts, value.imgURL.has_value(), value.imgURL.value_or(QString()));
}

} // namespace RebrickableKit
