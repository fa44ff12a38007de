// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCache>
#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QSet>
#include <QSize>
#include <QString>

class ImageCacheService;
class QAbstractItemView;

// Pictures for the cells of item views, which paint synchronously and so cannot wait for
// one. Asked for a URL it has no picture for yet, it asks the image cache once, remembers
// which cells wanted it and repaints them when it arrives; views and rows that are gone by
// then are skipped. A URL the cache has no picture for is not asked again.
//
// Without a picture size it hands out the cache's own small thumbnails. With one, it loads
// the full picture and scales it to fit that size off the main thread, keeping only the
// scaled copy, so that a grid of a thousand sets holds a thousand small pictures and not a
// thousand large ones.
class CellPictureLoader : public QObject
{
    Q_OBJECT

public:
    // `bytesKept` bounds the pictures held here; the image cache keeps more behind it.
    explicit CellPictureLoader(QSize pictureSize = {}, qsizetype bytesKept = 8 * 1024 * 1024,
                               QObject *parent = nullptr);

    QSize pictureSize() const { return m_pictureSize; }
    // The cache to load from; the shared one unless set.
    void setImageCache(ImageCacheService *cache);

    // The picture of `urlString` when it is at hand, else a null image; in that case it is
    // requested (once) and `index` is repainted in `view` when it arrives.
    QImage picture(const QString &urlString, const QModelIndex &index = {}, QAbstractItemView *view = nullptr);
    // Whether the cache has been asked for `urlString` and has not answered yet.
    bool isLoading(const QString &urlString) const { return m_waiting.contains(urlString); }
    // Whether the cache answered `urlString` with no picture.
    bool hasFailed(const QString &urlString) const { return m_failed.contains(urlString); }
    // Bytes of the pictures held here.
    qsizetype bytesHeld() const { return m_pictures.totalCost(); }

Q_SIGNALS:
    // A request ended: with a picture, or with a null image when there is none.
    void pictureArrived(const QString &urlString, const QImage &picture);

private:
    struct Cell
    {
        QPointer<QAbstractItemView> view;
        QPersistentModelIndex index;
    };

    ImageCacheService &cache();
    void deliver(const QString &urlString, const QImage &picture);
    static QCoro::Task<void> request(QPointer<CellPictureLoader> self, QPointer<ImageCacheService> cache,
                                     QString urlString, QSize pictureSize);

    QSize m_pictureSize;
    QPointer<ImageCacheService> m_cache;
    QCache<QString, QImage> m_pictures; // cost in bytes
    QSet<QString> m_failed;
    QHash<QString, QList<Cell>> m_waiting;
};
