// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCache>
#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStyledItemDelegate>

class ImageCacheService;
class QAbstractItemView;

// Thumbnails in table rows and list cells. As a delegate it paints the thumbnail of the URL
// text that the index holds under `urlRole`; other delegates can call thumbnail() for the
// same service. An index without a URL stays empty. For a URL without a picture yet, the
// image cache is asked once, and the cell that wanted it is repainted when it arrives;
// views and rows that are gone by then are skipped.
class TableThumbnail : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit TableThumbnail(QObject *parent = nullptr);

    // The item data role that holds the picture's URL text; Qt::DisplayRole unless set.
    void setUrlRole(int role) { m_urlRole = role; }
    int urlRole() const { return m_urlRole; }
    // The cache to load from; the shared one unless set.
    void setImageCache(ImageCacheService *cache) { m_cache = cache; }

    // The thumbnail of `urlString` when it is at hand, else a null image; in that case it is
    // requested (once) and `index` is repainted in `view` when it arrives.
    QImage thumbnail(const QString &urlString, const QModelIndex &index = {}, QAbstractItemView *view = nullptr);
    // Whether the cache has been asked for `urlString` and has not answered yet.
    bool isLoading(const QString &urlString) const { return m_waiting.contains(urlString); }
    // Whether the cache answered `urlString` with no picture; it is not asked again.
    bool hasFailed(const QString &urlString) const { return m_failed.contains(urlString); }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

Q_SIGNALS:
    // A request ended: with a thumbnail, or with a null image when there is none.
    void thumbnailArrived(const QString &urlString, const QImage &thumbnail);

private:
    struct Cell
    {
        QPointer<QAbstractItemView> view;
        QPersistentModelIndex index;
    };

    ImageCacheService &cache();
    void deliver(const QString &urlString, const QImage &thumbnail);
    static QCoro::Task<void> request(QPointer<TableThumbnail> self, QPointer<ImageCacheService> cache,
                                     QString urlString);

    int m_urlRole = Qt::DisplayRole;
    QPointer<ImageCacheService> m_cache;
    QCache<QString, QImage> m_thumbnails; // cost in bytes
    QSet<QString> m_failed;
    QHash<QString, QList<Cell>> m_waiting;
};
