// SPDX-License-Identifier: GPL-3.0-or-later
#include "../ImageCache/TestPictures.h"
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/CatalogGridItemView.h"
#include "Views/CatalogTableView.h"
#include "Views/CellPictureLoader.h"
#include "Views/ConditionBadge.h"
#include "Views/EmptyStateView.h"
#include "Views/PriceLabel.h"
#include "Views/SetGridItemView.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "Views/SetTableView.h"
#include "Views/SymbolMarkCell.h"
#include "Views/TableThumbnail.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {

QStringList cellNumbers(const QAbstractItemModel &model, int role)
{
    QStringList numbers;
    for (int row = 0; row < model.rowCount(); ++row)
        numbers << model.index(row, 0).data(role).toString();
    return numbers;
}

void clickHeader(QTableView &table, int column)
{
    QHeaderView *header = table.horizontalHeader();
    const QPoint centre(header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
}

} // namespace

// The middle column's screens offscreen, over a real store and a tiny real catalog.
class SetListViewTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<SetListViewModel> m_model;
    std::unique_ptr<SetListView> m_view;
    CatalogSet m_falcon;
    CatalogSet m_castle;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    SetListViewModel &model() { return *m_model; }
    SetListView &view() { return *m_view; }

    BrickSet addCopy(const std::optional<ObjectID> &catalogSet, const std::function<void(BrickSet &)> &configure = {})
    {
        return saveCopy(context(), catalogSet, configure);
    }

    void showView()
    {
        m_view->resize(900, 700);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

    void selectCatalog()
    {
        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::catalogAll));
        view().setSidebarSelection(SidebarItem(SidebarItem::Kind::catalogAll));
        QTRY_VERIFY(!model().isCatalogSearchRunning());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n5,Castle,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,1,7541,\n"
                                   "75257-1,Millennium Falcon,2019,1,1351,\n"
                                   "7965-1,Millennium Falcon,2011,1,1254,\n"
                                   "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                                   "6080-1,King's Castle,1984,5,674,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        CatalogSet falcon = catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        falcon.pieceCount = 7541;
        falcon.themeName = u"Star Wars"_s;
        m_falcon = context().insert(falcon);
        CatalogSet castle = catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022);
        castle.pieceCount = 4514;
        castle.themeName = u"Castle"_s;
        m_castle = context().insert(castle);
        context().save();
        m_model = std::make_unique<SetListViewModel>(m_store->container());
        m_view = std::make_unique<SetListView>(*m_model);
        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
    }

    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
    }

    void anEmptyCollectionShowsItsEmptyState()
    {
        showView();
        QCOMPARE(view().currentList(), view().copiesEmptyState());
        QCOMPARE(view().copiesEmptyState()->symbolName(), u"square.grid.2x2.fill"_s);
        QCOMPARE(view().copiesEmptyState()->title(), u"No Sets"_s);
        QCOMPARE(view().copiesEmptyState()->description(), u"Sets you add to your collection appear here."_s);

        addCopy(m_castle.objectID);
        QTRY_COMPARE(view().currentList(), view().copiesGrid());
    }

    void titleAndPromptFollowTheSidebar()
    {
        view().setSidebarSelection(std::nullopt);
        QCOMPARE(view().titleLabel()->text(), u"All Sets"_s);
        QCOMPARE(view().searchField()->placeholderText(), u"Filter by name, number or year"_s);
        view().setSidebarSelection(SidebarItem(SidebarItem::Kind::favorites));
        QCOMPARE(view().titleLabel()->text(), SidebarItem(SidebarItem::Kind::favorites).title());
        QCOMPARE(view().searchField()->placeholderText(), u"Filter by name, number or year"_s);
        for (const SidebarItem &catalogItem : {SidebarItem(SidebarItem::Kind::catalogAll),
                                               SidebarItem(SidebarItem::Kind::catalogAllThemes),
                                               SidebarItem::catalogTheme(5, u"Castle"_s)}) {
            view().setSidebarSelection(catalogItem);
            QCOMPARE(view().searchField()->placeholderText(), u"Search the catalog by name, number or year"_s);
        }
        QCOMPARE(view().titleLabel()->text(), u"Castle"_s);
    }

    void gridShowsOneCellPerSetWithCountStarAndPieces()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.dateAdded = copy.dateAdded->addDays(-1); });
        addCopy(m_castle.objectID);
        showView();
        QCOMPARE(view().currentList(), view().copiesGrid());
        QAbstractItemModel *cells = view().copiesGrid()->model();
        QCOMPARE(cells->rowCount(), 2);
        // Name ascending: the castle first.
        const SetGridCell castle = view().copyCells()->cell(cells->index(0, 0));
        QCOMPARE(castle.name, u"Lion Knights' Castle"_s);
        QCOMPARE(castle.setNumber, u"10305-1"_s);
        QCOMPARE(castle.pieceCountText, u"4,514 pieces"_s);
        QVERIFY(castle.copyCountText.isEmpty());
        QVERIFY(!castle.isFavorite);
        const SetGridCell falcon = view().copyCells()->cell(cells->index(1, 0));
        QCOMPARE(falcon.name, u"Millennium Falcon"_s);
        QCOMPARE(falcon.copyCountText, u"2 copies"_s);
        QCOMPARE(falcon.pieceCountText, u"7,541 pieces"_s);
        // The copy that sorts first stands for the set, and its star is the cell's.
        const SetListGroupModel::Group &group = model().groups()->groupAt(1);
        QCOMPARE(group.copyCount, 2);
        QCOMPARE(falcon.isFavorite, group.copy->brickSet.isFavorite);
        // The cells are laid out side by side, each as large as its delegate asks.
        const QRect first = view().copiesGrid()->visualRect(cells->index(0, SetListGroupModel::NameColumn));
        const QRect second = view().copiesGrid()->visualRect(cells->index(1, SetListGroupModel::NameColumn));
        QVERIFY(first.isValid() && second.isValid());
        QCOMPARE(first.top(), second.top());
        QVERIFY(second.left() > first.right());

        // Typing in the grid jumps to a set by its name.
        view().copiesGrid()->setFocus();
        view().copiesGrid()->keyboardSearch(u"mill"_s);
        QCOMPARE(view().copiesGrid()->currentIndex().row(), 1);
    }

    void tableShowsTheListedColumnsAndUnknownSet()
    {
        model().setGridView(false);
        addCopy(m_falcon.objectID, [](BrickSet &copy) {
            copy.isFavorite = true;
            copy.overallCondition = u"new"_s;
        });
        addCopy(std::nullopt, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        context().insert(guide(m_falcon.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc(), u"849.5"_s));
        context().save();
        showView();
        SetTableView *table = view().copiesTable();
        QCOMPARE(view().currentList(), table);
        QAbstractItemModel *rows = table->model();
        QStringList headers;
        for (int column = 0; column < rows->columnCount(); ++column)
            headers << rows->headerData(column, Qt::Horizontal).toString();
        QCOMPARE(headers, (QStringList{QString(), u"Set #"_s, u"Name"_s, u"Theme"_s, u"Year"_s, u"Pieces"_s,
                                       u"Condition"_s, u"Value"_s, u"Added"_s}));
        QVERIFY(qobject_cast<TableThumbnail *>(table->itemDelegateForColumn(SetListGroupModel::ThumbnailColumn)));
        QCOMPARE(table->horizontalHeader()->sectionResizeMode(SetListGroupModel::ThumbnailColumn), QHeaderView::Fixed);

        QTRY_COMPARE(rows->rowCount(), 2);
        // Name ascending puts the copy without a set (no name) first.
        QCOMPARE(rows->index(0, SetListGroupModel::NameColumn).data().toString(), u"Unknown Set"_s);
        QCOMPARE(rows->index(1, SetListGroupModel::NameColumn).data().toString(), u"Millennium Falcon"_s);
        QCOMPARE(rows->index(1, SetListGroupModel::SetNumberColumn).data().toString(), u"75192-1"_s);
        QCOMPARE(rows->index(1, SetListGroupModel::ThemeColumn).data().toString(), u"Star Wars"_s);
        QCOMPARE(rows->index(1, SetListGroupModel::YearColumn).data().toInt(), 2017);
        QCOMPARE(rows->index(1, SetListGroupModel::PiecesColumn).data().toString(), QLocale().toString(7541));

        auto *name = qobject_cast<SymbolMarkCell *>(table->itemDelegateForColumn(SetListGroupModel::NameColumn));
        QVERIFY(name);
        QVERIFY(name->isMarked(rows->index(1, SetListGroupModel::NameColumn)));
        QVERIFY(!name->isMarked(rows->index(0, SetListGroupModel::NameColumn)));
        QVERIFY(qobject_cast<ConditionBadge *>(table->itemDelegateForColumn(SetListGroupModel::ConditionColumn)));
        QCOMPARE(ConditionBadge::text(rows->index(1, 0).data(SetListGroupModel::ConditionRole).toString()),
                 u"New/Sealed"_s);
        QCOMPARE(ConditionBadge::text(rows->index(0, 0).data(SetListGroupModel::ConditionRole).toString()), u"Used"_s);
        QVERIFY(ConditionBadge::color(u"new"_s) != ConditionBadge::color(u"used"_s));
        QVERIFY(qobject_cast<PriceLabel *>(table->itemDelegateForColumn(SetListGroupModel::ValueColumn)));
        const QModelIndex price = rows->index(1, 0);
        QCOMPARE(PriceLabel::text(price.data(SetListGroupModel::PriceRole).value<Decimal>(),
                                  price.data(SetListGroupModel::CurrencyRole).toString()),
                 u"849.50"_s);
        QCOMPARE(PriceLabel::text(Decimal::fromString(u"1234.5"_s), u"USD"_s), u"$1,234.50"_s);
        QCOMPARE(PriceLabel::text(Decimal::fromString(u"89.99"_s), u"CHF"_s), u"CHF 89.99"_s);
        QCOMPARE(PriceLabel::text(std::nullopt, u"USD"_s), QString());
    }

    void gridCellOfAFavouriteReadsItsStarToScreenReaders()
    {
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        addCopy(m_falcon.objectID);
        showView();
        QAbstractItemModel *cells = view().copiesGrid()->model();
        QCOMPARE(view().copiesGrid()->modelColumn(), int(SetListGroupModel::NameColumn));
        QCOMPARE(cells->index(0, SetListGroupModel::NameColumn).data(Qt::AccessibleTextRole).toString(),
                 u"Lion Knights' Castle, Favorite"_s);
        QCOMPARE(cells->index(1, SetListGroupModel::NameColumn).data(Qt::AccessibleTextRole).toString(),
                 u"Millennium Falcon"_s);
    }

    void conditionBadgeFillsItsCapsuleAtFifteenPercentOfTheConditionsColour()
    {
        QStandardItemModel conditions;
        auto *item = new QStandardItem;
        item->setData(u"new"_s, Qt::UserRole + 1);
        conditions.appendRow(item);
        const ConditionBadge badge(Qt::UserRole + 1);
        QImage canvas(200, 40, QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::white);
        QStyleOptionViewItem option;
        option.rect = canvas.rect();
        option.font = QApplication::font();
        option.state = QStyle::State_Enabled;
        {
            QPainter painter(&canvas);
            badge.paint(&painter, option, conditions.index(0, 0));
        }
        // Just inside the capsule's rounded left end, at its middle: clear of the edge's
        // smoothing and of the label, which starts after the padding.
        const QColor inside = canvas.pixelColor(2 + 3, canvas.height() / 2);
        const QColor tint = ConditionBadge::color(u"new"_s);
        const auto blended = [](int colour) { return qRound(255 * (1 - ConditionBadge::fillOpacity) + colour * ConditionBadge::fillOpacity); };
        QVERIFY2(qAbs(inside.red() - blended(tint.red())) <= 3 && qAbs(inside.green() - blended(tint.green())) <= 3
                     && qAbs(inside.blue() - blended(tint.blue())) <= 3,
                 qPrintable(inside.name()));
        QCOMPARE(ConditionBadge::fillOpacity, 0.15f);
    }

    void viewPickerSwitchesBetweenGridAndTableAndStoresTheChoice()
    {
        addCopy(m_castle.objectID);
        showView();
        QVERIFY(view().gridAction()->isChecked());
        QCOMPARE(view().currentList(), view().copiesGrid());
        view().tableAction()->trigger();
        QCOMPARE(view().currentList(), view().copiesTable());
        QVERIFY(view().tableAction()->isChecked());
        QCOMPARE(QSettings().value(u"collectionIsGridView"_s).toBool(), false);
        // The same choice holds for the catalog.
        selectCatalog();
        QCOMPARE(view().currentList(), view().catalogTable());
        view().gridAction()->trigger();
        QCOMPARE(view().currentList(), view().catalogGrid());
        QCOMPARE(QSettings().value(u"collectionIsGridView"_s).toBool(), true);
    }

    void clickingAHeaderSortsTheCopiesAndStoresTheSort()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        model().setGridView(false);
        showView();
        SetTableView *table = view().copiesTable();
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(SetListGroupModel::NameColumn));
        QCOMPARE(cellNumbers(*table->model(), SetListGroupModel::SetNumberRole), (QStringList{u"10305-1"_s, u"75192-1"_s}));

        clickHeader(*table, SetListGroupModel::YearColumn);
        QCOMPARE(QSettings().value(u"collectionSortColumn"_s).toString(), u"year"_s);
        QCOMPARE(QSettings().value(u"collectionSortAscending"_s).toBool(), true);
        QCOMPARE(cellNumbers(*table->model(), SetListGroupModel::SetNumberRole), (QStringList{u"75192-1"_s, u"10305-1"_s}));
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(SetListGroupModel::YearColumn));

        // A second click on the same column turns the direction round.
        clickHeader(*table, SetListGroupModel::YearColumn);
        QCOMPARE(QSettings().value(u"collectionSortAscending"_s).toBool(), false);
        QCOMPARE(table->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
        QCOMPARE(cellNumbers(*table->model(), SetListGroupModel::SetNumberRole), (QStringList{u"10305-1"_s, u"75192-1"_s}));

        // The value column's header sorts by name: a header cannot carry the computed price.
        clickHeader(*table, SetListGroupModel::ValueColumn);
        QCOMPARE(QSettings().value(u"collectionSortColumn"_s).toString(), u"name"_s);
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(SetListGroupModel::NameColumn));

        // The thumbnail does not sort: nothing changes.
        clickHeader(*table, SetListGroupModel::ThumbnailColumn);
        QCOMPARE(QSettings().value(u"collectionSortColumn"_s).toString(), u"name"_s);
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(SetListGroupModel::NameColumn));
    }

    void clickingACatalogHeaderSortsTheResultsAndStoresTheSort()
    {
        model().setGridView(false);
        showView();
        selectCatalog();
        CatalogTableView *table = view().catalogTable();
        QCOMPARE(view().currentList(), table);
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(CatalogSetListModel::YearColumn));
        QCOMPARE(cellNumbers(*table->model(), CatalogSetListModel::SetNumberRole).first(), u"6080-1"_s);

        clickHeader(*table, CatalogSetListModel::PiecesColumn);
        QCOMPARE(QSettings().value(u"catalogSortColumn"_s).toString(), u"pieces"_s);
        QTRY_VERIFY(!model().isCatalogSearchRunning());
        QTRY_COMPARE(cellNumbers(*table->model(), CatalogSetListModel::SetNumberRole),
                     (QStringList{u"6080-1"_s, u"7965-1"_s, u"75257-1"_s, u"10305-1"_s, u"75192-1"_s}));
        QCOMPARE(table->horizontalHeader()->sortIndicatorSection(), int(CatalogSetListModel::PiecesColumn));
    }

    void catalogTableMarksOwnedSetsAndNamesThemes()
    {
        addCopy(m_falcon.objectID);
        model().setGridView(false);
        showView();
        selectCatalog();
        CatalogTableView *table = view().catalogTable();
        auto *owned = qobject_cast<SymbolMarkCell *>(table->itemDelegateForColumn(CatalogSetListModel::OwnedColumn));
        QVERIFY(owned);
        QAbstractItemModel *rows = table->model();
        for (int row = 0; row < rows->rowCount(); ++row) {
            const QModelIndex index = rows->index(row, CatalogSetListModel::OwnedColumn);
            QCOMPARE(owned->isMarked(index), rows->index(row, 0).data(CatalogSetListModel::SetNumberRole) == u"75192-1"_s);
        }
        QTRY_COMPARE(rows->index(0, CatalogSetListModel::ThemeColumn).data().toString(), u"Castle"_s);
        // The grid's cells carry the same mark.
        const int falconRow = qobject_cast<CatalogSetListModel *>(rows)->rowOf(u"75192-1"_s);
        QVERIFY(view().catalogCells()->cell(rows->index(falconRow, 0)).isOwned);
        QVERIFY(!view().catalogCells()->cell(rows->index(0, 0)).isOwned);
    }

    void typingInTheCatalogSearchFiresOneSearchAfterThePauseAndShowsTheResults()
    {
        showView();
        selectCatalog();
        QCOMPARE(view().currentList(), view().catalogGrid());
        QSignalSpy started(&model(), &SetListViewModel::catalogSearchStarted);
        QTest::keyClicks(view().searchField(), u"castle"_s);
        QCOMPARE(model().searchText(), u"castle"_s);
        QCOMPARE(started.count(), 0);
        QTRY_COMPARE(started.count(), 1);
        QTRY_VERIFY(!model().isCatalogSearchRunning());
        QTRY_COMPARE(view().catalogGrid()->model()->rowCount(), 2);
        QCOMPARE(cellNumbers(*view().catalogGrid()->model(), CatalogSetListModel::SetNumberRole),
                 (QStringList{u"6080-1"_s, u"10305-1"_s}));
        QCOMPARE(view().currentList(), view().catalogGrid());
        // A pause as long as the field's, started after every key and after the results: a
        // wait any of them started has run out before it does, and would have fired first.
        bool pauseOver = false;
        QTimer::singleShot(CatalogSearchDebounce::defaultPause, Qt::PreciseTimer, this, [&pauseOver] { pauseOver = true; });
        QTRY_VERIFY(pauseOver);
        QCOMPARE(started.count(), 1);
    }

    // Down in the search field goes on to the results: the keyboard moves into the list on
    // show and its first row is chosen, in the grid and in the table alike.
    void downInTheSearchFieldChoosesTheFirstResult()
    {
        showView();
        selectCatalog();
        QTest::keyClicks(view().searchField(), u"castle"_s);
        QTRY_COMPARE(view().catalogGrid()->model()->rowCount(), 2);
        QSignalSpy chosen(&view(), &SetListView::catalogSetSelected);
        QTest::keyClick(view().searchField(), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), view().catalogGrid());
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chosen.last().at(0).value<std::optional<CatalogSetResult>>()->setNum, u"6080-1"_s);
        // The arrows go on from the chosen cell.
        QTest::keyClick(view().catalogGrid(), Qt::Key_Right);
        QCOMPARE(chosen.last().at(0).value<std::optional<CatalogSetResult>>()->setNum, u"10305-1"_s);

        // A row already chosen stays chosen; the table takes the keyboard just the same.
        model().setGridView(false);
        QTRY_COMPARE(view().currentList(), view().catalogTable());
        view().searchField()->setFocus();
        QTest::keyClick(view().searchField(), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), view().catalogTable());
        QCOMPARE(chosen.last().at(0).value<std::optional<CatalogSetResult>>()->setNum, u"10305-1"_s);
    }

    void downInTheSearchFieldOfAnEmptyListStaysInTheField()
    {
        showView();
        QCOMPARE(view().currentList(), view().copiesEmptyState());
        view().searchField()->setFocus();
        QTest::keyClick(view().searchField(), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), view().searchField());

        addCopy(m_castle.objectID);
        QTRY_COMPARE(view().currentList(), view().copiesGrid());
        QSignalSpy chosen(&view(), &SetListView::brickSetSelected);
        QTest::keyClick(view().searchField(), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), view().copiesGrid());
        QCOMPARE(chosen.count(), 1);
        QVERIFY(chosen.last().at(0).value<std::optional<ObjectID>>().has_value());
    }

    void aCatalogSearchWithoutMatchesSaysSoWithTheText()
    {
        showView();
        selectCatalog();
        QTest::keyClicks(view().searchField(), u"zebra"_s);
        QTRY_COMPARE(view().currentList(), view().catalogEmptyState());
        QCOMPARE(view().catalogEmptyState()->title(), u"No Results"_s);
        QCOMPARE(view().catalogEmptyState()->description(), u"No catalog set matches “zebra”."_s);
    }

    void aPictureArrivingRepaintsItsCell()
    {
        LoopbackHttpServer server;
        QVERIFY(server.listen());
        LoopbackHttpServer::Response response;
        response.body = TestPictures::png(QSize(320, 240), QColor(200, 40, 40));
        response.delayMilliseconds = 150;
        server.setResponse(u"/media/sets/10305-1.jpg"_s, response);
        QTemporaryDir caches;
        ImageCacheService pictures(caches.path());
        view().gridPictures()->setImageCache(&pictures);

        m_castle.imageURL = server.url(u"/media/sets/10305-1.jpg"_s).toString();
        context().update(m_castle);
        addCopy(m_castle.objectID);
        showView();
        SetGridView *grid = view().copiesGrid();
        const QModelIndex cell = grid->model()->index(0, SetListGroupModel::NameColumn);
        const QRect box = grid->visualRect(cell);
        const QPoint pictureCentre(box.center().x(), box.top() + 6 + 60);
        const auto pixel = [&] { return grid->viewport()->grab().toImage().pixelColor(pictureCentre); };
        QVERIFY(pixel() != QColor(200, 40, 40));
        QTRY_COMPARE(pixel(), QColor(200, 40, 40));
        // Kept small: the picture is scaled to the cell, not held at its full size.
        QVERIFY(view().gridPictures()->bytesHeld() <= qsizetype(160 * 120 * 4));
        QTRY_VERIFY(server.inFlightRequests() == 0);
    }
};

QTEST_MAIN(SetListViewTest)
#include "SetListViewTest.moc"
