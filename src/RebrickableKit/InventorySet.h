// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// A set contained in an inventory.
struct InventorySet
{
    qint64 inventoryID = 0;
    QString setNum;
    qint64 quantity = 0;

    friend bool operator==(const InventorySet &, const InventorySet &) = default;
};

inline size_t qHash(const InventorySet &value, size_t seed = 0)
{
    return qHashMulti(seed, value.inventoryID, value.setNum, value.quantity);
}

} // namespace RebrickableKit
