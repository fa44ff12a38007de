// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The yardstick for the catalog build: the sqlite3 shell importing the same dumps with
// .import into the same schema, under the same pragmas, then the same indexes, full-text
// fill, user_version and VACUUM. Only the way rows get in differs.
class ShellBaseline
{
public:
    // Writes the shell script that builds outputPath from the dumps in csvDirectory.
    static void writeScript(const QString &scriptPath, const QString &csvDirectory);
};
