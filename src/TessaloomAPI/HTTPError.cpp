// SPDX-License-Identifier: GPL-3.0-or-later
#include "HTTPError.h"

#include <QCoreApplication>

HTTPError::HTTPError(Kind kind, int statusCode, QByteArray data, std::optional<JSONDecodingError> underlying)
    : m_kind(kind)
    , m_statusCode(statusCode)
    , m_data(std::move(data))
    , m_underlying(std::move(underlying))
    , m_what(description().toUtf8())
{
}

HTTPError HTTPError::httpError(int statusCode, QByteArray data)
{
    return HTTPError(Kind::httpError, statusCode, std::move(data), std::nullopt);
}

HTTPError HTTPError::decodingError(JSONDecodingError underlying)
{
    return HTTPError(Kind::decodingError, 0, {}, std::move(underlying));
}

HTTPError HTTPError::invalidResponse()
{
    return HTTPError(Kind::invalidResponse, 0, {}, std::nullopt);
}

QString HTTPError::description() const
{
    switch (m_kind) {
    case Kind::httpError:
        //% "HTTP error %1"
        return qtTrId("api.error.http.").arg(m_statusCode);
    case Kind::decodingError:
        //% "Failed to decode response: %1"
        return qtTrId("api.error.decoding.").arg(m_underlying ? m_underlying->description() : QString());
    case Kind::invalidResponse:
        //% "Invalid server response"
        return qtTrId("api.error.invalidResponse");
    }
    Q_UNREACHABLE();
    return {};
}
