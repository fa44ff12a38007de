// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "Views/CatalogSetupView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using Kind = CatalogDatabaseService::State::Kind;

// The set-up sheet over a real build service and dumps served on loopback.
class CatalogSetupViewTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;
    std::unique_ptr<CatalogDatabaseService> m_service;

    QString applicationDirectory() const { return QFileInfo(RebrickableCatalog::defaultDatabasePath()).path(); }

    // Where a button stands on the sheet, and whether it can be clicked there.
    struct ButtonPlace
    {
        QRect rectangle;
        bool clickable = false;
    };
    static ButtonPlace placeOf(const CatalogSetupView &sheet, const QPushButton *button)
    {
        return {QRect(button->mapTo(&sheet, QPoint(0, 0)), button->size()), button->isVisible() && button->isEnabled()};
    }

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
        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
        m_service = std::make_unique<CatalogDatabaseService>(applicationDirectory(), m_dumps.baseUrl());
    }

    void cleanup()
    {
        m_service.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void withoutACatalogFileTheSheetOffersTheDownload()
    {
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QCOMPARE(sheet.currentPart(), u"download"_s);
        QCOMPARE(sheet.primaryButton()->text(), u"Download Catalog"_s);
        QCOMPARE(sheet.width(), 420);
    }

    void withACatalogFileTheSheetOffersARebuild()
    {
        QDir().mkpath(applicationDirectory());
        QFile file(m_service->liveDatabasePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        CatalogSetupView sheet(*m_service);
        QCOMPARE(sheet.currentPart(), u"rebuild"_s);
        QCOMPARE(sheet.primaryButton()->text(), u"Rebuild Catalog"_s);
    }

    void downloadShowsProgressThenClosesHalfASecondAfterCompletion()
    {
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE(sheet.currentPart(), u"working"_s);
        QVERIFY(!sheet.statusText().isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state().kind, Kind::completed, 120'000);
        QCOMPARE(sheet.currentPart(), u"completed"_s);
        QVERIFY(sheet.isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!sheet.isVisible(), 3000);
        QCOMPARE(sheet.result(), int(QDialog::Accepted));
    }

    void failedBuildKeepsTheSheetOpenUntilARetrySucceeds()
    {
        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"sets"_s, missing);
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sheet.currentPart(), u"failed"_s, 60'000);
        QCOMPARE(sheet.failureText(), u"Tessaloom could not download from the catalog server (the server answered "
                                      "with error 404). Try again later."_s);
        QCOMPARE(sheet.failureDetails(), u"Failed to download sets.csv.gz: HTTP 404"_s);
        // A completed build closes the sheet half a second later, on a coarse timer that may
        // run 5 % late. A longer, precise one started once the failure shows runs out after
        // any such close the failure would have started, so that close would have come first.
        bool closeWouldHaveCome = false;
        QTimer::singleShot(700, Qt::PreciseTimer, this, [&closeWouldHaveCome] { closeWouldHaveCome = true; });
        QTRY_VERIFY(closeWouldHaveCome);
        QVERIFY(sheet.isVisible());

        m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), TestEnvironment::temporaryRoot() + u"/dumps"_s);
        QCOMPARE(sheet.primaryButton()->text(), u"Try Again"_s);
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state().kind, Kind::completed, 120'000);
        QTRY_VERIFY_WITH_TIMEOUT(!sheet.isVisible(), 3000);
    }

    void cancellingBringsTheSheetBackToItsIdlePart()
    {
        LoopbackHttpServer::Response slow;
        slow.body = DumpServer::gzip("inventory_id,part_num,color_id,quantity,is_spare,img_url\n");
        slow.delayMilliseconds = 3000;
        m_dumps.setResponse(u"inventory_parts"_s, slow);
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE(sheet.currentPart(), u"working"_s);
        QCOMPARE(sheet.cancelButton()->text(), u"Cancel"_s);
        QTest::mouseClick(sheet.cancelButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sheet.currentPart(), u"download"_s, 20'000);
        QVERIFY(sheet.isVisible());
    }

    void cancelNeverStandsWhereTheBuildButtonWas()
    {
        QDir().mkpath(applicationDirectory());
        QFile file(m_service->liveDatabasePath());
        QVERIFY(file.open(QIODevice::WriteOnly)); // an unusable catalog: the sheet offers a rebuild
        file.close();
        LoopbackHttpServer::Response slow;
        slow.body = DumpServer::gzip("inventory_id,part_num,color_id,quantity,is_spare,img_url\n");
        slow.delayMilliseconds = 3000;
        m_dumps.setResponse(u"inventory_parts"_s, slow);
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));

        // Rebuild → working → (cancelled) rebuild → working → failed → working.
        QCOMPARE(sheet.currentPart(), u"rebuild"_s);
        const ButtonPlace rebuild = placeOf(sheet, sheet.primaryButton());
        QVERIFY(rebuild.clickable);
        QVERIFY(!sheet.cancelButton()->isVisible());
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE(sheet.currentPart(), u"working"_s);
        const ButtonPlace cancel = placeOf(sheet, sheet.cancelButton());
        QVERIFY(cancel.clickable);
        QVERIFY(!cancel.rectangle.intersects(rebuild.rectangle));
        // The build's button keeps its place and text, and cannot be clicked.
        QCOMPARE(placeOf(sheet, sheet.primaryButton()).rectangle, rebuild.rectangle);
        QVERIFY(!placeOf(sheet, sheet.primaryButton()).clickable);
        QCOMPARE(sheet.primaryButton()->text(), u"Rebuild Catalog"_s);
        // A click where Rebuild stood does nothing now.
        QTest::mouseClick(&sheet, Qt::LeftButton, {}, rebuild.rectangle.center());
        QCOMPARE(m_service->state().kind, Kind::working);

        QTest::mouseClick(sheet.cancelButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sheet.currentPart(), u"rebuild"_s, 20'000);
        QCOMPARE(placeOf(sheet, sheet.primaryButton()).rectangle, rebuild.rectangle);
        QVERIFY(!sheet.cancelButton()->isVisible());

        LoopbackHttpServer::Response missing;
        missing.status = 404;
        m_dumps.setResponse(u"inventory_parts"_s, missing);
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(sheet.currentPart(), u"failed"_s, 60'000);
        const ButtonPlace retry = placeOf(sheet, sheet.primaryButton());
        QVERIFY(retry.clickable);
        QCOMPARE(sheet.primaryButton()->text(), u"Try Again"_s);
        QVERIFY(!sheet.cancelButton()->isVisible());

        m_dumps.setResponse(u"inventory_parts"_s, slow);
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE(sheet.currentPart(), u"working"_s);
        QVERIFY(!placeOf(sheet, sheet.cancelButton()).rectangle.intersects(retry.rectangle));
        m_service->cancelCurrentTask();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state().kind, Kind::idle, 20'000);
    }

    void escapeAndClosingDoNotDismissTheSheet()
    {
        CatalogSetupView sheet(*m_service);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QTest::keyClick(&sheet, Qt::Key_Escape);
        QVERIFY(sheet.isVisible());
        QVERIFY(!sheet.close());
        QVERIFY(sheet.isVisible());
    }
};

QTEST_MAIN(CatalogSetupViewTest)
#include "CatalogSetupViewTest.moc"
