// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "TestEnvironment.h"
#include "Views/ContentSplitterLayout.h"
#include "Views/ContentView.h"
#include "Views/EmptyStateView.h"
#include "Views/MainWindow.h"
#include "Views/PriceRefreshStatusView.h"
#include "Services/PriceRefreshProgress.h"
#include "ViewModels/SetListGroupModel.h"
#include "Views/SetGridView.h"
#include "Views/CatalogTableView.h"
#include "Views/SetListView.h"
#include "Views/ThemeBrowserView.h"
#include "Views/TrashListView.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Store/BrickSetListModel.h"
#include "Store/CatalogSet.h"
#include "Store/BrickSet.h"
#include "Store/ManagedObjectContext.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QStatusBar>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QListView>
#include <QTableView>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;

class MainWindowTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<AppUpdateService> m_updates;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        m_store = PersistenceController::open(QString(), true);
        m_catalogService = std::make_unique<CatalogDatabaseService>(TestEnvironment::temporaryRoot() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
        m_updates = std::make_unique<AppUpdateService>(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
    }

    void opensWithThreeColumnsSideBySide()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
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
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
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
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        QVERIFY(window.checkForUpdatesAction()->isEnabled());
        QCOMPARE(window.checkForUpdatesAction()->text(), u"Check for Updates…"_s);
    }

    void columnWidthsAreRememberedAcrossWindows()
    {
        QList<int> chosen;
        {
            MainWindow window(m_store->container(), *m_catalogService, *m_updates);
            window.resize(1200, 700);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.contentView()->splitter()->setSizes({300, 400, 480});
            chosen = window.contentView()->splitter()->sizes();
            QVERIFY(window.close());
        }
        QVERIFY(QSettings().contains(u"mainWindow.columns"_s));
        MainWindow reopened(m_store->container(), *m_catalogService, *m_updates);
        reopened.show();
        QVERIFY(QTest::qWaitForWindowExposed(&reopened));
        QCOMPARE(reopened.contentView()->splitter()->sizes().first(), chosen.first());
    }

    // A page of the detail column that asks for more room (the inventory sheet) does not
    // push the columns away from where the user put them.
    void theColumnsStayWhereTheUserPutThem()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        window.resize(1600, 1000);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QSplitter *splitter = window.contentView()->splitter();
        int width = 0;
        for (const int size : splitter->sizes())
            width += size;
        // As a user drags the detail column down to its least width.
        splitter->setSizes({240, width - 240 - ContentSplitterLayout::detailMinimumWidth,
                            ContentSplitterLayout::detailMinimumWidth});
        QCoreApplication::processEvents();
        const QList<int> chosen = splitter->sizes();
        QCOMPARE(chosen.last(), ContentSplitterLayout::detailMinimumWidth);
        SidebarViewModel &sidebar = window.contentView()->sidebarViewModel();
        for (SidebarItem::Kind kind : {SidebarItem::Kind::inventory, SidebarItem::Kind::catalogAllThemes,
                                       SidebarItem::Kind::trash, SidebarItem::Kind::allSets}) {
            sidebar.setSelectedItem(SidebarItem(kind));
            QTest::qWait(20);
            QCOMPARE(splitter->sizes(), chosen);
        }
    }

    void theSidebarWidensWithTheWindowWithinLimits()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        window.resize(1200, 800);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QSplitter *splitter = window.contentView()->splitter();
        const int narrow = splitter->sizes().first();
        QVERIFY(narrow >= ContentSplitterLayout::sidebarMinimumWidth);
        window.resize(1900, 800);
        QTRY_VERIFY(splitter->sizes().first() > narrow);
        QVERIFY(splitter->sizes().first() <= ContentSplitterLayout::sidebarMaximumWidth);
        window.resize(4000, 800);
        QTRY_COMPARE(splitter->sizes().first(), ContentSplitterLayout::sidebarMaximumWidth);
        // The list and the detail took the rest.
        QVERIFY(splitter->sizes().at(1) > 1000);
        QVERIFY(splitter->sizes().at(2) > 1000);
        window.resize(900, 800);
        QTRY_VERIFY(splitter->sizes().first() < ContentSplitterLayout::sidebarMaximumWidth);
        QVERIFY(splitter->sizes().first() >= ContentSplitterLayout::sidebarMinimumWidth);
        QVERIFY(splitter->sizes().at(1) >= ContentSplitterLayout::middleMinimumWidth);
        QVERIFY(splitter->sizes().at(2) >= ContentSplitterLayout::detailMinimumWidth);
    }

    void middleColumnListsOwnedCopiesLiveFromABackgroundSave()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        SetListView *list = window.contentView()->setListView();
        QCOMPARE(window.contentView()->middleColumn()->currentWidget(), list);
        QCOMPARE(list->currentList(), list->copiesEmptyState());

        auto background = m_store->container().newBackgroundContext();
        background->perform([](ManagedObjectContext &context) {
            CatalogSet falcon;
            falcon.setNumber = u"75192-1"_s;
            falcon.name = u"Millennium Falcon"_s;
            falcon = context.insert(falcon);
            BrickSet copy;
            copy.id = QUuid::createUuid();
            copy.dateAdded = QDateTime::currentDateTimeUtc();
            copy.catalogSet = falcon.objectID;
            copy.setAcquisitionType(AcquisitionType::unknown);
            context.insert(copy);
            BrickSet trashed = copy;
            trashed.id = QUuid::createUuid();
            trashed.isTrashed = true;
            context.insert(trashed);
            context.save();
        });
        SetListGroupModel *groups = window.contentView()->listViewModel().groups();
        QTRY_COMPARE(groups->rowCount(), 1);
        QTRY_COMPARE(list->currentList(), list->copiesGrid());
        QCOMPARE(groups->index(0, 0).data(SetListGroupModel::NameRole).toString(), u"Millennium Falcon"_s);
    }

    void sidebarSelectionDecidesTheMiddleAndDetailColumns()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        ContentView *content = window.contentView();
        SidebarViewModel &sidebar = content->sidebarViewModel();

        sidebar.setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAllThemes));
        QCOMPARE(content->middleColumn()->currentWidget(), content->themeBrowser());
        QCOMPARE(content->detailPlaceholder()->symbolName(), u"folder"_s);
        QCOMPARE(content->detailPlaceholder()->title(), u"No Theme Selected"_s);

        sidebar.setSelectedItem(SidebarItem(SidebarItem::Kind::trash));
        QCOMPARE(content->middleColumn()->currentWidget(), content->trashList());
        QCOMPARE(content->detailPlaceholder()->symbolName(), u"trash"_s);

        sidebar.setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAll));
        QVERIFY(content->listViewModel().isCatalogList());
        QTRY_VERIFY(!content->listViewModel().isCatalogSearchRunning());
        // The catalog's results, or the empty state when no catalog is at hand.
        SetListView *list = content->setListView();
        QVERIFY(list->currentList() == list->catalogGrid() || list->currentList() == list->catalogEmptyState());
        QCOMPARE(content->detailPlaceholder()->symbolName(), u"square.grid.2x2"_s);

        sidebar.setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        const bool hasCopies = content->listViewModel().groups()->count() > 0;
        QCOMPARE(list->currentList(), hasCopies ? static_cast<QWidget *>(list->copiesGrid()) : list->copiesEmptyState());
    }

    void choosingAThemeInTheBrowserSelectsItInTheSidebar()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        ContentView *content = window.contentView();
        content->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAllThemes));
        Q_EMIT content->themeBrowser()->themeSelected(158, u"Star Wars"_s);
        QCOMPARE(content->sidebarViewModel().selectedItem(), SidebarItem::catalogTheme(158, u"Star Wars"_s));
        QCOMPARE(content->listViewModel().currentCatalogThemeID(), 158);
        QCOMPARE(content->middleColumn()->currentWidget(), content->setListView());
    }

    void aRefreshOfAllPricesShowsInTheStatusBarWhileItRuns()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        PriceRefreshProgress progress;
        PriceRefreshStatusView *status = window.showPriceRefreshProgress(progress);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(status->parentWidget(), window.statusBar());
        QVERIFY(!status->isVisible());
        {
            PriceRefreshProgress::Run run(progress, 480);
            run.setDone();
            QTRY_VERIFY(status->isVisible());
            QVERIFY2(status->label()->text().startsWith(u"Prices 1 of 480"_s), qPrintable(status->label()->text()));
        }
        QTRY_VERIFY(!status->isVisible());
    }

    void closesCleanly()
    {
        auto *window = new MainWindow(m_store->container(), *m_catalogService, *m_updates);
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
