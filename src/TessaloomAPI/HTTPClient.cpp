// SPDX-License-Identifier: GPL-3.0-or-later
#include "HTTPClient.h"

#include <QCoroSignal>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QByteArray acceptHeader = "Accept";
const QByteArray acceptedType = "application/json";

struct ReplyDeleter
{
    void operator()(QNetworkReply *reply) const
    {
        // The reply may still be inside one of its own signals when the coroutine ends.
        reply->disconnect();
        reply->deleteLater();
    }
};

using ReplyPointer = std::unique_ptr<QNetworkReply, ReplyDeleter>;

QCoro::Task<> waitUntilFinished(QNetworkReply *reply, std::stop_token stopToken)
{
    // Queued: a stop may be requested from another thread or from inside a signal of the reply.
    const std::stop_callback abortOnStop(stopToken, [reply] {
        QMetaObject::invokeMethod(reply, &QNetworkReply::abort, Qt::QueuedConnection);
    });
    if (!reply->isFinished())
        co_await qCoro(reply, &QNetworkReply::finished);
}

// Errors Qt reports along with a complete HTTP answer whose status is not 2xx (404 comes as
// ContentNotFoundError, 500 as InternalServerError). Everything else means the answer
// never arrived whole.
bool isStatusError(QNetworkReply::NetworkError error)
{
    // Qt reports a 400 as an invalid protocol operation; a reply that is not HTTP at all is
    // told apart afterwards by its missing status code.
    return error == QNetworkReply::NoError || error == QNetworkReply::ProtocolInvalidOperationError
        || (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

} // namespace

HTTPClient::HTTPClient()
    : m_session(std::make_unique<QNetworkAccessManager>())
{
    m_session->setTransferTimeout(int(sessionTimeout.count()));
}

HTTPClient::~HTTPClient() = default;

QNetworkRequest HTTPClient::makeRequest(const QUrl &url) const
{
    QNetworkRequest request(url);
    request.setTransferTimeout(int(m_requestTimeout.count()));
    return request;
}

QCoro::Task<QByteArray> HTTPClient::fetchData(QNetworkRequest request, std::stop_token stopToken)
{
    // A request's own Accept wins, as the session's headers only fill in what is missing.
    if (!request.hasRawHeader(acceptHeader))
        request.setRawHeader(acceptHeader, acceptedType);

    const ReplyPointer reply(m_session->get(request));
    co_await waitUntilFinished(reply.get(), stopToken);

    const QNetworkReply::NetworkError error = reply->error();
    if (!isStatusError(error)) {
        // A reply that the time-out aborted reports the same code as one that was stopped;
        // only the stop request tells them apart.
        NetworkTransportError::Kind kind = NetworkTransportError::Kind::failed;
        if (error == QNetworkReply::OperationCanceledError)
            kind = stopToken.stop_requested() ? NetworkTransportError::Kind::cancelled
                                              : NetworkTransportError::Kind::timedOut;
        throw NetworkTransportError(kind, error, reply->errorString());
    }

    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        throw HTTPError::invalidResponse();
    const int statusCode = status.toInt();
    QByteArray body = reply->readAll();
    if (statusCode < 200 || statusCode > 299)
        throw HTTPError::httpError(statusCode, std::move(body));
    co_return body;
}
