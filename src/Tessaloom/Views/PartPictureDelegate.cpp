// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PartPictureDelegate.h"

#include "Views/CellPictureLoader.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>
#include <QPixmap>

PartPictureDelegate::PartPictureDelegate(CellPictureLoader &pictures, QSize pictureSize, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_pictures(pictures)
    , m_pictureSize(pictureSize)
{
    QPixmap blank(m_pictureSize);
    blank.fill(Qt::transparent);
    m_blank = QIcon(blank);
}

void PartPictureDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(PictureURLRole).toString().isEmpty())
        return;
    // The place is kept while the picture is missing, so rows do not shift when it comes.
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->decorationSize = m_pictureSize;
    option->icon = m_blank;
}

void PartPictureDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString url = index.data(PictureURLRole).toString();
    if (!url.isEmpty()) {
        auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget));
        // The loader hands out pictures already scaled to fit, off the main thread.
        const QImage picture = m_pictures.picture(url, index, view);
        if (!picture.isNull())
            item.icon = QIcon(QPixmap::fromImage(picture));
    }
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, widget);
}
