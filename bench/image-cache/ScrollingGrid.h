// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QStringList>
#include <QTimer>

class ImageCacheService;

// Asks for thumbnails the way a grid being scrolled does: one more row of cells becomes
// visible every frame, and each cell asks the cache for its picture at once. Finished
// when every cell has its answer.
class ScrollingGrid : public QObject
{
    Q_OBJECT

public:
    ScrollingGrid(ImageCacheService &cache, QStringList urls, int columns = 10, int frameMilliseconds = 16,
                  QObject *parent = nullptr);

    // Runs the whole scroll in a local event loop; returns the milliseconds from the first
    // request to the last answer.
    double run();

    int answered() const { return m_answered; }
    int thumbnails() const { return m_thumbnails; }
    int oversized() const { return m_oversized; }
    // From a cell becoming visible to its answer.
    double meanCellMilliseconds() const { return m_answered ? m_cellTotalMs / m_answered : 0; }
    double longestCellMilliseconds() const { return m_cellLongestMs; }

private:
    void showNextRow();
    QCoro::Task<void> loadCell(QString url);

    ImageCacheService &m_cache;
    QStringList m_urls;
    int m_columns;
    QTimer m_frame;
    QElapsedTimer m_clock;
    qsizetype m_nextCell = 0;
    int m_answered = 0;
    int m_thumbnails = 0;
    int m_oversized = 0;
    double m_lastAnswerMs = 0;
    double m_cellTotalMs = 0;
    double m_cellLongestMs = 0;
};
