// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridView.h"

#include "Views/SetGridCellPainter.h"

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
    setGridSize(SetGridCellPainter::cellSize() + QSize(cellSpacing, cellSpacing));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionRectVisible(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setMouseTracking(true);
}
