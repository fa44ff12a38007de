// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "LoopbackOnlyProxyFactory.h"

#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

std::unique_ptr<QTemporaryDir> &TestEnvironment::root()
{
    static std::unique_ptr<QTemporaryDir> directory;
    return directory;
}

void TestEnvironment::isolate()
{
    if (root())
        return;
    root() = std::make_unique<QTemporaryDir>();
    const QString base = root()->path();
    for (const char *folder : {"home", "config", "data", "cache", "runtime"})
        QDir(base).mkpath(QString::fromLatin1(folder));
    qputenv("HOME", (base + u"/home"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", (base + u"/config"_s).toUtf8());
    qputenv("XDG_DATA_HOME", (base + u"/data"_s).toUtf8());
    qputenv("XDG_CACHE_HOME", (base + u"/cache"_s).toUtf8());
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(u"Tessaloom"_s);
    QCoreApplication::setApplicationName(u"Tessaloom"_s);
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, base + u"/config"_s);
    QSettings().clear();
    LoopbackOnlyProxyFactory::install();
}

QString TestEnvironment::temporaryRoot()
{
    isolate();
    return root()->path();
}

QString TestEnvironment::sharedDataDirectory()
{
    const QString directory = QStringLiteral(TESSALOOM_SHARED_DATA_DIR);
    return QDir(directory).exists() ? QDir(directory).absolutePath() : QString();
}

QString TestEnvironment::sharedDumpDirectory()
{
    const QString data = sharedDataDirectory();
    if (data.isEmpty())
        return {};
    const QString dumps = data + u"/rebrickable-2026-04-02"_s;
    return QDir(dumps).exists() ? dumps : QString();
}
