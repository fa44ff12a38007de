// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageCacheService.h"

#include "AddressRedaction.h"
#include "Endpoints.h"
#include "Logging.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageFileStore.h"
#include "Services/PendingImage.h"
#include "Services/ThumbnailScaler.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QDateTime>
#include <QDir>
#include <QStandardPaths>
#include <QThread>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {

// Log lines carry the start of a URL only: enough to recognise it, short enough to scan.
// What a log line shows of a picture's address: without secrets, and short.
QByteArray brief(const QString &urlString)
{
    return AddressRedaction::redacted(urlString).left(60).toUtf8();
}

QString defaultCachesDirectory()
{
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return caches.isEmpty() ? QDir::tempPath() : caches;
}

} // namespace

ImageCacheService &ImageCacheService::shared()
{
    static ImageCacheService *instance = new ImageCacheService({}, QCoreApplication::instance());
    return *instance;
}

ImageCacheService::ImageCacheService(const QString &cachesDirectory, QObject *parent)
    : QObject(parent)
    , m_memoryCache(memoryCountLimit, memoryTotalCostLimit)
    , m_thumbnailCache(thumbnailCountLimit, thumbnailTotalCostLimit)
    , m_fetchSemaphore(maximumConcurrentFetches)
    , m_decodeSlots(std::max(1, QThread::idealThreadCount()))
    , m_clock([] { return double(QDateTime::currentMSecsSinceEpoch()) / 1000.0; })
    , m_pictureFileWriter(&ImageCacheService::writePictureFile)
{
    const QDir caches(cachesDirectory.isEmpty() ? defaultCachesDirectory() : cachesDirectory);
    m_diskCacheDirectory = caches.filePath(u"Tessaloom/ImageCache"_s);
    m_negativeCacheDirectory = caches.filePath(u"Tessaloom/ImageCache404"_s);
    m_thumbnailDiskDirectory = caches.filePath(u"Tessaloom/ImageCacheThumbs"_s);
    // Without its directories the cache still answers from memory and the network.
    for (const QString &directory : {m_diskCacheDirectory, m_negativeCacheDirectory, m_thumbnailDiskDirectory})
        ImageFileStore::createDirectory(directory);
}

ImageCacheService::~ImageCacheService() = default;

void ImageCacheService::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void ImageCacheService::setPictureFileWriter(PictureFileWriter writer)
{
    m_pictureFileWriter = std::move(writer);
}

QCoro::Task<bool> ImageCacheService::writePictureFile(QString path, QByteArray bytes)
{
    co_return co_await QtConcurrent::run(&ImageFileStore::writeAtomically, path, bytes);
}

double ImageCacheService::now() const
{
    return m_clock();
}

QString ImageCacheService::diskPath(const QString &key) const
{
    return m_diskCacheDirectory + u'/' + key;
}

QString ImageCacheService::negativePath(const QString &key) const
{
    return m_negativeCacheDirectory + u'/' + key;
}

QString ImageCacheService::thumbnailPath(const QString &key) const
{
    return m_thumbnailDiskDirectory + u'/' + key;
}

void ImageCacheService::storeInMemory(const QString &key, const QImage &image)
{
    // What the picture takes once decoded, at 4 bytes a point, not what its file weighs.
    const QSizeF points = image.deviceIndependentSize();
    m_memoryCache.setObject(key, image, qint64(points.width() * points.height() * 4));
}

QCoro::Task<QImage> ImageCacheService::readFromDisk(QString key)
{
    co_await m_decodeSlots.acquire();
    const ImageFileStore::ReadImage read = co_await QtConcurrent::run(&ImageFileStore::readImage, diskPath(key));
    m_decodeSlots.release();
    co_return read.image;
}

QCoro::Task<QImage> ImageCacheService::decode(QByteArray bytes)
{
    co_await m_decodeSlots.acquire();
    const QImage image = co_await QtConcurrent::run(&ImageFileStore::decode, bytes);
    m_decodeSlots.release();
    co_return image;
}

QCoro::Task<QImage> ImageCacheService::image(QString urlString)
{
    const QString key = ImageCacheKey::forUrl(urlString);
    if (const std::optional<QImage> hit = m_memoryCache.object(key)) {
        qCDebug(lcCache, "image(for:) memory hit: %s", brief(urlString).constData());
        co_return *hit;
    }
    // A file that is missing or no picture is a miss; it stays where it is.
    const QImage fromDisk = co_await readFromDisk(key);
    if (!fromDisk.isNull()) {
        qCDebug(lcCache, "image(for:) disk hit: %s", brief(urlString).constData());
        storeInMemory(key, fromDisk);
        co_return fromDisk;
    }
    if (co_await hasFailed(urlString)) {
        qCDebug(lcCache, "image(for:) negative cache hit: %s", brief(urlString).constData());
        co_return QImage();
    }

    // From here to the insertion nothing awaits: two callers of one URL can never both
    // start a download.
    if (const std::shared_ptr<PendingImage> inFlight = m_inFlightTasks.value(urlString)) {
        qCDebug(lcCache, "image(for:) coalescing with in-flight: %s", brief(urlString).constData());
        co_return co_await *inFlight;
    }
    qCDebug(lcCache, "image(for:) fetching from network: %s [semaphore permits: %d/%d]",
            brief(urlString).constData(), m_fetchSemaphore.count(), maximumConcurrentFetches);
    const auto pending = std::make_shared<PendingImage>();
    m_inFlightTasks.insert(urlString, pending);
    // Not awaited as a task of the caller's: the download belongs to every waiter, and one
    // that goes away (a view leaving the screen) does not end it for the others.
    runFetch(urlString, key, diskPath(key), pending);

    const QImage fetched = co_await *pending;
    if (m_inFlightTasks.value(urlString) == pending)
        m_inFlightTasks.remove(urlString);
    if (fetched.isNull())
        qCCritical(lcCache, "image(for:) fetch returned nil (all sources): %s", brief(urlString).constData());
    co_return fetched;
}

