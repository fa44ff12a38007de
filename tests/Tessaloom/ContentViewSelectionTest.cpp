// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/ContentView.h"
#include "Views/EmptyStateView.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/CollectionUndoStack.h"
#include "ViewModels/WishlistListModel.h"
#include "Store/WishlistItem.h"
#include "Views/CatalogSetDetailView.h"
#include "Views/InventoryEditor.h"
#include "Views/InventoryTab.h"
#include "Views/SetDetailView.h"
#include "Views/TrashDetailView.h"
#include "Views/TrashListView.h"
#include "Views/WishlistListView.h"
#include "Views/ThemeBrowserView.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// How the window's selection moves between the sidebar, the list and the detail column.
class ContentViewSelectionTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<ContentView> m_content;
    CatalogSet m_falcon;
    CatalogSet m_castle;
    BrickSet m_falconCopy;
    BrickSet m_castleCopy;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    ContentView &content() { return *m_content; }
    SidebarViewModel &sidebar() { return m_content->sidebarViewModel(); }
    SetListViewModel &list() { return m_content->listViewModel(); }

    BrickSet addCopy(const std::optional<ObjectID> &catalogSet, bool trashed = false)
    {
        return saveCopy(context(), catalogSet, [trashed](BrickSet &copy) { copy.isTrashed = trashed; });
    }

    void showContent()
    {
        m_content->resize(1200, 700);
        m_content->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_content.get()));
    }

    // The rows selected in the list of copies (grid and table share one selection).
    QSet<int> selectedRows()
    {
        QSet<int> rows;
        for (const QModelIndex &index : content().setListView()->copiesGrid()->selectionModel()->selectedIndexes())
            rows.insert(index.row());
        return rows;
    }

    bool showsPlaceholder(const QString &symbolName)
    {
        return content().detailColumn()->currentWidget() == content().detailPlaceholder()
            && content().detailPlaceholder()->symbolName() == symbolName;
    }

    bool showsPreviewOf(const QString &name)
    {
        return content().copyDetail() && content().detailColumn()->currentWidget() == content().copyDetail()
            && content().copyDetail()->titleLabel()->text() == name;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // A catalog set's detail looks its booklets up; here they find a closed port.
        qputenv("TESSALOOM_ENDPOINTS", "lego=http://127.0.0.1:9");
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n5,Castle,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,1,7541,\n"
                                   "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                                   "6080-1,King's Castle,1984,5,674,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_directory.path() + u"/app"_s,
                                                                    QUrl(u"http://127.0.0.1:9"_s));
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        m_castle = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022));
        context().save();
        m_falconCopy = addCopy(m_falcon.objectID);
        m_castleCopy = addCopy(m_castle.objectID);
        m_content = std::make_unique<ContentView>(m_store->container(), *m_catalogService);
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
    }

    void cleanup()
    {
        m_content.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void clickingACellShowsThatCopyInTheDetailColumn()
    {
        showContent();
        QVERIFY(showsPlaceholder(u"square.grid.2x2"_s));
        SetGridView *grid = content().setListView()->copiesGrid();
        const int row = list().groups()->rowOf(m_castleCopy.objectID);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(grid->model()->index(row, SetListGroupModel::NameColumn)).center());
        QCOMPARE(content().selectedBrickSet(), m_castleCopy.objectID);
        QVERIFY(showsPreviewOf(u"Lion Knights' Castle"_s));
        QCOMPARE(content().copyDetail()->viewModel().brickSet().objectID, m_castleCopy.objectID);
    }

    void theSelectionSurvivesARefetchOfTheList()
    {
        showContent();
        content().setSelectedBrickSet(m_falconCopy.objectID);
        addCopy(m_falcon.objectID);
        QTRY_COMPARE(list().groups()->groupAt(list().groups()->rowOf(m_falconCopy.objectID)).copyCount, 2);
        QCOMPARE(selectedRows(), QSet<int>{list().groups()->rowOf(m_falconCopy.objectID)});
    }

    void aSearchLeavingOneSetSelectsIt()
    {
        showContent();
        QTest::keyClicks(content().setListView()->searchField(), u"castle"_s);
        QCOMPARE(list().groups()->count(), 1);
        QCOMPARE(content().selectedBrickSet(), m_castleCopy.objectID);
        QVERIFY(showsPreviewOf(u"Lion Knights' Castle"_s));
    }

    void changingTheSidebarItemClearsTheSelectedCopy()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        QVERIFY(showsPreviewOf(u"Millennium Falcon"_s));
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::favorites));
        QCOMPARE(content().selectedBrickSet(), std::nullopt);
        QVERIFY(showsPlaceholder(u"square.grid.2x2"_s));
    }

    void viewInCollectionFromAThemeSwitchesToAllSetsAndShowsTheCopy()
    {
        sidebar().setSelectedItem(SidebarItem::catalogTheme(5, u"Castle"_s));
        list().setSearchText(u"lion"_s);
        QTRY_COMPARE(list().catalogResults().size(), 1);
        QTRY_VERIFY(content().selectedCatalogSet().has_value());
        QCOMPARE(content().detailColumn()->currentWidget(), content().catalogDetail());
        QCOMPARE(content().catalogDetail()->nameLabel()->text(), u"Lion Knights' Castle"_s);

        // The detail's own button, which leads through the window's showOwnedCopy.
        QPushButton *viewInCollection = content().catalogDetail()->viewInCollectionButton();
        QTRY_VERIFY(content().catalogDetail()->isOwned());
        viewInCollection->click();
        QCOMPARE(sidebar().selectedItem(), SidebarItem(SidebarItem::Kind::allSets));
        QCOMPARE(content().selectedCatalogSet(), std::nullopt);
        QCOMPARE(content().selectedBrickSet(), m_castleCopy.objectID);
        QCOMPARE(content().pendingBrickSet(), std::nullopt);
        QCOMPARE(list().searchText(), QString());
        QVERIFY(showsPreviewOf(u"Lion Knights' Castle"_s));
        QCOMPARE(selectedRows(), QSet<int>{list().groups()->rowOf(m_castleCopy.objectID)});
    }

    void viewInCollectionOutsideTheCatalogSelectsTheCopyAtOnce()
    {
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::favorites));
        content().showOwnedCopy(m_falconCopy.objectID);
        QCOMPARE(sidebar().selectedItem(), SidebarItem(SidebarItem::Kind::favorites));
        QCOMPARE(content().selectedBrickSet(), m_falconCopy.objectID);
        QVERIFY(showsPreviewOf(u"Millennium Falcon"_s));
    }

    void aCatalogSearchLeavingOneSetSelectsIt()
    {
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAll));
        QTRY_VERIFY(!list().isCatalogSearchRunning());
        QCOMPARE(content().selectedCatalogSet(), std::nullopt);
        list().setSearchText(u"falcon"_s);
        QTRY_COMPARE(content().selectedCatalogSet().has_value(), true);
        QCOMPARE(content().selectedCatalogSet()->setNum, u"75192-1"_s);
        CatalogSetDetailView *detail = content().catalogDetail();
        QCOMPARE(content().detailColumn()->currentWidget(), detail);
        QCOMPARE(detail->nameLabel()->text(), u"Millennium Falcon"_s);
        QTRY_COMPARE(detail->themePath(), u"Star Wars"_s);
    }

    void theTrashShowsItsOwnEmptyStateAndATrashedCopy()
    {
        const BrickSet trashed = addCopy(m_castle.objectID, true);
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::trash));
        QVERIFY(showsPlaceholder(u"trash"_s));
        QCOMPARE(content().detailPlaceholder()->title(), u"No Set Selected"_s);
        QCOMPARE(content().middleColumn()->currentWidget(), content().trashList());
        content().setSelectedBrickSet(trashed.objectID);
        QCOMPARE(content().detailColumn()->currentWidget(), content().trashDetail());
        QCOMPARE(content().trashDetail()->name(), u"Lion Knights' Castle"_s);
        QCOMPARE(content().trashList()->selectedCopy(), trashed.objectID);
    }

    void theWishlistHasItsOwnScreenAndItsItemShowsTheCatalogDetail()
    {
        WishlistItem wanted;
        wanted.setNumber = u"75192-1"_s;
        wanted.setName = u"Millennium Falcon"_s;
        wanted.dateAdded = QDateTime::currentDateTimeUtc();
        context().insert(wanted);
        context().save();
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::wishlist));
        QCOMPARE(content().middleColumn()->currentWidget(), content().wishlistView());
        QTRY_COMPARE(content().wishlistView()->items()->rowCount(), 1);

        Q_EMIT content().wishlistView()->catalogSetSelected(
            CatalogSetResult{u"75192-1"_s, u"Millennium Falcon"_s, 2017, 158, 7541, std::nullopt});
        QCOMPARE(content().detailColumn()->currentWidget(), content().catalogDetail());
        QCOMPARE(content().wishlistView()->selectedSetNumber(), u"75192-1"_s);
        // Back to the collection: the wishlist's selection goes with the sidebar's.
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        QCOMPARE(content().wishlistView()->selectedSetNumber(), std::nullopt);
    }

    void ctrlOneAndTwoSwitchTheWishlistsPicker()
    {
        showContent();
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::wishlist));
        list().setGridView(true);
        QTest::keyClick(m_content.get(), Qt::Key_2, Qt::ControlModifier);
        QVERIFY(!list().isGridView());
        QTest::keyClick(m_content.get(), Qt::Key_1, Qt::ControlModifier);
        QVERIFY(list().isGridView());
    }

    void trashingFromTheListIsOfferedForUndo()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        content().trash().moveToTrash(m_falconCopy.objectID);
        QCOMPARE(content().undoStack().lastActionText(), u"Moved 75192-1 to the trash"_s);
        content().undoStack().undo();
        QVERIFY(!context().existingObject<BrickSet>(m_falconCopy.objectID)->isTrashed);
    }

    void theThemeBrowserAsksForATheme()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAllThemes));
        QVERIFY(showsPlaceholder(u"folder"_s));
        QCOMPARE(content().detailPlaceholder()->title(), u"No Theme Selected"_s);
    }

    void aCopyDeletedElsewhereLeavesTheDetailColumn()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        QVERIFY(showsPreviewOf(u"Millennium Falcon"_s));
        auto background = m_store->container().newBackgroundContext();
        const ObjectID id = m_falconCopy.objectID;
        background->perform([id](ManagedObjectContext &context) {
            context.deleteObject(id);
            context.save();
        });
        QTRY_VERIFY(showsPlaceholder(u"square.grid.2x2"_s));
    }

    void theCopysDetailStaysWhileItsCopyIsShownAndIsMadeAnewForAnother()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        QVERIFY(showsPreviewOf(u"Millennium Falcon"_s));
        QPointer<SetDetailView> falconDetail = content().copyDetail();
        // A change of the copy on show brings the column up to date without a new detail.
        content().setSelectedBrickSet(m_falconCopy.objectID);
        QCOMPARE(content().copyDetail(), falconDetail.data());
        content().setSelectedBrickSet(m_castleCopy.objectID);
        QVERIFY(showsPreviewOf(u"Lion Knights' Castle"_s));
        QVERIFY(content().copyDetail() != falconDetail.data());
        QTRY_VERIFY(!falconDetail);
    }

    void theInventoryTabEditsTheSelectedCopyWithTheCopyEditor()
    {
        showContent();
        content().setSelectedBrickSet(m_falconCopy.objectID);
        SetDetailView *detail = content().copyDetail();
        QVERIFY(detail);
        detail->selectTab(SetDetailView::DetailTab::inventory);
        QTRY_VERIFY(detail->inventoryTab() && detail->inventoryTab()->isEditorReady());
        auto *editor = qobject_cast<InventoryEditor *>(detail->inventoryTab()->editor());
        QVERIFY(editor);
        QCOMPARE(editor->brickSet(), std::optional<ObjectID>(m_falconCopy.objectID));
    }

    void theDetailsChecklistButtonAsksTheWindowForTheCopysChecklist()
    {
        content().setSelectedBrickSet(m_falconCopy.objectID);
        QSignalSpy requested(&content(), &ContentView::partsChecklistRequested);
        Q_EMIT content().copyDetail()->partsChecklistRequested(QUrl(u"x-tessaloom://BrickSet/1"_s));
        QCOMPARE(requested.size(), 1);
        QCOMPARE(requested.first().first().toUrl(), QUrl(u"x-tessaloom://BrickSet/1"_s));
    }

    void ctrlFMovesTheKeyboardToTheSearchField()
    {
        showContent();
        QApplication::setActiveWindow(m_content.get());
        QLineEdit *search = content().setListView()->searchField();
        content().setListView()->copiesGrid()->setFocus();
        QTRY_VERIFY(!search->hasFocus());
        QCOMPARE(content().findAction()->shortcut(), QKeySequence(QKeySequence::Find));
        const bool before = list().searchFocusTrigger();
        QTest::keySequence(m_content.get(), QKeySequence::Find);
        QCOMPARE(list().searchFocusTrigger(), !before);
        QTRY_VERIFY(search->hasFocus());

        // Over the theme browser the keys go to its own search field, even from its
        // table, whose type-ahead would otherwise take what is typed next and open a theme.
        QTest::failOnWarning(QRegularExpression(u"Ambiguous shortcut"_s));
        sidebar().setSelectedItem(SidebarItem(SidebarItem::Kind::catalogAllThemes));
        content().themeBrowser()->tableView()->setFocus();
        QTRY_VERIFY(content().themeBrowser()->tableView()->hasFocus());
        QTest::keySequence(m_content.get(), QKeySequence::Find);
        QTRY_VERIFY(content().themeBrowser()->searchField()->hasFocus());
        QTest::keyClicks(QApplication::focusWidget(), u"castle"_s);
        QCOMPARE(content().themeBrowser()->searchField()->text(), u"castle"_s);
        QCOMPARE(sidebar().selectedItem(), std::optional(SidebarItem(SidebarItem::Kind::catalogAllThemes)));
        QCOMPARE(content().middleColumn()->currentWidget(), content().themeBrowser());
    }
};

QTEST_MAIN(ContentViewSelectionTest)
#include "ContentViewSelectionTest.moc"
