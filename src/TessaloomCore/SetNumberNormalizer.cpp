// SPDX-License-Identifier: GPL-3.0-or-later
#include "SetNumberNormalizer.h"

using namespace Qt::StringLiterals;

QString SetNumberNormalizer::catalogNumber(const QString &number)
{
    const QString trimmed = number.trimmed();
    if (trimmed.contains(u'-'))
        return trimmed;
    return trimmed + u"-1"_s;
}

QString SetNumberNormalizer::baseNumber(const QString &number)
{
    const QString trimmed = number.trimmed();
    const qsizetype dash = trimmed.indexOf(u'-');
    return dash < 0 ? trimmed : trimmed.left(dash);
}

QString SetNumberNormalizer::displayNumber(const QString &number)
{
    const QString trimmed = number.trimmed();
    if (trimmed.endsWith(u"-1"_s))
        return trimmed.chopped(2);
    return trimmed;
}
