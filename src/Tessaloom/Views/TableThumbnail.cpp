// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TableThumbnail.h"

#include "Services/ImageCacheService.h"
#include "Services/ThumbnailScaler.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>

namespace {

constexpr int cellMargin = 2;
// Enough for every row of a long list on a large screen; the cache behind holds the rest.
constexpr qsizetype thumbnailBytesKept = 8 * 1024 * 1024;

} // namespace

TableThumbnail::TableThumbnail(QObject *parent)
    : QStyledItemDelegate(parent)
    , m_thumbnails(thumbnailBytesKept)
{
}

ImageCacheService &TableThumbnail::cache()
{
    if (!m_cache)
        m_cache = &ImageCacheService::shared();
    return *m_cache;
}

QImage TableThumbnail::thumbnail(const QString &urlString, const QModelIndex &index, QAbstractItemView *view)
{
    if (urlString.isEmpty())
        return {};
    if (const QImage *kept = m_thumbnails.object(urlString))
        return *kept;
    if (m_failed.contains(urlString))
        return {};
    const bool alreadyAsked = m_waiting.contains(urlString);
    QList<Cell> &cells = m_waiting[urlString];
    if (index.isValid() && view)
        cells.append(Cell{view, QPersistentModelIndex(index)});
    if (!alreadyAsked)
        request(QPointer<TableThumbnail>(this), QPointer<ImageCacheService>(&cache()), urlString);
    return {};
}

QCoro::Task<void> TableThumbnail::request(QPointer<TableThumbnail> self, QPointer<ImageCacheService> cache,
                                          QString urlString)
{
    QImage thumbnail;
    if (cache)
        thumbnail = co_await cache->thumbnail(urlString);
    // The delegate may have gone with its view while the picture was on its way.
    if (self)
        self->deliver(urlString, thumbnail);
}

void TableThumbnail::deliver(const QString &urlString, const QImage &thumbnail)
{
    const QList<Cell> cells = m_waiting.take(urlString);
    if (thumbnail.isNull())
        m_failed.insert(urlString);
    else
        m_thumbnails.insert(urlString, new QImage(thumbnail), std::max<qsizetype>(1, thumbnail.sizeInBytes()));
    for (const Cell &cell : cells) {
        if (cell.view && cell.index.isValid())
            cell.view->update(cell.index);
    }
    Q_EMIT thumbnailArrived(urlString, thumbnail);
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
    // delegate's own bookkeeping, never what the model or the view see.
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(widget));
    const QImage image = const_cast<TableThumbnail *>(this)->thumbnail(urlString, index, view);
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
