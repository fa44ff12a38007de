// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/InventoryYearTotals.h"

#include <memory>

struct InventoryRow;

// Adds up the money paid and received per year and currency over inventory rows (see
// InventoryYearTotals for which year and which currency each amount counts under).
class InventoryYearTally
{
public:
    // `localeCurrency` stands for a missing currency code.
    static InventoryYearTotals of(const QList<std::shared_ptr<const InventoryRow>> &rows, const QString &localeCurrency);
};
