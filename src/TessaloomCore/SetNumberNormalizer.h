// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Converts between the forms of a set number. The catalog writes a version suffix
// ("75192-1"); people and shops often leave it out ("75192").
class SetNumberNormalizer
{
public:
    // The catalog's form: unchanged when it holds a "-" anywhere, else with "-1" appended.
    // An empty or blank text gives "-1"; callers test for emptiness first.
    static QString catalogNumber(const QString &number);

    // What stands before the first "-", or the whole trimmed text.
    static QString baseNumber(const QString &number);

    // The trimmed text without a trailing "-1". Later versions such as "-2" stay visible.
    static QString displayNumber(const QString &number);
};
