// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QStyledItemDelegate>

#include <optional>

// A market price in a table cell, right-aligned, in the currency of the guide it comes
// from and the user's number format: "$1,234.50", "€89.99", "CHF 120.00". No price leaves
// the cell empty. Reads the price (a Decimal) and its currency code from two roles.
class PriceLabel : public QStyledItemDelegate
{
    Q_OBJECT

public:
    PriceLabel(int priceRole, int currencyRole, QObject *parent = nullptr);

    // The text for `price` in `currencyCode` (empty code: the number alone).
    static QString text(const std::optional<Decimal> &price, const QString &currencyCode,
                        const QLocale &locale = QLocale());

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    int m_priceRole;
    int m_currencyRole;
};
