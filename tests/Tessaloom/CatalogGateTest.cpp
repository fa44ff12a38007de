// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "TestEnvironment.h"
#include "Views/CatalogSetupView.h"
#include "Views/MainWindow.h"
#include "Views/QuitCommand.h"
#include "Views/SampleCatalogNotice.h"
#include "Views/TessaloomApp.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

#include <functional>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

// What the main window demands when it first appears: a catalog of the current format,
// or the set-up sheet in front of it.
class CatalogGateTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<AppUpdateService> m_updates;

    std::unique_ptr<TessaloomApp> startApp()
    {
        auto app = std::make_unique<TessaloomApp>(*m_store, *m_catalogService, *m_updates);
        app->showMainWindow();
        if (!QTest::qWaitForWindowExposed(app->mainWindow()))
            return nullptr;
        return app;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_store = PersistenceController::open(QString(), true);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_directory.path() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
        m_updates = std::make_unique<AppUpdateService>(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
    }

    void init()
    {
        // Today's check is done, so no test reaches for the network by accident.
        QSettings().setValue(u"catalog.lastUpdateCheck"_s, QDateTime::currentDateTime());
    }

    void missingCatalogBringsUpTheSetUpSheet()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const auto app = startApp();
        QVERIFY(app);
        QTRY_VERIFY(app->catalogSetupView() && app->catalogSetupView()->isVisible());
        QVERIFY(app->showCatalogSetup());
        QCOMPARE(app->catalogSetupView()->currentPart(), u"download"_s);
        QVERIFY(app->catalogSetupView()->isModal());
    }

    // The application's event loop with `action` as its first event; 42 when it did not end.
    static int runApplication(const std::function<void()> &action)
    {
        QTimer::singleShot(0, qApp, action);
        QTimer giveUp;
        giveUp.setSingleShot(true);
        connect(&giveUp, &QTimer::timeout, qApp, [] { QCoreApplication::exit(42); });
        giveUp.start(20'000);
        return QApplication::exec();
    }

    void closingTheMainWindowWhileTheSheetIsUpQuitsTheApplication()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const auto app = startApp();
        QVERIFY(app);
        QTRY_VERIFY(app->catalogSetupView() && app->catalogSetupView()->isVisible());
        QPointer<CatalogSetupView> sheet = app->catalogSetupView();
        QCOMPARE(runApplication([&app] { app->mainWindow()->close(); }), 0);
        QVERIFY(!app->mainWindow()->isVisible());
        QVERIFY(!sheet || !sheet->isVisible());
    }

    void fileQuitWhileTheSheetIsUpQuitsTheApplication()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const auto app = startApp();
        QVERIFY(app);
        QTRY_VERIFY(app->catalogSetupView() && app->catalogSetupView()->isVisible());
        QAction *quit = app->mainWindow()->quitCommand()->action();
        QVERIFY(app->mainWindow()->menuBar()->actions().constFirst()->menu()->actions().contains(quit));
        QCOMPARE(runApplication([quit] { quit->trigger(); }), 0);
        QVERIFY(!app->mainWindow()->isVisible());
    }

    void catalogOfSchemaVersionOneOpensButStillBringsUpTheSheet()
    {
        const QString path = m_directory.path() + u"/old.sqlite"_s;
        QVERIFY(QFile::copy(QStringLiteral(TESSALOOM_SAMPLE_CATALOG), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        sqlite3 *db = nullptr;
        sqlite3_open(QFile::encodeName(path).constData(), &db);
        sqlite3_exec(db, "PRAGMA user_version = 1", nullptr, nullptr, nullptr);
        sqlite3_close(db);
        const auto old = RebrickableCatalog::openFile(path);
        QVERIFY(old);
        QCOMPARE(old->schemaVersion(), 1);
        RebrickableCatalog::replaceShared(old);

        const auto app = startApp();
        QVERIFY(app);
        QTRY_VERIFY(app->catalogSetupView() && app->catalogSetupView()->isVisible());
    }

    void currentCatalogOpensTheWindowDirectly()
    {
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(QStringLiteral(TESSALOOM_SAMPLE_CATALOG)));
        const auto app = std::make_unique<TessaloomApp>(*m_store, *m_catalogService, *m_updates);
        QSignalSpy checked(app.get(), &TessaloomApp::dailyCatalogCheckFinished);
        app->showMainWindow();
        QVERIFY(QTest::qWaitForWindowExposed(app->mainWindow()));
        QTRY_COMPARE(checked.count(), 1);
        QCOMPARE(checked.first().first().toBool(), false); // today's check had run already
        QVERIFY(!app->showCatalogSetup());
        QVERIFY(!app->catalogSetupView());
    }

    void sampleCatalogInUseShowsTheNoticeUntilADownloadedOneIsLive()
    {
        // Put the sample where the program looks for the catalog bundled with it.
        const QString bundled = RebrickableCatalog::bundledDatabasePath();
        QDir().mkpath(QFileInfo(bundled).path());
        QFile::remove(bundled);
        QVERIFY(QFile::copy(QStringLiteral(TESSALOOM_SAMPLE_CATALOG), bundled));
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(bundled));

        const auto app = startApp();
        QVERIFY(app);
        SampleCatalogNotice *notice = app->mainWindow()->sampleCatalogNotice();
        QVERIFY(notice->isVisible());
        QVERIFY(notice->downloadButton()->isEnabled());

        const QString downloaded = m_directory.path() + u"/downloaded.sqlite"_s;
        QVERIFY(QFile::copy(QStringLiteral(TESSALOOM_SAMPLE_CATALOG), downloaded));
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(downloaded));
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();
        QVERIFY(!notice->isVisible());
        QFile::remove(bundled);
    }

    void startRemovesWhatAnInterruptedBuildLeftBehind()
    {
        const QString directory = m_catalogService->applicationDirectory();
        QVERIFY(QDir().mkpath(m_catalogService->csvDirectory()));
        QFile building(m_catalogService->buildingDatabasePath());
        QVERIFY(building.open(QIODevice::WriteOnly));
        building.write(QByteArray(4096, 'b'));
        building.close();
        QFile dump(m_catalogService->csvDirectory() + u"/sets.csv"_s);
        QVERIFY(dump.open(QIODevice::WriteOnly));
        dump.write("set_num,name,year,theme_id,num_parts,img_url\n");
        dump.close();

        const auto app = std::make_unique<TessaloomApp>(*m_store, *m_catalogService, *m_updates);
        QVERIFY(!QFileInfo::exists(m_catalogService->buildingDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_catalogService->csvDirectory()));
        QThreadPool::globalInstance()->waitForDone();
        QCOMPARE(QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }
};

QTEST_MAIN(CatalogGateTest)
#include "CatalogGateTest.moc"
