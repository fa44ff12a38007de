// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ImportedSetList.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringView>

// The set list CSV that Rebrickable exports and imports: a header
// "Set Number,Quantity,Includes Spares,Inventory Ver" and one row per set number with the
// number of copies. The quoting is the one of CSVFieldSyntax.
class RebrickableSetListFormat
{
public:
    // The four column names as the file writes them.
    static const QStringList &columnNames();

    // Whether `text` is such a file: its first non-blank line, after a byte-order mark if
    // there is one, names the four columns, in any order and in any case, each trimmed;
    // further columns are allowed.
    static bool recognises(QStringView text);

    // The rows of a recognised file. A row whose set number is empty, or whose quantity is
    // not a whole number from 1 to ImportedSetList::maximumQuantity, is skipped with its line
    // ("Line 3: missing set number", "Line 5: invalid quantity"). "Includes Spares" and
    // "Inventory Ver" are not used. Never sets `unreadable`.
    static ImportedSetList read(QStringView text);

    // The file for `counts` (set number, copies) in the order given: the header, then one
    // line per pair with "True" for spares and 1 for the inventory version, joined by line
    // feeds with one after the last line.
    static QString write(const QList<QPair<QString, qint64>> &counts);
};
