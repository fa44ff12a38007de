// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The program's default log filter: debug lines are off, information, warnings and errors
// stay. The filter is set through QLoggingCategory::setFilterRules, which Qt ranks below a
// user's qtlogging.ini, the file named by QT_LOGGING_CONF and the rules in
// QT_LOGGING_RULES: any of those, "*.debug=true" for one, turns the debug lines back on.
class LoggingDefaults
{
public:
    static QString filterRules();
    // Installs the default filter; to be called once, early at start-up.
    static void apply();
};
