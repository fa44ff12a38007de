// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// The file names of backups: "Tessaloom 2026-11-25 06-30-12.sqlite" for the local time of
// the backup (no colons, which some file systems refuse), and "Tessaloom 2026-11-25
// 06-30-12 (2).sqlite" for a second backup in the same second, so that it never takes the
// place of the first. Files are sorted by what the name says, not by the file's own dates,
// which a copy or a restore from elsewhere changes.
class CollectionBackupName
{
public:
    struct Parsed
    {
        QDateTime createdAt; // local time, to the second
        int sequence = 1;
    };

    static QString fileName(const QDateTime &createdAt, int sequence = 1);
    // What a backup's name says; nothing for any other name (a file written half-way,
    // the user's own files).
    static std::optional<Parsed> parse(const QString &fileName);
    // The suffix of a backup that is still being written: such a file is never listed and
    // is renamed only when complete.
    static QString partialSuffix();
};
