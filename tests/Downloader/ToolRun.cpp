// SPDX-License-Identifier: GPL-3.0-or-later
#include "ToolRun.h"

#include <QProcess>

using namespace Qt::StringLiterals;

ToolRun ToolRun::of(const QString &program, const QStringList &arguments, const QUrl &hostUrl)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TESSALOOM_ENDPOINTS"_s, u"rebrickable="_s + hostUrl.toString());
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(240000))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
}