QCoro::Task<void> ImageCacheService::runFetch(QString urlString, QString key, QString path,
                                              std::shared_ptr<PendingImage> pending)
{
    QImage fetched = co_await fetchFromNetwork(urlString, key, path);
    if (fetched.isNull()) {
        const QString fallback = brickLinkFallbackUrl(urlString);
        if (!fallback.isEmpty()) {
            qCInfo(lcCache, "image(for:) trying BrickLink fallback for: %s", brief(urlString).constData());
            // Same key and path: the fallback's picture is found under the first URL later.
            fetched = co_await fetchFromNetwork(fallback, key, path);
        }
    }
    pending->finish(fetched);
}

QString ImageCacheService::brickLinkFallbackUrl(const QString &urlString)
{
    const QString setPictures = Endpoints::url(Endpoints::Service::rebrickable, u"/media/sets/"_s).toString();
    if (!urlString.contains(setPictures))
        return {};
    QString name = urlString.mid(urlString.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot >= 0)
        name.truncate(dot);
    if (name.isEmpty())
        return {};
    return Endpoints::url(Endpoints::Service::bricklinkImages, u"/ItemImage/SN/0/"_s + name + u".png"_s).toString();
}

QCoro::Task<QImage> ImageCacheService::fetchFromNetwork(QString urlString, QString key, QString path,
                                                        std::stop_token stop)
{
    const QUrl url(urlString, QUrl::StrictMode);
    if (urlString.isEmpty() || !url.isValid()) {
        qCCritical(lcCache, "fetchFromNetwork: invalid URL: %s", brief(urlString).constData());
        co_return QImage();
    }

    qCDebug(lcCache, "fetchFromNetwork: waiting for semaphore: %s [available: %d, waiting: %d]",
            brief(urlString).constData(), m_fetchSemaphore.count(), m_fetchSemaphore.waitingCount());
    co_await m_fetchSemaphore.acquire();
    // The permit covers the whole fetch, not only the transfer: the picture is decoded,
    // kept in memory and written to disk (or its failure recorded) before the next fetch
    // in the queue may start, so that at most eight fetches hold their bytes and decoded
    // pictures at once. The guard gives it back on every way out, errors and
    // cancellation included.
    const AsyncSemaphore::Permit permit(m_fetchSemaphore);
    qCDebug(lcCache, "fetchFromNetwork: acquired semaphore: %s [available: %d]",
            brief(urlString).constData(), m_fetchSemaphore.count());

    const ImageDownloader::Result response = co_await m_downloader.get(url, stop);

    using Outcome = ImageDownloader::Result::Outcome;
    switch (response.outcome) {
    case Outcome::http:
        break;
    case Outcome::nonHttp:
        qCInfo(lcCache, "fetchFromNetwork: non-HTTP response: %s", brief(urlString).constData());
        co_await markFailed(urlString, false);
        co_return QImage();
    case Outcome::cancelled:
        qCInfo(lcCache, "fetchFromNetwork: cancelled: %s", brief(urlString).constData());
        co_return QImage();
    case Outcome::urlCancelled:
        qCInfo(lcCache, "fetchFromNetwork: URL cancelled: %s", brief(urlString).constData());
        co_return QImage();
    case Outcome::networkError:
        qCInfo(lcCache, "fetchFromNetwork: network error: %s — %s", brief(urlString).constData(),
               qUtf8Printable(response.errorDescription));
        co_await markFailed(urlString, false);
        co_return QImage();
    }

    if (response.status != 200) {
        qCInfo(lcCache, "fetchFromNetwork: HTTP %d: %s", response.status, brief(urlString).constData());
        // 404 and 410 say the picture is gone; anything else may pass.
        const bool gone = response.status == 404 || response.status == 410;
        co_await markFailed(urlString, gone);
        co_return QImage();
    }
    const QImage decoded = co_await decode(response.body);
    if (decoded.isNull()) {
        qCInfo(lcCache, "fetchFromNetwork: invalid image data (%lld bytes): %s",
               qint64(response.body.size()), brief(urlString).constData());
        co_await markFailed(urlString, true);
        co_return QImage();
    }
    qCDebug(lcCache, "fetchFromNetwork: success (%lld bytes): %s", qint64(response.body.size()),
            brief(urlString).constData());
    storeInMemory(key, decoded);
    // The bytes as they came, unconverted; a failed write only costs a later download.
    co_await m_pictureFileWriter(path, response.body);
    co_return decoded;
}

