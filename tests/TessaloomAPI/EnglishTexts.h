// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Installs the English text table behind the qtTrId() keys, as the program does at start,
// so tests can compare error sentences word for word.
class EnglishTexts
{
public:
    // False when the table is missing from the test executable.
    static bool install();
};
