// SPDX-License-Identifier: GPL-3.0-or-later
#include "TransportError.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

constexpr QUrl::FormattingOptions privatePartsRemoved = QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment;

// `message` with every spelling of `url` that Qt's sentences use (as typed, encoded or
// decoded, with or without the password) replaced by its displayable form. The longest
// spellings go first, so that a shorter one never leaves the tail of a longer one behind.
QString withAddressReduced(QString message, const QUrl &url)
{
    if (message.isEmpty() || url.isEmpty())
        return message;
    // (QUrl refuses to give a whole address fully decoded; the readable form stands in.)
    QStringList spellings = {
        url.toString(),
        url.toString(QUrl::FullyEncoded),
        url.toDisplayString(),
    };
    std::sort(spellings.begin(), spellings.end(),
              [](const QString &left, const QString &right) { return left.size() > right.size(); });
    const QString reduced = TransportError::displayAddress(url);
    for (const QString &spelling : std::as_const(spellings)) {
        if (!spelling.isEmpty())
            message.replace(spelling, reduced);
    }
    // A sentence that still shows credentials or a query, spelled some way not foreseen
    // above, is not worth its risk: it gives way to a plain one.
    QStringList leftovers;
    if (!url.userInfo().isEmpty())
        leftovers.append(u'@' + url.host());
    if (url.hasQuery()) {
        for (const QUrl::ComponentFormattingOption format : {QUrl::PrettyDecoded, QUrl::FullyEncoded, QUrl::FullyDecoded})
            leftovers.append(u'?' + url.query(format));
    }
    for (const QString &leftover : std::as_const(leftovers)) {
        if (message.contains(leftover))
            return u"The connection to "_s + url.host() + u" failed."_s;
    }
    return message;
}

} // namespace

TransportError TransportError::fromReply(const QNetworkReply &reply)
{
    Kind kind = Kind::failed;
    if (reply.error() == QNetworkReply::OperationCanceledError)
        kind = Kind::timedOut;
    else if (reply.error() == QNetworkReply::TooManyRedirectsError)
        kind = Kind::redirectLoop;
    // After redirects reply.url() is the last address asked; the first may be in the
    // sentence too.
    return TransportError(kind, reply.error(), reply.url(),
                          withAddressReduced(reply.errorString(), reply.request().url()));
}

TransportError TransportError::incompleteBody(const QNetworkReply &reply)
{
    return TransportError(Kind::incomplete, QNetworkReply::RemoteHostClosedError, reply.url(), QString());
}

TransportError TransportError::tooSlow(const QNetworkReply &reply)
{
    return TransportError(Kind::timedOut, QNetworkReply::OperationCanceledError, reply.url(), QString());
}

QString TransportError::displayAddress(const QUrl &url)
{
    return url.toDisplayString(privatePartsRemoved);
}

TransportError::TransportError(Kind kind, QNetworkReply::NetworkError code, const QUrl &url, const QString &message)
    : m_kind(kind)
    , m_code(code)
    , m_url(url.adjusted(privatePartsRemoved))
    , m_message(withAddressReduced(message, url))
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
    case Kind::redirectLoop:
        return u"The server at "_s + m_url.host() + u" kept redirecting the request in a loop."_s;
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
