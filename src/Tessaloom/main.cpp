// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/StoreOpenFailureDialog.h"
#include "Views/TessaloomApp.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLocale>

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
    TranslationLoader::install(application, QLocale());
    StoreOpenFailureDialog::install();

    TessaloomApp tessaloom;
    tessaloom.showMainWindow();
    return QApplication::exec();
}
