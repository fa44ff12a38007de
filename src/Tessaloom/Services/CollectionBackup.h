// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

// One finished backup of the collection in the Backups folder: its file, the local time
// its name gives (to the second), the number that tells apart two backups made in the same
// second (1 for the first), and its size in bytes.
struct CollectionBackup
{
    QString path;
    QDateTime createdAt;
    int sequence = 1;
    qint64 size = 0;

    // Newest first: by time, then by the number within the same second.
    bool isNewerThan(const CollectionBackup &other) const
    {
        if (createdAt != other.createdAt)
            return createdAt > other.createdAt;
        return sequence > other.sequence;
    }

    friend bool operator==(const CollectionBackup &, const CollectionBackup &) = default;
};

Q_DECLARE_METATYPE(CollectionBackup)
