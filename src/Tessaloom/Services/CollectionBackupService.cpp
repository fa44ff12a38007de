// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionBackupService.h"

#include "Logging.h"
#include "RebrickableKit/SQLiteConnection.h"
#include "Services/AsyncSemaphore.h"
#include "Services/BackupFileCheck.h"
#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupName.h"
#include "Services/DailyBackupRule.h"
#include "Services/StoreRestorer.h"
#include "Services/StoreSnapshotCopier.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreError.h"
#include "Store/StoreSchema.h"

#include <QCoroFuture>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <QtConcurrent>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using Kind = CollectionBackupError::Kind;

namespace {

QString nativePath(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// On a worker thread: the copy under a partial name, renamed only when complete, then the
// pruning. Whatever fails, no partial file stays behind.
CollectionBackup writeBackup(const QString &storePath, const CollectionBackupFolder &folder, const QDateTime &now,
                             const QString &spared)
{
    folder.create();
    folder.removeLeftovers();
    const QString finalPath = folder.freePath(now);
    const QString partialPath = finalPath + CollectionBackupName::partialSuffix();
    StoreSnapshotCopier::copy(storePath, StoreSnapshotCopier::Source::liveStore, partialPath);
    QFile partial(partialPath);
    if (!partial.rename(finalPath)) {
        const QString reason = partial.errorString();
        CollectionBackupFolder::removePartial(partialPath);
        throw CollectionBackupError(Kind::renameFailed, u"(%1) %2"_s.arg(nativePath(finalPath), reason));
    }
    folder.prune(CollectionBackupService::keptBackups, spared);
    const std::optional<CollectionBackupName::Parsed> name = CollectionBackupName::parse(QFileInfo(finalPath).fileName());
    return CollectionBackup{finalPath, name ? name->createdAt : now, name ? name->sequence : 1, QFileInfo(finalPath).size()};
}

// On a worker thread: a backup of an older schema (or one written before stores carried
// their id) is copied and brought up to date like the store at start-up, never in place.
QString stageForRestore(const QString &backupPath, const CollectionBackupFolder &folder)
{
    folder.create();
    const QString stagingPath = QDir(folder.path()).absoluteFilePath(
        u"restore-%1%2"_s.arg(QUuid::createUuid().toString(QUuid::WithoutBraces), CollectionBackupName::partialSuffix()));
    StoreSnapshotCopier::copy(backupPath, StoreSnapshotCopier::Source::frozenFile, stagingPath);
    try {
        RebrickableKit::SQLiteConnection connection(stagingPath.toUtf8(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX);
        StoreSchema::migrate(connection);
    } catch (const StoreError &error) {
        CollectionBackupFolder::removePartial(stagingPath);
        throw CollectionBackupError(Kind::restoreFailed, u"(%1) %2"_s.arg(nativePath(backupPath), error.detail()));
    } catch (const RebrickableKit::SQLiteError &error) {
        CollectionBackupFolder::removePartial(stagingPath);
        throw CollectionBackupError(Kind::restoreFailed, u"(%1) %2"_s.arg(nativePath(backupPath), error.message()));
    }
    return stagingPath;
}

} // namespace

CollectionBackupService::CollectionBackupService(PersistentContainer &container, QObject *parent)
    : QObject(parent)
    , m_container(container)
    , m_folder(CollectionBackupFolder::besideStore(container.path()))
    , m_clock([] { return QDateTime::currentDateTime(); })
    , m_oneAtATime(new AsyncSemaphore(1, this))
{
    qRegisterMetaType<CollectionBackup>();
}

CollectionBackupService::~CollectionBackupService() = default;

CollectionBackupService &CollectionBackupService::of(PersistentContainer &container)
{
    auto *service = container.findChild<CollectionBackupService *>(QString(), Qt::FindDirectChildrenOnly);
    if (!service)
        service = new CollectionBackupService(container, &container);
    return *service;
}

bool CollectionBackupService::hasStoreFile() const
{
    return !m_container.isInMemory();
}

QCoro::Task<std::optional<CollectionBackup>> CollectionBackupService::backUp()
{
    if (!hasStoreFile())
        co_return std::nullopt;
    co_await m_oneAtATime->acquire();
    const AsyncSemaphore::Permit permit(*m_oneAtATime);
    co_return co_await makeBackup(QString());
}

QCoro::Task<bool> CollectionBackupService::tryBackUp()
{
    try {
        co_await backUp();
        co_return true;
    } catch (const CollectionBackupError &) {
        co_return false; // logged and announced by makeBackup()
    }
}

QCoro::Task<bool> CollectionBackupService::backUpIfDue()
{
    if (!hasStoreFile())
        co_return false;
    co_await m_oneAtATime->acquire();
    const AsyncSemaphore::Permit permit(*m_oneAtATime);
    const CollectionBackupFolder folder = m_folder;
    QFuture<QList<CollectionBackup>> listing = QtConcurrent::run([folder] { return folder.list(); });
    const QList<CollectionBackup> existing = co_await listing;
    const std::optional<QDateTime> newest = existing.isEmpty() ? std::nullopt
                                                               : std::optional<QDateTime>(existing.first().createdAt);
    if (!DailyBackupRule::isDue(newest, m_clock()))
        co_return false;
    try {
        co_await makeBackup(QString());
        co_return true;
    } catch (const CollectionBackupError &) {
        co_return false; // logged and announced by makeBackup()
    }
}

std::function<QCoro::Task<bool>()> CollectionBackupService::backupBeforeReset()
{
    return [this] { return tryBackUp(); };
}

QCoro::Task<QList<CollectionBackup>> CollectionBackupService::backups()
{
    const CollectionBackupFolder folder = m_folder;
    QFuture<QList<CollectionBackup>> listing = QtConcurrent::run([folder] { return folder.list(); });
    co_return co_await listing;
}

QCoro::Task<CollectionBackup> CollectionBackupService::makeBackup(QString spared)
{
    QElapsedTimer timer;
    timer.start();
    const QString storePath = m_container.path();
    const CollectionBackupFolder folder = m_folder;
    const QDateTime now = m_clock();
    QFuture<CollectionBackup> writing = QtConcurrent::run(
        [storePath, folder, now, spared] { return writeBackup(storePath, folder, now, spared); });
    try {
        const CollectionBackup backup = co_await writing;
        qCInfo(lcPersistence).noquote() << u"Backed up the collection to %1 (%2 bytes, %3 ms)"_s.arg(
            nativePath(backup.path)).arg(backup.size).arg(timer.elapsed());
        Q_EMIT backupAdded(backup);
        co_return backup;
    } catch (const CollectionBackupError &error) {
        qCWarning(lcPersistence).noquote() << u"Backing up the collection failed: %1"_s.arg(error.description());
        Q_EMIT backupFailed(error.sentence());
        throw;
    }
}

QCoro::Task<> CollectionBackupService::restore(QString path)
{
    co_await m_oneAtATime->acquire();
    const AsyncSemaphore::Permit permit(*m_oneAtATime);
    QElapsedTimer timer;
    timer.start();
    QString stagingPath;
    try {
        if (!hasStoreFile())
            throw CollectionBackupError(Kind::restoreFailed, u"The collection is kept in memory only."_s);
        QFuture<BackupFileCheck::Result> checking = QtConcurrent::run([path] { return BackupFileCheck::check(path); });
        const BackupFileCheck::Result checked = co_await checking;

        // The store as it is now, before it is replaced: the restore itself can be undone.
        co_await makeBackup(path);

        QString sourcePath = path;
        if (!checked.isCurrent) {
            const CollectionBackupFolder folder = m_folder;
            QFuture<QString> staging = QtConcurrent::run([path, folder] { return stageForRestore(path, folder); });
            stagingPath = co_await staging;
            sourcePath = stagingPath;
        }
        // Changes the view context has not saved belong to the collection being replaced.
        m_container.viewContext().rollback();
        PersistentContainer *container = &m_container;
        QFuture<StoreRestorer::Outcome> bringing = QtConcurrent::run(
            [container, sourcePath] { return StoreRestorer::bringIn(*container, sourcePath); });
        const StoreRestorer::Outcome outcome = co_await bringing;
        if (!stagingPath.isEmpty())
            CollectionBackupFolder::removePartial(stagingPath);
        QElapsedTimer announcing;
        announcing.start();
        StoreRestorer::announce(m_container, outcome);
        qCInfo(lcPersistence).noquote() << u"Restored the collection from %1 (%2 ms, of which %3 ms announcing it)"_s
                                               .arg(nativePath(path))
                                               .arg(timer.elapsed())
                                               .arg(announcing.elapsed());
        Q_EMIT storeRestored(path);
    } catch (const CollectionBackupError &error) {
        if (!stagingPath.isEmpty())
            CollectionBackupFolder::removePartial(stagingPath);
        qCWarning(lcPersistence).noquote() << u"Restoring a backup of the collection failed: %1"_s.arg(
            error.description());
        throw;
    }
}
