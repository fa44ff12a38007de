// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/SetListView.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The way from a copy in the set list to its parts checklist: the context menu entry and
// the shortcut.
class SetListChecklistEntryTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<SetListViewModel> m_model;
    std::unique_ptr<SetListView> m_view;
    BrickSet m_copy;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        QSettings().clear();
        m_store = PersistenceController::open(QString(), true);
        ManagedObjectContext &context = m_store->container().viewContext();
        const CatalogSet set = context.insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022));
        context.save();
        m_copy = saveCopy(context, set.objectID);
        m_model = std::make_unique<SetListViewModel>(m_store->container());
        m_view = std::make_unique<SetListView>(*m_model);
        m_model->sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
        m_view->setSidebarSelection(SidebarItem(SidebarItem::Kind::allSets));
        QTRY_COMPARE(m_model->groups()->count(), 1);
    }

    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void theCopysContextMenuOpensItsChecklist()
    {
        QSignalSpy requested(m_view.get(), &SetListView::partsChecklistRequested);
        QMenu *menu = m_view->copyContextMenu(0);
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QAction *open = menu->actions().first();
        QCOMPARE(open->text(), u"Open Parts Checklist"_s);
        open->trigger();
        QCOMPARE(requested.size(), 1);
        QCOMPARE(requested.first().first().value<ObjectID>(), m_copy.objectID);
        delete menu;
    }

    void aRowWithoutCopyHasNoContextMenu()
    {
        QVERIFY(!m_view->copyContextMenu(1));
        QVERIFY(!m_view->copyContextMenu(-1));
    }

    void theShortcutOpensTheSelectedCopysChecklist()
    {
        QCOMPARE(m_view->partsChecklistAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
        QSignalSpy requested(m_view.get(), &SetListView::partsChecklistRequested);
        m_view->partsChecklistAction()->trigger();
        QCOMPARE(requested.size(), 0); // nothing selected yet
        m_view->setSelectedBrickSet(m_copy.objectID);
        m_view->partsChecklistAction()->trigger();
        QCOMPARE(requested.size(), 1);
        QCOMPARE(requested.first().first().value<ObjectID>(), m_copy.objectID);
    }

    void theShortcutDoesNothingOverTheCatalog()
    {
        m_view->setSelectedBrickSet(m_copy.objectID);
        m_model->sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::catalogAll));
        QSignalSpy requested(m_view.get(), &SetListView::partsChecklistRequested);
        m_view->partsChecklistAction()->trigger();
        QCOMPARE(requested.size(), 0);
        QThreadPool::globalInstance()->waitForDone();
    }
};

QTEST_MAIN(SetListChecklistEntryTest)
#include "SetListChecklistEntryTest.moc"
