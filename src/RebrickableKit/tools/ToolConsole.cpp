// SPDX-License-Identifier: GPL-3.0-or-later
#include "ToolConsole.h"

namespace ToolConsole {

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream &err()
{
    static QTextStream stream(stderr);
    return stream;
}

int fail(const QString &toolName, const QString &message)
{
    err() << toolName << ": " << message << Qt::endl;
    return exitFailure;
}

} // namespace ToolConsole
