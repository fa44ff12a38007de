// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PriceResult.h"
#include "PricingProviderInfo.h"

#include <QCoroTask>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// The one interface of a price source. Each adapter implements it over its own HTTPClient
// and RateLimiter; PricingProviderRegistry owns the instances. Operations run on the main
// thread's event loop: at most one runs between suspension points, but while one waits (for
// the limiter, the network or the credential function) another may enter.
//
// The adapter knows nothing about where credentials live: it is given a function from a
// credential's key to its stored value.
//
// fetchPrices of an adapter follows one pattern: requireCredential() for each key, before
// any network use; then for each request the limiter's waitForSlot(), build the request,
// HTTPClient::fetch(); then map the answer with makeResult().
class PricingProvider
{
public:
    // The stored value of a credential, or nothing when none is stored. May fail; its
    // failures pass through the adapters unchanged.
    using CredentialLoader = std::function<QCoro::Task<std::optional<QString>>(QString key)>;

    explicit PricingProvider(CredentialLoader loadCredential);
    virtual ~PricingProvider();
    PricingProvider(const PricingProvider &) = delete;
    PricingProvider &operator=(const PricingProvider &) = delete;

    virtual const PricingProviderInfo &info() const = 0;

    // Every figure the source has for one set. Fails with PricingProviderError, HTTPError,
    // NetworkTransportError or whatever the credential function raised.
    virtual QCoro::Task<QList<PriceResult>> fetchPrices(QString setNumber) = 0;

    // Figures for many sets. The default asks fetchPrices for each number in turn, strictly
    // one after the other (the source's rate limiter sets the pace), and passes over a set
    // whose fetch fails: one unknown set must not cost the others their prices. So it never
    // fails, and an empty list asks nothing. Sources with a real bulk call override it.
    virtual QCoro::Task<QList<PriceResult>> fetchBulkPrices(QStringList setNumbers);

    // Nothing when every credential is stored; otherwise the adapter's sentence for the
    // user. Never fails and, but for sources that fetch a token here, never goes to the network.
    virtual QCoro::Task<std::optional<QString>> validateCredentials() = 0;

protected:
    // The stored value of `key`. Absent and empty alike fail with missingCredentials naming
    // the source's displayName; failures of the credential function pass through.
    QCoro::Task<QString> requireCredential(QString key);

    // The common body of validateCredentials(): nothing when every key of
    // info().credentialKeys yields a value, `sentence` when any does not or the credential
    // function fails.
    QCoro::Task<std::optional<QString>> checkCredentials(QString sentence);

    // A result for `setNumber` as the caller gave it, attributed to this source (providerName
    // is info().id, as stored guides are matched by it), in the source's native currency,
    // fetched now. The adapter fills in the figures.
    PriceResult makeResult(const QString &setNumber, PricingCondition condition, PricingGuideType guideType) const;

private:
    CredentialLoader m_loadCredential;
};
