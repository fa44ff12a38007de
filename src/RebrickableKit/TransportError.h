// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkReply>
#include <QString>
#include <QUrl>

#include <exception>

namespace RebrickableKit {

// A request that got no complete HTTP answer: no connection, a connection that broke off,
// or one that stayed silent past its time-out. Apart from the time-out, whose reason Qt
// would only call "Operation canceled", the sentence is the network layer's own, as it is.
class TransportError : public std::exception
{
public:
    enum class Kind {
        timedOut,   // no data came for longer than the request's time-out
        incomplete, // the connection ended before the announced length had arrived
        failed,     // any other failure of the connection
    };

    // What a finished reply with an error amounts to. A reply aborted by its time-out
    // reports OperationCanceledError; the caller has already told that apart from a stop
    // request, so here it can only mean the time-out.
    static TransportError fromReply(const QNetworkReply &reply);
    static TransportError incompleteBody(const QNetworkReply &reply);

    TransportError(Kind kind, QNetworkReply::NetworkError code, QUrl url, QString message);

    Kind kind() const { return m_kind; }
    QNetworkReply::NetworkError code() const { return m_code; }
    const QUrl &url() const { return m_url; }
    QString description() const;

    const char *what() const noexcept override;

private:
    Kind m_kind;
    QNetworkReply::NetworkError m_code;
    QUrl m_url;
    QString m_message;
    QByteArray m_what;
};

} // namespace RebrickableKit
