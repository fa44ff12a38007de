// SPDX-License-Identifier: GPL-3.0-or-later
#include "OfferedCurrencies.h"

using namespace Qt::StringLiterals;

QStringList OfferedCurrencies::codes()
{
    return {u"USD"_s, u"EUR"_s, u"GBP"_s, u"CAD"_s, u"AUD"_s,
            u"JPY"_s, u"CHF"_s, u"SEK"_s, u"DKK"_s, u"NOK"_s};
}

bool OfferedCurrencies::contains(const QString &code)
{
    return codes().contains(code);
}

QString OfferedCurrencies::codeOrDefault(const QString &preferred)
{
    return contains(preferred) ? preferred : u"USD"_s;
}
