// SPDX-License-Identifier: GPL-3.0-or-later
#include "RebrickableDownloader.h"

#include "CancellationError.h"
#include "DownloadError.h"
#include "FileOperationError.h"
#include "GzipFileUnpacker.h"
#include "TransportError.h"

#include <QCoroFuture>
#include <QCoroSignal>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPromise>
#include <QThreadPool>
#include <QTimer>

#include <exception>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

// The one dump whose date stands for all twelve: they are published together.
const QString updateCheckName = u"sets"_s;

// Suffix of a body still arriving. Only a complete body takes the final ".csv.gz" name,
// so a download cut off, refused or interrupted by a crash never looks like a whole one.
const QString partialSuffix = u".part"_s;

constexpr qint64 readBufferSize = 1024 * 1024;

struct ReplyDeleter
{
    void operator()(QNetworkReply *reply) const
    {
        // Our handlers capture state of the coroutine that is going away; the reply itself
        // may still be inside one of its own signals, so it goes later.
        reply->disconnect();
        reply->deleteLater();
    }
};

using ReplyPointer = std::unique_ptr<QNetworkReply, ReplyDeleter>;

// Waits until `reply` has finished. A stop request aborts it; the abort is queued, since a
// stop may be requested from inside one of the reply's own signals or from another thread.
QCoro::Task<> waitUntilFinished(QNetworkReply *reply, std::stop_token stopToken)
{
    const std::stop_callback abortOnStop(stopToken, [reply] {
        QMetaObject::invokeMethod(reply, &QNetworkReply::abort, Qt::QueuedConnection);
    });
    if (!reply->isFinished())
        co_await qCoro(reply, &QNetworkReply::finished);
}

// What a finished reply amounts to when it brought no usable answer. A refusal by the
// server wins over the connection error Qt reports along with it (404 arrives as
// ContentNotFoundError); a connection error with no status at all passes through as it is.
// A redirect loop ends on a redirect status, yet no answer ever came: it is the transfer's
// failure, not the server's refusal.
void throwUnlessAnswered(const QNetworkReply &reply, const QString &name, const std::stop_token &stopToken)
{
    if (stopToken.stop_requested())
        throw CancellationError();
    if (reply.error() == QNetworkReply::TooManyRedirectsError)
        throw TransportError::fromReply(reply);
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid() && status.toInt() != 200)
        throw DownloadError::httpError(name, status.toInt());
    if (reply.error() != QNetworkReply::NoError)
        throw TransportError::fromReply(reply);
    if (!status.isValid())
        throw DownloadError::httpError(name, 0); // an answer, but not an HTTP one
}

struct UnpackOutcome
{
    std::exception_ptr failure;
};

// Runs the unpacking on the global thread pool and hands back its failure, if any, as a
// value: only QException could cross a QFuture by itself.
QCoro::Task<UnpackOutcome> unpackOnWorker(QString sourcePath, QString targetPath)
{
    const auto promise = std::make_shared<QPromise<UnpackOutcome>>();
    const QFuture<UnpackOutcome> future = promise->future();
    promise->start();
    QThreadPool::globalInstance()->start([promise, sourcePath, targetPath] {
        UnpackOutcome outcome;
        try {
            GzipFileUnpacker::unpack(sourcePath, targetPath);
        } catch (...) {
            outcome.failure = std::current_exception();
        }
        promise->addResult(outcome);
        promise->finish();
    });
    co_return co_await future;
}

} // namespace

const QStringList &RebrickableDownloader::dumpNames()
{
    static const QStringList names = {
        u"themes"_s, u"colors"_s, u"part_categories"_s, u"parts"_s,
        u"part_relationships"_s, u"elements"_s, u"minifigs"_s, u"sets"_s,
        u"inventories"_s, u"inventory_parts"_s, u"inventory_sets"_s, u"inventory_minifigs"_s,
    };
    return names;
}

RebrickableDownloader::RebrickableDownloader(QString outputDirectory, QUrl baseUrl)
    : m_outputDirectory(std::move(outputDirectory))
    , m_baseUrl(std::move(baseUrl))
    , m_network(std::make_unique<QNetworkAccessManager>())
{
}

