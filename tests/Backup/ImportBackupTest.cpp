// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupFixtures.h"
#include "TestEnvironment.h"

#include "Services/CollectionBackupService.h"
#include "Views/CollectionFileCommands.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace BackupFixtures;

// File → Import… on a store file: the import waits for a backup and does not start without one.
class ImportBackupTest : public QObject
{
    Q_OBJECT

private:
    struct Alert
    {
        QString title;
        QString text;
        bool isFailure = false;
    };

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_container;
    std::unique_ptr<QWidget> m_window;
    CollectionFileCommands *m_commands = nullptr;
    QList<Alert> m_alerts;

    QString storePath() const { return m_folder->filePath(u"Tessaloom.sqlite"_s); }
    QString backupsPath() const { return m_folder->filePath(u"Backups"_s); }

    void importSetList()
    {
        const QString path = m_folder->filePath(u"sets.csv"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Set Number,Quantity,Includes Spares,Inventory Ver\n10497-1,1,True,1\n");
        file.close();
        m_commands->setFileChooser([path](CollectionFileCommands::FileDialogMode, const QString &) { return path; });
        QSignalSpy finished(m_commands, &CollectionFileCommands::importFinished);
        m_commands->importAction()->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 20'000);
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
        fillCollection(m_container->viewContext(), 1, 0, u"live"_s);
        m_window = std::make_unique<QWidget>();
        m_commands = new CollectionFileCommands(*m_container, m_window.get());
        m_alerts.clear();
        m_commands->setAlertPresenter([this](const QString &title, const QString &text, bool isFailure) {
            m_alerts.append({title, text, isFailure});
        });
    }

    void cleanup()
    {
        m_window.reset();
        m_container.reset();
        m_folder.reset();
    }

    void theImportWaitsForTheBackup()
    {
        CollectionBackupService &service = CollectionBackupService::of(*m_container);
        QList<qint64> copiesWhenBackedUp;
        connect(&service, &CollectionBackupService::backupAdded, this, [&](const CollectionBackup &) {
            copiesWhenBackedUp.append(rowCount(storePath(), u"BrickSet"_s));
        });
        QSignalSpy added(&service, &CollectionBackupService::backupAdded);
        QSignalSpy status(m_commands, &CollectionFileCommands::statusMessage);
        importSetList();

        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Complete"_s);
        QCOMPARE(added.size(), 1);
        QCOMPARE(copiesWhenBackedUp, QList<qint64>{1}); // the import had not begun
        QCOMPARE(rowCount(added.first().first().value<CollectionBackup>().path, u"BrickSet"_s), qint64(1));
        QCOMPARE(rowCount(storePath(), u"BrickSet"_s), qint64(2));
        QCOMPARE(status.first().first().toString(), u"Backing up the collection before importing “sets.csv”…"_s);
        QCOMPARE(status.at(1).first().toString(), u"Importing “sets.csv”…"_s);
    }

    void aFailedBackupStopsTheImportAndSaysWhy()
    {
        QFile blocker(backupsPath()); // no folder can be made where a file lies
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        const QStringList rowsBefore = storeRows(storePath());
        QSignalSpy failed(&CollectionBackupService::of(*m_container), &CollectionBackupService::backupFailed);
        importSetList();

        QCOMPARE(m_alerts.size(), 1);
        QCOMPARE(m_alerts.first().title, u"Import Failed"_s);
        QVERIFY(m_alerts.first().isFailure);
        QCOMPARE(m_alerts.first().text, u"The import was not started because the collection could not be backed up "
                                        "first. The folder for backups of the collection could not be created."_s);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(storeRows(storePath()), rowsBefore);
        QVERIFY(m_commands->importAction()->isEnabled());
        QVERIFY(!m_commands->isImporting());
    }
};

QTEST_MAIN(ImportBackupTest)
#include "ImportBackupTest.moc"
