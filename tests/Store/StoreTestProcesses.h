// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Child processes that the store's tests start: a helper program run to its end with an
// environment of its own, and a store opened by an ordinary user, whom file permissions
// bind as they do not bind the superuser the tests may run as.

#include "Store/StoreError.h"

#include <QList>
#include <QPair>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <chrono>

namespace StoreTestProcesses {

// How a child process ended and what it wrote.
struct Finished
{
    // False when it was still running at the deadline and was killed.
    bool ended = false;
    QProcess::ExitStatus exitStatus = QProcess::CrashExit;
    int exitCode = -1;
    // Standard output, with standard error in it too when the two were merged.
    QString output;
    QString errors;
};

using Environment = QList<QPair<QString, QString>>;

// Runs `program` with this process's environment plus `environment` and waits for its end.
Finished run(const QString &program, const QStringList &arguments, const Environment &environment = {},
             QProcess::ProcessChannelMode channels = QProcess::SeparateChannels,
             std::chrono::milliseconds timeout = std::chrono::milliseconds(30000));

// Whether this process can open a store as an ordinary user, whom file permissions bind
// as they do not bind the superuser: it is not the superuser, or setpriv is at hand to run
// a process as the user nobody.
bool canOpenAsAnOrdinaryUser();

// Opens the store at `path`, inside `folder`, as an ordinary user and checks that it is
// refused with `kind` and a text that names the path. As the superuser the store opens in
// `writerProcess` ("open") run as nobody through setpriv, with `folder` opened to other
// users for reading and entering first, so that nobody reaches the file at all.
void verifyRefusedToAnOrdinaryUser(const QString &writerProcess, const QString &folder, const QString &path,
                                   StoreError::Kind kind);

} // namespace StoreTestProcesses
