// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScrollingGrid.h"

#include "Services/ImageCacheService.h"

#include <QEventLoop>

#include <algorithm>

ScrollingGrid::ScrollingGrid(ImageCacheService &cache, QStringList urls, int columns, int frameMilliseconds,
                             QObject *parent)
    : QObject(parent)
    , m_cache(cache)
    , m_urls(std::move(urls))
    , m_columns(columns)
{
    m_frame.setInterval(frameMilliseconds);
    connect(&m_frame, &QTimer::timeout, this, &ScrollingGrid::showNextRow);
}

double ScrollingGrid::run()
{
    QEventLoop loop;
    m_clock.start();
    showNextRow();
    m_frame.start();
    QTimer check;
    connect(&check, &QTimer::timeout, &loop, [this, &loop] {
        if (m_answered == m_urls.size())
            loop.quit();
    });
    check.start(1);
    loop.exec();
    return m_lastAnswerMs;
}

void ScrollingGrid::showNextRow()
{
    for (int column = 0; column < m_columns && m_nextCell < m_urls.size(); ++column)
        loadCell(m_urls.at(m_nextCell++));
    if (m_nextCell >= m_urls.size())
        m_frame.stop();
}

QCoro::Task<void> ScrollingGrid::loadCell(QString url)
{
    const double askedMs = double(m_clock.nsecsElapsed()) / 1e6;
    QCoro::Task<QImage> request = m_cache.thumbnail(url);
    const QImage thumbnail = co_await request;
    ++m_answered;
    const double cellMs = double(m_clock.nsecsElapsed()) / 1e6 - askedMs;
    m_cellTotalMs += cellMs;
    m_cellLongestMs = std::max(m_cellLongestMs, cellMs);
    if (!thumbnail.isNull())
        ++m_thumbnails;
    if (thumbnail.width() > 80 || thumbnail.height() > 60)
        ++m_oversized;
    m_lastAnswerMs = double(m_clock.nsecsElapsed()) / 1e6;
}
