// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupFixtures.h"
#include "TestEnvironment.h"

#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/CollectionBackupService.h"
#include "Views/MainWindow.h"
#include "Views/TessaloomApp.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>

using namespace Qt::StringLiterals;

// The start-up backup of the application: in the background once the window is up, and a
// failure shown once in the window's status bar.
class StartUpBackupTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<AppUpdateService> m_updates;

    QString backupsPath() const { return m_folder->filePath(u"Backups"_s); }

    // Starts the application and waits for its start-up backup; returns whether one was made.
    std::optional<bool> startAndWaitForBackup(std::unique_ptr<TessaloomApp> &app)
    {
        app = std::make_unique<TessaloomApp>(*m_store, *m_catalogService, *m_updates);
        QSignalSpy finished(app.get(), &TessaloomApp::dailyBackupFinished);
        app->showMainWindow();
        if (!QTest::qWaitForWindowExposed(app->mainWindow()))
            return std::nullopt;
        if (finished.isEmpty() && !finished.wait(20'000))
            return std::nullopt;
        return finished.first().first().toBool();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        m_catalogService = std::make_unique<CatalogDatabaseService>(TestEnvironment::temporaryRoot() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
        m_updates = std::make_unique<AppUpdateService>(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
    }

    void init()
    {
        // Today's catalog check is done, so no test reaches for the network.
        QSettings().setValue(u"catalog.lastUpdateCheck"_s, QDateTime::currentDateTime());
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = PersistenceController::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        BackupFixtures::fillCollection(m_store->container().viewContext(), 2, 1, u"live"_s);
    }

    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void theFirstStartOfTheDayBacksUpOnceTheWindowIsUp()
    {
        std::unique_ptr<TessaloomApp> app;
        QCOMPARE(startAndWaitForBackup(app), std::optional<bool>(true));
        QCOMPARE(QDir(backupsPath()).entryList(QDir::Files).size(), 1);
        app.reset();
        // The second start of the day finds today's backup.
        QCOMPARE(startAndWaitForBackup(app), std::optional<bool>(false));
        QCOMPARE(QDir(backupsPath()).entryList(QDir::Files).size(), 1);
        QCOMPARE(app->mainWindow()->statusBar()->currentMessage(), QString());
    }

    void aFailedStartUpBackupIsShownOnceInTheStatusBar()
    {
        QFile blocker(backupsPath()); // no folder can be made where a file lies
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        std::unique_ptr<TessaloomApp> app;
        QStringList shown;
        QSignalSpy failed(&CollectionBackupService::of(m_store->container()), &CollectionBackupService::backupFailed);
        app = std::make_unique<TessaloomApp>(*m_store, *m_catalogService, *m_updates);
        QSignalSpy finished(app.get(), &TessaloomApp::dailyBackupFinished);
        app->showMainWindow();
        connect(app->mainWindow()->statusBar(), &QStatusBar::messageChanged, this,
                [&shown](const QString &text) { shown.append(text); });
        QVERIFY(QTest::qWaitForWindowExposed(app->mainWindow()));
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 20'000);
        QCOMPARE(finished.first().first().toBool(), false);
        const QString sentence = u"The folder for backups of the collection could not be created."_s;
        QCOMPARE(failed.size(), 1);
        QCOMPARE(app->mainWindow()->statusBar()->currentMessage(), sentence);
        QCOMPARE(shown.count(sentence), 1);
        QVERIFY(QFileInfo(backupsPath()).isFile());
    }
};

QTEST_MAIN(StartUpBackupTest)
#include "StartUpBackupTest.moc"
