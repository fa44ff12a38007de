// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstalledTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>

using namespace Qt::StringLiterals;

QStringList InstalledTree::expectedFiles()
{
    return {
        u"bin/tessaloom"_s,
        u"bin/rebrickable-fetch"_s,
        u"bin/rebrickable-build-db"_s,
        u"share/Tessaloom/rebrickable.sqlite"_s,
        u"share/Tessaloom/translations/tessaloom_en.qm"_s,
        u"share/applications/com.tessaloom.app.desktop"_s,
        u"share/metainfo/com.tessaloom.app.metainfo.xml"_s,
        u"share/icons/hicolor/scalable/apps/com.tessaloom.app.svg"_s,
        u"share/icons/hicolor/48x48/apps/com.tessaloom.app.png"_s,
        u"share/icons/hicolor/256x256/apps/com.tessaloom.app.png"_s,
        u"share/doc/tessaloom/LICENSE"_s,
    };
}

QString InstalledTree::install(const QString &prefix)
{
    const Run result = run(QStringLiteral(TESSALOOM_CMAKE_COMMAND),
                           {u"--install"_s, QStringLiteral(TESSALOOM_BUILD_DIR), u"--prefix"_s, prefix, u"--strip"_s},
                           QProcessEnvironment::systemEnvironment(), 300'000);
    if (result.finished && result.exitCode == 0)
        return {};
    return u"cmake --install ended with status %1:\n%2%3"_s.arg(result.exitCode)
        .arg(QString::fromLocal8Bit(result.standardOutput), QString::fromLocal8Bit(result.standardError));
}

InstalledTree::Run InstalledTree::run(const QString &program, const QStringList &arguments,
                                      const QProcessEnvironment &environment, int timeoutMilliseconds)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    Run result;
    if (!process.waitForStarted(timeoutMilliseconds)) {
        result.standardError = process.errorString().toLocal8Bit();
        return result;
    }
    result.finished = process.waitForFinished(timeoutMilliseconds);
    if (!result.finished) {
        process.kill();
        process.waitForFinished();
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    return result;
}

QProcessEnvironment InstalledTree::environmentWithoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    return environment;
}

QProcessEnvironment InstalledTree::offscreenEnvironment(const QString &home)
{
    QProcessEnvironment environment = environmentWithoutDisplay();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    const QList<std::pair<QString, QString>> folders = {
        {u"HOME"_s, u"home"_s},           {u"XDG_CONFIG_HOME"_s, u"config"_s}, {u"XDG_DATA_HOME"_s, u"data"_s},
        {u"XDG_CACHE_HOME"_s, u"cache"_s}, {u"XDG_RUNTIME_DIR"_s, u"runtime"_s},
    };
    for (const auto &[variable, folder] : folders) {
        const QString path = home + u'/' + folder;
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(variable, path);
    }
    // Port 9 (discard) is closed here: the daily catalog check and the update check fail
    // at once instead of leaving the machine.
    QStringList endpoints;
    for (const QString &service : {u"rebrickable"_s, u"bricklink"_s, u"bricklinkImages"_s, u"brickeconomy"_s,
                                   u"brickset"_s, u"brickowl"_s, u"ebay"_s, u"rapidapi"_s, u"lego"_s, u"updates"_s})
        endpoints.append(service + u"=http://127.0.0.1:9"_s);
    environment.insert(u"TESSALOOM_ENDPOINTS"_s, endpoints.join(u';'));
    return environment;
}

QStringList InstalledTree::buildTreePaths()
{
    return {QDir::cleanPath(QStringLiteral(TESSALOOM_SOURCE_DIR)), QDir::cleanPath(QStringLiteral(TESSALOOM_BUILD_DIR))};
}

QStringList InstalledTree::filesUnder(const QString &root)
{
    QStringList files;
    QDirIterator iterator(root, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    const QDir base(root);
    while (iterator.hasNext())
        files.append(base.relativeFilePath(iterator.next()));
    files.sort();
    return files;
}

QStringList InstalledTree::filesContaining(const QString &root, const QStringList &needles)
{
    QStringList holders;
    for (const QString &relativePath : filesUnder(root)) {
        QFile file(root + u'/' + relativePath);
        if (!file.open(QIODevice::ReadOnly)) {
            holders.append(relativePath + u" (unreadable)"_s);
            continue;
        }
        const QByteArray content = file.readAll();
        for (const QString &needle : needles) {
            if (content.contains(needle.toUtf8())) {
                holders.append(relativePath + u" holds "_s + needle);
                break;
            }
        }
    }
    return holders;
}
