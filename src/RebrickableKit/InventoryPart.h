// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

#include <optional>

namespace RebrickableKit {

// One line of an inventory: a part in a colour, how many, and whether spare.
struct InventoryPart
{
    qint64 inventoryID = 0;
    QString partNum;
    qint64 colorID = 0;
    qint64 quantity = 0;
    bool isSpare = false;
    std::optional<QString> imgURL;

    friend bool operator==(const InventoryPart &, const InventoryPart &) = default;
};

inline size_t qHash(const InventoryPart &value, size_t seed = 0)
{
    return qHashMulti(seed, value.inventoryID, value.partNum, value.colorID, value.quantity, value.isSpare, value.imgURL.has_value(), value.imgURL.value_or(QString()));
}

} // namespace RebrickableKit
