// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

// One of the catalog's command-line tools run to its end as a separate process, pointed at
// a download host through TESSALOOM_ENDPOINTS, and what it printed.
struct ToolRun
{
    // -1 when the tool crashed or did not end within four minutes.
    int exitCode = -1;
    QString output;
    QString errors;

    // Waits here for the tool, so the host must answer from another thread, as the
    // loopback server does.
    static ToolRun of(const QString &program, const QStringList &arguments, const QUrl &hostUrl);
};
