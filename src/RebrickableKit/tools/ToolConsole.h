// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTextStream>

// What the command-line tools share: their exit codes, standard output and error as text
// streams, and failure lines that start with the tool's name.
namespace ToolConsole {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
// The work completed, but what it read was not as expected: rebrickable-build-db when a
// table isn't clean (rows refused, a header differs, a broken quote), unless told to be lenient.
constexpr int exitDumpProblems = 3;

QTextStream &out();
QTextStream &err();

// Writes "TOOL: message" to standard error and gives exitFailure.
int fail(const QString &toolName, const QString &message);

} // namespace ToolConsole
