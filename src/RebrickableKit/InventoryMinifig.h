// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QString>

namespace RebrickableKit {

// A minifigure contained in an inventory.
struct InventoryMinifig
{
    qint64 inventoryID = 0;
    QString figNum;
    qint64 quantity = 0;

    friend bool operator==(const InventoryMinifig &, const InventoryMinifig &) = default;
};

inline size_t qHash(const InventoryMinifig &value, size_t seed = 0)
{
    return qHashMulti(seed, value.inventoryID, value.figNum, value.quantity);
}

} // namespace RebrickableKit
