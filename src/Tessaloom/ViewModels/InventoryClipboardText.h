// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <memory>

class InventoryCellFormat;
struct InventoryRow;

// The inventory rows as tab-separated text that pastes into a spreadsheet program as
// cells: a header line, then one line per row, each ended by a line feed. Amounts go out
// as plain decimals ("849.99") with their currency code in the column after, so that the
// receiving program reads numbers rather than locale-formatted text; dates as ISO dates
// (yyyy-MM-dd) of the sheet's time zone; absent values as empty cells.
//
// Columns: the ten titles of the table, with "Paid Currency" after the price paid and
// "Disposal Currency" after the disposal cell, which holds the sale price when there is
// one and otherwise the word the sheet shows for the disposal.
class InventoryClipboardText
{
public:
    static QString text(const QList<std::shared_ptr<const InventoryRow>> &rows, const InventoryCellFormat &format);
};
