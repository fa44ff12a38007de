// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/BundledIconTheme.h"

#include <QIcon>
#include <QStringList>

using namespace Qt::StringLiterals;

void BundledIconTheme::install()
{
    const QString bundled = QString::fromLatin1(name);
    QStringList paths = QIcon::themeSearchPaths();
    if (!paths.contains(u":/icons"_s))
        paths.append(u":/icons"_s);
    QIcon::setThemeSearchPaths(paths);
    QIcon::setFallbackThemeName(bundled);
    // "hicolor" is what Qt reports when the desktop names no theme: it holds application
    // icons only, so the bundled theme takes its place.
    const QString desktopTheme = QIcon::themeName();
    if (desktopTheme.isEmpty() || desktopTheme == u"hicolor")
        QIcon::setThemeName(bundled);
}
