// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Endpoints.h"

#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/WishlistListModel.h"
#include "Views/CatalogGridItemView.h"
#include "Views/EmptyStateView.h"
#include "Views/SetGridView.h"
#include "Views/TranslationLoader.h"
#include "Views/WishlistListView.h"
#include "Views/WishlistTableView.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;

namespace {
QDateTime daysAgo(int days)
{
    return QDateTime::currentDateTimeUtc().addDays(-days);
}
} // namespace

// The wishlist's screen offscreen, over a real store file and a tiny real catalog: order,
// the catalog's facts and the entries' own, removal, selection and the shared picker.
class WishlistListViewTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_catalogFolder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    std::unique_ptr<SetListViewModel> m_listModel;
    std::unique_ptr<WishlistListView> m_view;

    ManagedObjectContext &context() { return m_store->viewContext(); }
    WishlistListModel &items() { return *m_view->items(); }

    WishlistItem addItem(const QString &setNumber, const std::optional<QString> &name, const QDateTime &added,
                         const std::function<void(WishlistItem &)> &configure = {})
    {
        WishlistItem item;
        item.setNumber = setNumber;
        item.setName = name;
        item.dateAdded = added;
        if (configure)
            configure(item);
        item = context().insert(item);
        context().save();
        return item;
    }

    qint64 storedItems() { return context().count(FetchRequest<WishlistItem>()); }

    void makeView()
    {
        m_view = std::make_unique<WishlistListView>(context(), *m_listModel);
        QTRY_VERIFY(!items().isLookingUp());
    }

    void showView()
    {
        m_view->resize(900, 700);
        m_view->show();
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }

    void clickRow(int row)
    {
        QAbstractItemView *list = m_listModel->isGridView() ? static_cast<QAbstractItemView *>(m_view->grid())
                                                            : static_cast<QAbstractItemView *>(m_view->table());
        const int column = m_listModel->isGridView() ? int(WishlistListModel::NameColumn) : 0;
        const QRect rect = list->visualRect(items().index(row, column));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // Pictures and their fallbacks are asked of a closed port on this machine: refused at once.
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;bricklinkImages=http://127.0.0.1:9");
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "158,Star Wars,\n171,Ultimate Collector Series,158\n186,Castle,\n");
        fixture.addRows(u"sets"_s,
                        "75192-1,Millennium Falcon,2017,171,7541,http://127.0.0.1:9/media/sets/75192-1.jpg\n"
                        "10305-1,Lion Knights' Castle,2022,186,4514,http://127.0.0.1:9/media/sets/10305-1.jpg\n");
        QVERIFY(m_catalogFolder.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_catalogFolder.filePath(u"catalog"_s)));
        QVERIFY(m_catalog);
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = PersistentContainer::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        m_listModel = std::make_unique<SetListViewModel>(*m_store);
    }

    void cleanup()
    {
        m_view.reset();
        m_listModel.reset();
        m_store.reset();
        m_folder.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void anEmptyWishlistShowsItsEmptyState()
    {
        makeView();
        QCOMPARE(m_view->titleLabel()->text(), u"Wishlist"_s);
        QCOMPARE(m_view->currentList(), m_view->emptyState());
        QCOMPARE(m_view->emptyState()->title(), u"No Wishlist Items"_s);
        QCOMPARE(m_view->emptyState()->description(), u"Sets you add to your wishlist from the catalog appear here."_s);
    }

    void itemsShowNewestFirstWithTheCatalogsFacts()
    {
        addItem(u"10305-1"_s, u"Castle (as saved)"_s, daysAgo(3));
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(1));
        addItem(u"99999-1"_s, u"Long Gone"_s, daysAgo(2));
        makeView();
        QAbstractItemModelTester tester(&items(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(items().count(), 3);
        QCOMPARE(items().resultAt(0).setNum, u"75192-1"_s);
        QCOMPARE(items().resultAt(1).setNum, u"99999-1"_s);
        QCOMPARE(items().resultAt(2).setNum, u"10305-1"_s);
        // The catalog's set replaces what the entry kept of it.
        QCOMPARE(items().resultAt(2), *m_catalog->set(u"10305-1"_s));
        QCOMPARE(items().resultAt(2).name, u"Lion Knights' Castle"_s);
        QCOMPARE(items().themeNameAt(0), u"Ultimate Collector Series"_s);
        QCOMPARE(items().themeNameAt(2), u"Castle"_s);
        QCOMPARE(m_view->currentList(), m_view->grid());
    }

    void theTableHasTheFiveColumns()
    {
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        makeView();
        QStringList titles;
        for (int column = 0; column < items().columnCount(); ++column)
            titles << items().headerData(column, Qt::Horizontal).toString();
        QCOMPARE(titles, (QStringList{u"Set #"_s, u"Name"_s, u"Theme"_s, u"Year"_s, u"Pieces"_s}));
        QCOMPARE(items().index(0, WishlistListModel::ThemeColumn).data().toString(), u"Castle"_s);
        QCOMPARE(items().index(0, WishlistListModel::YearColumn).data().toInt(), 2022);
        QCOMPARE(items().index(0, WishlistListModel::PiecesColumn).data().toInt(), 4514);
    }

    void anItemWhoseSetLeftTheCatalogShowsItsOwnFieldsAndCanBeRemoved()
    {
        const WishlistItem gone = addItem(u"6080-1"_s, u"King's Castle"_s, daysAgo(2), [](WishlistItem &item) {
            item.year = 1984;
            item.pieceCount = 674;
            item.imageURL = u"http://127.0.0.1:9/media/sets/6080-1.jpg"_s;
            item.themeName = u"Castle"_s;
        });
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        makeView();
        QCOMPARE(items().rowOf(u"6080-1"_s), 1);
        const CatalogSetResult shown = items().resultAt(1);
        QCOMPARE(shown.setNum, u"6080-1"_s);
        QCOMPARE(shown.name, u"King's Castle"_s);
        QCOMPARE(shown.year, 1984);
        QCOMPARE(shown.numParts, 674);
        QCOMPARE(shown.imgURL, std::optional<QString>(u"http://127.0.0.1:9/media/sets/6080-1.jpg"_s));
        QCOMPARE(items().themeNameAt(1), u"Castle"_s);
        const SetGridCell cell = m_view->cells()->cell(items().index(1, WishlistListModel::NameColumn));
        QCOMPARE(cell.name, u"King's Castle"_s);
        QCOMPARE(cell.pieceCountText, u"674 pieces"_s);

        std::unique_ptr<QMenu> menu(m_view->itemContextMenu(1));
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().first()->text(), u"Remove from Wishlist"_s);
        menu->actions().first()->trigger();

        QCOMPARE(storedItems(), qint64(1));
        QVERIFY(!context().existingObject<WishlistItem>(gone.objectID));
        QCOMPARE(items().count(), 1);
        QCOMPARE(items().resultAt(0).setNum, u"10305-1"_s);
    }

    void aRemovalTakesOutItsRowAndKeepsTheOthers()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(3));
        const WishlistItem middle = addItem(u"6080-1"_s, u"King's Castle"_s, daysAgo(2));
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        makeView();
        QAbstractItemModelTester tester(&items(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy resets(&items(), &QAbstractItemModel::modelReset);
        QSignalSpy removed(&items(), &QAbstractItemModel::rowsRemoved);
        items().removeItem(middle.objectID);
        // Reported as one removed row, so the views keep their scroll position.
        QCOMPARE(resets.size(), 0);
        QCOMPARE(removed.size(), 1);
        QCOMPARE(removed.first().at(1).toInt(), 1);
        QCOMPARE(items().count(), 2);
        QCOMPARE(items().resultAt(0).setNum, u"10305-1"_s);
        QCOMPARE(items().resultAt(1).setNum, u"75192-1"_s);
        QCOMPARE(items().themeNameAt(1), u"Ultimate Collector Series"_s);
    }

    void anItemWithoutANameShowsItsNumber()
    {
        addItem(u"4242-1"_s, std::nullopt, daysAgo(1));
        makeView();
        QCOMPARE(items().resultAt(0).name, u"4242-1"_s);
    }

    void withoutACatalogEveryItemShowsItsOwnFields()
    {
        RebrickableCatalog::replaceShared(nullptr);
        addItem(u"10305-1"_s, u"Castle (as saved)"_s, daysAgo(1), [](WishlistItem &item) { item.year = 2022; });
        makeView();
        QCOMPARE(items().resultAt(0).name, u"Castle (as saved)"_s);
        QCOMPARE(items().resultAt(0).year, 2022);
        QCOMPARE(items().resultAt(0).themeID, 0);
    }

    void theListFollowsEntriesAddedElsewhere()
    {
        makeView();
        QSignalSpy arrived(&items(), &WishlistListModel::catalogFactsArrived);
        addItem(u"75192-1"_s, u"Falcon"_s, daysAgo(0));
        // The entry shows at once from its own facts, and the catalog's name follows.
        QCOMPARE(items().count(), 1);
        QCOMPARE(m_view->currentList(), m_view->grid());
        QTRY_COMPARE(items().resultAt(0).name, u"Millennium Falcon"_s);
        QVERIFY(!arrived.isEmpty());
    }

    void selectingARowReportsItsCatalogSet()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(1));
        makeView();
        showView();
        QSignalSpy selected(m_view.get(), &WishlistListView::catalogSetSelected);
        clickRow(0);
        QCOMPARE(selected.size(), 1);
        const auto set = selected.first().first().value<std::optional<CatalogSetResult>>();
        QVERIFY(set);
        QCOMPARE(*set, *m_catalog->set(u"75192-1"_s));
        QCOMPARE(m_view->selectedSetNumber(), std::optional<QString>(u"75192-1"_s));
    }

    void removingTheSelectedItemClearsTheSelectionFirst()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(2));
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        makeView();
        showView();
        clickRow(1);
        QCOMPARE(m_view->selectedSetNumber(), std::optional<QString>(u"75192-1"_s));
        QList<qint64> itemsWhenCleared;
        connect(m_view.get(), &WishlistListView::catalogSetSelected, this,
                [&](const std::optional<CatalogSetResult> &set) {
                    if (!set)
                        itemsWhenCleared.append(storedItems());
                });

        std::unique_ptr<QMenu> menu(m_view->itemContextMenu(1));
        menu->actions().first()->trigger();

        // The selection was cleared while the entry was still there.
        QCOMPARE(itemsWhenCleared, QList<qint64>{2});
        QCOMPARE(storedItems(), qint64(1));
        QVERIFY(!m_view->selectedSetNumber());
        QVERIFY(m_view->grid()->selectionModel()->selectedIndexes().isEmpty());
    }

    void removingAnotherItemKeepsTheSelection()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(2));
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        makeView();
        m_view->setSelectedSetNumber(u"75192-1"_s);
        QSignalSpy selected(m_view.get(), &WishlistListView::catalogSetSelected);
        m_view->removeFromWishlist(0);
        QCOMPARE(selected.size(), 0);
        QCOMPARE(m_view->selectedSetNumber(), std::optional<QString>(u"75192-1"_s));
        const QModelIndexList rows = m_view->grid()->selectionModel()->selectedRows(WishlistListModel::NameColumn);
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().row(), 0);
    }

    void theDeleteKeyRemovesTheSelectedItem()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(2));
        addItem(u"10305-1"_s, u"Lion Knights' Castle"_s, daysAgo(1));
        m_listModel->setGridView(false);
        makeView();
        showView();
        clickRow(0);
        QCOMPARE(QApplication::focusWidget(), m_view->table());
        QTest::keyClick(m_view->table(), Qt::Key_Delete);
        QCOMPARE(storedItems(), qint64(1));
        QCOMPARE(items().resultAt(0).setNum, u"75192-1"_s);
        QVERIFY(!m_view->selectedSetNumber());
    }

    void thePickerSwitchesTheSharedGridSetting()
    {
        addItem(u"75192-1"_s, u"Millennium Falcon"_s, daysAgo(1));
        makeView();
        QVERIFY(m_listModel->isGridView());
        QCOMPARE(m_view->viewPicker()->accessibleName(), u"View"_s);
        QVERIFY(m_view->gridAction()->isChecked());

        m_view->tableAction()->trigger();

        QVERIFY(!m_listModel->isGridView());
        QCOMPARE(QSettings().value(u"collectionIsGridView"_s).toBool(), false);
        QCOMPARE(m_view->currentList(), m_view->table());
        QVERIFY(m_view->tableAction()->isChecked());

        // A switch made in the set lists shows here as well.
        m_listModel->setGridView(true);
        QCOMPARE(m_view->currentList(), m_view->grid());
        QVERIFY(m_view->gridAction()->isChecked());
    }
};

QTEST_MAIN(WishlistListViewTest)
#include "WishlistListViewTest.moc"
