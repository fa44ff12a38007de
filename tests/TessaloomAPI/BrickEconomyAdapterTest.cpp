// SPDX-License-Identifier: GPL-3.0-or-later
// BrickEconomyAdapter over real HTTP against a BrickEconomy stand-in on 127.0.0.1, pointed
// at through TESSALOOM_ENDPOINTS: what it asks, how an answer becomes prices, the 4-per-minute
// window (on a simulated clock, so the minute passes at once) and the credential checks.
#include "BrickEconomyAdapter.h"
#include "BrickEconomyStandIn.h"
#include "EnglishTexts.h"
#include "Endpoints.h"
#include "PricingProviderError.h"
#include "SimulatedClock.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QJsonObject>
#include <QTest>

#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QCoro::Task<std::optional<QString>> storedValue(std::optional<QString> value)
{
    co_return value;
}

QCoro::Task<std::optional<QString>> failingLoad()
{
    throw std::runtime_error("secret store locked");
    co_return std::nullopt;
}

Decimal decimal(QStringView text)
{
    return *Decimal::fromString(text);
}

} // namespace

class BrickEconomyAdapterTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<BrickEconomyStandIn> m_standIn;
    int m_credentialLoads = 0;
    QStringList m_keysAsked;

    std::unique_ptr<BrickEconomyAdapter> adapterWith(std::optional<QString> token)
    {
        return std::make_unique<BrickEconomyAdapter>([this, token](QString key) {
            ++m_credentialLoads;
            m_keysAsked.append(key);
            return storedValue(token);
        });
    }

    QList<PriceResult> fetchOne(const QJsonObject &data)
    {
        m_standIn->serveSet(u"10497-1"_s, data);
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        if (!outcome.value)
            qWarning("fetchPrices failed: %s", qPrintable(outcome.failureText()));
        return outcome.value.value_or(QList<PriceResult>{});
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(EnglishTexts::install());
    }

    void init()
    {
        m_standIn = std::make_unique<BrickEconomyStandIn>();
        QVERIFY(m_standIn->listen());
        m_standIn->pointEndpointsHere();
        m_credentialLoads = 0;
        m_keysAsked.clear();
    }

    void cleanup()
    {
        m_standIn.reset();
        qunsetenv(Endpoints::overrideVariable);
    }

    // --- The cases BrickEconomy's answers are known to produce ---

    void eurCurrencyWithUsRetailPriceKeepsEurForValuesAndUsdForRetail()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 120.5},
                                       {u"currency"_s, u"EUR"_s},
                                       {u"retail_price_us"_s, 99.99}});
        QCOMPARE(results.size(), 1);
        QCOMPARE(results.at(0).condition, PricingCondition::new_);
        QCOMPARE(results.at(0).currency, u"EUR"_s);
        QCOMPARE(results.at(0).retailPrice, decimal(u"99.99"));
        QCOMPARE(results.at(0).retailPriceCurrency, u"USD"_s);
    }

    void usedValueAloneGivesOneUsedResultWithoutForecasts()
    {
        const auto results = fetchOne({{u"current_value_used"_s, 215.4},
                                       {u"forecast_value_new_2_years"_s, 380.12},
                                       {u"forecast_value_new_5_years"_s, 455.0},
                                       {u"rolling_growth_12_months"_s, 9.75}});
        QCOMPARE(results.size(), 1);
        QCOMPARE(results.at(0).condition, PricingCondition::used);
        QCOMPARE(results.at(0).avgPrice, decimal(u"215.4"));
        QVERIFY(results.at(0).forecasts.isEmpty());
        QVERIFY(results.at(0).growthRates.isEmpty());
    }

    void fiveYearForecastAloneGivesOneForecastEntry()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 324.87}, {u"forecast_value_new_5_years"_s, 455.25}});
        QCOMPARE(results.size(), 1);
        const QList<PriceForecast> expected{{u"5 Years"_s, decimal(u"455.25")}};
        QCOMPARE(results.at(0).forecasts, expected);
    }

    void fifthCallWithinSixtySecondsWaitsForTheFirstToAgeOut()
    {
        m_standIn->serveSet(u"10497-1"_s, BrickEconomyStandIn::fullSet(u"10497-1"_s));
        auto adapter = adapterWith(u"key-123"_s);
        QCOMPARE(adapter->rateLimiter().maxRequests(), 4);
        QCOMPARE(adapter->rateLimiter().interval(), 60.0);

        // The limiter's minute passes on a simulated clock; each sleep notes how many
        // requests the server had seen when it began.
        SimulatedClock clock;
        QList<int> requestsSeenAtSleep;
        const RateLimiter::Sleep simulatedSleep = clock.sleepFunction();
        adapter->setRateLimiterForTesting(RateLimiter(
            BrickEconomyAdapter::requestsPerWindow, BrickEconomyAdapter::windowSeconds, clock.nowFunction(),
            [&](std::chrono::milliseconds duration, std::stop_token stopToken) {
                requestsSeenAtSleep.append(m_standIn->server().requestCount());
                return simulatedSleep(duration, stopToken);
            }));

        for (int call = 1; call <= 4; ++call) {
            const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
            QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
            clock.advance(10s);
        }
        QVERIFY(clock.sleeps().isEmpty());

        // Calls at 0, 10, 20 and 30 s; the fifth at 40 s waits until the first is 60 s old.
        const auto fifth = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        QVERIFY2(fifth.value, qPrintable(fifth.failureText()));
        QCOMPARE(clock.sleeps(), QList<std::chrono::milliseconds>{20'000ms});
        QCOMPARE(requestsSeenAtSleep, QList<int>{4});
        QCOMPARE(m_standIn->server().requestCount(), 5);
    }

    void emptyStoredTokenFailsWithMissingCredentialsWithoutARequest()
    {
        auto adapter = adapterWith(u""_s);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        const auto error = outcome.error<PricingProviderError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), PricingProviderError::Kind::missingCredentials);
        QCOMPARE(error->description(),
                 u"Missing credentials for BrickEconomy. Please configure them in Settings."_s);
        QCOMPARE(m_standIn->server().requestCount(), 0);
        QVERIFY(adapter->rateLimiter().timestamps().isEmpty()); // failed before the limiter
    }

    // --- The adapter's description and its request ---

    void infoIsTheBrickEconomyRowOfTheProviderTable()
    {
        auto adapter = adapterWith(u"key-123"_s);
        const PricingProviderInfo &info = adapter->info();
        QCOMPARE(info.id, u"brickeconomy"_s);
        QCOMPARE(info.displayName, u"BrickEconomy"_s);
        QCOMPARE(info.capabilities.rawValue, 55);
        QCOMPARE(info.nativeCurrency, u"USD"_s);
        const QList<PricingProviderInfo::CredentialField> fields{{u"api_token"_s, u"API Token"_s, true}};
        QCOMPARE(info.credentialKeys, fields);
    }

    void requestAsksForTheSetWithTheKeyHeaderAndOurUserAgent()
    {
        const auto results = fetchOne(BrickEconomyStandIn::fullSet(u"10497-1"_s));
        QCOMPARE(results.size(), 2);
        QCOMPARE(m_keysAsked, QStringList{u"api_token"_s});
        const QList<LoopbackHttpServer::Request> requests = m_standIn->server().requests();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.at(0).method, "GET");
        QCOMPARE(requests.at(0).path, "/api/v1/set/10497-1");
        QCOMPARE(requests.at(0).headers.value("x-apikey"), "key-123");
        QCOMPARE(requests.at(0).headers.value("user-agent"), "Tessaloom/1.0");
        QCOMPARE(requests.at(0).headers.value("accept"), "application/json");
    }

    void requestWaitsSixtySecondsForAnAnswer()
    {
        auto adapter = adapterWith(u"key-123"_s);
        const QNetworkRequest request =
            adapter->makeRequest(BrickEconomyAdapter::requestUrl(u"10497-1"_s), u"key-123"_s);
        QCOMPARE(request.transferTimeout(), 60'000);
    }

    void setNumberGoesIntoThePathAsItCame()
    {
        m_standIn->serveSet(u"6000-12"_s, {{u"current_value_new"_s, 10.0}});
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"6000-12"_s));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->at(0).setNumber, u"6000-12"_s);
        QCOMPARE(m_standIn->server().requests().at(0).path, "/api/v1/set/6000-12");
    }

    void setNumberThatFormsNoUrlFailsWithInvalidUrlWithoutARequest()
    {
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497 1"_s));
        const auto error = outcome.error<PricingProviderError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), PricingProviderError::Kind::invalidURL);
        QCOMPARE(error->description(), u"Failed to build API request URL."_s);
        QCOMPARE(m_standIn->server().requestCount(), 0);
    }

    // --- From answer to prices ---

    void fullAnswerGivesTheNewResultThenTheUsedOne()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const auto results = fetchOne(BrickEconomyStandIn::fullSet(u"10497-1"_s));
        QCOMPARE(results.size(), 2);

        const PriceResult &sealed = results.at(0);
        QCOMPARE(sealed.setNumber, u"10497-1"_s);
        QCOMPARE(sealed.condition, PricingCondition::new_);
        QCOMPARE(sealed.guideType, PricingGuideType::sold);
        QCOMPARE(sealed.avgPrice, decimal(u"324.87"));
        QCOMPARE(sealed.minPrice, std::nullopt);
        QCOMPARE(sealed.maxPrice, std::nullopt);
        QCOMPARE(sealed.quantitySold, std::nullopt);
        QCOMPARE(sealed.currency, u"USD"_s);
        QCOMPARE(sealed.providerName, u"brickeconomy"_s);
        QVERIFY(sealed.fetchDate >= before && sealed.fetchDate <= QDateTime::currentDateTimeUtc());
        const QList<PriceForecast> forecasts{{u"2 Years"_s, decimal(u"380.12")}, {u"5 Years"_s, decimal(u"455")}};
        QCOMPARE(sealed.forecasts, forecasts);
        const QList<PriceGrowthRate> growth{{u"12 Months"_s, decimal(u"9.75")}, {u"Last Year"_s, decimal(u"14.2")}};
        QCOMPARE(sealed.growthRates, growth);
        QCOMPARE(sealed.retailPrice, decimal(u"99.99"));
        QCOMPARE(sealed.retailPriceCurrency, u"USD"_s);
        QCOMPARE(sealed.retiredDate, u"2024-12-31"_s);

        const PriceResult &used = results.at(1);
        QCOMPARE(used.condition, PricingCondition::used);
        QCOMPARE(used.guideType, PricingGuideType::sold);
        QCOMPARE(used.avgPrice, decimal(u"215.4"));
        QCOMPARE(used.minPrice, decimal(u"180"));
        QCOMPARE(used.maxPrice, decimal(u"260.55"));
        QCOMPARE(used.quantitySold, std::nullopt);
        QCOMPARE(used.providerName, u"brickeconomy"_s);
        QVERIFY(used.forecasts.isEmpty());
        QVERIFY(used.growthRates.isEmpty());
        QCOMPARE(used.retailPrice, decimal(u"99.99"));
        QCOMPARE(used.retailPriceCurrency, u"USD"_s);
        QCOMPARE(used.retiredDate, u"2024-12-31"_s);
    }

    void answerWithoutCurrentValuesGivesNoResultsEvenWithForecastsAndRetail()
    {
        QJsonObject data = BrickEconomyStandIn::fullSet(u"10497-1"_s);
        data.remove(u"current_value_new"_s);
        data.remove(u"current_value_used"_s);
        m_standIn->serveSet(u"10497-1"_s, data);
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    void answerWithoutCurrencyFallsBackToUsd()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 50.0}, {u"current_value_used"_s, 40.0}});
        QCOMPARE(results.size(), 2);
        QCOMPARE(results.at(0).currency, u"USD"_s);
        QCOMPARE(results.at(1).currency, u"USD"_s);
    }

    void usedResultWithoutLowAndHighHasNoRange()
    {
        const auto results = fetchOne({{u"current_value_used"_s, 40.0}});
        QCOMPARE(results.size(), 1);
        QCOMPARE(results.at(0).minPrice, std::nullopt);
        QCOMPARE(results.at(0).maxPrice, std::nullopt);
    }

    void otherRegionsRetailPriceAloneLeavesRetailAbsent()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 50.0}, {u"retail_price_uk"_s, 44.99},
                                       {u"retail_price_eu"_s, 49.99}});
        QCOMPARE(results.size(), 1);
        QCOMPARE(results.at(0).retailPrice, std::nullopt);
        QCOMPARE(results.at(0).retailPriceCurrency, std::nullopt);
    }

    void nullFieldsCountAsAbsent()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 50.0}, {u"current_value_used"_s, QJsonValue()},
                                       {u"retired_date"_s, QJsonValue()}, {u"currency"_s, QJsonValue()}});
        QCOMPARE(results.size(), 1);
        QCOMPARE(results.at(0).currency, u"USD"_s);
        QCOMPARE(results.at(0).retiredDate, std::nullopt);
    }

    void pricesKeepTheirDecimalDigitsExactly()
    {
        const auto results = fetchOne({{u"current_value_new"_s, 0.1}, {u"current_value_used"_s, 1234567.89}});
        QCOMPARE(results.at(0).avgPrice->toString(), u"0.1"_s);
        QCOMPARE(results.at(1).avgPrice->toString(), u"1234567.89"_s);
    }

    // --- Credentials ---

    void absentTokenFailsWithMissingCredentialsWithoutARequest()
    {
        auto adapter = adapterWith(std::nullopt);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        const auto error = outcome.error<PricingProviderError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->providerName(), u"BrickEconomy"_s);
        QCOMPARE(m_standIn->server().requestCount(), 0);
    }

    void failureOfTheCredentialFunctionPassesThroughUnchanged()
    {
        BrickEconomyAdapter adapter([](QString) { return failingLoad(); });
        const auto outcome = waitForOutcome(adapter.fetchPrices(u"10497-1"_s));
        QVERIFY(outcome.failure);
        QVERIFY(!outcome.error<PricingProviderError>());
        QCOMPARE(outcome.failureText(), u"secret store locked"_s);
        QCOMPARE(m_standIn->server().requestCount(), 0);
    }

    void validateCredentialsIsSilentWhenTheTokenIsStored()
    {
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome = waitForOutcome(adapter->validateCredentials());
        QVERIFY(outcome.value);
        QCOMPARE(*outcome.value, std::nullopt);
        QCOMPARE(m_standIn->server().requestCount(), 0);
    }

    void validateCredentialsNamesTheMissingToken_data()
    {
        QTest::addColumn<bool>("loaderFails");
        QTest::addColumn<std::optional<QString>>("stored");
        QTest::newRow("absent") << false << std::optional<QString>();
        QTest::newRow("empty") << false << std::optional<QString>(u""_s);
        QTest::newRow("secret store fails") << true << std::optional<QString>();
    }

    void validateCredentialsNamesTheMissingToken()
    {
        QFETCH(bool, loaderFails);
        QFETCH(std::optional<QString>, stored);
        std::unique_ptr<BrickEconomyAdapter> adapter =
            loaderFails ? std::make_unique<BrickEconomyAdapter>([](QString) { return failingLoad(); })
                        : adapterWith(stored);
        const auto outcome = waitForOutcome(adapter->validateCredentials());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(*outcome.value, u"BrickEconomy API token not configured."_s);
        QCOMPARE(m_standIn->server().requestCount(), 0);
    }

    void bulkFetchPassesOverAnUnknownSet()
    {
        m_standIn->serveSet(u"10497-1"_s, {{u"current_value_new"_s, 50.0}});
        m_standIn->serveSet(u"21318-1"_s, {{u"current_value_used"_s, 40.0}});
        auto adapter = adapterWith(u"key-123"_s);
        const auto outcome =
            waitForOutcome(adapter->fetchBulkPrices({u"10497-1"_s, u"99999-1"_s, u"21318-1"_s}));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->size(), 2);
        QCOMPARE(outcome.value->at(0).setNumber, u"10497-1"_s);
        QCOMPARE(outcome.value->at(1).setNumber, u"21318-1"_s);
        QCOMPARE(m_standIn->server().requestCount(), 3);
    }
};

QTEST_GUILESS_MAIN(BrickEconomyAdapterTest)
#include "BrickEconomyAdapterTest.moc"
