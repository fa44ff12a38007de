// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// What the install tests share: the files an install must hold, installing the build into
// a folder with `cmake --install`, running programs, and finding build-tree paths that
// leaked into installed files.
class InstalledTree
{
public:
    struct Run
    {
        int exitCode = -1;
        bool finished = false;
        QByteArray standardOutput;
        QByteArray standardError;
    };

    // Every file an install holds, relative to the prefix.
    static QStringList expectedFiles();

    // Installs the build tree into `prefix` (stripped, as a package is). Returns an
    // explanation when it failed, else an empty string.
    static QString install(const QString &prefix);

    // Runs `program` with `arguments` and waits up to `timeoutMilliseconds`.
    static Run run(const QString &program, const QStringList &arguments,
                   const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment(),
                   int timeoutMilliseconds = 60'000);

    // An environment with no display at all, as in an SSH session.
    static QProcessEnvironment environmentWithoutDisplay();
    // An environment for starting the program offscreen with its own empty HOME and XDG
    // folders under `home`, and every outside service pointed at a closed local port.
    static QProcessEnvironment offscreenEnvironment(const QString &home);

    // The absolute paths of the source and build trees, which no installed file may hold.
    static QStringList buildTreePaths();
    // The files under `root` (relative paths) holding any of `needles`.
    static QStringList filesContaining(const QString &root, const QStringList &needles);
    // All files under `root`, relative to it.
    static QStringList filesUnder(const QString &root);
};