// A caller may well destroy the downloader right after an operation ends, and that end is
// reached from inside a signal of the last reply (its coroutine resumes there). Deleting
// the network manager then would delete that reply, its child, inside its own signal: the
// manager and its replies go when the event loop next turns instead.
RebrickableDownloader::~RebrickableDownloader()
{
    if (m_network)
        m_network.release()->deleteLater();
}

QUrl RebrickableDownloader::downloadUrl(const QString &name) const
{
    QUrl url = m_baseUrl;
    QString basePath = m_baseUrl.path();
    while (basePath.endsWith(u'/'))
        basePath.chop(1);
    url.setPath(basePath + u"/media/downloads/"_s + name + u".csv.gz"_s);
    return url;
}

void RebrickableDownloader::setRequestTimeouts(std::chrono::milliseconds download,
                                               std::chrono::milliseconds updateCheck)
{
    m_downloadTimeout = download;
    m_updateCheckTimeout = updateCheck;
}

void RebrickableDownloader::setMinimumTransferRate(qint64 bytes, std::chrono::milliseconds window)
{
    m_minimumTransferBytes = bytes;
    m_transferRateWindow = window;
}

QCoro::Task<RebrickableDownloader::UpdateCheckResult>
RebrickableDownloader::checkForUpdates(std::optional<QString> lastModified, std::stop_token stopToken)
{
    const AsyncMutex::Lock turn = co_await m_mutex.lock();

    QNetworkRequest request(downloadUrl(updateCheckName));
    request.setTransferTimeout(int(m_updateCheckTimeout.count()));
    const ReplyPointer reply(m_network->head(request));
    co_await waitUntilFinished(reply.get(), stopToken);
    throwUnlessAnswered(*reply, updateCheckName, stopToken);

    UpdateCheckResult result;
    if (reply->hasRawHeader("Last-Modified"))
        result.lastModified = QString::fromLatin1(reply->rawHeader("Last-Modified"));
    // Plain text comparison on purpose: a header that changes in any way, even to an older
    // date or only in letter case, means the dumps were published again.
    result.hasUpdates = !result.lastModified || !lastModified || *lastModified != *result.lastModified;
    co_return result;
}

QCoro::Task<QStringList> RebrickableDownloader::downloadAll(ProgressHandler progress, std::stop_token stopToken)
{
    const AsyncMutex::Lock turn = co_await m_mutex.lock();

    if (!QDir().mkpath(m_outputDirectory))
        throw FileOperationError(FileOperationError::Kind::createDirectoryFailed, m_outputDirectory);

    const QStringList &names = dumpNames();
    const int total = int(names.size());
    QStringList paths;
    for (int index = 0; index < total; ++index) {
        if (stopToken.stop_requested())
            throw CancellationError();
        if (progress)
            progress(names.at(index), index, total);
        paths.append(co_await downloadFile(names.at(index), stopToken));
    }
    if (progress)
        progress(names.last(), total, total);
    co_return paths;
}

QCoro::Task<QString> RebrickableDownloader::downloadFile(QString name, std::stop_token stopToken)
{
    const QDir directory(m_outputDirectory);
    const QString packedPath = directory.filePath(name + u".csv.gz"_s);
    const QString unpackedPath = directory.filePath(name + u".csv"_s);
    const QString partialPath = packedPath + partialSuffix;

    co_await receiveBody(name, partialPath, stopToken);

    if (QFileInfo::exists(packedPath) && !QFile::remove(packedPath)) {
        QFile::remove(partialPath);
        throw FileOperationError(FileOperationError::Kind::removeFailed, packedPath);
    }
    if (!QFile::rename(partialPath, packedPath)) {
        QFile::remove(partialPath);
        throw FileOperationError(FileOperationError::Kind::moveFailed, packedPath);
    }

    // A failed unpacking leaves the .csv.gz and the partly written .csv where they are;
    // the caller removes the whole folder.
    if (const UnpackOutcome unpacked = co_await unpackOnWorker(packedPath, unpackedPath); unpacked.failure)
        std::rethrow_exception(unpacked.failure);
    QFile::remove(packedPath); // only saves space; a leftover is replaced by the next run

    if (!QFileInfo::exists(unpackedPath))
        throw DownloadError::decompressionFailed(name);
    co_return unpackedPath;
}

