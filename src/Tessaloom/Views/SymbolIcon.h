// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>

// Icons are named by symbol ("star.fill", "trash", "folder") everywhere in the screens.
// This maps a symbol to the freedesktop icon theme name, and to a picture of the current
// style when the desktop's theme lacks it, so that an icon is never blank.
class SymbolIcon
{
public:
    static QIcon icon(const QString &symbolName);
    // The freedesktop theme name for a symbol, or empty when there is none.
    static QString themeName(const QString &symbolName);

private:
    static QIcon resolve(const QString &symbolName);
};
