// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "Endpoints.h"
#include "TestEnvironment.h"

#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PartInventoryEntry.h"
#include "Store/PersistenceController.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/CategoryFilterChip.h"
#include "Views/ChecklistRowView.h"
#include "Views/ChecklistRowModel.h"
#include "Views/ColorFilterChip.h"
#include "Views/CompletionRing.h"
#include "Views/EmptyStateView.h"
#include "Views/PartsChecklistWindow.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {

QStringList rowIDs(const PartsChecklistWindow &window)
{
    QStringList ids;
    for (const QModelIndex &row : window.rows())
        ids << row.data(ChecklistRowModel::ItemIDRole).toString();
    return ids;
}

QStringList headingTexts(const PartsChecklistWindow &window)
{
    return window.groupHeadings();
}

// Whether `row` lies in the part of the list in sight.
bool isInSight(const PartsChecklistWindow &window, const QModelIndex &row)
{
    return window.listPage()->viewport()->rect().intersects(window.listPage()->visualRect(row));
}

// One painted row of the list, found by its item id each time it is asked, since the list's
// rows are made anew when the search, the filters or the order change. Its buttons are
// clicked with the mouse where the row paints them.
class Row
{
public:
    Row(PartsChecklistWindow &window, const QString &id)
        : m_window(window)
        , m_id(id)
    {
    }

    QModelIndex index() const
    {
        for (const QModelIndex &row : m_window.rows()) {
            if (row.data(ChecklistRowModel::ItemIDRole).toString() == m_id)
                return row;
        }
        return {};
    }
    QString text(int role) const { return index().data(role).toString(); }
    QString name() const { return text(Qt::DisplayRole); }
    QString detail() const { return text(ChecklistRowModel::DetailRole); }
    QString count() const { return text(ChecklistRowModel::CountRole); }
    QString pictureURL() const { return text(ChecklistRowModel::PictureURLRole); }
    bool isPictureRequested() const { return m_window.isPictureRequested(index()); }
    int owned() const { return index().data(ChecklistRowModel::OwnedRole).toInt(); }
    bool isComplete() const { return index().data(ChecklistRowModel::IsCompleteRole).toBool(); }
    bool canDecrement() const { return index().data(ChecklistRowModel::CanDecrementRole).toBool(); }
    bool canIncrement() const { return index().data(ChecklistRowModel::CanIncrementRole).toBool(); }
    ChecklistItem item() const { return *m_window.rowModel()->item(index()); }
    void clickDecrement() { click(PartsChecklistWindow::RowButton::decrement); }
    void clickIncrement() { click(PartsChecklistWindow::RowButton::increment); }

private:
    void click(PartsChecklistWindow::RowButton button)
    {
        const QRect place = m_window.rowButtonRect(index(), button);
        QVERIFY(place.isValid());
        QTest::mouseClick(m_window.listPage()->viewport(), Qt::LeftButton, {}, place.center());
    }

    PartsChecklistWindow &m_window;
    QString m_id;
};

template <typename Mode>
void pick(QComboBox *picker, Mode mode)
{
    picker->setCurrentIndex(picker->findData(int(mode)));
}

} // namespace

