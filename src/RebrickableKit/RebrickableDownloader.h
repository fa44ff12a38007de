// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AsyncMutex.h"

#include <QCoroTask>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class QNetworkAccessManager;
class QNetworkReply;

namespace RebrickableKit {

// Fetches the twelve catalog dumps into a folder and unpacks them there, and tells with one
// HEAD request whether the dumps have changed since a given "Last-Modified" value.
//
// Its operations run one at a time, each to its end before the next starts, on the thread
// that made the downloader (the main thread in the application), yielding at every wait.
// Bodies go to disk as they arrive and gzip unpacking runs on a worker thread through a
// fixed buffer, so neither a whole dump in memory nor a long stall of the event loop occurs.
//
// Failures come as exceptions through co_await: DownloadError (the server said no, or a
// file would not unpack, such as an error page served in place of a dump), TransportError
// (no complete answer, a body far too slow, a redirect loop), FileOperationError (the local
// disk), CancellationError (the stop token was triggered). Nothing is retried.
class RebrickableDownloader
{
public:
    struct UpdateCheckResult
    {
        bool hasUpdates = false;
        // The "Last-Modified" header exactly as the server sent it; absent when it sent none.
        std::optional<QString> lastModified;

        bool operator==(const UpdateCheckResult &) const = default;
    };

    // Called before each dump with its name, its index from 0 and the total, 12; then once
    // more with the last name and index 12 when all are done.
    using ProgressHandler = std::function<void(const QString &fileName, int index, int total)>;

    // In the builder's import order: a table's references come before it.
    static const QStringList &dumpNames();

    static constexpr std::chrono::milliseconds defaultDownloadTimeout = std::chrono::seconds(300);
    static constexpr std::chrono::milliseconds defaultUpdateCheckTimeout = std::chrono::seconds(60);
    static constexpr qint64 defaultMinimumTransferBytes = 1024;
    static constexpr std::chrono::milliseconds defaultTransferRateWindow = std::chrono::seconds(60);

    // `baseUrl` is the download host, such as "https://cdn.rebrickable.com"; its own path,
    // if any, is kept in front of "/media/downloads/NAME.csv.gz".
    RebrickableDownloader(QString outputDirectory, QUrl baseUrl);
    ~RebrickableDownloader();

    RebrickableDownloader(const RebrickableDownloader &) = delete;
    RebrickableDownloader &operator=(const RebrickableDownloader &) = delete;

    const QString &outputDirectory() const { return m_outputDirectory; }
    const QUrl &baseUrl() const { return m_baseUrl; }
    QUrl downloadUrl(const QString &name) const;

    // How long a request may go without receiving any data before it fails with
    // TransportError::Kind::timedOut: 300 s for the dumps, 60 s for the HEAD request.
    std::chrono::milliseconds downloadTimeout() const { return m_downloadTimeout; }
    std::chrono::milliseconds updateCheckTimeout() const { return m_updateCheckTimeout; }
    void setRequestTimeouts(std::chrono::milliseconds download, std::chrono::milliseconds updateCheck);

    // The least a dump's body must bring in each window once its answer has begun, 1 KiB in
    // 60 s, or the download fails with TransportError::Kind::timedOut. The time-out above
    // starts over with every byte, so a body trickling in a few bytes at a time would
    // otherwise run for hours. Silence before the answer begins is left to that time-out.
    // A minimum of 0 turns the guard off. The HEAD request has no such guard: it carries
    // no body.
    qint64 minimumTransferBytes() const { return m_minimumTransferBytes; }
    std::chrono::milliseconds transferRateWindow() const { return m_transferRateWindow; }
    void setMinimumTransferRate(qint64 bytes, std::chrono::milliseconds window);

    // One HEAD request for "sets", which stands for all twelve dumps. `lastModified` is the
    // header of the dumps the current catalog was built from. Any difference of the header,
    // by plain text comparison, counts as an update; so does a server that sends none.
    // A status other than 200 (304 included) is DownloadError::httpError("sets", status).
    QCoro::Task<UpdateCheckResult> checkForUpdates(std::optional<QString> lastModified,
                                                   std::stop_token stopToken = {});

    // Downloads and unpacks the twelve dumps strictly one after another and returns the
    // paths of the unpacked NAME.csv files in dumpNames() order. A leftover NAME.csv.gz or
    // NAME.csv from an earlier run is replaced, never appended to. The first failure ends
    // it; files already unpacked stay for the caller to clean up.
    QCoro::Task<QStringList> downloadAll(ProgressHandler progress = {}, std::stop_token stopToken = {});

private:
    QCoro::Task<QString> downloadFile(QString name, std::stop_token stopToken);
    QCoro::Task<> receiveBody(QString name, QString partialPath, std::stop_token stopToken);

    QString m_outputDirectory;
    QUrl m_baseUrl;
    std::chrono::milliseconds m_downloadTimeout = defaultDownloadTimeout;
    std::chrono::milliseconds m_updateCheckTimeout = defaultUpdateCheckTimeout;
    qint64 m_minimumTransferBytes = defaultMinimumTransferBytes;
    std::chrono::milliseconds m_transferRateWindow = defaultTransferRateWindow;
    std::unique_ptr<QNetworkAccessManager> m_network;
    AsyncMutex m_mutex;
};

} // namespace RebrickableKit
