// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "Views/SetGridView.h"

#include <QScrollBar>
#include <QStringListModel>
#include <QTest>

using namespace Qt::StringLiterals;

class SetGridViewTest : public QObject
{
    Q_OBJECT

private:
    // The left edges of the cells of the grid's first row.
    static QList<int> firstRowLefts(const SetGridView &grid)
    {
        QList<int> lefts;
        const int top = grid.visualRect(grid.model()->index(0, 0)).top();
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            const QRect cell = grid.visualRect(grid.model()->index(row, 0));
            if (cell.top() != top)
                break;
            lefts.append(cell.left());
        }
        return lefts;
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    // As many cells as fit share the width; what the division leaves is less than a pixel
    // per column, not a gap the size of a cell.
    void cellsOfARowShareTheWholeWidth()
    {
        QStringListModel model(QStringList(40, u"Millennium Falcon"_s));
        SetGridView grid;
        grid.setModel(&model);
        const int least = SetGridView::leastGridSize().width();
        for (const int width : {least * 2 + 90, least * 3 + 10, least * 5 + least - 1, least / 2}) {
            grid.resize(width, 600);
            grid.show();
            QVERIFY(QTest::qWaitForWindowExposed(&grid));
            auto spreadWidth = [&grid, least] {
                const int viewport = grid.viewport()->width();
                return std::max(least, (viewport - 1) / std::max(1, (viewport - 1) / least));
            };
            QTRY_COMPARE(grid.gridSize().width(), spreadWidth());
            const int viewport = grid.viewport()->width();
            const int columns = std::max(1, (viewport - 1) / least);
            QCOMPARE(grid.gridSize().height(), SetGridView::leastGridSize().height());
            QTRY_COMPARE(firstRowLefts(grid).size(), columns);
            const QList<int> lefts = firstRowLefts(grid);
            for (int column = 1; column < lefts.size(); ++column)
                QCOMPARE(lefts.at(column) - lefts.at(column - 1), grid.gridSize().width());
            if (viewport >= least)
                QVERIFY(viewport - columns * grid.gridSize().width() <= columns);
        }
    }
};

QTEST_MAIN(SetGridViewTest)
#include "SetGridViewTest.moc"
