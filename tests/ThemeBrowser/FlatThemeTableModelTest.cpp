// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"
#include "ViewModels/FlatThemeTableModel.h"
#include "Views/TranslationLoader.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QList<FlatThemeResult> sampleThemes()
{
    return {
        {10, u"Castle"_s, u"Castle"_s, 120, 1978, 2023},
        {11, u"Black Falcons"_s, u"Castle > Black Falcons"_s, 9, 1984, 1990},
        {20, u"Space"_s, u"Space"_s, 300, 1978, 1999},
        {30, u"Ultimate Collector Series"_s, u"Star Wars > Ultimate Collector Series"_s, 45, 2000, 2024},
        {40, u"Advent"_s, u"advent"_s, 9, 2005, 2024},
    };
}

QList<int> rowIDs(const FlatThemeTableModel &model)
{
    QList<int> ids;
    for (int row = 0; row < model.rowCount(); ++row)
        ids << model.index(row, 0).data(FlatThemeTableModel::ThemeIDRole).toInt();
    return ids;
}

} // namespace

class FlatThemeTableModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void passesTheModelTesterThroughLoadsSearchesAndSorts()
    {
        FlatThemeTableModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setThemes(sampleThemes());
        model.setSearchText(u"castle"_s);
        model.sort(FlatThemeTableModel::SetsColumn, Qt::DescendingOrder);
        model.setSearchText(QString());
        model.sort(-1);
        model.setThemes({});
        model.setThemes(sampleThemes());
        QCOMPARE(model.rowCount(), 5);
    }

    void startsEmpty()
    {
        FlatThemeTableModel model;
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.columnCount(), 4);
    }

    void columnsShowPathSetCountAndYears()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        QCOMPARE(model.index(1, FlatThemeTableModel::ThemeColumn).data().toString(), u"Castle > Black Falcons"_s);
        QCOMPARE(model.index(1, FlatThemeTableModel::SetsColumn).data().toString(), u"9"_s);
        QCOMPARE(model.index(1, FlatThemeTableModel::MinYearColumn).data().toString(), u"1984"_s);
        QCOMPARE(model.index(1, FlatThemeTableModel::MaxYearColumn).data().toString(), u"1990"_s);
        QCOMPARE(model.index(1, 0).data(FlatThemeTableModel::ThemeIDRole).toInt(), 11);
        QCOMPARE(model.index(1, 0).data(FlatThemeTableModel::ThemeNameRole).toString(), u"Black Falcons"_s);
    }

    void yearsAreShownWithoutDigitGrouping()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        QCOMPARE(model.index(2, FlatThemeTableModel::MinYearColumn).data().toString(), u"1978"_s);
        QLocale::setDefault(QLocale::c());
    }

    void headersCarryTheColumnTexts()
    {
        FlatThemeTableModel model;
        QCOMPARE(model.headerData(FlatThemeTableModel::ThemeColumn, Qt::Horizontal).toString(), u"Theme"_s);
        QCOMPARE(model.headerData(FlatThemeTableModel::SetsColumn, Qt::Horizontal).toString(), u"Sets"_s);
        QCOMPARE(model.headerData(FlatThemeTableModel::MinYearColumn, Qt::Horizontal).toString(), u"First Year"_s);
        QCOMPARE(model.headerData(FlatThemeTableModel::MaxYearColumn, Qt::Horizontal).toString(), u"Last Year"_s);
    }

    void rowsKeepTheCatalogsOrderByDefault()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        QCOMPARE(model.sortColumn(), -1);
        QCOMPARE(rowIDs(model), (QList<int>{10, 11, 20, 30, 40}));
    }

    void searchTextNarrowsTheRowsAndClearingItShowsAll()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.setSearchText(u"castle 1990"_s);
        QCOMPARE(rowIDs(model), (QList<int>{10, 11}));
        model.setSearchText(u"castle 1990"_s);
        QCOMPARE(resets.size(), 1); // the same text again changes nothing
        model.setSearchText(QString());
        QCOMPARE(rowIDs(model), (QList<int>{10, 11, 20, 30, 40}));
    }

    void newThemesAreFilteredByTheCurrentSearch()
    {
        FlatThemeTableModel model;
        model.setSearchText(u"star"_s);
        model.setThemes(sampleThemes());
        QCOMPARE(rowIDs(model), QList<int>{30});
    }

    void lookUpsFindRowsAndFilteredThemes()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        model.setSearchText(u"space"_s);
        QCOMPARE(model.rowOfTheme(20), 0);
        QCOMPARE(model.rowOfTheme(10), -1);
        QCOMPARE(model.themeWithID(10)->name, u"Castle"_s);
        QVERIFY(!model.themeWithID(99));
        QCOMPARE(model.themeAt(0)->id, 20);
        QVERIFY(!model.themeAt(1));
        QVERIFY(!model.themeAt(-1));
    }

    void sortingByAColumnIsStableAndReversible_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<Qt::SortOrder>("order");
        QTest::addColumn<QList<int>>("expected");

        QTest::newRow("path ascending ignores case") << int(FlatThemeTableModel::ThemeColumn) << Qt::AscendingOrder
                                                     << QList<int>{40, 10, 11, 20, 30};
        QTest::newRow("path descending") << int(FlatThemeTableModel::ThemeColumn) << Qt::DescendingOrder
                                         << QList<int>{30, 20, 11, 10, 40};
        QTest::newRow("sets ascending, ties in catalog order")
            << int(FlatThemeTableModel::SetsColumn) << Qt::AscendingOrder << QList<int>{11, 40, 30, 10, 20};
        QTest::newRow("sets descending") << int(FlatThemeTableModel::SetsColumn) << Qt::DescendingOrder
                                         << QList<int>{20, 10, 30, 11, 40};
        QTest::newRow("first year ascending") << int(FlatThemeTableModel::MinYearColumn) << Qt::AscendingOrder
                                              << QList<int>{10, 20, 11, 30, 40};
        QTest::newRow("last year descending") << int(FlatThemeTableModel::MaxYearColumn) << Qt::DescendingOrder
                                              << QList<int>{30, 40, 10, 20, 11};
        QTest::newRow("no column is the catalog's order") << -1 << Qt::AscendingOrder
                                                          << QList<int>{10, 11, 20, 30, 40};
    }

    void sortingByAColumnIsStableAndReversible()
    {
        QFETCH(int, column);
        QFETCH(Qt::SortOrder, order);
        QFETCH(QList<int>, expected);

        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        model.sort(FlatThemeTableModel::SetsColumn, Qt::DescendingOrder);
        model.sort(column, order);
        QCOMPARE(rowIDs(model), expected);
    }

    void sortIsKeptThroughSearches()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        model.sort(FlatThemeTableModel::SetsColumn, Qt::DescendingOrder);
        model.setSearchText(u"1990"_s);
        QCOMPARE(rowIDs(model), (QList<int>{20, 10, 11}));
    }

    void sortingMovesPersistentIndexesWithTheirThemes()
    {
        FlatThemeTableModel model;
        model.setThemes(sampleThemes());
        const QPersistentModelIndex space = model.index(2, 1);
        model.sort(FlatThemeTableModel::SetsColumn, Qt::DescendingOrder);
        QCOMPARE(space.row(), 0);
        QCOMPARE(space.column(), 1);
        QCOMPARE(space.data(FlatThemeTableModel::ThemeIDRole).toInt(), 20);
    }
};

QTEST_GUILESS_MAIN(FlatThemeTableModelTest)
#include "FlatThemeTableModelTest.moc"
