// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupFixtures.h"
#include "LogCapture.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupFolder.h"
#include "Services/CollectionBackupService.h"
#include "Views/TranslationLoader.h"
#include "Services/DailyBackupRule.h"
#include "Services/StoreSnapshotCopier.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace BackupFixtures;

// Backups of a real store file into the Backups folder beside it, with the clock injected.
class CollectionBackupServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_container;
    std::unique_ptr<CollectionBackupService> m_service;
    QDateTime m_now;

    QString storePath() const { return m_folder->filePath(u"Tessaloom.sqlite"_s); }
    QString backupsPath() const { return m_folder->filePath(u"Backups"_s); }
    QStringList filesInBackups() const { return QDir(backupsPath()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    std::unique_ptr<CollectionBackupService> newService()
    {
        auto service = std::make_unique<CollectionBackupService>(*m_container);
        service->setClock([this] { return m_now; });
        return service;
    }

    TaskOutcome<std::optional<CollectionBackup>> backUp()
    {
        return waitForOutcome(m_service->backUp());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_container = StoreFixtures::openStore(*m_folder);
        fillCollection(m_container->viewContext(), 3, 2, u"live"_s);
        m_now = QDateTime(QDate(2026, 11, 25), QTime(6, 30, 12));
        m_service = newService();
    }

    void cleanup()
    {
        QFile::setPermissions(backupsPath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_service.reset();
        m_container.reset();
        m_folder.reset();
    }

    void aBackupIsNamedByItsLocalDateAndTimeBesideTheStore()
    {
        QSignalSpy added(m_service.get(), &CollectionBackupService::backupAdded);
        const auto outcome = backUp();
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(filesInBackups(), QStringList{u"Tessaloom 2026-11-25 06-30-12.sqlite"_s});
        QCOMPARE(added.size(), 1);
        const auto backup = added.first().first().value<CollectionBackup>();
        QCOMPARE(backup.path, backupsPath() + u"/Tessaloom 2026-11-25 06-30-12.sqlite"_s);
        QCOMPARE(backup.createdAt, m_now);
        QCOMPARE(backup.size, QFileInfo(backup.path).size());
    }

    void twoBackupsInOneSecondBothStay()
    {
        QVERIFY(!backUp().failure);
        QVERIFY(!backUp().failure);
        QCOMPARE(filesInBackups(), (QStringList{u"Tessaloom 2026-11-25 06-30-12 (2).sqlite"_s,
                                                u"Tessaloom 2026-11-25 06-30-12.sqlite"_s}));
        const QList<CollectionBackup> listed = m_service->folder().list();
        QCOMPARE(listed.size(), 2);
        QCOMPARE(listed.first().sequence, 2); // newest first
    }

    void aBackupHoldsTheCollectionInOneSelfContainedFile()
    {
        const auto outcome = backUp();
        QVERIFY(outcome.value && *outcome.value);
        const QString path = (*outcome.value)->path;
        QCOMPARE(storeRows(path), storeRows(storePath()));
        QCOMPARE(pragmaText(path, "PRAGMA integrity_check"), u"ok"_s);
        QCOMPARE(pragmaText(path, "PRAGMA journal_mode"), u"delete"_s);
        QCOMPARE(filesInBackups().size(), 1); // no journal, WAL or partial file beside it
    }

    void theDailyBackupIsMadeOnTheFirstStartOfEachCalendarDay()
    {
        QCOMPARE(QCoro::waitFor(m_service->backUpIfDue()), true);

        // A second start the same evening finds the morning's backup.
        m_now = QDateTime(QDate(2026, 11, 25), QTime(23, 59, 0));
        m_service = newService();
        QCOMPARE(QCoro::waitFor(m_service->backUpIfDue()), false);
        QCOMPARE(filesInBackups().size(), 1);

        // Minutes later it is another day.
        m_now = QDateTime(QDate(2026, 11, 26), QTime(0, 5, 0));
        m_service = newService();
        QCOMPARE(QCoro::waitFor(m_service->backUpIfDue()), true);
        QCOMPARE(filesInBackups(), (QStringList{u"Tessaloom 2026-11-25 06-30-12.sqlite"_s,
                                                u"Tessaloom 2026-11-26 00-05-00.sqlite"_s}));
        QCOMPARE(QCoro::waitFor(m_service->backUpIfDue()), false);
    }

    void theDailyRuleComparesCalendarDays()
    {
        const QDateTime evening(QDate(2026, 11, 25), QTime(23, 0));
        QVERIFY(DailyBackupRule::isDue(std::nullopt, evening));
        QVERIFY(!DailyBackupRule::isDue(QDateTime(QDate(2026, 11, 25), QTime(0, 1)), evening));
        QVERIFY(DailyBackupRule::isDue(QDateTime(QDate(2026, 11, 24), QTime(23, 59)), evening));
        // A backup dated after today (the clock was set back) is not today's.
        QVERIFY(DailyBackupRule::isDue(QDateTime(QDate(2026, 12, 1), QTime(8, 0)), evening));
    }

    void pruningKeepsTheFourteenNewest()
    {
        const QDateTime first = m_now;
        for (int index = 0; index < 16; ++index) {
            m_now = first.addSecs(index);
            QVERIFY(!backUp().failure);
        }
        const QStringList files = filesInBackups();
        QCOMPARE(files.size(), CollectionBackupService::keptBackups);
        QCOMPARE(files.first(), u"Tessaloom 2026-11-25 06-30-14.sqlite"_s);
        QCOMPARE(files.last(), u"Tessaloom 2026-11-25 06-30-27.sqlite"_s);
    }

    void aBackupTakenWhileABackgroundContextWritesIsConsistent()
    {
        constexpr int copiesPerSave = 40;
        constexpr int saves = 40;
        const qint64 before = rowCount(storePath(), u"BrickSet"_s);
        const std::optional<ObjectID> set = m_container->viewContext().fetch(FetchRequest<CatalogSet>()).first().objectID;
        const std::shared_ptr<ManagedObjectContext> writer = m_container->newBackgroundContext();
        QFuture<int> writing = writer->perform([set](ManagedObjectContext &context) {
            for (int save = 0; save < saves; ++save) {
                for (int index = 0; index < copiesPerSave; ++index)
                    context.insert(StoreFixtures::newCopy(set));
                context.save();
            }
            return saves;
        });
        QList<qint64> seen;
        while (!writing.isFinished() || seen.isEmpty()) {
            const auto outcome = backUp();
            QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
            const QString path = (*outcome.value)->path;
            QCOMPARE(pragmaText(path, "PRAGMA integrity_check"), u"ok"_s);
            seen.append(rowCount(path, u"BrickSet"_s));
            m_now = m_now.addSecs(1);
        }
        writing.waitForFinished();
        const qint64 after = before + qint64(copiesPerSave) * saves;
        QCOMPARE(rowCount(storePath(), u"BrickSet"_s), after);
        bool sawWriterAtWork = false;
        for (const qint64 count : seen) {
            // Whole transactions only: never a save half-way.
            QVERIFY2((count - before) % copiesPerSave == 0, qPrintable(u"%1 copies"_s.arg(count)));
            QVERIFY(count >= before && count <= after);
            sawWriterAtWork = sawWriterAtWork || (count > before && count < after);
        }
        QVERIFY2(sawWriterAtWork, "no backup was taken while the writer was at work");
    }

    void aFailedBackupIsLoggedAnnouncedOnceAndLeavesNothingBehind()
    {
        const QStringList rowsBefore = storeRows(storePath());
        // A folder that refuses new files; as root, where permissions do not stop writes,
        // a "Backups" that is a regular file, so that no file can be made inside it.
        QVERIFY(QDir().mkpath(backupsPath()));
        QFile::setPermissions(backupsPath(), QFile::ReadOwner | QFile::ExeOwner);
        const bool folderRefuses = permissionsAreEnforced(backupsPath());
        if (!folderRefuses) {
            QFile::setPermissions(backupsPath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QVERIFY(QDir(backupsPath()).removeRecursively());
            QFile blocker(backupsPath());
            QVERIFY(blocker.open(QIODevice::WriteOnly));
            blocker.write("not a folder");
        }
        LogCapture log;
        QSignalSpy failed(m_service.get(), &CollectionBackupService::backupFailed);
        QSignalSpy added(m_service.get(), &CollectionBackupService::backupAdded);
        const auto outcome = backUp();
        const auto error = outcome.error<CollectionBackupError>();
        QVERIFY(error);
        QCOMPARE(error->kind(), folderRefuses ? CollectionBackupError::Kind::writeFailed
                                              : CollectionBackupError::Kind::folderNotCreatable);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.first().first().toString(), error->sentence());
        QCOMPARE(added.size(), 0);
        QVERIFY(log.indexOfMessageStartingWith(u"Backing up the collection failed: "_s) >= 0);
        if (folderRefuses) {
            QCOMPARE(filesInBackups(), QStringList());
        } else {
            QVERIFY(QFileInfo(backupsPath()).isFile());
            QCOMPARE(QFileInfo(backupsPath()).size(), qint64(12));
        }
        QCOMPARE(storeRows(storePath()), rowsBefore);
        // The store still takes changes.
        fillCollection(m_container->viewContext(), 1, 0, u"after"_s);
        QCOMPARE(rowCount(storePath(), u"BrickSet"_s), qint64(4));
    }

    void aStoreThatCannotBeReadIsReportedAsSuchAndLeavesNoCopy()
    {
        const QString unreadable = m_folder->filePath(u"garbage.sqlite"_s);
        QFile garbage(unreadable);
        QVERIFY(garbage.open(QIODevice::WriteOnly));
        garbage.write(QByteArray(8192, '\x5a'));
        garbage.close();
        const QString destination = m_folder->filePath(u"copy.sqlite.partial"_s);
        for (const QString &source : {unreadable, m_folder->filePath(u"missing.sqlite"_s)}) {
            try {
                StoreSnapshotCopier::copy(source, StoreSnapshotCopier::Source::liveStore, destination);
                QFAIL("the copy should have failed");
            } catch (const CollectionBackupError &error) {
                QCOMPARE(error.kind(), CollectionBackupError::Kind::storeUnreadable);
                QCOMPARE(error.sentence(), u"The collection could not be read for its backup."_s);
            }
            QVERIFY(!QFileInfo::exists(destination));
            QVERIFY(!QFileInfo::exists(destination + u"-journal"_s));
        }
    }

    void whatAnInterruptedBackupLeftIsRemovedByTheNext()
    {
        QVERIFY(QDir().mkpath(backupsPath()));
        for (const QString &name : {u"Tessaloom 2026-11-24 10-00-00.sqlite.partial"_s,
                                    u"Tessaloom 2026-11-24 10-00-00.sqlite.partial-journal"_s}) {
            QFile leftover(backupsPath() + u'/' + name);
            QVERIFY(leftover.open(QIODevice::WriteOnly));
            leftover.write("half");
        }
        QVERIFY(!backUp().failure);
        QCOMPARE(filesInBackups(), QStringList{u"Tessaloom 2026-11-25 06-30-12.sqlite"_s});
    }

    void theResetHookBacksUpAndSaysWhetherItWorked()
    {
        const std::function<QCoro::Task<bool>()> hook = m_service->backupBeforeReset();
        QCOMPARE(QCoro::waitFor(hook()), true);
        QCOMPARE(filesInBackups().size(), 1);

        QVERIFY(QDir(backupsPath()).removeRecursively());
        QFile blocker(backupsPath());
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        QSignalSpy failed(m_service.get(), &CollectionBackupService::backupFailed);
        QCOMPARE(QCoro::waitFor(hook()), false);
        QCOMPARE(failed.size(), 1);
    }

    void aStoreKeptInMemoryHasNothingToBackUp()
    {
        const auto memory = PersistentContainer::open(u"backup-test-memory"_s, true);
        CollectionBackupService service(*memory);
        const auto outcome = waitForOutcome(service.backUp());
        QVERIFY(!outcome.failure);
        QVERIFY(outcome.value && !*outcome.value);
        QCOMPARE(QCoro::waitFor(service.backUpIfDue()), false);
    }

    void theServiceOfAStoreIsOneAndTheSame()
    {
        QCOMPARE(&CollectionBackupService::of(*m_container), &CollectionBackupService::of(*m_container));
    }
};

QTEST_GUILESS_MAIN(CollectionBackupServiceTest)
#include "CollectionBackupServiceTest.moc"
