// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageMemoryCache.h"

ImageMemoryCache::ImageMemoryCache(int countLimit, qint64 totalCostLimit)
    : m_countLimit(countLimit)
    , m_totalCostLimit(totalCostLimit)
{
}

std::optional<QImage> ImageMemoryCache::object(const QString &key)
{
    const auto found = m_index.constFind(key);
    if (found == m_index.constEnd())
        return std::nullopt;
    m_entries.splice(m_entries.begin(), m_entries, found.value());
    return m_entries.front().image;
}

void ImageMemoryCache::setObject(const QString &key, const QImage &image, qint64 cost)
{
    if (const auto found = m_index.constFind(key); found != m_index.constEnd())
        remove(found.value());
    if (cost > m_totalCostLimit)
        return;
    m_entries.push_front(Entry{key, image, cost});
    m_index.insert(key, m_entries.begin());
    m_totalCost += cost;
    evictWhileOverLimits();
}

void ImageMemoryCache::removeAllObjects()
{
    m_entries.clear();
    m_index.clear();
    m_totalCost = 0;
}

void ImageMemoryCache::remove(Entries::iterator entry)
{
    m_totalCost -= entry->cost;
    m_index.remove(entry->key);
    m_entries.erase(entry);
}

void ImageMemoryCache::evictWhileOverLimits()
{
    while (!m_entries.empty() && (count() > m_countLimit || m_totalCost > m_totalCostLimit))
        remove(std::prev(m_entries.end()));
}
