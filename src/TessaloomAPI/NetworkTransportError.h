// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QString>

#include <exception>

// A request that got no complete answer: no connection, a time-out, a cancellation, a
// connection that broke off. It passes to the caller as the network layer reported it,
// neither retried nor wrapped in HTTPError. Qt reports a time-out and a cancellation alike
// as "Operation canceled"; the client tells them apart, and each has its own sentence.
//
// Qt's sentence may name the address; it is kept with its query and user info removed,
// since request URLs of price services carry API keys.
class NetworkTransportError : public std::exception
{
public:
    enum class Kind {
        timedOut,  // no data for longer than the request's time-out
        cancelled, // the caller asked the request to stop
        failed,    // anything else; the sentence is Qt's own
    };

    NetworkTransportError(Kind kind, QNetworkReply::NetworkError code, QString networkMessage);

    Kind kind() const { return m_kind; }
    QNetworkReply::NetworkError code() const { return m_code; }
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QNetworkReply::NetworkError m_code;
    QString m_networkMessage;
    QByteArray m_what;
};
