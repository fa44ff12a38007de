// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkReply>
#include <QString>
#include <QUrl>

#include <exception>

namespace RebrickableKit {

// A request that got no complete HTTP answer: no connection, a connection that broke off,
// one that stayed silent or crawled past its time-out, or a server that redirected it in
// a loop. Apart from those cases, which have sentences of their own (Qt would call a
// time-out only "Operation canceled"), the sentence is the network layer's own.
//
// Nothing this error holds or says carries a user name, password, query or fragment of an
// address: a base URL may hold credentials or an API key, and these texts end up on screen,
// in logs and in bug reports. The address is kept reduced, and every form of the full
// address inside the network layer's sentence is replaced by the reduced one.
class TransportError : public std::exception
{
public:
    enum class Kind {
        timedOut,     // no data came for longer than the request's time-out, or far too little
        incomplete,   // the connection ended before the announced length had arrived
        redirectLoop, // the server kept redirecting the request, past Qt's limit of redirects
        failed,       // any other failure of the connection
    };

    // What a finished reply with an error amounts to. A reply aborted by its time-out
    // reports OperationCanceledError; the caller has already told that apart from a stop
    // request, so here it can only mean the time-out.
    static TransportError fromReply(const QNetworkReply &reply);
    static TransportError incompleteBody(const QNetworkReply &reply);
    // A body that arrived, but slower than the least rate a healthy transfer keeps.
    static TransportError tooSlow(const QNetworkReply &reply);

    // `url` as it may be shown: scheme, host, port and path only.
    static QString displayAddress(const QUrl &url);

    TransportError(Kind kind, QNetworkReply::NetworkError code, const QUrl &url, const QString &message);

    Kind kind() const { return m_kind; }
    QNetworkReply::NetworkError code() const { return m_code; }
    // The address without user information, query or fragment.
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
