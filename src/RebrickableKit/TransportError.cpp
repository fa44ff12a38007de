// SPDX-License-Identifier: GPL-3.0-or-later
#include "TransportError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

TransportError TransportError::fromReply(const QNetworkReply &reply)
{
    const Kind kind = reply.error() == QNetworkReply::OperationCanceledError ? Kind::timedOut : Kind::failed;
    return TransportError(kind, reply.error(), reply.url(), reply.errorString());
}

TransportError TransportError::incompleteBody(const QNetworkReply &reply)
{
    return TransportError(Kind::incomplete, QNetworkReply::RemoteHostClosedError, reply.url(), QString());
}

TransportError::TransportError(Kind kind, QNetworkReply::NetworkError code, QUrl url, QString message)
    : m_kind(kind)
    , m_code(code)
    , m_url(std::move(url))
    , m_message(std::move(message))
    , m_what(description().toUtf8())
{
}

QString TransportError::description() const
{
    switch (m_kind) {
    case Kind::timedOut:
        return u"The request timed out."_s;
    case Kind::incomplete:
        return u"The connection closed before the whole file arrived."_s;
    case Kind::failed:
        return m_message;
    }
    Q_UNREACHABLE();
    return m_message;
}

const char *TransportError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
