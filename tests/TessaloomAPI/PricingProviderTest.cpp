// SPDX-License-Identifier: GPL-3.0-or-later
// What every price source inherits from PricingProvider: the bulk fetch that asks set by
// set and passes over failures, the credential checks made before any network use, and
// results attributed to the source. The source here is a small adapter of the test's own
// over a real HTTP server on 127.0.0.1, with HTTPClient and RateLimiter as adapters use them.
#include "EnglishTexts.h"
#include "HTTPClient.h"
#include "LoopbackHttpServer.h"
#include "PricingProvider.h"
#include "PricingProviderError.h"
#include "RateLimiter.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QHash>
#include <QTest>
#include <QUrlQuery>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

struct LoopbackAnswer
{
    Decimal averagePrice;
    qint64 soldCount = 0;

    static LoopbackAnswer decode(const JSONValue &value)
    {
        return {value.decode<Decimal>(u"averagePrice"_s), value.decode<qint64>(u"soldCount"_s)};
    }
};

// Reads "/sets/<number>" with the API token in the query, one result per answer.
class LoopbackPriceAdapter : public PricingProvider
{
public:
    LoopbackPriceAdapter(const QUrl &baseUrl, CredentialLoader loadCredential)
        : PricingProvider(std::move(loadCredential))
        , m_baseUrl(baseUrl)
        , m_limiter(5, 1.0)
    {
        m_info.id = u"loopback"_s;
        m_info.displayName = u"Loopback Prices"_s;
        m_info.capabilities = PricingCapability::usedCondition | PricingCapability::soldPrices
            | PricingCapability::averagePrice | PricingCapability::salesQuantity;
        m_info.nativeCurrency = u"USD"_s;
        m_info.credentialKeys = {{u"api_token"_s, u"API Token"_s, true}};
    }

    const PricingProviderInfo &info() const override { return m_info; }

    QCoro::Task<QList<PriceResult>> fetchPrices(QString setNumber) override
    {
        const QString token = co_await requireCredential(u"api_token"_s);
        co_await m_limiter.waitForSlot();
        QUrl url = m_baseUrl;
        url.setPath(u"/sets/"_s + setNumber);
        url.setQuery(QUrlQuery{{u"token"_s, token}});
        const LoopbackAnswer answer = co_await m_client.fetch<LoopbackAnswer>(m_client.makeRequest(url));
        PriceResult result = makeResult(setNumber, PricingCondition::used, PricingGuideType::sold);
        result.avgPrice = answer.averagePrice;
        result.quantitySold = answer.soldCount;
        co_return QList<PriceResult>{result};
    }

    QCoro::Task<std::optional<QString>> validateCredentials() override
    {
        return checkCredentials(u"Enter your Loopback API token in Settings."_s);
    }

private:
    PricingProviderInfo m_info;
    QUrl m_baseUrl;
    HTTPClient m_client;
    RateLimiter m_limiter;
};

QCoro::Task<std::optional<QString>> storedValue(std::optional<QString> value)
{
    co_return value;
}

QCoro::Task<std::optional<QString>> failingLoad()
{
    throw std::runtime_error("secret store locked");
    co_return std::nullopt;
}

QByteArray answerFor(int cents)
{
    return R"({"average_price": )" + QByteArray::number(cents / 100) + '.'
        + QByteArray::number(cents % 100).rightJustified(2, '0') + R"(, "sold_count": 4})";
}

} // namespace

class PricingProviderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LoopbackHttpServer> m_server;
    int m_credentialLoads = 0;

    std::unique_ptr<LoopbackPriceAdapter> adapterWith(std::optional<QString> token)
    {
        return std::make_unique<LoopbackPriceAdapter>(m_server->baseUrl(), [this, token](QString key) {
            ++m_credentialLoads;
            return storedValue(key == u"api_token"_s ? token : std::nullopt);
        });
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(EnglishTexts::install());
    }

    void init()
    {
        m_server = std::make_unique<LoopbackHttpServer>();
        QVERIFY(m_server->listen());
        m_credentialLoads = 0;
        m_server->serveBytes(u"/sets/10497-1"_s, answerFor(29999));
        m_server->serveBytes(u"/sets/75192-1"_s, answerFor(84950));
        m_server->serveBytes(u"/sets/21318-1"_s, answerFor(19999));
    }

    void cleanup() { m_server.reset(); }

    void bulkFetchOfNoSetsReturnsNothingAndMakesNoRequest()
    {
        auto adapter = adapterWith(u"token"_s);
        const auto outcome = waitForOutcome(adapter->fetchBulkPrices({}));
        QVERIFY(outcome.value);
        QVERIFY(outcome.value->isEmpty());
        QCOMPARE(m_server->requestCount(), 0);
        QCOMPARE(m_credentialLoads, 0);
    }

    void bulkFetchWhereTheSecondOfThreeFailsReturnsTheFirstAndThird()
    {
        m_server->serveBytes(u"/sets/75192-1"_s, R"({"error": "unknown set"})", 404);
        auto adapter = adapterWith(u"token"_s);
        const auto outcome =
            waitForOutcome(adapter->fetchBulkPrices({u"10497-1"_s, u"75192-1"_s, u"21318-1"_s}));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->size(), 2);
        QCOMPARE(outcome.value->at(0).setNumber, u"10497-1"_s);
        QCOMPARE(outcome.value->at(0).avgPrice, Decimal::fromString(u"299.99"));
        QCOMPARE(outcome.value->at(1).setNumber, u"21318-1"_s);
        QCOMPARE(outcome.value->at(1).avgPrice, Decimal::fromString(u"199.99"));
        // One after the other, each once: nothing retried.
        const QList<LoopbackHttpServer::Request> requests = m_server->requests();
        QCOMPARE(requests.size(), 3);
        QVERIFY(requests.at(0).path.startsWith("/sets/10497-1"));
        QVERIFY(requests.at(1).path.startsWith("/sets/75192-1"));
        QVERIFY(requests.at(2).path.startsWith("/sets/21318-1"));
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
    }

    void bulkFetchWhereEverySetFailsReturnsAnEmptyListWithoutFailing()
    {
        auto adapter = adapterWith(std::nullopt);
        const auto outcome = waitForOutcome(adapter->fetchBulkPrices({u"10497-1"_s, u"75192-1"_s}));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    void emptyStoredCredentialGivesMissingCredentialsLikeAnAbsentOne_data()
    {
        QTest::addColumn<std::optional<QString>>("stored");
        QTest::newRow("absent") << std::optional<QString>();
        QTest::newRow("empty text") << std::optional<QString>(u""_s);
    }

    void emptyStoredCredentialGivesMissingCredentialsLikeAnAbsentOne()
    {
        QFETCH(std::optional<QString>, stored);
        auto adapter = adapterWith(stored);
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        const auto error = outcome.error<PricingProviderError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), PricingProviderError::Kind::missingCredentials);
        QCOMPARE(error->description(),
                 u"Missing credentials for Loopback Prices. Please configure them in Settings."_s);
        QCOMPARE(m_server->requestCount(), 0); // before any network use
    }

    void failureOfTheCredentialFunctionPassesThroughUnchanged()
    {
        LoopbackPriceAdapter adapter(m_server->baseUrl(), [](QString) { return failingLoad(); });
        const auto outcome = waitForOutcome(adapter.fetchPrices(u"10497-1"_s));
        QVERIFY(!outcome.error<PricingProviderError>());
        QCOMPARE(outcome.failureText(), u"secret store locked"_s);
        QCOMPARE(m_server->requestCount(), 0);
    }

    void providerNameOfEveryResultIsTheLowerCaseInfoId()
    {
        auto adapter = adapterWith(u"token"_s);
        const auto outcome = waitForOutcome(adapter->fetchBulkPrices({u"10497-1"_s, u"21318-1"_s}));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->size(), 2);
        for (const PriceResult &result : *outcome.value) {
            QCOMPARE(result.providerName, adapter->info().id);
            QCOMPARE(result.providerName, result.providerName.toLower());
            QVERIFY(result.providerName != adapter->info().displayName);
        }
    }

    void resultKeepsTheSetNumberAsGivenAndTheSourcesCurrency()
    {
        auto adapter = adapterWith(u"token"_s);
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const auto outcome = waitForOutcome(adapter->fetchPrices(u"10497-1"_s));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        const PriceResult &result = outcome.value->first();
        QCOMPARE(result.setNumber, u"10497-1"_s);
        QCOMPARE(result.currency, u"USD"_s);
        QCOMPARE(result.quantitySold, std::optional<qint64>(4));
        QVERIFY(result.fetchDate >= before.addSecs(-1) && result.fetchDate <= QDateTime::currentDateTimeUtc());
        QVERIFY(result.forecasts.isEmpty());
        QVERIFY(result.growthRates.isEmpty());
        QVERIFY(m_server->requests().first().path.contains("token=token"));
    }

    void validateCredentialsIsSilentWhenEveryCredentialIsStored()
    {
        auto adapter = adapterWith(u"token"_s);
        const auto outcome = waitForOutcome(adapter->validateCredentials());
        QVERIFY(outcome.value);
        QVERIFY(!outcome.value->has_value());
        QCOMPARE(m_server->requestCount(), 0);
    }

    void validateCredentialsGivesTheSourcesSentenceWhenOneIsMissingOrUnreadable()
    {
        auto missing = adapterWith(u""_s);
        const auto missingOutcome = waitForOutcome(missing->validateCredentials());
        QVERIFY(missingOutcome.value);
        QCOMPARE(*missingOutcome.value, std::optional<QString>(u"Enter your Loopback API token in Settings."_s));

        LoopbackPriceAdapter locked(m_server->baseUrl(), [](QString) { return failingLoad(); });
        const auto lockedOutcome = waitForOutcome(locked.validateCredentials());
        QVERIFY2(lockedOutcome.value, qPrintable(lockedOutcome.failureText()));
        QCOMPARE(*lockedOutcome.value, std::optional<QString>(u"Enter your Loopback API token in Settings."_s));
        QCOMPARE(m_server->requestCount(), 0);
    }
};

QTEST_GUILESS_MAIN(PricingProviderTest)
#include "PricingProviderTest.moc"
