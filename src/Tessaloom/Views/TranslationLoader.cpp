// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TranslationLoader.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

bool installTable(QCoreApplication &application, const QString &fileName, const QStringList &directories)
{
    for (const QString &directory : directories) {
        auto *translator = new QTranslator(&application);
        if (!translator->load(fileName, directory)) {
            delete translator;
            continue;
        }
        QCoreApplication::installTranslator(translator);
        qCInfo(lcApp, "Texts loaded from: %s", qUtf8Printable(translator->filePath()));
        return true;
    }
    return false;
}

} // namespace

QStringList TranslationLoader::searchDirectories()
{
    // The installed tables come first so that a language packaged after the program (or a
    // corrected table) takes effect without rebuilding it; the compiled-in copy keeps a
    // damaged or partly copied install showing texts. bin/ and share/ sit side by side in
    // an installed tree wherever it was moved.
    return {QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../share/Tessaloom/translations"_s),
            u":/i18n"_s};
}

bool TranslationLoader::install(QCoreApplication &application, const QLocale &locale)
{
    const QStringList directories = searchDirectories();
    const bool english = installTable(application, u"tessaloom_en"_s, directories);
    if (!english)
        qCWarning(lcApp) << "The English text table is missing from the program";
    if (locale.language() != QLocale::English)
        installTable(application, u"tessaloom_"_s + locale.name(), directories);
    installTable(application, u"qtbase_"_s + locale.name(), {QLibraryInfo::path(QLibraryInfo::TranslationsPath)});
    return english;
}
