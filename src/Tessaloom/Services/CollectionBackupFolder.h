// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CollectionBackup.h"

#include <QList>
#include <QString>
#include <QStringList>

// The folder "Backups" beside the collection store and the backups in it: where the next
// one goes, which ones there are (newest first), and which are pruned. Plain file work,
// meant for worker threads; the main thread never waits on it.
class CollectionBackupFolder
{
public:
    explicit CollectionBackupFolder(QString path);
    // "<folder of the store>/Backups".
    static CollectionBackupFolder besideStore(const QString &storePath);

    QString path() const { return m_path; }

    // Creates the folder when it is missing. Throws CollectionBackupError::folderNotCreatable.
    void create() const;
    // The finished backups, newest first; files with other names are not backups.
    QList<CollectionBackup> list() const;
    // A path for a backup made at `createdAt` that no backup has yet, finished or in the
    // making: the second backup in one second gets " (2)", and so on.
    QString freePath(const QDateTime &createdAt) const;
    // Deletes all but the newest `keep` backups, never `spared` (a backup about to be
    // restored, which a backup made just before must not push out). Returns the deleted paths.
    QStringList prune(int keep, const QString &spared = QString()) const;
    // Deletes what a backup cut short left behind (a crash, a full disk): files with the
    // partial suffix and SQLite's side files of them.
    void removeLeftovers() const;
    // The same for one path in the making.
    static void removePartial(const QString &partialPath);

private:
    QString m_path;
};
