// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct sqlite3;

// Case- and diacritic-insensitive comparison text: decomposed (NFD), combining marks
// dropped, then case-folded, so "Café", "CAFE" and "cafe" fold alike. Queries compare
// folded texts for "contains, ignoring case and diacritics".
class TextFolding
{
public:
    static QString fold(const QString &text);
    // Registers the SQL function tessaloom_fold(text) on `database`; a NULL argument
    // gives NULL. Every store connection registers it when it opens.
    static bool registerFunction(sqlite3 *database);
};
