// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChildProcess.h"

#include <QElapsedTimer>
#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

extern char **environ;

ChildProcess::Result ChildProcess::run(const QString &program, const QStringList &arguments, const QString &stdinPath,
                                        bool quiet)
{
    std::vector<QByteArray> storage;
    storage.push_back(QFile::encodeName(program));
    for (const QString &argument : arguments)
        storage.push_back(argument.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &argument : storage)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const QByteArray inputPath = QFile::encodeName(stdinPath);
    if (!stdinPath.isEmpty())
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, inputPath.constData(), O_RDONLY, 0);
    if (quiet) {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }

    Result result;
    QElapsedTimer timer;
    timer.start();
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return result;
    int status = 0;
    rusage usage {};
    if (wait4(pid, &status, 0, &usage) < 0)
        return result;
    result.wallSeconds = double(timer.nsecsElapsed()) / 1e9;
    result.peakRssMegabytes = double(usage.ru_maxrss) / 1024.0; // Linux reports KiB
    result.cpuSeconds = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}
