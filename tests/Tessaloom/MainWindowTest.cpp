// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppUpdateService.h"
#include "TestEnvironment.h"
#include "Views/ContentView.h"
#include "Views/EmptyStateView.h"
#include "Views/MainWindow.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QTest>

using namespace Qt::StringLiterals;

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void opensWithThreeColumnsSideBySide()
    {
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        MainWindow window(updates);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        QSplitter *splitter = window.contentView()->splitter();
        QCOMPARE(splitter->count(), 3);
        QCOMPARE(splitter->widget(0)->objectName(), u"sidebarColumn"_s);
        QCOMPARE(splitter->widget(1)->objectName(), u"middleColumn"_s);
        QCOMPARE(splitter->widget(2)->objectName(), u"detailColumn"_s);
        for (int column = 0; column < 3; ++column) {
            QVERIFY(splitter->widget(column)->isVisible());
            QVERIFY(splitter->sizes().at(column) > 0);
        }
        // Left to right, without overlap.
        QVERIFY(splitter->widget(0)->geometry().right() < splitter->widget(1)->geometry().left());
        QVERIFY(splitter->widget(1)->geometry().right() < splitter->widget(2)->geometry().left());
    }

    void detailColumnShowsTheEmptyStateWhenNothingIsSelected()
    {
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        MainWindow window(updates);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        EmptyStateView *placeholder = window.contentView()->detailPlaceholder();
        QCOMPARE(window.contentView()->detailColumn()->currentWidget(), placeholder);
        QVERIFY(placeholder->isVisible());
        QCOMPARE(placeholder->symbolName(), u"square.grid.2x2"_s);
        // English texts from the compiled table, not the bare keys.
        QCOMPARE(placeholder->title(), u"No Set Selected"_s);
        QCOMPARE(placeholder->description(), u"Select a set to see its details."_s);
    }

    void checkForUpdatesFollowsTheService()
    {
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        MainWindow window(updates);
        QVERIFY(window.checkForUpdatesAction()->isEnabled());
        QCOMPARE(window.checkForUpdatesAction()->text(), u"Check for Updates…"_s);
    }

    void columnWidthsAreRememberedAcrossWindows()
    {
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        QList<int> chosen;
        {
            MainWindow window(updates);
            window.resize(1200, 700);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.contentView()->splitter()->setSizes({300, 400, 480});
            chosen = window.contentView()->splitter()->sizes();
            QVERIFY(window.close());
        }
        QVERIFY(QSettings().contains(u"mainWindow.columns"_s));
        MainWindow reopened(updates);
        reopened.show();
        QVERIFY(QTest::qWaitForWindowExposed(&reopened));
        QCOMPARE(reopened.contentView()->splitter()->sizes().first(), chosen.first());
    }

    void closesCleanly()
    {
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        auto *window = new MainWindow(updates);
        window->setAttribute(Qt::WA_DeleteOnClose);
        QPointer<MainWindow> guard(window);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QVERIFY(window->close());
        QTRY_VERIFY(guard.isNull());
    }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
