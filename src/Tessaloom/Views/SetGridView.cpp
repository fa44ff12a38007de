// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridView.h"

#include "Views/SetGridCellPainter.h"

#include <QResizeEvent>

#include <algorithm>

namespace {
constexpr int cellSpacing = 8;
}

SetGridView::SetGridView(QWidget *parent)
    : QListView(parent)
{
    setViewMode(QListView::IconMode);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    // All cells are alike: the view lays out a thousand of them without asking each.
    setUniformItemSizes(true);
    setGridSize(leastGridSize());
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionRectVisible(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setMouseTracking(true);
}

QSize SetGridView::leastGridSize()
{
    return SetGridCellPainter::cellSize() + QSize(cellSpacing, cellSpacing);
}

void SetGridView::resizeEvent(QResizeEvent *event)
{
    spreadCellsOverTheWidth();
    QListView::resizeEvent(event);
}

// The cells of a row divide the width among themselves; the spare pixels of the division,
// fewer than the number of columns, stay at the right.
void SetGridView::spreadCellsOverTheWidth()
{
    const QSize least = leastGridSize();
    const int width = viewport()->width();
    const int columns = std::max(1, (width - 1) / least.width());
    // One pixel short of the whole width: a row exactly as wide as the view wraps its last
    // cell.
    const QSize spread(std::max(least.width(), (width - 1) / columns), least.height());
    if (gridSize() != spread)
        setGridSize(spread);
}
