// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HTTPClient.h"
#include "PricingProvider.h"
#include "RateLimiter.h"

#include <QUrl>

// Prices from BrickEconomy's set endpoint: one request per set gives the current value new
// and used, forecasts, growth, the US retail price and the retirement date
// (BrickEconomyPriceMapping turns the answer into results).
//
// BrickEconomy allows 4 requests per 60 seconds per key; the limiter holds calls back to
// that. Nothing is caught here: a missing token, a bad address, a refused status (404 for an
// unknown set, 429 when BrickEconomy's own limit is hit), a transport failure and an answer
// that does not decode all reach the caller of fetchPrices. The inherited bulk fetch passes
// over them set by set.
class BrickEconomyAdapter : public PricingProvider
{
public:
    static constexpr int requestsPerWindow = 4;
    static constexpr double windowSeconds = 60.0;

    explicit BrickEconomyAdapter(CredentialLoader loadCredential);
    ~BrickEconomyAdapter() override;

    const PricingProviderInfo &info() const override { return m_info; }
    QCoro::Task<QList<PriceResult>> fetchPrices(QString setNumber) override;
    QCoro::Task<std::optional<QString>> validateCredentials() override;

    // The address asked for `setNumber`: the set number goes in as it came, suffix and all,
    // neither rewritten nor escaped. Fails with invalidURL when the text forms no URL.
    static QUrl requestUrl(const QString &setNumber);

    // The request sent for `setNumber` with `token`: GET, BrickEconomy's key header, our
    // user agent, JSON accepted, 60 seconds of time-out.
    QNetworkRequest makeRequest(const QUrl &url, const QString &token) const;

    HTTPClient &httpClient() { return m_httpClient; }
    RateLimiter &rateLimiter() { return m_rateLimiter; }
    // Test and benchmark seam: a limiter on a simulated clock, or one with its window opened up.
    void setRateLimiterForTesting(RateLimiter limiter) { m_rateLimiter = std::move(limiter); }

private:
    PricingProviderInfo m_info;
    HTTPClient m_httpClient;
    RateLimiter m_rateLimiter;
};
