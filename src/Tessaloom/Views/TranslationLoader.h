// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QCoreApplication;
class QLocale;

// Installs the texts behind every qtTrId() key: the English table compiled into the
// program, then the table of the user's language over it when one exists, then Qt's own.
class TranslationLoader
{
public:
    // Returns false when the compiled-in English table could not be loaded, which leaves
    // the screens showing bare keys.
    static bool install(QCoreApplication &application, const QLocale &locale);
};
