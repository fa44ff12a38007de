// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QDate>
#include <QLocale>
#include <QString>

#include <array>
#include <optional>

struct InventoryRow;

// How the inventory sheet writes its cells in the user's locale: amounts in the locale's
// currency style, dates in its short date format without a time, and the disposal cell.
// The locale's currency stands wherever no currency code is given, which is how the
// footer's totals (sums over mixed currencies) are shown.
class InventoryCellFormat
{
public:
    explicit InventoryCellFormat(const QLocale &locale = QLocale());

    QLocale locale() const { return m_locale; }
    // The ISO code of the locale's own currency ("USD" for en_US).
    QString localeCurrency() const { return m_localeCurrency; }

    // The amount in `currencyCode` (the locale's currency when empty); an absent amount,
    // or one the formatting gives nothing for, prints "N/A".
    QString price(const std::optional<Decimal> &amount, const QString &currencyCode = QString()) const;
    // The day in the short date format; an invalid (absent) day leaves the cell empty.
    QString date(const QDate &day) const;
    // Empty unless disposed; then the price in the disposal currency if there is one,
    // else the word for the disposal type.
    QString disposalCell(const InventoryRow &row) const;
    // The ten cells in the table's column order.
    std::array<QString, 10> cells(const InventoryRow &row) const;

private:
    QLocale m_locale;
    QString m_localeCurrency;
    QString m_shortDateFormat;
};
