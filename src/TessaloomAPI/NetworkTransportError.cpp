// SPDX-License-Identifier: GPL-3.0-or-later
#include "NetworkTransportError.h"

#include "AddressRedaction.h"

#include <QCoreApplication>

NetworkTransportError::NetworkTransportError(Kind kind, QNetworkReply::NetworkError code, QString networkMessage)
    : m_kind(kind)
    , m_code(code)
    , m_networkMessage(AddressRedaction::redactAddressesIn(networkMessage))
    , m_what(description().toUtf8())
{
}

QString NetworkTransportError::description() const
{
    switch (m_kind) {
    case Kind::timedOut:
        //% "The request timed out."
        return qtTrId("api.transport.timedOut");
    case Kind::cancelled:
        //% "The request was cancelled."
        return qtTrId("api.transport.cancelled");
    case Kind::failed:
        return m_networkMessage;
    }
    Q_UNREACHABLE();
    return {};
}
