// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

class QPainter;
class QStyleOptionViewItem;

// What one cell of a set grid shows, whether it stands for copies or for a catalog set.
struct SetGridCell
{
    QImage picture;          // null while loading or when there is none
    QString name;
    QString setNumber;
    QString yearText;        // "2017" under the number, empty when unknown
    QString pieceCountText;  // "1,351 pieces"
    bool isFavorite = false; // a star over the picture
    QString copyCountText;   // "2 copies", empty for a single copy
    bool isOwned = false;    // a check mark over the picture (catalog cells)
};

// Draws the cells of the set grids alike: the picture on top, a star for a favourite, a
// check mark for a set already owned, a copy count over the picture's corner, then the
// name, the number, the year and the piece count below. The year tells apart sets that
// share a name.
class SetGridCellPainter
{
public:
    // The size of every cell, and the size pictures are scaled to fit (device pixels
    // included), both for the application's font and screens.
    static QSize cellSize();
    static QSize pictureSize();

    static void paint(QPainter *painter, const QStyleOptionViewItem &option, const SetGridCell &cell);
};
