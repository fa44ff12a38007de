// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// A set of the catalog; set numbers carry their version suffix ("75192-1").
struct RebrickableSet
{
    QString setNum;
    QString name;
    qint64 year = 0;
    qint64 themeID = 0;
    qint64 numParts = 0;
    std::optional<QString> imgURL;

    friend bool operator==(const RebrickableSet &, const RebrickableSet &) = default;
};

inline size_t qHash(const RebrickableSet &value, size_t seed = 0)
{
    return qHashMulti(seed, value.setNum, value.name, value.year, value.themeID, value.numParts, value.imgURL.has_value(), value.imgURL.value_or(QString()));
}

} // namespace RebrickableKit
