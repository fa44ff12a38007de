// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>
#include <QStyledItemDelegate>

class CellPictureLoader;
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
    void setImageCache(ImageCacheService *cache);

    // The thumbnail of `urlString` when it is at hand, else a null image; in that case it is
    // requested (once) and `index` is repainted in `view` when it arrives.
    QImage thumbnail(const QString &urlString, const QModelIndex &index = {}, QAbstractItemView *view = nullptr);
    // Whether the cache has been asked for `urlString` and has not answered yet.
    bool isLoading(const QString &urlString) const;
    // Whether the cache answered `urlString` with no picture; it is not asked again.
    bool hasFailed(const QString &urlString) const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

Q_SIGNALS:
    // A request ended: with a thumbnail, or with a null image when there is none.
    void thumbnailArrived(const QString &urlString, const QImage &thumbnail);

private:
    int m_urlRole = Qt::DisplayRole;
    CellPictureLoader *m_loader;
};
