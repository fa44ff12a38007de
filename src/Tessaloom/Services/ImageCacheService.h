// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/AsyncSemaphore.h"
#include "Services/ImageDownloader.h"
#include "Services/ImageMemoryCache.h"

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <stop_token>

class PendingImage;

// The single door to the pictures of sets and parts. It answers from memory, then from
// the disk, then from the network with at most eight transfers at once, remembers which
// URLs failed (for five minutes, or for thirty days when the host said the picture is
// gone), and keeps 80 × 60 thumbnails apart from the full pictures.
//
// Everything runs as coroutines on the main thread, so the service's state is only ever
// touched on its own turn; a caller that awaits the network or a permit leaves the service
// free for the others. Decoding, scaling and file work run on the thread pool.
//
// Nothing fails towards the caller: every problem ends in a null image and a log line.
class ImageCacheService : public QObject
{
    Q_OBJECT

public:
    static constexpr int memoryCountLimit = 150;
    static constexpr qint64 memoryTotalCostLimit = 104'857'600;
    static constexpr int thumbnailCountLimit = 500;
    static constexpr qint64 thumbnailTotalCostLimit = 20'971'520;
    static constexpr int maximumConcurrentFetches = 8;
    static constexpr double transientFailureSeconds = 300;
    static constexpr double permanentFailureSeconds = 2'592'000;

    // Seconds since 1970; the system clock unless a test sets another.
    using Clock = std::function<double()>;

    static ImageCacheService &shared();

    // `cachesDirectory` is the user's caches folder ("Tessaloom/ImageCache" and its two
    // siblings go inside); empty means the platform's, or the temporary folder without one.
    explicit ImageCacheService(const QString &cachesDirectory = {}, QObject *parent = nullptr);
    ~ImageCacheService() override;

    // The picture at `urlString`, or a null image.
    QCoro::Task<QImage> image(QString urlString);
    // The first picture that the URLs give, tried in order and stored under the first URL's
    // key. A stop requested through `stop` ends the attempt without recording a failure.
    QCoro::Task<QImage> image(QStringList urls, std::stop_token stop = {});
    // The picture at `urlString` scaled to fit 80 × 60, or a null image.
    QCoro::Task<QImage> thumbnail(QString urlString);
    // Bytes of the downloaded pictures on disk; thumbnails and failure stamps not counted.
    QCoro::Task<qint64> diskCacheSize();
    // Forgets every picture, thumbnail and failure, on disk and in memory. Downloads under
    // way go on and store what they get.
    QCoro::Task<void> clearAll();

    QString diskCacheDirectory() const { return m_diskCacheDirectory; }
    QString negativeCacheDirectory() const { return m_negativeCacheDirectory; }
    QString thumbnailDiskDirectory() const { return m_thumbnailDiskDirectory; }

    // For the log lines and for tests: the state as it stands.
    const AsyncSemaphore &fetchSemaphore() const { return m_fetchSemaphore; }
    ImageMemoryCache &memoryCache() { return m_memoryCache; }
    ImageMemoryCache &thumbnailCache() { return m_thumbnailCache; }
    bool isInFlight(const QString &urlString) const { return m_inFlightTasks.contains(urlString); }
    bool isPermanentlyFailedInMemory(const QString &urlString) const { return m_failedURLs.contains(urlString); }
    bool isTransientlyFailed(const QString &urlString) const { return m_transientFailures.contains(urlString); }

    void setClock(Clock clock);

    // Writes a downloaded picture's bytes, as they came, to its file in the disk cache;
    // true when written. By default an atomic write on the thread pool; a test puts
    // another in its place to hold a fetch at this last step.
    using PictureFileWriter = std::function<QCoro::Task<bool>(QString path, QByteArray bytes)>;
    void setPictureFileWriter(PictureFileWriter writer);

    ImageDownloader &downloader() { return m_downloader; }

    // The BrickLink picture of a Rebrickable set picture, or empty when there is none.
    static QString brickLinkFallbackUrl(const QString &urlString);

private:
    QCoro::Task<QImage> readFromDisk(QString key);
    QCoro::Task<QImage> decode(QByteArray bytes);
    QCoro::Task<void> runFetch(QString urlString, QString key, QString path,
                               std::shared_ptr<PendingImage> pending);
    QCoro::Task<QImage> fetchFromNetwork(QString urlString, QString key, QString path,
                                         std::stop_token stop = {});
    static QCoro::Task<bool> writePictureFile(QString path, QByteArray bytes);
    QCoro::Task<bool> hasFailed(QString urlString);
    QCoro::Task<void> markFailed(QString urlString, bool permanent);
    void storeInMemory(const QString &key, const QImage &image);

    QString diskPath(const QString &key) const;
    QString negativePath(const QString &key) const;
    QString thumbnailPath(const QString &key) const;
    double now() const;

    ImageMemoryCache m_memoryCache;
    ImageMemoryCache m_thumbnailCache;
    QString m_diskCacheDirectory;
    QString m_negativeCacheDirectory;
    QString m_thumbnailDiskDirectory;
    AsyncSemaphore m_fetchSemaphore;
    // Decoding is let into the thread pool a few at a time: with hundreds of pictures
    // queued at once, the pool would otherwise decode them all before it scales the
    // first, and hold every decoded picture meanwhile.
    AsyncSemaphore m_decodeSlots;
    QSet<QString> m_failedURLs;
    QHash<QString, std::shared_ptr<PendingImage>> m_inFlightTasks;
    QHash<QString, double> m_transientFailures;
    ImageDownloader m_downloader;
    Clock m_clock;
    PictureFileWriter m_pictureFileWriter;
};
