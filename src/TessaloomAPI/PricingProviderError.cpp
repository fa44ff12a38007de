// SPDX-License-Identifier: GPL-3.0-or-later
#include "PricingProviderError.h"

#include <QCoreApplication>

PricingProviderError::PricingProviderError(Kind kind, QString providerName)
    : m_kind(kind)
    , m_providerName(std::move(providerName))
    , m_what(description().toUtf8())
{
}

PricingProviderError PricingProviderError::missingCredentials(QString providerName)
{
    return PricingProviderError(Kind::missingCredentials, std::move(providerName));
}

PricingProviderError PricingProviderError::invalidURL()
{
    return PricingProviderError(Kind::invalidURL, {});
}

QString PricingProviderError::description() const
{
    switch (m_kind) {
    case Kind::missingCredentials:
        //% "Missing credentials for %1. Please configure them in Settings."
        return qtTrId("pricing.error.missingCredentials.").arg(m_providerName);
    case Kind::invalidURL:
        //% "Failed to build API request URL."
        return qtTrId("pricing.error.invalidURL");
    }
    Q_UNREACHABLE();
    return {};
}
