// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QCoreApplication;
class QLocale;

// Installs the texts behind every qtTrId() key: the English table, then the table of the
// user's language over it when one exists, then Qt's own. Each of our tables is looked up
// first among the installed translations beside the program, then inside the program.
class TranslationLoader
{
public:
    // Returns false when no English table could be loaded, which leaves the screens
    // showing bare keys.
    static bool install(QCoreApplication &application, const QLocale &locale);

    // Where our tables are looked for, in order: share/Tessaloom/translations/ of the
    // installed tree the program runs from, then the copy compiled into the program.
    static QStringList searchDirectories();
};
