// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HTTPError.h"
#include "JSONDecoder.h"
#include "NetworkTransportError.h"

#include <QByteArray>
#include <QNetworkRequest>
#include <QUrl>

#include <QCoroTask>

#include <chrono>
#include <memory>
#include <stop_token>

class QNetworkAccessManager;

// Sends one prepared request and turns the answer into a decoded value or a typed error.
// Each adapter owns one, so each price service has a session of its own: one
// QNetworkAccessManager with a 30-second idle time-out and "Accept: application/json" on
// every request that does not name its own Accept.
//
// There is no retry of any kind, not on 429 and not on 5xx: the adapters' rate limiters set
// the pace, and a failure goes to the caller at once. Redirects are left to Qt's default
// policy; a 3xx that reaches us is an error like any status outside 200–299.
//
// Runs on the thread that made it, one coroutine step at a time.
class HTTPClient
{
public:
    using HTTPError = ::HTTPError;

    // The session's idle time-out, for requests that carry none of their own.
    static constexpr std::chrono::milliseconds sessionTimeout{30'000};
    // What adapters put on each request; it rules over the session's.
    static constexpr std::chrono::milliseconds defaultRequestTimeout{60'000};

    HTTPClient();
    ~HTTPClient();
    HTTPClient(const HTTPClient &) = delete;
    HTTPClient &operator=(const HTTPClient &) = delete;

    // A GET request for `url` as adapters send it: the request's own time-out (60 s unless
    // shortened by a test) and the default cache policy.
    QNetworkRequest makeRequest(const QUrl &url) const;
    std::chrono::milliseconds requestTimeout() const { return m_requestTimeout; }
    // Test seam: lets a test of a silent server end in milliseconds rather than a minute.
    void setRequestTimeoutForTesting(std::chrono::milliseconds timeout) { m_requestTimeout = timeout; }

    // The body of a 2xx answer to `request`. Fails with HTTPError (httpError with the status
    // and the body, or invalidResponse for an answer that is not HTTP) or, when no complete
    // answer came, with NetworkTransportError. A stop request aborts the request.
    QCoro::Task<QByteArray> fetchData(QNetworkRequest request, std::stop_token stopToken = {});

    // fetchData, then the body decoded as T (JSONDecoder); a body that does not decode fails
    // with HTTPError::decodingError, whatever the status, 204 with an empty body included.
    template<typename T>
    QCoro::Task<T> fetch(QNetworkRequest request, std::stop_token stopToken = {})
    {
        const QByteArray body = co_await fetchData(std::move(request), std::move(stopToken));
        co_return decodeBody<T>(body);
    }

    template<typename T>
    static T decodeBody(const QByteArray &body)
    {
        try {
            return JSONDecoder::decode<T>(body);
        } catch (const JSONDecodingError &error) {
            throw HTTPError::decodingError(error);
        }
    }

    QNetworkAccessManager &session() { return *m_session; }

private:
    std::unique_ptr<QNetworkAccessManager> m_session;
    std::chrono::milliseconds m_requestTimeout = defaultRequestTimeout;
};
