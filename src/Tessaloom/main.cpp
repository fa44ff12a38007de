// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TessaloomApp.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTranslator>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// A desktop program started where there is no screen (an SSH session, a container)
// would otherwise abort inside the platform plugin with a cryptic message.
bool hasDisplay()
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        || qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

void installTranslators(QApplication &application)
{
    // English texts come from the id-based table compiled into the program; a table for
    // the user's language, when one exists, is loaded over it.
    for (const QString &name : QStringList{u"tessaloom_en"_s, u"tessaloom_"_s + QLocale().name()}) {
        auto *translator = new QTranslator(&application);
        if (translator->load(name, u":/i18n"_s))
            QApplication::installTranslator(translator);
        else
            delete translator;
    }
    auto *qtTranslator = new QTranslator(&application);
    if (qtTranslator->load(QLocale(), u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(qtTranslator);
    else
        delete qtTranslator;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!hasDisplay()) {
        std::fputs("Tessaloom needs a graphical display, and none was found (DISPLAY and "
                   "WAYLAND_DISPLAY are unset); start it from a desktop session.\n", stderr);
        return 2;
    }

    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"Tessaloom"_s);
    QApplication::setApplicationName(u"Tessaloom"_s);
    QApplication::setApplicationDisplayName(u"Tessaloom"_s);
    QApplication::setApplicationVersion(QStringLiteral(TESSALOOM_VERSION));
    QApplication::setDesktopFileName(u"com.tessaloom.app"_s);
    installTranslators(application);

    TessaloomApp tessaloom;
    tessaloom.showMainWindow();
    return QApplication::exec();
}
