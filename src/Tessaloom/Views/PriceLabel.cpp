// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PriceLabel.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

// Symbols for the currencies whose code readers would not expect to see.
QString currencySymbol(const QString &code)
{
    static const QHash<QString, QString> symbols{
        {u"USD"_s, u"$"_s}, {u"EUR"_s, u"€"_s}, {u"GBP"_s, u"£"_s}, {u"JPY"_s, u"¥"_s},
        {u"CAD"_s, u"CA$"_s}, {u"AUD"_s, u"A$"_s},
    };
    return symbols.value(code, code.isEmpty() ? QString() : code + u' ');
}

} // namespace

PriceLabel::PriceLabel(int priceRole, int currencyRole, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_priceRole(priceRole)
    , m_currencyRole(currencyRole)
{
}

QString PriceLabel::text(const std::optional<Decimal> &price, const QString &currencyCode, const QLocale &locale)
{
    if (!price)
        return {};
    // Yen have no minor unit; the others show cents.
    const int decimals = currencyCode == u"JPY" ? 0 : 2;
    return currencySymbol(currencyCode) + locale.toString(price->toDouble(), 'f', decimals);
}

void PriceLabel::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant price = index.data(m_priceRole);
    option->text = text(price.isValid() ? std::optional<Decimal>(price.value<Decimal>()) : std::nullopt,
                        index.data(m_currencyRole).toString());
    option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
}
