// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/LoggingDefaults.h"

#include <QLoggingCategory>

using namespace Qt::StringLiterals;

QString LoggingDefaults::filterRules()
{
    // A picture alone writes several debug lines; a user reading standard error wants the
    // warnings, and a developer turns the rest on by category.
    return u"*.debug=false"_s;
}

void LoggingDefaults::apply()
{
    QLoggingCategory::setFilterRules(filterRules());
}
