// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryCellFormat.h"

#include "ViewModels/InventoryRow.h"
#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/MoneyText.h"

using namespace Qt::StringLiterals;

InventoryCellFormat::InventoryCellFormat(const QLocale &locale)
    : m_locale(locale)
    , m_localeCurrency(locale.currencySymbol(QLocale::CurrencyIsoCode))
    , m_shortDateFormat(locale.dateFormat(QLocale::ShortFormat))
{
}

QString InventoryCellFormat::price(const std::optional<Decimal> &amount, const QString &currencyCode) const
{
    if (!amount)
        return u"N/A"_s;
    const QString text = MoneyText::text(amount, currencyCode.isEmpty() ? m_localeCurrency : currencyCode, m_locale);
    return text.isEmpty() ? u"N/A"_s : text;
}

QString InventoryCellFormat::date(const QDate &day) const
{
    return day.isValid() ? m_locale.toString(day, m_shortDateFormat) : QString();
}

QString InventoryCellFormat::disposalCell(const InventoryRow &row) const
{
    if (!row.isDisposed)
        return {};
    if (row.disposalPrice)
        return price(row.disposalPrice, row.disposalCurrency);
    return row.disposalWord;
}

std::array<QString, 10> InventoryCellFormat::cells(const InventoryRow &row) const
{
    std::array<QString, 10> cells;
    cells[InventorySpreadsheetModel::setNumber] = row.setNumber;
    cells[InventorySpreadsheetModel::name] = row.name;
    // A catalog set without a known year (0) shows no year rather than "0".
    cells[InventorySpreadsheetModel::year] = row.year != 0 ? QString::number(row.year) : QString();
    cells[InventorySpreadsheetModel::condition] = row.conditionText;
    cells[InventorySpreadsheetModel::built] = row.builtText;
    cells[InventorySpreadsheetModel::paid] = price(row.pricePaid, row.priceCurrency);
    cells[InventorySpreadsheetModel::acquired] = date(row.acquiredDay);
    cells[InventorySpreadsheetModel::disposed] = disposalCell(row);
    cells[InventorySpreadsheetModel::disposedDate] = date(row.disposedDay);
    cells[InventorySpreadsheetModel::added] = date(row.addedDay);
    return cells;
}
