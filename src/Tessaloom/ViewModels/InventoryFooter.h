// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <memory>

class InventoryCellFormat;
struct InventoryRow;

// The line under the inventory sheet, over the rows the filters leave: the number of
// rows, how many are in stock and how many disposed (each only when there are any), and
// the totals paid and sold (each only when not zero), joined by " · ".
class InventoryFooter
{
public:
    // The totals are plain sums of every present amount, whatever its currency, shown in
    // the locale's currency: a sheet in one currency reads right, a mixed one adds up as
    // it stands rather than converting.
    static QString text(const QList<std::shared_ptr<const InventoryRow>> &rows, const InventoryCellFormat &format);
};
