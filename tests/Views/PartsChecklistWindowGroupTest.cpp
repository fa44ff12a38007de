// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Services/AppUpdateService.h"
#include "Services/RebrickableCatalog.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/ContentView.h"
#include "Views/MainWindow.h"
#include "Views/PartsChecklistWindow.h"
#include "Views/PartsChecklistWindowGroup.h"
#include "Views/SetListView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QSettings>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// Opening checklist windows by a copy's URI: one per copy, raised when open again, empty
// for anything that is not a copy of the store; and the main window's way there.
class PartsChecklistWindowGroupTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<PartsChecklistWindowGroup> m_group;
    CatalogSet m_set;
    BrickSet m_first;
    BrickSet m_second;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        // No catalog: the windows open all the same and show their empty state.
        RebrickableCatalog::replaceShared(nullptr);
    }

    void init()
    {
        QSettings().clear();
        m_store = PersistenceController::open(QString(), true);
        m_set = context().insert(catalogSet(u"1000-1"_s, u"Fire Station"_s));
        context().save();
        m_first = saveCopy(context(), m_set.objectID);
        m_second = saveCopy(context(), m_set.objectID);
        m_group = std::make_unique<PartsChecklistWindowGroup>(context(), nullptr);
    }

    void cleanup()
    {
        qDeleteAll(m_group->windows());
        m_group.reset();
        QThreadPool::globalInstance()->waitForDone();
        m_store.reset();
    }

    void aCopyOpensItsChecklistAtTheDefaultSize()
    {
        PartsChecklistWindow *window = m_group->open(m_first.objectID.uriRepresentation());
        QVERIFY(window);
        QVERIFY(window->isVisible());
        QVERIFY(window->isWindow());
        QCOMPARE(window->windowTitle(), u"Parts Checklist"_s);
        QCOMPARE(window->size(), QSize(900, 700));
        QVERIFY(window->viewModel());
        QCOMPARE(window->viewModel()->brickSet().objectID, m_first.objectID);
    }

    void twoCopiesOpenTwoWindows()
    {
        PartsChecklistWindow *first = m_group->open(m_first.objectID);
        PartsChecklistWindow *second = m_group->open(m_second.objectID);
        QVERIFY(first != second);
        QCOMPARE(m_group->windows().size(), 2);
        QCOMPARE(second->viewModel()->brickSet().objectID, m_second.objectID);
    }

    void openingAnOpenCopyAgainRaisesItsWindow()
    {
        PartsChecklistWindow *first = m_group->open(m_first.objectID);
        first->hide();
        QCOMPARE(m_group->open(m_first.objectID), first);
        QVERIFY(first->isVisible());
        QCOMPARE(m_group->windows().size(), 1);
    }

    void aClosedWindowIsOpenedAnew()
    {
        PartsChecklistWindow *first = m_group->open(m_first.objectID);
        QVERIFY(first->testAttribute(Qt::WA_DeleteOnClose));
        QPointer<PartsChecklistWindow> closed(first);
        first->close();
        QTRY_VERIFY(!closed);
        QVERIFY(!m_group->window(m_first.objectID.uriRepresentation()));
        PartsChecklistWindow *again = m_group->open(m_first.objectID);
        QVERIFY(again);
        QVERIFY(again->viewModel());
    }

    void anUnknownCopyOpensAnEmptyWindow()
    {
        PartsChecklistWindow *window = m_group->open(ObjectID{EntityType::BrickSet, 4242});
        QVERIFY(window);
        QVERIFY(!window->viewModel());
        QVERIFY(!window->layout());
        QVERIFY(window->findChildren<QWidget *>().isEmpty());
        QCOMPARE(window->size(), QSize(900, 700));
    }

    void aDeletedCopyOpensAnEmptyWindow()
    {
        context().deleteObject(m_second);
        context().save();
        QVERIFY(!m_group->open(m_second.objectID)->viewModel());
    }

    void anotherEntityOrAForeignAddressOpensAnEmptyWindow()
    {
        QVERIFY(!m_group->open(m_set.objectID)->viewModel());
        QVERIFY(!m_group->open(QUrl(u"https://example.org/BrickSet/p1"_s))->viewModel());
        QVERIFY(!m_group->open(QUrl())->viewModel());
    }

    void theMainWindowOpensTheChecklistTheSetListAsksFor()
    {
        CatalogDatabaseService catalogService(TestEnvironment::temporaryRoot() + u"/app"_s, QUrl(u"http://127.0.0.1:9"_s));
        AppUpdateService updates(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        MainWindow mainWindow(m_store->container(), catalogService, updates);
        Q_EMIT mainWindow.contentView()->setListView()->partsChecklistRequested(m_first.objectID);
        PartsChecklistWindow *window = mainWindow.partsChecklistWindows()->window(m_first.objectID.uriRepresentation());
        QVERIFY(window);
        QVERIFY(window->isVisible());
        QCOMPARE(window->viewModel()->brickSet().objectID, m_first.objectID);
        QCOMPARE(mainWindow.openPartsChecklist(m_first.objectID), window);
    }
};

QTEST_MAIN(PartsChecklistWindowGroupTest)
#include "PartsChecklistWindowGroupTest.moc"
