// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "JSONDecodingError.h"

#include <QByteArray>
#include <QString>

#include <exception>
#include <optional>

// What HTTPClient raises when a request got an answer that is not the expected one: a
// status outside 200–299 (the body kept as it came, unparsed), a body that does not decode
// as the response type, or an answer that is not an HTTP response at all. Failures to get
// any answer (no connection, time-out, cancellation) are NetworkTransportError instead.
class HTTPError : public std::exception
{
public:
    enum class Kind {
        httpError,
        decodingError,
        invalidResponse,
    };

    static HTTPError httpError(int statusCode, QByteArray data);
    static HTTPError decodingError(JSONDecodingError underlying);
    static HTTPError invalidResponse();

    Kind kind() const { return m_kind; }
    // httpError only: the status and the response body.
    int statusCode() const { return m_statusCode; }
    const QByteArray &data() const { return m_data; }
    // decodingError only: why the body did not decode.
    const std::optional<JSONDecodingError> &underlyingError() const { return m_underlying; }

    // "HTTP error 404", "Failed to decode response: …", "Invalid server response".
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }

private:
    HTTPError(Kind kind, int statusCode, QByteArray data, std::optional<JSONDecodingError> underlying);

    Kind m_kind;
    int m_statusCode = 0;
    QByteArray m_data;
    std::optional<JSONDecodingError> m_underlying;
    QByteArray m_what;
};
