// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The header texts of the set tables, one per kind of column, so that the table of copies
// and the table of catalog results name the columns they share alike.
class SetListColumnTitle
{
public:
    enum class Kind { setNumber, name, theme, year, pieces, condition, value, added };

    static QString text(Kind kind);
};
