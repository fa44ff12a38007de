// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CollectionBackup.h"
#include "Services/CollectionBackupFolder.h"

#include <QCoroTask>
#include <QDateTime>
#include <QList>
#include <QObject>

#include <functional>
#include <optional>

class AsyncSemaphore;
class PersistentContainer;

// Keeps the collection, the one file nothing else can rebuild, safe by itself: copies of
// the store in the folder "Backups" beside it (see StoreSnapshotCopier, CollectionBackupName),
// the newest 14 kept; once a day at start-up, before an import and before the collection is
// reset; and a backup brought back in place of the store (see StoreRestorer).
//
// All file work runs off the main thread; the main thread only awaits it. Backups and
// restores take turns, one at a time, in the order asked. A failed backup is logged as a
// warning on the persistence category and announced once by backupFailed(); it never
// touches the live store and leaves no file behind.
class CollectionBackupService : public QObject
{
    Q_OBJECT

public:
    static constexpr int keptBackups = 14;
    using Clock = std::function<QDateTime()>;

    explicit CollectionBackupService(PersistentContainer &container, QObject *parent = nullptr);
    ~CollectionBackupService() override;

    // The service of `container`, made on first use as its child: the window's commands,
    // the start-up and the settings all take turns through the same one.
    static CollectionBackupService &of(PersistentContainer &container);

    // The time backups are named by and the daily rule reads; the system clock by default.
    void setClock(Clock clock) { m_clock = std::move(clock); }
    CollectionBackupFolder folder() const { return m_folder; }
    // Whether the store has a file to copy; a private in-memory store has none.
    bool hasStoreFile() const;

    // Makes a backup and prunes to the newest 14. Nothing for a store without a file.
    // Throws CollectionBackupError, after logging it and emitting backupFailed().
    QCoro::Task<std::optional<CollectionBackup>> backUp();
    // The same, telling only whether it worked (or there was nothing to back up).
    QCoro::Task<bool> tryBackUp();
    // The start-up backup: made when the newest backup is not from today (DailyBackupRule).
    // Returns whether one was made; a failure is logged and announced like any other.
    QCoro::Task<bool> backUpIfDue();
    // For "reset collection": awaited before the reset, which goes ahead only on true.
    std::function<QCoro::Task<bool>()> backupBeforeReset();

    // The finished backups, newest first, read off the main thread.
    QCoro::Task<QList<CollectionBackup>> backups();

    // Replaces the collection by the backup at `path`: checks the file (BackupFileCheck),
    // backs up the current store first (sparing `path` from pruning), migrates a copy of an
    // older backup, then brings it in. Throws CollectionBackupError; a refused or failed
    // restore leaves the store as it was.
    QCoro::Task<> restore(QString path);

Q_SIGNALS:
    void backupAdded(const CollectionBackup &backup);
    // The sentence for the status bar, once per failed backup.
    void backupFailed(const QString &message);
    void storeRestored(const QString &path);

private:
    // The body of backUp() once it is this caller's turn.
    QCoro::Task<CollectionBackup> makeBackup(QString spared);

    PersistentContainer &m_container;
    CollectionBackupFolder m_folder;
    Clock m_clock;
    AsyncSemaphore *m_oneAtATime;
};
