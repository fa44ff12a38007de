// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTestProcesses.h"

#include "StoreFixtures.h"

#include <QFile>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace StoreTestProcesses {

Finished run(const QString &program, const QStringList &arguments, const Environment &environment,
             QProcess::ProcessChannelMode channels, std::chrono::milliseconds timeout)
{
    QProcess process;
    QProcessEnvironment processEnvironment = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, value] : environment)
        processEnvironment.insert(name, value);
    process.setProcessEnvironment(processEnvironment);
    process.setProcessChannelMode(channels);
    process.start(program, arguments);
    Finished finished;
    if (!process.waitForFinished(int(timeout.count()))) {
        // Killed here rather than by QProcess's destructor, which would only warn.
        process.kill();
        process.waitForFinished();
        return finished;
    }
    finished.ended = true;
    finished.exitStatus = process.exitStatus();
    finished.exitCode = process.exitCode();
    finished.output = QString::fromUtf8(process.readAllStandardOutput());
    finished.errors = QString::fromUtf8(process.readAllStandardError());
    return finished;
}

namespace {

QString setpriv()
{
    return QStandardPaths::findExecutable(u"setpriv"_s);
}

} // namespace

bool canOpenAsAnOrdinaryUser()
{
    return ::geteuid() != 0 || !setpriv().isEmpty();
}

void verifyRefusedToAnOrdinaryUser(const QString &writerProcess, const QString &folder, const QString &path,
                                   StoreError::Kind kind)
{
    if (::geteuid() != 0) {
        const StoreError error = StoreFixtures::openFailure(path);
        QCOMPARE(error.kind(), kind);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        return;
    }
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                                      | QFileDevice::ReadOther | QFileDevice::ExeOther);
    const Finished opened = run(setpriv(), {u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s,
                                            writerProcess, u"open"_s, path});
    QVERIFY(opened.ended);
    QCOMPARE(opened.exitCode, 2);
    QVERIFY2(opened.errors.startsWith(u"kind=%1 "_s.arg(int(kind))), qPrintable(opened.errors));
    QVERIFY2(opened.errors.contains(path), qPrintable(opened.errors));
}

} // namespace StoreTestProcesses
