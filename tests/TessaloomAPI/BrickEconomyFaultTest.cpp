// SPDX-License-Identifier: GPL-3.0-or-later
// BrickEconomyAdapter against a BrickEconomy stand-in on 127.0.0.1 that misbehaves: refused
// statuses, pages that are not JSON, cut-off and mistyped answers, a 5 MB body and a server
// that never answers. The adapter catches nothing: each fault reaches the caller as its own
// typed error, after exactly one request and with no prices.
#include "BrickEconomyAdapter.h"
#include "BrickEconomyStandIn.h"
#include "EnglishTexts.h"
#include "Endpoints.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QCoro::Task<std::optional<QString>> storedToken(QString)
{
    co_return u"key-123"_s;
}

const QList<QPair<QByteArray, QByteArray>> jsonHeaders{{"Content-Type", "application/json"}};

} // namespace

class BrickEconomyFaultTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<BrickEconomyStandIn> m_standIn;
    std::unique_ptr<BrickEconomyAdapter> m_adapter;

    TaskOutcome<QList<PriceResult>> fetch()
    {
        return waitForOutcome(m_adapter->fetchPrices(u"10497-1"_s));
    }

    // The outcome is a decoding failure of `kind` and nothing else, after one request.
    void verifyDecodingFailure(const TaskOutcome<QList<PriceResult>> &outcome, JSONDecodingError::Kind kind)
    {
        QVERIFY(!outcome.value);
        const auto error = outcome.error<HTTPError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::decodingError);
        QVERIFY(error->underlyingError());
        QCOMPARE(error->underlyingError()->kind(), kind);
        QVERIFY(error->description().startsWith(u"Failed to decode response: "_s));
        QCOMPARE(m_standIn->server().requestCount(), 1);
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
        m_adapter = std::make_unique<BrickEconomyAdapter>(&storedToken);
    }

    void cleanup()
    {
        m_adapter.reset();
        m_standIn.reset();
        qunsetenv(Endpoints::overrideVariable);
    }

    void refusedStatusReachesTheCallerAsAnHttpErrorWithItsBody_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("401 bad key") << 401 << QByteArray(R"({"error": "Invalid API key"})");
        QTest::newRow("403 no subscription") << 403 << QByteArray(R"({"error": "Forbidden"})");
        QTest::newRow("404 unknown set") << 404 << QByteArray(R"({"error": "Set not found"})");
        QTest::newRow("429 service limit") << 429 << QByteArray(R"({"error": "Too many requests"})");
        QTest::newRow("500 server failure") << 500 << QByteArray("Internal Server Error");
    }

    void refusedStatusReachesTheCallerAsAnHttpErrorWithItsBody()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        m_standIn->serveRaw(u"10497-1"_s, body, status, jsonHeaders);
        const auto outcome = fetch();
        QVERIFY(!outcome.value);
        const auto error = outcome.error<HTTPError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::httpError);
        QCOMPARE(error->statusCode(), status);
        QCOMPARE(error->data(), body);
        QCOMPARE(error->description(), u"HTTP error "_s + QString::number(status));
        QCOMPARE(m_standIn->server().requestCount(), 1); // no retry, not even on 429 or 500
    }

    void htmlErrorPageWithStatus200FailsToDecode()
    {
        m_standIn->serveRaw(u"10497-1"_s,
                            "<!DOCTYPE html>\n<html><head><title>Service unavailable</title></head>"
                            "<body><h1>We'll be back shortly</h1></body></html>",
                            200, {{"Content-Type", "text/html; charset=utf-8"}});
        verifyDecodingFailure(fetch(), JSONDecodingError::Kind::dataCorrupted);
    }

    void truncatedAnswerFailsToDecode()
    {
        const QByteArray whole = BrickEconomyStandIn::answer(BrickEconomyStandIn::fullSet(u"10497-1"_s));
        m_standIn->serveRaw(u"10497-1"_s, whole.left(whole.size() / 2), 200, jsonHeaders);
        verifyDecodingFailure(fetch(), JSONDecodingError::Kind::dataCorrupted);
    }

    void priceSentAsTextFailsToDecodeNamingTheField()
    {
        QJsonObject data = BrickEconomyStandIn::fullSet(u"10497-1"_s);
        data.insert(u"current_value_new"_s, u"324.87"_s);
        m_standIn->serveRaw(u"10497-1"_s, BrickEconomyStandIn::answer(data), 200, jsonHeaders);
        const auto outcome = fetch();
        verifyDecodingFailure(outcome, JSONDecodingError::Kind::typeMismatch);
        QVERIFY2(outcome.error<HTTPError>()->underlyingError()->detail().startsWith(u"data.currentValueNew"_s),
                 qPrintable(outcome.error<HTTPError>()->underlyingError()->detail()));
    }

    void priceEventWithoutItsValueFailsToDecode()
    {
        QJsonObject data = BrickEconomyStandIn::fullSet(u"10497-1"_s);
        data.insert(u"price_events_used"_s, QJsonArray{QJsonObject{{u"date"_s, u"2024-03-01"_s}}});
        m_standIn->serveRaw(u"10497-1"_s, BrickEconomyStandIn::answer(data), 200, jsonHeaders);
        verifyDecodingFailure(fetch(), JSONDecodingError::Kind::keyNotFound);
    }

    void answerWithoutDataFailsToDecode()
    {
        m_standIn->serveRaw(u"10497-1"_s, R"({"error": null, "result": {}})", 200, jsonHeaders);
        verifyDecodingFailure(fetch(), JSONDecodingError::Kind::keyNotFound);
    }

    void fiveMegabyteBodyThatIsNoJsonFailsToDecode()
    {
        QByteArray body = "{\"data\": {\"name\": \"";
        body.append(QByteArray(5 * 1024 * 1024, 'x'));
        QVERIFY(body.size() > 5 * 1024 * 1024);
        m_standIn->serveRaw(u"10497-1"_s, body, 200, jsonHeaders); // the string never closes
        verifyDecodingFailure(fetch(), JSONDecodingError::Kind::dataCorrupted);
    }

    void fiveMegabyteAnswerIsReadWhole()
    {
        QJsonObject data = BrickEconomyStandIn::fullSet(u"10497-1"_s);
        QJsonArray events;
        for (int day = 0; day < 160'000; ++day)
            events.append(QJsonObject{{u"date"_s, u"2024-01-01"_s}, {u"value"_s, 300.0 + day % 100}});
        data.insert(u"price_events_new"_s, events);
        const QByteArray body = BrickEconomyStandIn::answer(data);
        QVERIFY(body.size() > 5 * 1024 * 1024);
        m_standIn->serveRaw(u"10497-1"_s, body, 200, jsonHeaders);
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->size(), 2);
        QCOMPARE(outcome.value->at(0).avgPrice, Decimal::fromString(u"324.87"));
    }

    void serverThatNeverAnswersEndsAtTheRequestTimeOut()
    {
        LoopbackHttpServer::Response silent;
        silent.delayMilliseconds = 120'000;
        m_standIn->server().setResponse(BrickEconomyStandIn::setPath(u"10497-1"_s), silent);
        m_adapter->httpClient().setRequestTimeoutForTesting(300ms);

        QElapsedTimer elapsed;
        elapsed.start();
        const auto outcome = fetch();
        QVERIFY(!outcome.value);
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::timedOut);
        QCOMPARE(error->description(), u"The request timed out."_s);
        QVERIFY2(elapsed.elapsed() >= 250 && elapsed.elapsed() < 20'000, qPrintable(QString::number(elapsed.elapsed())));
        QCOMPARE(m_standIn->server().requestCount(), 1);
    }

    void refusedConnectionReachesTheCallerAsATransportFailure()
    {
        m_standIn->server().close();
        const auto outcome = fetch();
        QVERIFY(!outcome.value);
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::failed);
    }
};

QTEST_GUILESS_MAIN(BrickEconomyFaultTest)
#include "BrickEconomyFaultTest.moc"