QCoro::Task<void> ImageCacheService::markFailed(QString url, bool permanent)
{
    if (!permanent) {
        qCInfo(lcCache, "markFailed: transiently caching (5m): %s", brief(url).constData());
        m_transientFailures.insert(url, now() + transientFailureSeconds);
        co_return;
    }
    qCInfo(lcCache, "markFailed: permanently caching (30d): %s", brief(url).constData());
    m_failedURLs.insert(url);
    co_await QtConcurrent::run(&ImageFileStore::writeAtomically, negativePath(ImageCacheKey::forUrl(url)),
                               ImageFileStore::failureStampText(now()));
}

QCoro::Task<bool> ImageCacheService::hasFailed(QString urlString)
{
    if (m_failedURLs.contains(urlString))
        co_return true;
    if (const auto transient = m_transientFailures.constFind(urlString); transient != m_transientFailures.constEnd()) {
        // An entry exactly at its time no longer counts.
        if (now() < transient.value())
            co_return true;
        m_transientFailures.remove(urlString);
    }
    const QString path = negativePath(ImageCacheKey::forUrl(urlString));
    const std::optional<double> failedAt = co_await QtConcurrent::run(&ImageFileStore::readFailureStamp, path);
    if (!failedAt)
        co_return false;
    if (now() - *failedAt <= permanentFailureSeconds) {
        m_failedURLs.insert(urlString);
        co_return true;
    }
    // Stamps are swept only here, when their URL comes up again.
    co_await QtConcurrent::run(&ImageFileStore::remove, path);
    co_return false;
}

QCoro::Task<QImage> ImageCacheService::image(QStringList urls, std::stop_token stop)
{
    if (urls.isEmpty())
        co_return QImage();
    const QString first = urls.first();
    const QString key = ImageCacheKey::forUrl(first);
    if (const std::optional<QImage> hit = m_memoryCache.object(key))
        co_return *hit;
    const QImage fromDisk = co_await readFromDisk(key);
    if (!fromDisk.isNull()) {
        storeInMemory(key, fromDisk);
        co_return fromDisk;
    }
    if (co_await hasFailed(first))
        co_return QImage();

    const QString path = diskPath(key);
    for (const QString &url : std::as_const(urls)) {
        if (stop.stop_requested())
            co_return QImage();
        if (co_await hasFailed(url))
            continue;
        const QImage fetched = co_await fetchFromNetwork(url, key, path, stop);
        if (!fetched.isNull())
            co_return fetched;
    }
    // A caller that gave up learned nothing about the URLs: no failure to remember.
    if (stop.stop_requested())
        co_return QImage();
    co_await markFailed(first, false);
    co_return QImage();
}

QCoro::Task<QImage> ImageCacheService::thumbnail(QString urlString)
{
    const QString key = ImageCacheKey::forUrl(urlString);
    if (const std::optional<QImage> hit = m_thumbnailCache.object(key))
        co_return *hit;
    const QString path = thumbnailPath(key);
    const ImageFileStore::ReadImage stored = co_await QtConcurrent::run(&ImageFileStore::readImage, path);
    if (!stored.image.isNull()) {
        m_thumbnailCache.setObject(key, stored.image, stored.fileSize);
        co_return stored.image;
    }
    const QImage full = co_await image(urlString);
    if (full.isNull())
        co_return QImage();
    const QImage small = co_await QtConcurrent::run(&ThumbnailScaler::thumbnail, full);
    m_thumbnailCache.setObject(key, small, ThumbnailScaler::memoryCost);
    // A thumbnail that cannot be stored is still shown; it is only made again next time.
    // (The job is named before it is awaited: GCC 12 destroys a lambda's captures twice
    // when the lambda is written inside a co_await expression.)
    QFuture<bool> storing = QtConcurrent::run([small, path] {
        const QByteArray png = ImageFileStore::encodePng(small);
        return !png.isEmpty() && ImageFileStore::writeAtomically(path, png);
    });
    co_await storing;
    co_return small;
}

QCoro::Task<qint64> ImageCacheService::diskCacheSize()
{
    co_return co_await QtConcurrent::run(&ImageFileStore::directorySize, m_diskCacheDirectory);
}

QCoro::Task<void> ImageCacheService::clearAll()
{
    const QStringList directories{m_diskCacheDirectory, m_negativeCacheDirectory, m_thumbnailDiskDirectory};
    QFuture<void> wiping = QtConcurrent::run([directories] {
        for (const QString &directory : directories)
            ImageFileStore::recreateDirectory(directory);
    });
    co_await wiping;
    m_memoryCache.removeAllObjects();
    m_thumbnailCache.removeAllObjects();
    m_failedURLs.clear();
    m_transientFailures.clear();
}
