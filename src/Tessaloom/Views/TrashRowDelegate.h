// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ManagedObjectContext.h"

#include <QStyledItemDelegate>

class BrickSetListModel;
class CellPictureLoader;

// What one row of the trash shows of a copy.
struct TrashRow
{
    QString pictureURL;  // the small picture first, else the large one; empty for none
    QString name;        // the set's name, else its number, else "Unknown Set"
    QString setNumber;   // empty without a catalog set
    QString trashedText; // "Trashed 11/25/26", empty without a date

    friend bool operator==(const TrashRow &, const TrashRow &) = default;
};

// A row of the trash list: the set's picture through the image cache on the left, then
// its name, its number and the day it was moved to the trash. Reads the copies of a
// BrickSetListModel.
class TrashRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    TrashRowDelegate(const BrickSetListModel &copies, CellPictureLoader &pictures, QObject *parent = nullptr);

    static TrashRow row(const BrickSetWithCatalogSet &copy);
    // The name a trashed copy goes by: name, else set number, else "Unknown Set".
    static QString nameText(const BrickSetWithCatalogSet &copy);
    // "Trashed" and the day, in the user's short date format.
    static QString trashedText(const QDateTime &trashedDate);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    const BrickSetListModel &m_copies;
    CellPictureLoader &m_pictures;
};
