// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QSize>
#include <QStyledItemDelegate>

class CellPictureLoader;

// Draws an item's part picture in its decoration place. The item names its picture's
// address under `PictureURLRole`; the picture comes from the loader, which asks the image
// cache once and repaints the cell when it arrives. Only painting asks (measuring a row
// does not), so a long inventory fetches the pictures of the rows in view first.
class PartPictureDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int PictureURLRole = Qt::UserRole + 40;

    PartPictureDelegate(CellPictureLoader &pictures, QSize pictureSize, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    CellPictureLoader &m_pictures;
    QSize m_pictureSize;
    // Holds the picture's place while it is missing; made once, as rows are measured often.
    QIcon m_blank;
};