// One copy's checklist window offscreen, over a real store in memory and a tiny real
// catalog: ticking, the actions, every filter and facet, the states and the export.
class PartsChecklistWindowTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_pictures;
    std::unique_ptr<PartsChecklistWindow> m_window;
    BrickSet m_station;
    BrickSet m_emptyBox;
    BrickSet m_wall;
    BrickSet m_longSet;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    PartsChecklistWindow &window() { return *m_window; }
    PartsChecklistViewModel &model() { return *m_window->viewModel(); }

    void open(const BrickSet &copy)
    {
        m_window = std::make_unique<PartsChecklistWindow>(std::make_unique<PartsChecklistViewModel>(copy, context()));
        m_window->setImageCache(m_pictures.get());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QTRY_VERIFY(!model().isLoading());
    }

    Row row(const QString &id)
    {
        Row found(window(), id);
        if (!found.index().isValid())
            qFatal("No row for %s", qPrintable(id));
        return found;
    }

    qint64 storedEntries() { return context().count(FetchRequest<PartInventoryEntry>()); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // One picture cache for the whole run: loads it started for one test may still
        // be on their way when the next begins, and must find it alive.
        m_caches = std::make_unique<QTemporaryDir>();
        m_pictures = std::make_unique<ImageCacheService>(m_caches->path());
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Town,\n");
        fixture.addRows(u"sets"_s, "1000-1,Fire Station,2020,1,7,\n2000-1,Empty Box,2021,1,0,\n"
                                   "5000-1,Big Wall,2022,1,2000,\n6000-1,Long Set,2023,1,200,\n");
        fixture.addRows(u"inventories"_s, "1,1,1000-1\n2,1,2000-1\n3,1,5000-1\n4,1,6000-1\n");
        fixture.addRows(u"colors"_s, "0,Black,05131D,False\n1,Blue,0055BF,False\n4,Red,C91A09,False\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n14,Plates\n");
        fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3023,Plate 1 x 2,14,Plastic\n"
                                    "3024,Plate 1 x 1,14,Plastic\n");
        QByteArray longParts;
        QByteArray longLines;
        for (int line = 0; line < 200; ++line) {
            const QByteArray number = "9" + QByteArray::number(1000 + line);
            longParts += number + ",Long Part " + QByteArray::number(1000 + line) + ",11,Plastic\n";
            longLines += "4," + number + ",0,1,False,\n";
        }
        fixture.addRows(u"parts"_s, longParts);
        fixture.addRows(u"inventory_parts"_s, longLines);
        fixture.addRows(u"inventory_parts"_s,
                        "1,3001,4,3,False,\n"
                        "1,3023,1,2,False,\n"
                        "1,3024,4,1,False,\n"
                        "1,3024,4,1,True,\n"
                        "3,3001,0,2000,False,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        // Pictures go to a port where nothing listens.
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9");
        m_store = PersistenceController::open(QString(), true);
        const CatalogSet station = context().insert(catalogSet(u"1000-1"_s, u"Fire Station"_s));
        const CatalogSet emptyBox = context().insert(catalogSet(u"2000-1"_s, u"Empty Box"_s));
        const CatalogSet wall = context().insert(catalogSet(u"5000-1"_s, u"Big Wall"_s));
        context().save();
        m_station = saveCopy(context(), station.objectID);
        m_emptyBox = saveCopy(context(), emptyBox.objectID);
        m_wall = saveCopy(context(), wall.objectID);
        const CatalogSet longSet = context().insert(catalogSet(u"6000-1"_s, u"Long Set"_s));
        context().save();
        m_longSet = saveCopy(context(), longSet.objectID);
    }

    void cleanup()
    {
        m_window.reset();
        QThreadPool::globalInstance()->waitForDone();
        m_store.reset();
        qunsetenv(Endpoints::overrideVariable);
    }

    void theWindowOpensAtItsDefaultSizeWithItsTitle()
    {
        open(m_station);
        QCOMPARE(PartsChecklistWindow::defaultSize, QSize(900, 700));
        QCOMPARE(window().size(), QSize(900, 700));
        QCOMPARE(window().windowTitle(), u"Parts Checklist"_s);
    }

    void rowsShowTheInventoryWithoutSpares()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s, u"3024-4"_s, u"3023-1"_s}));
        Row brick = row(u"3001-4"_s);
        QCOMPARE(brick.name(), u"Brick 2 x 4"_s);
        QCOMPARE(brick.detail(), u"3001 · Red · Bricks"_s);
        QCOMPARE(brick.count(), u"0 / 3"_s);
        QCOMPARE(brick.pictureURL(), u"http://127.0.0.1:9/media/parts/ldraw/4/3001.png"_s);
        // A row in view asks for its picture.
        QTRY_VERIFY(brick.isPictureRequested());
        QCOMPARE(brick.text(ChecklistRowModel::DecrementAccessibleNameRole), u"Remove one"_s);
        QCOMPARE(brick.text(ChecklistRowModel::IncrementAccessibleNameRole), u"Add one"_s);
        QCOMPARE(window().countLabel()->text(), u"3 parts"_s);
    }

    void onlyRowsNearTheViewAskForTheirPictures()
    {
        // A set of 200 lines: the rows far below the view wait with their pictures.
        open(m_longSet);
        QCOMPARE(window().rows().size(), 200);
        QTRY_VERIFY(window().isPictureRequested(window().rows().first()));
        QVERIFY(!window().isPictureRequested(window().rows().last()));
        window().listPage()->verticalScrollBar()->setValue(window().listPage()->verticalScrollBar()->maximum());
        QTRY_VERIFY(window().isPictureRequested(window().rows().last()));
    }

    void tickingUpToTheRequiredQuantityCompletesTheRow()
    {
        open(m_station);
        Row brick = row(u"3001-4"_s);
        QVERIFY(!brick.isComplete());
        for (int tick = 0; tick < 3; ++tick)
            brick.clickIncrement();
        QCOMPARE(brick.count(), u"3 / 3"_s);
        QVERIFY(brick.isComplete());
        QCOMPARE(brick.text(ChecklistRowModel::CompletionMarkAccessibleNameRole), u"Complete"_s);
        QVERIFY(!brick.canIncrement());
        QCOMPARE(window().partsFigureLabel()->text(), u"1 of 3 parts"_s);
        QCOMPARE(window().piecesFigureLabel()->text(), u"3 of 6 pieces"_s);
        QCOMPARE(window().percentFigureLabel()->text(), u"50% complete"_s);
        QCOMPARE(window().completionRing()->fraction(), 0.5);
        QCOMPARE(window().completionRing()->centreText(), u"50%"_s);
        QCOMPARE(storedEntries(), 1);
    }

    void theCountStopsAtTheRequiredQuantity()
    {
        open(m_station);
        Row plate = row(u"3024-4"_s);
        plate.clickIncrement();
        const qint64 revision = model().revision();
        // The button is off; the request itself, should it come, changes nothing either.
        QVERIFY(!plate.canIncrement());
        auto *delegate = qobject_cast<ChecklistRowView *>(window().listPage()->itemDelegate());
        QVERIFY(delegate);
        Q_EMIT delegate->incrementRequested(plate.index());
        QCOMPARE(model().revision(), revision);
        QCOMPARE(plate.count(), u"1 / 1"_s);
        QCOMPARE(model().ownedCount(plate.item()), 1);
    }

    void decrementingToZeroLeavesNoStoredEntry()
    {
        open(m_station);
        Row brick = row(u"3001-4"_s);
        QVERIFY(!brick.canDecrement());
        brick.clickIncrement();
        QCOMPARE(storedEntries(), 1);
        QVERIFY(brick.canDecrement());
        brick.clickDecrement();
        QCOMPARE(brick.count(), u"0 / 3"_s);
        QVERIFY(!brick.canDecrement());
        QCOMPARE(storedEntries(), 0);
        QVERIFY(model().entriesByKey().isEmpty());
    }

    void plusAndMinusKeysCountTheCurrentRow()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        Row plate = row(u"3024-4"_s);
        window().listPage()->setCurrentIndex(plate.index());
        QTest::keyClick(window().listPage(), Qt::Key_Plus);
        QCOMPARE(plate.count(), u"1 / 1"_s);
        // Like the button, the key stops at the required quantity.
        QTest::keyClick(window().listPage(), Qt::Key_Plus);
        QCOMPARE(model().ownedCount(plate.item()), 1);
        QTest::keyClick(window().listPage(), Qt::Key_Minus);
        QCOMPARE(plate.count(), u"0 / 1"_s);
        QCOMPARE(storedEntries(), 0);
    }

    void markAllCompleteThenResetAllLeavesNoEntries()
    {
        open(m_station);
        QCOMPARE(window().actionsButton()->accessibleName(), u"Actions"_s);
        QCOMPARE(window().markAllCompleteAction()->text(), u"Mark All Complete"_s);
        QCOMPARE(window().resetAllAction()->text(), u"Reset All"_s);
        window().markAllCompleteAction()->trigger();
        for (const QModelIndex &each : window().rows())
            QVERIFY(each.data(ChecklistRowModel::IsCompleteRole).toBool());
        QCOMPARE(window().percentFigureLabel()->text(), u"100% complete"_s);
        QCOMPARE(storedEntries(), 3);
        window().resetAllAction()->trigger();
        for (const QModelIndex &each : window().rows())
            QCOMPARE(each.data(ChecklistRowModel::OwnedRole).toInt(), 0);
        QCOMPARE(window().percentFigureLabel()->text(), u"0% complete"_s);
        QCOMPARE(storedEntries(), 0);
    }

    void statusPickerShowsMissingOrCompleteRows()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        row(u"3024-4"_s).clickIncrement();
        pick(window().statusPicker(), PartsChecklistViewModel::FilterMode::incomplete);
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s, u"3023-1"_s}));
        // Finishing a row under "Missing" takes it off the list.
        row(u"3023-1"_s).clickIncrement();
        row(u"3023-1"_s).clickIncrement();
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s}));
        pick(window().statusPicker(), PartsChecklistViewModel::FilterMode::complete);
        QCOMPARE(rowIDs(window()), (QStringList{u"3024-4"_s, u"3023-1"_s}));
        QCOMPARE(window().countLabel()->text(), u"2 parts"_s);
    }

    void colourChipsNarrowTheRowsAndTheClearButtonUndoesThem()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        QCOMPARE(window().colorChips().size(), 2); // Blue, Red
        QVERIFY(window().clearColorFilterButton()->isHidden());
        ColorFilterChip *red = window().colorChips().at(1);
        QCOMPARE(red->hexCode(), u"C91A09"_s);
        QCOMPARE(red->accessibleName(), u"Red"_s);
        // The strip is tall enough for its chips: none is cut off.
        QTRY_COMPARE(red->visibleRegion().boundingRect().size(), red->size());
        red->click();
        QCOMPARE(model().selectedColors(), QSet<int>{4});
        QVERIFY(window().colorChips().at(1)->isSelected());
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s, u"3024-4"_s}));
        QVERIFY(!window().clearColorFilterButton()->isHidden());
        QCOMPARE(window().clearColorFilterButton()->text(), u"Clear"_s);
        window().clearColorFilterButton()->click();
        QVERIFY(model().selectedColors().isEmpty());
        QCOMPARE(rowIDs(window()).size(), 3);
        QVERIFY(window().clearColorFilterButton()->isHidden());
    }

    void categoryChipsNarrowTheRowsAndTheColours()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        QCOMPARE(window().categoryChips().size(), 2);
        CategoryFilterChip *bricks = window().categoryChips().at(0);
        QCOMPARE(bricks->name(), u"Bricks"_s);
        QTRY_COMPARE(bricks->visibleRegion().boundingRect().size(), bricks->size());
        bricks->click();
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s}));
        QVERIFY(window().categoryChips().at(0)->isSelected());
        // The colours on offer are those of the chosen category.
        QCOMPARE(window().colorChips().size(), 1);
        QCOMPARE(window().colorChips().at(0)->hexCode(), u"C91A09"_s);
        window().clearCategoryFilterButton()->click();
        QCOMPARE(rowIDs(window()).size(), 3);
        QCOMPARE(window().colorChips().size(), 2);
    }

    void clearingOneFacetKeepsTheOther()
    {
        open(m_station);
        window().categoryChips().at(0)->click(); // Bricks
        window().categoryChips().at(1)->click(); // Plates
        QCOMPARE(model().selectedCategories(), (QSet<QString>{u"Bricks"_s, u"Plates"_s}));
        // Red first: it comes with both categories, so choosing it keeps them; Blue comes
        // with Plates only, and taking Red off alone would leave Plates alone.
        window().colorChips().at(1)->click(); // Red
        window().colorChips().at(0)->click(); // Blue
        QCOMPARE(model().selectedColors(), (QSet<int>{1, 4}));
        QCOMPARE(model().selectedCategories(), (QSet<QString>{u"Bricks"_s, u"Plates"_s}));
        window().clearColorFilterButton()->click();
        QVERIFY(model().selectedColors().isEmpty());
        QCOMPARE(model().selectedCategories(), (QSet<QString>{u"Bricks"_s, u"Plates"_s}));
        window().colorChips().at(0)->click(); // Blue
        window().clearCategoryFilterButton()->click();
        QVERIFY(model().selectedCategories().isEmpty());
        QCOMPARE(model().selectedColors(), QSet<int>{1});
        QCOMPARE(rowIDs(window()), (QStringList{u"3023-1"_s}));
    }

    void searchNarrowsTheRowsByColourName()
    {
        open(m_station);
        QCOMPARE(window().searchField()->placeholderText(), u"Search parts, numbers, colors"_s);
        QTest::keyClicks(window().searchField(), u"BLUE"_s);
        QCOMPARE(model().searchText(), u"BLUE"_s);
        QCOMPARE(rowIDs(window()), (QStringList{u"3023-1"_s}));
        QCOMPARE(window().countLabel()->text(), u"1 part"_s);
        // The rows that no longer match are kept out of sight.
        QTRY_COMPARE(window().rows().size(), 1);
        QVERIFY(isInSight(window(), window().rows().first()));
    }

    void groupHeadingsFollowTheGroupPicker()
    {
        open(m_station);
        // By colour at first, colours in name order.
        QCOMPARE(window().groupPicker()->currentData().toInt(), int(PartsChecklistViewModel::GroupMode::color));
        QCOMPARE(headingTexts(window()), (QStringList{u"Blue"_s, u"Red"_s}));
        QCOMPARE(rowIDs(window()), (QStringList{u"3023-1"_s, u"3001-4"_s, u"3024-4"_s}));
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::category);
        QCOMPARE(headingTexts(window()), (QStringList{u"Bricks"_s, u"Plates"_s}));
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        QVERIFY(headingTexts(window()).isEmpty());
    }

    void sortPickerOrdersTheRows()
    {
        open(m_station);
        pick(window().groupPicker(), PartsChecklistViewModel::GroupMode::none);
        pick(window().sortPicker(), PartsChecklistViewModel::SortMode::quantity);
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s, u"3023-1"_s, u"3024-4"_s}));
        pick(window().sortPicker(), PartsChecklistViewModel::SortMode::partNumber);
        QCOMPARE(rowIDs(window()), (QStringList{u"3001-4"_s, u"3023-1"_s, u"3024-4"_s}));
        row(u"3001-4"_s).clickIncrement();
        pick(window().sortPicker(), PartsChecklistViewModel::SortMode::completion);
        QCOMPARE(rowIDs(window()), (QStringList{u"3023-1"_s, u"3024-4"_s, u"3001-4"_s}));
    }

    void percentShows99Until2000Of2000AndThen100()
    {
        open(m_wall);
        window().markAllCompleteAction()->trigger();
        Row brick = row(u"3001-0"_s);
        brick.clickDecrement();
        QCOMPARE(window().piecesFigureLabel()->text(), u"1,999 of 2,000 pieces"_s);
        QCOMPARE(window().percentFigureLabel()->text(), u"99% complete"_s);
        QCOMPARE(window().completionRing()->centreText(), u"99%"_s);
        QCOMPARE(window().completionRing()->accessibleName(), u"99 percent complete"_s);
        QVERIFY(window().completionRing()->fraction() < 1.0);
        row(u"3001-0"_s).clickIncrement();
        QCOMPARE(window().percentFigureLabel()->text(), u"100% complete"_s);
        QCOMPARE(window().completionRing()->centreText(), u"100%"_s);
        QCOMPARE(window().completionRing()->fraction(), 1.0);
    }

    void anEmptyInventoryShowsNoDataAndNoClearFiltersButton()
    {
        open(m_emptyBox);
        QCOMPARE(window().body()->currentWidget(), window().noDataState());
        QCOMPARE(window().noDataState()->symbolName(), u"square.grid.3x3"_s);
        QCOMPARE(window().noDataState()->title(), u"No Parts"_s);
        QVERIFY(!window().noDataState()->description().isEmpty());
        QVERIFY(!window().clearFiltersButton()->isVisible());
        QCOMPARE(window().completionRing()->fraction(), 0.0);
        QCOMPARE(window().percentFigureLabel()->text(), u"0% complete"_s);
    }

    void aSearchThatMatchesNothingOffersToClearTheFilters()
    {
        open(m_station);
        QTest::keyClicks(window().searchField(), u"zebra"_s);
        QCOMPARE(window().body()->currentWidget(), window().noMatchPage());
        QCOMPARE(window().noMatchState()->symbolName(), u"line.3.horizontal.decrease.circle"_s);
        QCOMPARE(window().noMatchState()->title(), u"No Matching Parts"_s);
        QVERIFY(window().clearFiltersButton()->isVisible());
        QCOMPARE(window().clearFiltersButton()->text(), u"Clear Filters"_s);
        window().clearFiltersButton()->click();
        QCOMPARE(window().body()->currentWidget(), window().listPage());
        QVERIFY(window().searchField()->text().isEmpty());
        QCOMPARE(window().rows().size(), 3);
        for (const QModelIndex &each : window().rows())
            QTRY_VERIFY(isInSight(window(), each));
    }

    void missingPartsExportAsARebrickablePartList()
    {
        open(m_station);
        row(u"3001-4"_s).clickIncrement();
        row(u"3024-4"_s).clickIncrement();
        QCOMPARE(window().exportMissingAction()->text(), u"Export Missing Parts…"_s);
        QTemporaryDir folder;
        const QString path = folder.filePath(u"missing.csv"_s);
        QVERIFY(window().exportMissingParts(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        // Catalog order, complete lines left out, the spare plate never asked for.
        QCOMPARE(file.readAll(), QByteArray("Part,Color,Quantity\n3001,4,2\n3023,1,2\n"));
    }

    void copyingMissingPartsPutsTheSameListOnTheClipboard()
    {
        open(m_station);
        row(u"3023-1"_s).clickIncrement();
        QGuiApplication::clipboard()->clear();
        window().copyMissingAction()->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Part,Color,Quantity\n3001,4,3\n3023,1,1\n3024,4,1\n"_s);
    }
};

QTEST_MAIN(PartsChecklistWindowTest)
#include "PartsChecklistWindowTest.moc"