QCoro::Task<> RebrickableDownloader::receiveBody(QString name, QString partialPath, std::stop_token stopToken)
{
    // Truncate: a leftover of a crashed run is started over, never appended to. Opened
    // before the request, so an empty body still makes an (empty) file.
    QFile partial(partialPath);
    if (!partial.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw FileOperationError(FileOperationError::Kind::writeFailed, partialPath);

    QNetworkRequest request(downloadUrl(name));
    request.setTransferTimeout(int(m_downloadTimeout.count()));
    // The dump exactly as published. Left to itself, Qt asks for a compressed transfer and
    // undoes a "Content-Encoding: gzip" that some hosts put on .gz files, which would hand
    // the unpacking plain text; with the encoding asked for here it passes bytes as sent.
    request.setRawHeader("Accept-Encoding", "identity");
    const ReplyPointer reply(m_network->get(request));
    QNetworkReply *const replyObject = reply.get();
    // Bounds what waits in memory for this thread: Qt's network thread otherwise keeps
    // reading into the reply while this thread is busy elsewhere.
    replyObject->setReadBufferSize(readBufferSize);

    // Qt's transfer time-out starts over with every byte that arrives, so it never ends a
    // body that trickles in. Once the answer has begun, every window has to bring at least
    // the minimum; the abort is queued so that it never runs inside a signal of the reply.
    const qint64 minimumBytes = m_minimumTransferBytes;
    qint64 receivedInWindow = 0;
    bool tooSlow = false;
    QTimer rateGuard;
    rateGuard.setInterval(m_transferRateWindow);
    QObject::connect(&rateGuard, &QTimer::timeout, replyObject, [&rateGuard, &receivedInWindow, &tooSlow, minimumBytes, replyObject] {
        if (receivedInWindow < minimumBytes) {
            tooSlow = true;
            rateGuard.stop();
            QMetaObject::invokeMethod(replyObject, &QNetworkReply::abort, Qt::QueuedConnection);
        }
        receivedInWindow = 0;
    });
    const auto startRateGuard = [&rateGuard, &tooSlow, minimumBytes] {
        if (minimumBytes > 0 && !tooSlow && !rateGuard.isActive())
            rateGuard.start();
    };
    QObject::connect(replyObject, &QNetworkReply::metaDataChanged, &rateGuard, startRateGuard);

    // Each piece of the body goes to disk as soon as it arrives, so a dump never sits whole
    // in memory. The body of a refusal is read and dropped. A disk failure stops the
    // transfer; the abort is queued so that it never runs inside this very signal.
    std::optional<FileOperationError> diskFailure;
    qint64 received = 0;
    const auto writeArrivedBytes = [&partial, &diskFailure, &received, &receivedInWindow, startRateGuard, replyObject] {
        const QByteArray piece = replyObject->readAll();
        startRateGuard();
        receivedInWindow += piece.size();
        if (diskFailure || replyObject->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != 200)
            return;
        received += piece.size();
        if (partial.write(piece) != piece.size()) {
            diskFailure.emplace(FileOperationError::Kind::writeFailed, partial.fileName());
            QMetaObject::invokeMethod(replyObject, &QNetworkReply::abort, Qt::QueuedConnection);
        }
    };
    QObject::connect(replyObject, &QIODevice::readyRead, replyObject, writeArrivedBytes);

    co_await waitUntilFinished(replyObject, stopToken);
    rateGuard.stop();
    if (replyObject->bytesAvailable() > 0)
        writeArrivedBytes();
    partial.close();

    try {
        if (stopToken.stop_requested())
            throw CancellationError();
        if (diskFailure)
            throw *diskFailure;
        if (tooSlow)
            throw TransportError::tooSlow(*replyObject);
        throwUnlessAnswered(*replyObject, name, stopToken);
        // Qt may end a "Connection: close" response at the close without an error, even
        // short of its Content-Length. The body comes as sent (no decoding was asked for),
        // so the two lengths compare.
        const QVariant announced = replyObject->header(QNetworkRequest::ContentLengthHeader);
        if (announced.isValid() && announced.toLongLong() != received)
            throw TransportError::incompleteBody(*replyObject);
    } catch (...) {
        QFile::remove(partialPath);
        throw;
    }
}

} // namespace RebrickableKit
