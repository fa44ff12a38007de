// SPDX-License-Identifier: GPL-3.0-or-later
#include "OverallCondition.h"

using namespace Qt::StringLiterals;

QString overallConditionColorName(OverallCondition condition)
{
    switch (condition) {
    case OverallCondition::new_:
        return u"green"_s;
    case OverallCondition::used:
        return u"blue"_s;
    }
    return u"blue"_s;
}
