// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Runs a program to its end and measures it from outside: wall time, processor time and the
// peak resident memory that the kernel recorded for it. QProcess can't tell the latter, wait4() can.
class ChildProcess
{
public:
    struct Result {
        int exitCode = -1;
        double wallSeconds = 0;
        double peakRssMegabytes = 0;
        // User plus system time: on a busy machine far steadier than the wall time.
        double cpuSeconds = 0;
    };

    // stdinPath, when given, becomes the child's standard input. Its standard output and
    // error are the benchmark's own, unless quiet: the sqlite3 shell echoes pragmas and
    // warns once per row of a dump with extra columns, which would break the JSON lines.
    static Result run(const QString &program, const QStringList &arguments, const QString &stdinPath = QString(),
                      bool quiet = false);
};
