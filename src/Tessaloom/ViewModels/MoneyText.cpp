// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/MoneyText.h"

#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

int minorUnitDigits(const QString &currencyCode)
{
    // Yen have no minor unit; the others show cents.
    return currencyCode == u"JPY" ? 0 : 2;
}

// Adds one to the last digit of `digits` (ASCII), carrying to the left.
QString incremented(QString digits)
{
    for (qsizetype index = digits.size() - 1; index >= 0; --index) {
        if (digits[index] == u'9') {
            digits[index] = u'0';
            continue;
        }
        digits[index] = QChar(digits[index].unicode() + 1);
        return digits;
    }
    return u"1"_s + digits;
}

} // namespace

QString MoneyText::rounded(const Decimal &amount, int decimals)
{
    QString plain = amount.toString();
    const bool negative = plain.startsWith(u'-');
    if (negative)
        plain.remove(0, 1);
    const qsizetype point = plain.indexOf(u'.');
    QString whole = point < 0 ? plain : plain.left(point);
    QString fraction = point < 0 ? QString() : plain.mid(point + 1);
    const bool roundUp = fraction.size() > decimals && fraction[decimals] >= u'5';
    fraction = fraction.left(decimals).leftJustified(decimals, u'0');
    if (roundUp) {
        QString joined = incremented(whole + fraction);
        whole = joined.left(joined.size() - decimals);
        fraction = joined.right(decimals);
    }
    const bool isZero = !whole.contains(QRegularExpression(u"[1-9]"_s)) && !fraction.contains(QRegularExpression(u"[1-9]"_s));
    QString result = (negative && !isZero) ? u"-"_s + whole : whole;
    if (decimals > 0)
        result += u'.' + fraction;
    return result;
}

QString MoneyText::symbol(const QString &currencyCode, const QLocale &locale)
{
    if (currencyCode.isEmpty())
        return {};
    if (currencyCode == locale.currencySymbol(QLocale::CurrencyIsoCode))
        return locale.currencySymbol(QLocale::CurrencySymbol);
    static const QHash<QString, QString> symbols{
        {u"USD"_s, u"$"_s}, {u"EUR"_s, u"€"_s}, {u"GBP"_s, u"£"_s}, {u"JPY"_s, u"¥"_s},
        {u"CAD"_s, u"CA$"_s}, {u"AUD"_s, u"A$"_s},
    };
    return symbols.value(currencyCode, currencyCode);
}

QString MoneyText::text(const std::optional<Decimal> &amount, const QString &currencyCode, const QLocale &locale)
{
    if (!amount)
        return {};
    const int decimals = minorUnitDigits(currencyCode);
    const QString plain = rounded(*amount, decimals);
    const bool negative = plain.startsWith(u'-');
    const QString unsignedText = negative ? plain.mid(1) : plain;
    const qsizetype point = unsignedText.indexOf(u'.');
    const QString whole = point < 0 ? unsignedText : unsignedText.left(point);
    const QString fraction = point < 0 ? QString() : unsignedText.mid(point + 1);

    // The whole part through the locale for its grouping and digits; a part beyond the
    // range of qlonglong (never a real price) keeps its plain digits.
    bool fits = false;
    const qlonglong wholeValue = whole.toLongLong(&fits);
    QString number = fits ? locale.toString(wholeValue) : whole;
    if (!fraction.isEmpty()) {
        QString localFraction;
        for (const QChar digit : fraction)
            localFraction += locale.toString(digit.digitValue());
        number += locale.decimalPoint() + localFraction;
    }

    if (currencyCode.isEmpty())
        return (negative ? locale.negativeSign() : QString()) + number;

    // The locale's currency pattern, learned from the amount one: where the symbol stands,
    // where the sign goes and the blanks between them.
    const QString one = locale.toString(1);
    const QString pattern = locale.toCurrencyString(qlonglong(negative ? -1 : 1), symbol(currencyCode, locale));
    const qsizetype at = pattern.lastIndexOf(one);
    if (at < 0)
        return (negative ? locale.negativeSign() : QString()) + symbol(currencyCode, locale) + number;
    QString result = pattern;
    result.replace(at, one.size(), number);
    return result;
}
