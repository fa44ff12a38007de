// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TableThumbnail.h"

#include "Views/CellPictureLoader.h"
#include "Services/ThumbnailScaler.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>

namespace {

constexpr int cellMargin = 2;

} // namespace

TableThumbnail::TableThumbnail(QObject *parent)
    : QStyledItemDelegate(parent)
    , m_loader(new CellPictureLoader(QSize(), 8 * 1024 * 1024, this))
{
    connect(m_loader, &CellPictureLoader::pictureArrived, this, &TableThumbnail::thumbnailArrived);
}

void TableThumbnail::setImageCache(ImageCacheService *cache)
{
    m_loader->setImageCache(cache);
}

QImage TableThumbnail::thumbnail(const QString &urlString, const QModelIndex &index, QAbstractItemView *view)
{
    return m_loader->picture(urlString, index, view);
}

bool TableThumbnail::isLoading(const QString &urlString) const
{
    return m_loader->isLoading(urlString);
}

bool TableThumbnail::hasFailed(const QString &urlString) const
{
    return m_loader->hasFailed(urlString);
}

void TableThumbnail::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem panel = option;
    initStyleOption(&panel, index);
    panel.text.clear(); // the URL text is what the picture stands for, not a caption
    panel.icon = QIcon();
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &panel, painter, widget);

    const QString urlString = index.data(m_urlRole).toString();
    // Painting has to stay const for the view; asking for a picture changes only the
    // loader's own bookkeeping, never what the model or the view see.
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(widget));
    const QImage image = m_loader->picture(urlString, index, view);
    if (image.isNull())
        return;
    const QRect box = option.rect.adjusted(cellMargin, cellMargin, -cellMargin, -cellMargin);
    QSize fitted = image.deviceIndependentSize().toSize();
    if (fitted.width() > box.width() || fitted.height() > box.height())
        fitted.scale(box.size(), Qt::KeepAspectRatio);
    const QRect target(box.x() + (box.width() - fitted.width()) / 2, box.y() + (box.height() - fitted.height()) / 2,
                       fitted.width(), fitted.height());
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(target, image);
    painter->restore();
}

QSize TableThumbnail::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(option);
    Q_UNUSED(index);
    return QSize(ThumbnailScaler::maximumWidth + 2 * cellMargin, ThumbnailScaler::maximumHeight + 2 * cellMargin);
}
