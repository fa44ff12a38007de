// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomyAdapter.h"

#include "BrickEconomyPriceMapping.h"
#include "BrickEconomyResponse.h"
#include "BrickEconomySet.h"
#include "Endpoints.h"
#include "PricingProviderError.h"

#include <QCoreApplication>
#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

const QString tokenKey = u"api_token"_s;

PricingProviderInfo brickEconomyInfo()
{
    PricingProviderInfo info;
    info.id = BrickEconomyPriceMapping::providerId.toString();
    info.displayName = u"BrickEconomy"_s;
    info.capabilities = PricingCapability::newCondition | PricingCapability::usedCondition
        | PricingCapability::soldPrices | PricingCapability::priceRange | PricingCapability::averagePrice;
    info.nativeCurrency = u"USD"_s;
    info.credentialKeys = {{tokenKey, u"API Token"_s, true}};
    return info;
}

} // namespace

BrickEconomyAdapter::BrickEconomyAdapter(CredentialLoader loadCredential)
    : PricingProvider(std::move(loadCredential))
    , m_info(brickEconomyInfo())
    , m_rateLimiter(requestsPerWindow, windowSeconds)
{
}

BrickEconomyAdapter::~BrickEconomyAdapter() = default;

QUrl BrickEconomyAdapter::requestUrl(const QString &setNumber)
{
    // Built from text in strict mode, not with setPath(): setPath() would escape what the
    // set number holds, and a number that forms no URL must be refused, not repaired.
    const QString base = Endpoints::baseUrl(Endpoints::Service::brickeconomy).toString();
    const QUrl url(base + u"/set/"_s + setNumber, QUrl::StrictMode);
    if (!url.isValid() || url.isRelative())
        throw PricingProviderError::invalidURL();
    return url;
}

QNetworkRequest BrickEconomyAdapter::makeRequest(const QUrl &url, const QString &token) const
{
    QNetworkRequest request = m_httpClient.makeRequest(url);
    request.setRawHeader("x-apikey", token.toUtf8());
    request.setRawHeader("User-Agent", "Tessaloom/1.0");
    request.setRawHeader("Accept", "application/json");
    return request;
}

QCoro::Task<QList<PriceResult>> BrickEconomyAdapter::fetchPrices(QString setNumber)
{
    const QString token = co_await requireCredential(tokenKey);
    co_await m_rateLimiter.waitForSlot();
    const QUrl url = requestUrl(setNumber);
    const auto answer = co_await m_httpClient.fetch<BrickEconomyResponse<BrickEconomySet>>(makeRequest(url, token));
    co_return BrickEconomyPriceMapping::results(setNumber, answer.data, QDateTime::currentDateTimeUtc());
}

QCoro::Task<std::optional<QString>> BrickEconomyAdapter::validateCredentials()
{
    //% "BrickEconomy API token not configured."
    return checkCredentials(qtTrId("pricing.brickeconomy.tokenNotConfigured"));
}
