// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryFooter.h"

#include "ViewModels/InventoryCellFormat.h"
#include "ViewModels/InventoryRow.h"

using namespace Qt::StringLiterals;

QString InventoryFooter::text(const QList<std::shared_ptr<const InventoryRow>> &rows, const InventoryCellFormat &format)
{
    int inStock = 0;
    int disposed = 0;
    Decimal totalPaid;
    Decimal totalSold;
    for (const auto &row : rows) {
        if (row->isDisposed)
            ++disposed;
        else
            ++inStock;
        if (row->pricePaid)
            totalPaid += *row->pricePaid;
        if (row->disposalPrice)
            totalSold += *row->disposalPrice;
    }

    QStringList pieces;
    //% "%Ln item(s)"
    pieces.append(qtTrId("inventory.itemCount.", int(rows.size())));
    if (inStock > 0) {
        //% "%Ln in stock"
        pieces.append(qtTrId("inventory.inStock.", inStock));
    }
    if (disposed > 0) {
        //% "%Ln disposed"
        pieces.append(qtTrId("inventory.disposed.", disposed));
    }
    if (!totalPaid.isZero()) {
        //% "Total paid: %1"
        pieces.append(qtTrId("inventory.totalPaid.").arg(format.price(totalPaid)));
    }
    if (!totalSold.isZero()) {
        //% "Total sold: %1"
        pieces.append(qtTrId("inventory.totalSold.").arg(format.price(totalSold)));
    }
    return pieces.join(u" · "_s);
}
