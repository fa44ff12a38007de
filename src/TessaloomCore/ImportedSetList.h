// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What a set list exported by another collection tool says, read into one neutral form:
// which set numbers the collector owns and how many copies of each, with the rows that
// could not be used. The import into the store works on this form alone, whichever tool
// wrote the file.
struct ImportedSetListEntry
{
    QString setNumber;      // as the file writes it, trimmed ("75192-1", or "75192")
    qint64 quantity = 1;    // copies of the set, 1 to ImportedSetList::maximumQuantity
    qsizetype lineNumber = 0; // the entry's line in the file, counted from 1

    friend bool operator==(const ImportedSetListEntry &, const ImportedSetListEntry &) = default;
};

struct ImportedSetList
{
    // More copies of one set in one row than any collection holds: such a row is a typing
    // error or a hostile file, and is skipped rather than filling the store.
    static constexpr qint64 maximumQuantity = 1000;

    // The usable entries in file order. The same number may come more than once.
    QList<ImportedSetListEntry> entries;
    // One text per row left out, in file order, as "Line 4: missing set number" or
    // "Line 9: item type P skipped". Shown only as their number.
    QStringList skipped;
    // Set when the file as a whole cannot be read (XML that is not well formed): the
    // reader's own description with its line, "Opening and ending tag mismatch. (line 12)".
    // Entries and skipped rows are then empty.
    std::optional<QString> unreadable;

    friend bool operator==(const ImportedSetList &, const ImportedSetList &) = default;
};
