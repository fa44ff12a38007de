// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QUrl>

#include <array>
#include <chrono>
#include <stop_token>

// Plain GET requests for the image cache, each reported as what happened on the wire:
// an HTTP answer with its status and body, an answer that was no HTTP, a cancellation, or
// a network error with its description. It sets no limit of its own; the caller decides
// how many run at once.
//
// Qt's HTTP/1.1 transport opens at most six connections to one host per access manager,
// which would quietly cap the cache's own limit of eight when all pictures come from one
// host. Requests are therefore spread over two managers, each time to the less busy one.
class ImageDownloader : public QObject
{
    Q_OBJECT

public:
    struct Result
    {
        enum class Outcome {
            http,          // an HTTP status arrived with the whole body
            nonHttp,       // the answer carried no HTTP status
            cancelled,     // the caller asked to stop
            urlCancelled,  // the transport dropped the request on its own
            networkError,  // no complete answer
        };
        Outcome outcome = Outcome::networkError;
        int status = 0;
        QByteArray body;
        QString errorDescription;
    };

    // A transfer that receives nothing for this long fails as a network error.
    static constexpr std::chrono::milliseconds defaultIdleTimeout{60'000};

    explicit ImageDownloader(QObject *parent = nullptr);

    void setIdleTimeout(std::chrono::milliseconds timeout) { m_idleTimeout = timeout; }
    std::chrono::milliseconds idleTimeout() const { return m_idleTimeout; }

    // Fetches `url`; a stop requested through `stop` aborts the transfer.
    QCoro::Task<Result> get(QUrl url, std::stop_token stop = {});

private:
    QNetworkAccessManager &lessBusyManager();

    std::array<QNetworkAccessManager, 2> m_managers;
    std::array<int, 2> m_activeTransfers{0, 0};
    std::chrono::milliseconds m_idleTimeout = defaultIdleTimeout;
};
