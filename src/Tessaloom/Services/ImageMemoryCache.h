// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QImage>
#include <QString>

#include <list>
#include <optional>

// Decoded pictures kept in memory under their cache key, bounded both by how many there
// are and by their total cost; the least recently used go first. A picture whose cost
// alone exceeds the limit is not kept at all, since it would push out everything else.
class ImageMemoryCache
{
public:
    ImageMemoryCache(int countLimit, qint64 totalCostLimit);

    std::optional<QImage> object(const QString &key);
    void setObject(const QString &key, const QImage &image, qint64 cost);
    void removeAllObjects();

    int countLimit() const { return m_countLimit; }
    qint64 totalCostLimit() const { return m_totalCostLimit; }
    int count() const { return static_cast<int>(m_entries.size()); }
    qint64 totalCost() const { return m_totalCost; }
    bool contains(const QString &key) const { return m_index.contains(key); }

private:
    struct Entry
    {
        QString key;
        QImage image;
        qint64 cost = 0;
    };
    using Entries = std::list<Entry>; // most recently used first

    void remove(Entries::iterator entry);
    void evictWhileOverLimits();

    const int m_countLimit;
    const qint64 m_totalCostLimit;
    Entries m_entries;
    QHash<QString, Entries::iterator> m_index;
    qint64 m_totalCost = 0;
};
