// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CellPictureLoader.h"

#include "Services/ImageCacheService.h"

#include <QAbstractItemView>
#include <QFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

#include <algorithm>

namespace {

QImage scaledToFit(const QImage &picture, QSize size)
{
    if (picture.width() <= size.width() && picture.height() <= size.height())
        return picture;
    return picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

CellPictureLoader::CellPictureLoader(QSize pictureSize, qsizetype bytesKept, QObject *parent)
    : QObject(parent)
    , m_pictureSize(pictureSize)
    , m_pictures(bytesKept)
{
}

void CellPictureLoader::setImageCache(ImageCacheService *cache)
{
    m_cache = cache;
}

ImageCacheService &CellPictureLoader::cache()
{
    if (!m_cache)
        m_cache = &ImageCacheService::shared();
    return *m_cache;
}

QImage CellPictureLoader::picture(const QString &urlString, const QModelIndex &index, QAbstractItemView *view)
{
    if (urlString.isEmpty())
        return {};
    if (const QImage *kept = m_pictures.object(urlString))
        return *kept;
    if (m_failed.contains(urlString))
        return {};
    const bool alreadyAsked = m_waiting.contains(urlString);
    QList<Cell> &cells = m_waiting[urlString];
    // A waiting cell is painted again and again as the view scrolls; it is noted once.
    const auto sameCell = [&](const Cell &cell) { return cell.view == view && cell.index == index; };
    if (index.isValid() && view && std::none_of(cells.cbegin(), cells.cend(), sameCell))
        cells.append(Cell{view, QPersistentModelIndex(index)});
    if (!alreadyAsked)
        request(QPointer<CellPictureLoader>(this), QPointer<ImageCacheService>(&cache()), urlString, m_pictureSize);
    return {};
}

QCoro::Task<void> CellPictureLoader::request(QPointer<CellPictureLoader> self, QPointer<ImageCacheService> cache,
                                             QString urlString, QSize pictureSize)
{
    QImage picture;
    if (cache) {
        if (pictureSize.isValid()) {
            picture = co_await cache->image(urlString);
            if (!picture.isNull()) {
                // Scaling a large picture takes milliseconds: not on the thread that paints.
                QFuture<QImage> scaling = QtConcurrent::run(&scaledToFit, picture, pictureSize);
                picture = co_await scaling;
            }
        } else {
            picture = co_await cache->thumbnail(urlString);
        }
    }
    // The loader may have gone with its view while the picture was on its way.
    if (self)
        self->deliver(urlString, picture);
}

void CellPictureLoader::deliver(const QString &urlString, const QImage &picture)
{
    const QList<Cell> cells = m_waiting.take(urlString);
    if (picture.isNull())
        m_failed.insert(urlString);
    else
        m_pictures.insert(urlString, new QImage(picture), std::max<qsizetype>(1, picture.sizeInBytes()));
    for (const Cell &cell : cells) {
        if (cell.view && cell.index.isValid())
            cell.view->update(cell.index);
    }
    Q_EMIT pictureArrived(urlString, picture);
}
