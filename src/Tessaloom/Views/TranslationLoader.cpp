// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TranslationLoader.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace {

bool installTable(QCoreApplication &application, const QString &fileName, const QString &directory)
{
    auto *translator = new QTranslator(&application);
    if (!translator->load(fileName, directory)) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    return true;
}

} // namespace

bool TranslationLoader::install(QCoreApplication &application, const QLocale &locale)
{
    const bool english = installTable(application, u"tessaloom_en"_s, u":/i18n"_s);
    if (!english)
        qCWarning(lcApp) << "The English text table is missing from the program";
    if (locale.language() != QLocale::English)
        installTable(application, u"tessaloom_"_s + locale.name(), u":/i18n"_s);
    installTable(application, u"qtbase_"_s + locale.name(), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return english;
}
