// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"
#include "Views/CatalogSetupView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;
using Kind = CatalogDatabaseService::State::Kind;

namespace {
constexpr int notQuitStatus = 42;
}

// Quitting while the catalog set-up sheet stands in front of everything: the application's
// event loop must end, after a confirmation when a build runs, with the build stopped.
class SetupSheetQuitTest : public QObject
{
    Q_OBJECT

private:
    DumpServer m_dumps;
    std::unique_ptr<CatalogDatabaseService> m_service;

    QString applicationDirectory() const { return QFileInfo(RebrickableCatalog::defaultDatabasePath()).path(); }

    // Runs the application's event loop with `action` as its first event. Answers
    // `notQuitStatus` when the application did not quit within `patience` milliseconds.
    static int runApplication(const std::function<void()> &action, int patience = 20'000)
    {
        QTimer::singleShot(0, qApp, action);
        QTimer giveUp;
        giveUp.setSingleShot(true);
        connect(&giveUp, &QTimer::timeout, qApp, [] { QCoreApplication::exit(notQuitStatus); });
        giveUp.start(patience);
        return QApplication::exec();
    }

    // Clicks the confirmation's button `text` as soon as the confirmation shows.
    static void answerConfirmation(const QString &text, bool *asked)
    {
        auto *poll = new QTimer(qApp);
        connect(poll, &QTimer::timeout, qApp, [poll, text, asked] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || box->objectName() != u"quitConfirmation"_s)
                return;
            poll->deleteLater();
            *asked = true;
            QCOMPARE(box->text(), u"A catalog build is running. Quit and stop it?"_s);
            for (QAbstractButton *button : box->buttons()) {
                if (button->text() == text)
                    button->click();
            }
        });
        poll->start(20);
    }

    void showSheet(CatalogSetupView &sheet)
    {
        sheet.show();
        sheet.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&sheet));
    }

    void startSlowBuild(CatalogSetupView &sheet)
    {
        LoopbackHttpServer::Response slow;
        slow.body = DumpServer::gzip("inventory_id,part_num,color_id,quantity,is_spare,img_url\n");
        slow.delayMilliseconds = 4000;
        m_dumps.setResponse(u"inventory_parts"_s, slow);
        QTest::mouseClick(sheet.primaryButton(), Qt::LeftButton);
        QTRY_COMPARE(m_service->state().kind, Kind::working);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English)));
    }

    void init()
    {
        QSettings().clear();
        QDir(applicationDirectory()).removeRecursively();
        QVERIFY(m_dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR),
                                          TestEnvironment::temporaryRoot() + u"/dumps"_s));
        m_service = std::make_unique<CatalogDatabaseService>(applicationDirectory(), m_dumps.baseUrl());
    }

    void cleanup()
    {
        m_service.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void ctrlQOnTheSheetQuitsTheApplication()
    {
        CatalogSetupView sheet(*m_service);
        showSheet(sheet);
        const int status = runApplication([&sheet] { QTest::keyClick(&sheet, Qt::Key_Q, Qt::ControlModifier); });
        QCOMPARE(status, 0);
        QVERIFY(!sheet.isVisible());
    }

    void theSheetsQuitActionAnswersCtrlQAndThePlatformsQuitKey()
    {
        CatalogSetupView sheet(*m_service);
        QAction *quit = sheet.findChild<QAction *>(u"quitAction"_s);
        QVERIFY(quit);
        QVERIFY(sheet.actions().contains(quit));
        QVERIFY(quit->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Q)));
        for (const QKeySequence &standard : QKeySequence::keyBindings(QKeySequence::Quit))
            QVERIFY(quit->shortcuts().contains(standard));
    }

    void closingTheSheetQuitsTheApplication()
    {
        CatalogSetupView sheet(*m_service);
        showSheet(sheet);
        QVERIFY(sheet.windowFlags() & Qt::WindowCloseButtonHint);
        const int status = runApplication([&sheet] { sheet.close(); });
        QCOMPARE(status, 0);
        QVERIFY(!sheet.isVisible());
    }

    void quittingDuringABuildAsksThenStopsTheBuildBeforeTheApplicationEnds()
    {
        CatalogSetupView sheet(*m_service);
        showSheet(sheet);
        startSlowBuild(sheet);
        bool asked = false;
        answerConfirmation(u"Quit"_s, &asked);
        const int status = runApplication([&sheet] { QTest::keyClick(&sheet, Qt::Key_Q, Qt::ControlModifier); });
        QCOMPARE(status, 0);
        QVERIFY(asked);
        // Stopped through its stop token, before the event loop ended: leftovers removed.
        QCOMPARE(m_service->state().kind, Kind::idle);
        QVERIFY(!QFileInfo::exists(m_service->buildingDatabasePath()));
        QVERIFY(!QFileInfo::exists(m_service->liveDatabasePath()));
    }

    void keepBuildingLeavesTheApplicationAndTheBuildRunning()
    {
        CatalogSetupView sheet(*m_service);
        showSheet(sheet);
        startSlowBuild(sheet);
        bool asked = false;
        answerConfirmation(u"Keep Building"_s, &asked);
        const int status = runApplication([&sheet] { sheet.close(); }, 1500);
        QCOMPARE(status, notQuitStatus);
        QVERIFY(asked);
        QVERIFY(sheet.isVisible());
        QCOMPARE(m_service->state().kind, Kind::working);
        m_service->cancelCurrentTask();
        QTRY_COMPARE_WITH_TIMEOUT(m_service->state().kind, Kind::idle, 20'000);
    }

    // Last: a question that never comes leaves its answering timer behind.
    void quittingWhileOnlyAnUpdateCheckRunsAsksNothing()
    {
        CatalogSetupView sheet(*m_service);
        showSheet(sheet);
        QCoro::Task<bool> check = m_service->checkForUpdates();
        QCOMPARE(m_service->state().kind, Kind::working);
        QVERIFY(!m_service->isBuilding());
        bool asked = false;
        answerConfirmation(u"Keep Building"_s, &asked);
        const int status = runApplication([&sheet] { QTest::keyClick(&sheet, Qt::Key_Q, Qt::ControlModifier); });
        QCOMPARE(status, 0);
        QVERIFY(!asked);
        waitForOutcome(std::move(check));
    }
};

QTEST_MAIN(SetupSheetQuitTest)
#include "SetupSheetQuitTest.moc"
