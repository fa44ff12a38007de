// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "Views/CatalogStatusIndicator.h"
#include "Views/FailureMessageView.h"
#include "Views/SampleCatalogNotice.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace Qt::StringLiterals;
using Kind = CatalogDatabaseService::State::Kind;

// A build that runs behind the user's back shows in the status bar while the window
// stays usable, and its outcome is told when it ends.
class CatalogStatusIndicatorTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;

    QString applicationDirectory() const { return QFileInfo(RebrickableCatalog::defaultDatabasePath()).path(); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English)));
        QVERIFY(m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR),
                                          TestEnvironment::temporaryRoot() + u"/dumps"_s));
    }

    void init()
    {
        QSettings().clear();
        QDir(applicationDirectory()).removeRecursively();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void backgroundBuildShowsItsStepThenItsOutcome()
    {
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QMainWindow window;
        auto *indicator = new CatalogStatusIndicator(service, window.statusBar());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!indicator->isVisible());

        service.startBuild();
        QTRY_VERIFY(indicator->isVisible());
        QVERIFY(indicator->statusText().startsWith(u"Catalog: "_s));
        QVERIFY(window.isEnabled()); // nothing blocks the window meanwhile
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::completed, 120'000);
        QVERIFY(!indicator->isVisible());
        QCOMPARE(window.statusBar()->currentMessage(), u"The catalog is up to date: 477 sets."_s);
    }

    void failedBackgroundBuildSaysWhy()
    {
        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"themes"_s, missing);
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QMainWindow window;
        new CatalogStatusIndicator(service, window.statusBar());
        service.startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::failed, 60'000);
        QCOMPARE(window.statusBar()->currentMessage(),
                 u"The catalog could not be updated: Tessaloom could not download from the catalog server (the server "
                 "answered with error 404). Try again later."_s);
        QCOMPARE(window.statusBar()->toolTip(), u"Failed to download themes.csv.gz: HTTP 404"_s);
        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
    }

    void failureWithoutAPreviousCatalogOffersNoRestore()
    {
        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"colors"_s, missing);
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QMainWindow window;
        auto *indicator = new CatalogStatusIndicator(service, window.statusBar());
        window.show();
        service.startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::failed, 60'000);
        QVERIFY(!indicator->restoreButton()->isVisible());
        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
    }

    void emptyNewCatalogOffersThePreviousOneAndTheButtonPutsItBack()
    {
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QMainWindow window;
        auto *indicator = new CatalogStatusIndicator(service, window.statusBar());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        service.startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::completed, 120'000);
        QVERIFY(!indicator->restoreButton()->isVisible());

        m_dumps.setGzipBytes(u"sets"_s, DumpServer::gzip("set_num,name,year,theme_id,num_parts,img_url\n"));
        service.startBuild();
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::failed, 120'000);
        QVERIFY(window.statusBar()->currentMessage().startsWith(
            u"The catalog could not be updated: The catalog database was built but contains no sets."_s));
        QVERIFY(indicator->restoreButton()->isVisible());
        QCOMPARE(indicator->restoreButton()->text(), u"Restore the previous catalog"_s);

        QTest::mouseClick(indicator->restoreButton(), Qt::LeftButton);
        QCOMPARE(window.statusBar()->currentMessage(), u"The previous catalog is back in service: 477 sets."_s);
        QVERIFY(!indicator->restoreButton()->isVisible());
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 477);
        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
    }

    void startWithAnEmptyCatalogAndAPreviousOneOffersTheRestore()
    {
        {
            CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
            service.startBuild();
            QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::completed, 120'000);
            m_dumps.setGzipBytes(u"sets"_s, DumpServer::gzip("set_num,name,year,theme_id,num_parts,img_url\n"));
            service.startBuild();
            QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::failed, 120'000);
        }
        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
        // The next start: the empty catalog is what loads.
        RebrickableCatalog::replaceShared(RebrickableCatalog::open());
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 0);
        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        QMainWindow window;
        auto *indicator = new CatalogStatusIndicator(service, window.statusBar());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.statusBar()->currentMessage(), u"The catalog in use holds no sets or cannot be read."_s);
        QVERIFY(indicator->restoreButton()->isVisible());
        QTest::mouseClick(indicator->restoreButton(), Qt::LeftButton);
        QCOMPARE(RebrickableCatalog::shared()->setCount(), 477);
        QVERIFY(!indicator->restoreButton()->isVisible());
    }

    void sampleNoticeStartsTheFullDownloadAndGoesOnceItIsLive()
    {
        const QString bundled = RebrickableCatalog::bundledDatabasePath();
        QDir().mkpath(QFileInfo(bundled).path());
        QFile::remove(bundled);
        // The sample catalog where the program looks for the one bundled with it.
        QVERIFY(QFile::copy(QStringLiteral(TESSALOOM_SAMPLE_CATALOG), bundled));
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(bundled));

        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        SampleCatalogNotice notice(service);
        notice.show();
        QVERIFY(QTest::qWaitForWindowExposed(&notice));
        QVERIFY(notice.isVisible());
        QTest::mouseClick(notice.downloadButton(), Qt::LeftButton);
        QTRY_VERIFY(!notice.downloadButton()->isEnabled());
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::completed, 120'000);
        QVERIFY(!notice.isVisible());
        QCOMPARE(RebrickableCatalog::shared()->path(), service.liveDatabasePath());
        QFile::remove(bundled);
    }

    void sampleNoticeKeepsADownloadFailureInViewUntilTheNextAttempt()
    {
        const QString bundled = RebrickableCatalog::bundledDatabasePath();
        QDir().mkpath(QFileInfo(bundled).path());
        QFile::remove(bundled);
        QVERIFY(QFile::copy(QStringLiteral(TESSALOOM_SAMPLE_CATALOG), bundled));
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(bundled));
        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"sets"_s, missing);

        CatalogDatabaseService service(applicationDirectory(), m_dumps.baseUrl());
        SampleCatalogNotice notice(service);
        notice.show();
        QVERIFY(QTest::qWaitForWindowExposed(&notice));
        QVERIFY(!notice.failureMessage()->isVisible());
        QTest::mouseClick(notice.downloadButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::failed, 60'000);
        FailureMessageView *failure = notice.failureMessage();
        QVERIFY(failure->isVisible());
        QCOMPARE(failure->sentence(), u"Tessaloom could not download from the catalog server (the server answered "
                                      "with error 404). Try again later."_s);
        QVERIFY(!failure->detailsLabel()->isVisible());
        QTest::mouseClick(failure->detailsToggle(), Qt::LeftButton);
        QVERIFY(failure->detailsLabel()->isVisible());
        QCOMPARE(failure->details(), u"Failed to download sets.csv.gz: HTTP 404"_s);

        // Still there long after a status-bar message would have gone; the message of that
        // bar lasts fifteen seconds, which a test does not wait: what counts is that nothing
        // but the next attempt takes it away.
        bool waited = false;
        QTimer::singleShot(1000, this, [&waited] { waited = true; });
        QTRY_VERIFY(waited);
        QVERIFY(failure->isVisible());

        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
        QTest::mouseClick(notice.downloadButton(), Qt::LeftButton);
        QTRY_VERIFY(!failure->isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(service.state().kind, Kind::completed, 120'000);
        QFile::remove(bundled);
    }
};

QTEST_MAIN(CatalogStatusIndicatorTest)
#include "CatalogStatusIndicatorTest.moc"
