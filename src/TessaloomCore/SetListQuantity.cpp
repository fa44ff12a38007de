// SPDX-License-Identifier: GPL-3.0-or-later
#include "SetListQuantity.h"

#include "ImportedSetList.h"

std::optional<qint64> SetListQuantity::fromText(QStringView text)
{
    const QStringView digits = text.trimmed();
    if (digits.isEmpty())
        return std::nullopt;
    qint64 value = 0;
    for (const QChar character : digits) {
        const char16_t unit = character.unicode();
        // ASCII digits only: QChar::isDigit() would take Arabic-Indic and other digits that
        // no tool writes and that would read as a different number to the collector.
        if (unit < u'0' || unit > u'9')
            return std::nullopt;
        value = value * 10 + (unit - u'0');
        // Stopping here keeps any number of digits from overflowing.
        if (value > ImportedSetList::maximumQuantity)
            return std::nullopt;
    }
    if (value < 1)
        return std::nullopt;
    return value;
}
