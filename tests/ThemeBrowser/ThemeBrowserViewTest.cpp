// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "ViewModels/FlatThemeTableModel.h"
#include "Views/FillingColumnFitter.h"
#include "Views/ThemeBrowserView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList shownPaths(const ThemeBrowserView &view)
{
    QStringList paths;
    const QAbstractItemModel *model = view.tableView()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        paths << model->index(row, FlatThemeTableModel::ThemeColumn).data().toString();
    return paths;
}

QPoint centreOfRow(const QTableView *table, int row)
{
    return table->visualRect(table->model()->index(row, 0)).center();
}

} // namespace

// The theme browser over a tiny real catalog, under the offscreen platform.
class ThemeBrowserViewTest : public QObject
{
    Q_OBJECT

private:
    std::shared_ptr<RebrickableCatalog> m_catalog;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Castle,\n2,Black Falcons,1\n3,Space,\n4,Star Wars,\n"
                                     "5,Ultimate Collector Series,4\n6,No Sets Here,\n");
        fixture.addRows(u"sets"_s, "375-2,Castle,1978,1,767,\n"
                                   "6073-1,Knight's Castle,1984,1,410,\n"
                                   "10305-1,Lion Knights' Castle,2022,1,4514,\n"
                                   "6074-1,Black Falcon's Fortress,1986,2,431,\n"
                                   "6085-1,Black Monarch's Castle,1988,2,693,\n"
                                   "6990-1,Futuron Monorail,1987,3,740,\n"
                                   "6958-1,Android Base,1990,3,395,\n"
                                   "75192-1,Millennium Falcon,2017,5,7541,\n"
                                   "75313-1,AT-AT,2021,5,6785,\n");
        const QString path = fixture.build(TestEnvironment::temporaryRoot() + u"/catalog"_s);
        m_catalog = RebrickableCatalog::openFile(path);
        QVERIFY(m_catalog);
        QCOMPARE(m_catalog->flatThemes().size(), 4);
    }

    void init()
    {
        QSettings().remove(u"themeBrowser.columnWidths"_s);
        RebrickableCatalog::replaceShared(m_catalog);
    }

    void cleanup()
    {
        RebrickableCatalog::replaceShared(nullptr);
    }

    void withoutACatalogTheTableIsEmpty()
    {
        RebrickableCatalog::replaceShared(nullptr);
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(view.tableView()->model()->rowCount(), 0);
        QCOMPARE(view.tableView()->model()->columnCount(), 4);
        view.setSearchText(u"castle"_s);
        QCOMPARE(view.tableView()->model()->rowCount(), 0);
    }

    void showingTheViewLoadsEveryThemeWithSetsInTheCatalogsOrder()
    {
        ThemeBrowserView view;
        QCOMPARE(view.tableView()->model()->rowCount(), 0); // nothing read before it is shown
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QStringList catalogOrder;
        for (const FlatThemeResult &theme : m_catalog->flatThemes())
            catalogOrder << theme.path;
        QCOMPARE(shownPaths(view), catalogOrder);
        QVERIFY(!shownPaths(view).contains(u"No Sets Here"_s));
        QVERIFY(shownPaths(view).contains(u"Castle > Black Falcons"_s));
        QCOMPARE(view.model()->sortColumn(), -1);
    }

    void showingAgainReadsACatalogThatArrivedMeanwhile()
    {
        RebrickableCatalog::replaceShared(nullptr);
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(view.tableView()->model()->rowCount(), 0);
        view.hide();
        RebrickableCatalog::replaceShared(m_catalog);
        view.show();
        QCOMPARE(view.tableView()->model()->rowCount(), 4);
    }

    void titleColumnsAndPromptUseTheirTexts()
    {
        ThemeBrowserView view;
        QCOMPARE(view.windowTitle(), u"All Themes"_s);
        QCOMPARE(view.searchField()->placeholderText(), u"Search themes or a year"_s);
        const QAbstractItemModel *model = view.tableView()->model();
        QCOMPARE(model->headerData(0, Qt::Horizontal).toString(), u"Theme"_s);
        QCOMPARE(model->headerData(3, Qt::Horizontal).toString(), u"Last Year"_s);
    }

    // The numbers start at their ideal widths; the theme starts at its own and takes
    // whatever more the table has.
    void columnsStartAtTheirIdealWidthsAndKeepTheirLeastWidths()
    {
        ThemeBrowserView view;
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QHeaderView *header = view.tableView()->horizontalHeader();
        const QList<std::pair<int, int>> widths{{200, 350}, {40, 60}, {50, 65}, {50, 65}};
        for (int column = 0; column < 4; ++column) {
            QCOMPARE(ThemeBrowserView::columnWidth(column).least, widths.at(column).first);
            QCOMPARE(ThemeBrowserView::columnWidth(column).ideal, widths.at(column).second);
            if (column == FlatThemeTableModel::ThemeColumn)
                QVERIFY(header->sectionSize(column) >= widths.at(column).second);
            else
                QCOMPARE(header->sectionSize(column), widths.at(column).second);
        }
        for (int column = 0; column < 4; ++column) {
            header->resizeSection(column, 10);
            QCOMPARE(header->sectionSize(column), widths.at(column).first);
        }
    }

    void themeColumnFillsTheTableAndGivesWayDownToItsLeastWidth()
    {
        ThemeBrowserView view;
        view.resize(900, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTableView *table = view.tableView();
        QHeaderView *header = table->horizontalHeader();
        QVERIFY(view.columnFitter()->isFilling());
        QCOMPARE(header->length(), table->viewport()->width());
        QCOMPARE(header->sectionSize(FlatThemeTableModel::SetsColumn), 60);
        QVERIFY(header->sectionSize(FlatThemeTableModel::ThemeColumn) > 350);

        view.resize(1300, 400);
        QTRY_COMPARE(header->length(), table->viewport()->width());

        // Narrower than the least widths together: the theme stops at 200 and the table
        // scrolls sideways rather than squeezing the numbers.
        view.resize(300, 400);
        QTRY_COMPARE(header->sectionSize(FlatThemeTableModel::ThemeColumn), 200);
        QCOMPARE(header->sectionSize(FlatThemeTableModel::MaxYearColumn), 65);
        QVERIFY(table->horizontalScrollBar()->maximum() > 0);
    }

    void draggingANumberColumnTakesItsWidthFromTheThemeColumn()
    {
        ThemeBrowserView view;
        view.resize(900, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QHeaderView *header = view.tableView()->horizontalHeader();
        const int theme = header->sectionSize(FlatThemeTableModel::ThemeColumn);
        header->resizeSection(FlatThemeTableModel::SetsColumn, 120);
        QCOMPARE(header->sectionSize(FlatThemeTableModel::ThemeColumn), theme - 60);
        QCOMPARE(header->length(), view.tableView()->viewport()->width());
        QVERIFY(view.columnFitter()->isFilling());
    }

    void theUsersWidthsComeBackInTheNextBrowser()
    {
        {
            ThemeBrowserView view;
            view.resize(900, 400);
            view.show();
            QVERIFY(QTest::qWaitForWindowExposed(&view));
            QHeaderView *header = view.tableView()->horizontalHeader();
            header->resizeSection(FlatThemeTableModel::SetsColumn, 90);
            header->resizeSection(FlatThemeTableModel::ThemeColumn, 260);
            QVERIFY(!view.columnFitter()->isFilling());
            // Once the user has set it, the theme's width no longer follows the table.
            view.resize(1200, 400);
            QTest::qWait(50);
            QCOMPARE(header->sectionSize(FlatThemeTableModel::ThemeColumn), 260);
        }
        ThemeBrowserView view;
        view.resize(700, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QHeaderView *header = view.tableView()->horizontalHeader();
        QVERIFY(!view.columnFitter()->isFilling());
        QCOMPARE(header->sectionSize(FlatThemeTableModel::ThemeColumn), 260);
        QCOMPARE(header->sectionSize(FlatThemeTableModel::SetsColumn), 90);
        QCOMPARE(header->sectionSize(FlatThemeTableModel::MinYearColumn), 65);
    }

    void tableSelectsOneWholeRow()
    {
        ThemeBrowserView view;
        QCOMPARE(view.tableView()->selectionMode(), QAbstractItemView::SingleSelection);
        QCOMPARE(view.tableView()->selectionBehavior(), QAbstractItemView::SelectRows);
    }

    void typingInTheSearchFieldNarrowsTheTable()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy searchChanges(&view, &ThemeBrowserView::searchTextChanged);
        QTest::keyClicks(view.searchField(), u"FALC"_s);
        QCOMPARE(shownPaths(view), QStringList{u"Castle > Black Falcons"_s});
        QCOMPARE(view.searchText(), u"FALC"_s);
        QCOMPARE(searchChanges.size(), 4);
        QCOMPARE(searchChanges.last().at(0).toString(), u"FALC"_s);
        view.searchField()->clear();
        QCOMPARE(view.tableView()->model()->rowCount(), 4);
    }

    void searchFor1990ShowsThemesWhoseYearsSpan1990()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTest::keyClicks(view.searchField(), u"1990"_s);
        // Castle runs 1978–2022, Space 1987–1990; Black Falcons ended in 1988, Star Wars
        // began in 2017.
        QStringList shown = shownPaths(view);
        shown.sort();
        QCOMPARE(shown, (QStringList{u"Castle"_s, u"Space"_s}));
    }

    void searchFor199IsATextToken()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTest::keyClicks(view.searchField(), u"199"_s);
        QCOMPARE(view.tableView()->model()->rowCount(), 0);
    }

    void withTwoYearsOnlyTheLastFilters()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.setSearchText(u"1986 2017"_s);
        QStringList shown = shownPaths(view);
        shown.sort();
        QCOMPARE(shown, (QStringList{u"Castle"_s, u"Star Wars > Ultimate Collector Series"_s}));
        view.setSearchText(u"2017 1986"_s);
        shown = shownPaths(view);
        shown.sort();
        QCOMPARE(shown, (QStringList{u"Castle"_s, u"Castle > Black Falcons"_s}));
    }

    void searchTextSetByTheWindowIsShownAndApplied()
    {
        ThemeBrowserView view;
        QSignalSpy searchChanges(&view, &ThemeBrowserView::searchTextChanged);
        view.setSearchText(u"space"_s);
        QCOMPARE(view.searchField()->text(), u"space"_s);
        QCOMPARE(view.property("searchText").toString(), u"space"_s);
        QCOMPARE(searchChanges.size(), 1);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(shownPaths(view), QStringList{u"Space"_s});
    }

    void clickingARowEmitsItsThemeIdAndName()
    {
        ThemeBrowserView view;
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        const int row = view.model()->rowOfTheme(5);
        QVERIFY(row >= 0);
        QTest::mouseClick(view.tableView()->viewport(), Qt::LeftButton, {}, centreOfRow(view.tableView(), row));
        QCOMPARE(selections.size(), 1);
        QCOMPARE(selections.at(0).at(0).toInt(), 5);
        QCOMPARE(selections.at(0).at(1).toString(), u"Ultimate Collector Series"_s);
        QCOMPARE(view.selectedThemeID(), std::optional<int>(5));
    }

    void selectingAfterASearchEmitsTheThemeOfThatRow()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        QTest::keyClicks(view.searchField(), u"falcons"_s);
        view.tableView()->selectRow(0);
        QCOMPARE(selections.size(), 1);
        QCOMPARE(selections.at(0).at(0).toInt(), 2);
        QCOMPARE(selections.at(0).at(1).toString(), u"Black Falcons"_s);
    }

    void clearingTheSelectionEmitsNothing()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.tableView()->selectRow(0);
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        view.tableView()->clearSelection();
        QCOMPARE(selections.size(), 0);
        QCOMPARE(view.selectedThemeID(), std::nullopt);
    }

    void narrowingTheSearchDoesNotCountAsANewSelection()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.tableView()->selectRow(view.model()->rowOfTheme(3));
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        view.setSearchText(u"spa"_s);
        QCOMPARE(view.tableView()->selectionModel()->selectedRows().size(), 1);
        QCOMPARE(view.selectedThemeID(), std::optional<int>(3));
        view.setSearchText(u"castle"_s);
        view.setSearchText(QString());
        QCOMPARE(view.tableView()->selectionModel()->selectedRows().constFirst().row(), view.model()->rowOfTheme(3));
        QCOMPARE(selections.size(), 0);
    }

    void enterOnTheCurrentRowSelectsIt()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        const int row = view.model()->rowOfTheme(1);
        // Moves the current row without selecting it, as Ctrl+arrow does.
        view.tableView()->selectionModel()->setCurrentIndex(view.model()->index(row, 0), QItemSelectionModel::NoUpdate);
        view.tableView()->setFocus();
        QTest::keyClick(view.tableView(), Qt::Key_Return);
        QCOMPARE(selections.size(), 1);
        QCOMPARE(selections.at(0).at(0).toInt(), 1);
        QCOMPARE(selections.at(0).at(1).toString(), u"Castle"_s);
        // Enter on the row already selected leads there again.
        QTest::keyClick(view.tableView(), Qt::Key_Enter);
        QCOMPARE(selections.size(), 2);
        QCOMPARE(selections.at(1).at(0).toInt(), 1);
    }

    void doubleClickingARowSelectsIt()
    {
        ThemeBrowserView view;
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy selections(&view, &ThemeBrowserView::themeSelected);
        const int row = view.model()->rowOfTheme(3);
        QTest::mouseDClick(view.tableView()->viewport(), Qt::LeftButton, {}, centreOfRow(view.tableView(), row));
        QVERIFY(!selections.isEmpty());
        for (const QList<QVariant> &selection : selections)
            QCOMPARE(selection.at(0).toInt(), 3);
        QCOMPARE(view.selectedThemeID(), std::optional<int>(3));
    }

    // The window's Ctrl+F calls this (tested with the whole window in ContentViewSelectionTest).
    void focusingTheSearchFieldTakesTheFocusFromTheTable()
    {
        ThemeBrowserView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        view.tableView()->setFocus();
        QVERIFY(!view.searchField()->hasFocus());
        view.focusSearchField();
        QVERIFY(view.searchField()->hasFocus());
    }

    void clickingAHeaderSortsAndAThirdClickRestoresTheCatalogsOrder()
    {
        ThemeBrowserView view;
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const QStringList catalogOrder = shownPaths(view);
        QHeaderView *header = view.tableView()->horizontalHeader();
        const QPoint setsHeader(header->sectionViewportPosition(FlatThemeTableModel::SetsColumn) + 10,
                                header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, setsHeader);
        QCOMPARE(view.model()->sortColumn(), int(FlatThemeTableModel::SetsColumn));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, setsHeader);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, setsHeader);
        QCOMPARE(view.model()->sortColumn(), -1);
        QCOMPARE(shownPaths(view), catalogOrder);
    }
};

QTEST_MAIN(ThemeBrowserViewTest)
#include "ThemeBrowserViewTest.moc"
