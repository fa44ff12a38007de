// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Services/CatalogDatabaseService.h"
#include "Store/BrickSetQueries.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "Views/SetTableView.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;
using Kind = SidebarItem::Kind;

// Moving a copy to the trash from the set list: the context menu entry and the Delete key,
// the selection that goes with it, and the lists and sidebar badges that follow at once.
class SetListTrashTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<SidebarViewModel> m_sidebar;
    std::unique_ptr<CollectionTrash> m_trash;
    std::unique_ptr<SetListViewModel> m_model;
    std::unique_ptr<SetListView> m_view;
    BrickSet m_castle;
    BrickSet m_falcon;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    bool isTrashed(const BrickSet &copy) { return context().existingObject<BrickSet>(copy.objectID)->isTrashed; }

    qint64 badge(Kind kind) { return m_sidebar->badgeCount(SidebarItem(kind)).value_or(-1); }

    void showView()
    {
        m_view->resize(900, 700);
        m_view->show();
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }

    // Selects the cell of `copy` with a click, as the user would.
    void clickCopy(const BrickSet &copy)
    {
        SetGridView *grid = m_view->copiesGrid();
        const int row = m_model->groups()->rowOf(copy.objectID);
        QVERIFY(row >= 0);
        const QRect cell = grid->visualRect(grid->model()->index(row, SetListGroupModel::NameColumn));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
    }

    static QAction *moveToTrashEntry(QMenu &menu)
    {
        return menu.findChild<QAction *>(u"moveToTrashMenuAction"_s);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void init()
    {
        QSettings().clear();
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_folder->filePath(u"app"_s), QUrl());
        const CatalogSet castle = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022));
        const CatalogSet falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        context().save();
        m_castle = saveCopy(context(), castle.objectID);
        m_falcon = saveCopy(context(), falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        m_sidebar = std::make_unique<SidebarViewModel>(context(), *m_catalogService,
                                                       [] { return std::optional<QList<ThemeNode>>(); });
        m_trash = std::make_unique<CollectionTrash>(context());
        m_model = std::make_unique<SetListViewModel>(*m_store);
        m_view = std::make_unique<SetListView>(*m_model);
        m_view->setCollectionTrash(m_trash.get());
        m_model->sidebarSelectionChanged(SidebarItem(Kind::allSets));
        m_view->setSidebarSelection(SidebarItem(Kind::allSets));
        QTRY_COMPARE(m_model->groups()->count(), 2);
    }

    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_trash.reset();
        m_sidebar.reset();
        m_catalogService.reset();
        m_store.reset();
        m_folder.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void theContextMenuMovesTheCopyToTheTrash()
    {
        const int row = m_model->groups()->rowOf(m_falcon.objectID);
        std::unique_ptr<QMenu> menu(m_view->copyContextMenu(row));
        QVERIFY(menu);
        QAction *trash = moveToTrashEntry(*menu);
        QVERIFY(trash);
        QCOMPARE(trash->text(), u"Move to Trash"_s);

        trash->trigger();

        QVERIFY(isTrashed(m_falcon));
        QVERIFY(!isTrashed(m_castle));
        QVERIFY(context().existingObject<BrickSet>(m_falcon.objectID)->trashedDate);
        QVERIFY(!context().hasChanges());
    }

    void movingTheSelectedCopyClearsTheSelection()
    {
        showView();
        QSignalSpy selected(m_view.get(), &SetListView::brickSetSelected);
        clickCopy(m_castle);
        QCOMPARE(selected.size(), 1);
        QVERIFY(selected.last().first().value<std::optional<ObjectID>>() == m_castle.objectID);

        std::unique_ptr<QMenu> menu(m_view->copyContextMenu(m_model->groups()->rowOf(m_castle.objectID)));
        moveToTrashEntry(*menu)->trigger();

        QCOMPARE(selected.size(), 2);
        QVERIFY(selected.last().first().value<std::optional<ObjectID>>() == std::nullopt);
        QVERIFY(m_view->copiesGrid()->selectionModel()->selectedIndexes().isEmpty());
        QVERIFY(isTrashed(m_castle));
    }

    void movingAnotherCopyKeepsTheSelection()
    {
        showView();
        clickCopy(m_castle);
        QSignalSpy selected(m_view.get(), &SetListView::brickSetSelected);
        std::unique_ptr<QMenu> menu(m_view->copyContextMenu(m_model->groups()->rowOf(m_falcon.objectID)));
        moveToTrashEntry(*menu)->trigger();
        QCOMPARE(selected.size(), 0);
        const QModelIndexList cells = m_view->copiesGrid()->selectionModel()->selectedRows(SetListGroupModel::NameColumn);
        QCOMPARE(cells.size(), 1);
        QCOMPARE(cells.first().row(), m_model->groups()->rowOf(m_castle.objectID));
    }

    void theDeleteKeyMovesTheSelectedCopyToTheTrash()
    {
        showView();
        QSignalSpy selected(m_view.get(), &SetListView::brickSetSelected);
        clickCopy(m_falcon);
        QCOMPARE(QApplication::focusWidget(), m_view->copiesGrid());

        QTest::keyClick(m_view->copiesGrid(), Qt::Key_Delete);

        QVERIFY(isTrashed(m_falcon));
        QVERIFY(selected.last().first().value<std::optional<ObjectID>>() == std::nullopt);
        QCOMPARE(m_model->groups()->count(), 1);
    }

    void theDeleteKeyWorksInTheTableToo()
    {
        m_model->setGridView(false);
        showView();
        m_view->setSelectedBrickSet(m_castle.objectID);
        m_view->copiesTable()->setFocus();
        QTest::keyClick(m_view->copiesTable(), Qt::Key_Delete);
        QVERIFY(isTrashed(m_castle));
    }

    void theDeleteKeyEditsTheSearchFieldInsteadOfTrashing()
    {
        showView();
        clickCopy(m_falcon);
        QLineEdit *search = m_view->searchField();
        search->setFocus();
        QTest::keyClicks(search, u"Fal"_s);
        search->setCursorPosition(0);
        QTest::keyClick(search, Qt::Key_Delete);
        QCOMPARE(search->text(), u"al"_s);
        QVERIFY(!isTrashed(m_falcon));
    }

    void theListsAndTheSidebarBadgesFollowAtOnce()
    {
        QCOMPARE(badge(Kind::allSets), qint64(2));
        QCOMPARE(badge(Kind::favorites), qint64(1));
        QCOMPARE(badge(Kind::trash), qint64(0));
        QSignalSpy badges(m_sidebar.get(), &SidebarViewModel::badgeCountChanged);

        std::unique_ptr<QMenu> menu(m_view->copyContextMenu(m_model->groups()->rowOf(m_falcon.objectID)));
        moveToTrashEntry(*menu)->trigger();

        // No waiting: the commit's notice has refetched everything by the time the call returns.
        QCOMPARE(badge(Kind::trash), qint64(1));
        QCOMPARE(badge(Kind::allSets), qint64(1));
        QCOMPARE(badge(Kind::favorites), qint64(0));
        QVERIFY(!badges.isEmpty());
        QCOMPARE(m_model->groups()->count(), 1);
        QCOMPARE(m_model->groups()->rowOf(m_falcon.objectID), -1);
        QVERIFY(!m_model->ownedSetNumbers().contains(u"75192-1"_s));

        m_trash->restore(m_falcon.objectID);
        QCOMPARE(badge(Kind::trash), qint64(0));
        QCOMPARE(badge(Kind::allSets), qint64(2));
        QCOMPARE(m_model->groups()->count(), 2);
    }

    void thereIsNoMoveToTrashWithoutATrashOrOverTheCatalog()
    {
        SetListView bare(*m_model);
        QVERIFY(!bare.moveToTrashAction()->isEnabled());
        std::unique_ptr<QMenu> menu(bare.copyContextMenu(0));
        QVERIFY(!moveToTrashEntry(*menu));

        m_model->sidebarSelectionChanged(SidebarItem(Kind::catalogAll));
        QVERIFY(!m_view->moveToTrashAction()->isEnabled());
        QThreadPool::globalInstance()->waitForDone();
    }
};

QTEST_MAIN(SetListTrashTest)
#include "SetListTrashTest.moc"
