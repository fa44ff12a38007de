// SPDX-License-Identifier: GPL-3.0-or-later
// HTTPClient against a real HTTP server on 127.0.0.1: answers it decodes, statuses it
// refuses with their body, bodies that are no JSON of the expected shape, and servers that
// never answer or go away. Nothing is retried, so every refusal costs one request.
#include "EnglishTexts.h"
#include "HTTPClient.h"
#include "LoopbackHttpServer.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// A response type as an adapter declares one: camel-case field keys, one optional field.
struct SetPrice
{
    QString setNumber;
    Decimal minPrice;
    std::optional<qint64> quantitySold;

    static SetPrice decode(const JSONValue &value)
    {
        return {value.decode<QString>(u"setNumber"_s), value.decode<Decimal>(u"minPrice"_s),
                value.decodeIfPresent<qint64>(u"quantitySold"_s)};
    }
};

struct MinimumPriceOnly
{
    Decimal minPrice;
    static MinimumPriceOnly decode(const JSONValue &value) { return {value.decode<Decimal>(u"minPrice"_s)}; }
};

// A field keyed as the answer spells it; the conversion leaves nothing to find under it.
struct SnakeKeyedPrice
{
    Decimal minPrice;
    static SnakeKeyedPrice decode(const JSONValue &value) { return {value.decode<Decimal>(u"min_price"_s)}; }
};

struct PriceList
{
    QList<SetPrice> items;
    static PriceList decode(const JSONValue &value) { return {value.decode<QList<SetPrice>>(u"items"_s)}; }
};

const QByteArray goodAnswer = R"({"set_number": "10497-1", "min_price": 99.99, "quantity_sold": 12})";
const QByteArray jsonType = "application/json";
const QList<QPair<QByteArray, QByteArray>> jsonHeaders{{"Content-Type", jsonType}};

QByteArray largeAnswer(int items)
{
    QByteArray body = R"({"items": [)";
    for (int index = 0; index < items; ++index) {
        if (index > 0)
            body += ',';
        body += R"({"set_number": ")" + QByteArray::number(10000 + index) + R"(-1", "min_price": )"
            + QByteArray::number(index) + R"(.25, "quantity_sold": )" + QByteArray::number(index) + '}';
    }
    return body + "]}";
}

template<typename T>
std::optional<HTTPError> httpErrorOf(const TaskOutcome<T> &outcome)
{
    return outcome.template error<HTTPError>();
}

} // namespace

class HTTPClientTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<HTTPClient> m_client;

    template<typename T>
    TaskOutcome<T> fetch(const QString &path)
    {
        return waitForOutcome(m_client->fetch<T>(m_client->makeRequest(m_server->url(path))));
    }

    void verifyDecodingError(const TaskOutcome<SetPrice> &outcome, JSONDecodingError::Kind kind)
    {
        const auto error = httpErrorOf(outcome);
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::decodingError);
        QVERIFY(error->underlyingError());
        QCOMPARE(error->underlyingError()->kind(), kind);
        QVERIFY(error->description().startsWith(u"Failed to decode response: "_s));
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
        m_client = std::make_unique<HTTPClient>();
    }

    void cleanup()
    {
        m_client.reset();
        m_server.reset();
    }

    void answerIsDecodedAsTheResponseType()
    {
        m_server->serveBytes(u"/price"_s, goodAnswer, 200, jsonHeaders);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->setNumber, u"10497-1"_s);
        QCOMPARE(outcome.value->minPrice.toString(), u"99.99"_s);
        QCOMPARE(outcome.value->quantitySold, std::optional<qint64>(12));
    }

    void everyRequestAsksForJson()
    {
        m_server->serveBytes(u"/price"_s, goodAnswer, 200, jsonHeaders);
        QVERIFY(fetch<SetPrice>(u"/price"_s).value);
        QCOMPARE(m_server->requests().last().headers.value("accept"), jsonType);
    }

    void requestThatNamesItsOwnAcceptKeepsIt()
    {
        m_server->serveBytes(u"/price"_s, goodAnswer, 200, jsonHeaders);
        QNetworkRequest request = m_client->makeRequest(m_server->url(u"/price"_s));
        request.setRawHeader("Accept", "application/vnd.service+json");
        QVERIFY(waitForOutcome(m_client->fetch<SetPrice>(request)).value);
        QCOMPARE(m_server->requests().last().headers.value("accept"), QByteArray("application/vnd.service+json"));
    }

    void sessionWaitsThirtySecondsAndAdaptersRequestsSixty()
    {
        QCOMPARE(m_client->session().transferTimeout(), 30'000);
        QCOMPARE(m_client->makeRequest(m_server->url(u"/price"_s)).transferTimeout(), 60'000);
        QCOMPARE(m_client->makeRequest(m_server->url(u"/price"_s)).attribute(QNetworkRequest::CacheLoadControlAttribute,
                                                                             QNetworkRequest::PreferNetwork),
                 QVariant(QNetworkRequest::PreferNetwork));
    }

    void status204WithAnEmptyBodyFailsToDecode()
    {
        m_server->serveBytes(u"/price"_s, {}, 204);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        verifyDecodingError(outcome, JSONDecodingError::Kind::dataCorrupted);
    }

    void status404IsAnHttpErrorWithItsBodyKept()
    {
        const QByteArray body = R"({"error": "set not found"})";
        m_server->serveBytes(u"/price"_s, body, 404, jsonHeaders);
        const auto error = httpErrorOf(fetch<SetPrice>(u"/price"_s));
        QVERIFY(error);
        QCOMPARE(error->kind(), HTTPError::Kind::httpError);
        QCOMPARE(error->statusCode(), 404);
        QCOMPARE(error->data(), body);
        QCOMPARE(error->description(), u"HTTP error 404"_s);
    }

    void statusOutsideTwoHundredsIsAnHttpErrorWithItsBodyAndNoRetry_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("400") << 400 << QByteArray(R"({"message": "bad request"})");
        QTest::newRow("401") << 401 << QByteArray(R"({"message": "invalid token"})");
        QTest::newRow("422") << 422 << QByteArray(R"({"message": "unprocessable"})");
        QTest::newRow("429") << 429 << QByteArray(R"({"message": "rate limit exceeded"})");
        QTest::newRow("500") << 500 << QByteArray("<html><body>Internal Server Error</body></html>");
        QTest::newRow("503") << 503 << QByteArray("try later");
        QTest::newRow("300") << 300 << QByteArray("choose one");
    }

    void statusOutsideTwoHundredsIsAnHttpErrorWithItsBodyAndNoRetry()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        m_server->serveBytes(u"/price"_s, body, status);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        const auto error = httpErrorOf(outcome);
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::httpError);
        QCOMPARE(error->statusCode(), status);
        QCOMPARE(error->data(), body);
        QCOMPARE(m_server->requestCount(u"/price"_s), 1);
    }

    void bothEndsOfTheSuccessRangeAreDecoded_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("200") << 200;
        QTest::newRow("299") << 299;
    }

    void bothEndsOfTheSuccessRangeAreDecoded()
    {
        QFETCH(int, status);
        m_server->serveBytes(u"/price"_s, goodAnswer, status, jsonHeaders);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->setNumber, u"10497-1"_s);
    }

    void htmlPageWithStatus200FailsToDecode()
    {
        m_server->serveBytes(u"/price"_s,
                             "<!DOCTYPE html>\n<html><head><title>Maintenance</title></head><body>Back soon</body></html>",
                             200, {{"Content-Type", "text/html"}});
        verifyDecodingError(fetch<SetPrice>(u"/price"_s), JSONDecodingError::Kind::dataCorrupted);
    }

    void truncatedJsonFailsToDecode()
    {
        m_server->serveBytes(u"/price"_s, goodAnswer.left(goodAnswer.size() / 2), 200, jsonHeaders);
        verifyDecodingError(fetch<SetPrice>(u"/price"_s), JSONDecodingError::Kind::dataCorrupted);
    }

    void fieldOfTheWrongTypeFailsToDecodeNamingTheField()
    {
        m_server->serveBytes(u"/price"_s, R"({"set_number": 10497, "min_price": 99.99})", 200, jsonHeaders);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        verifyDecodingError(outcome, JSONDecodingError::Kind::typeMismatch);
        QCOMPARE(httpErrorOf(outcome)->underlyingError()->detail(), u"setNumber: expected text"_s);
    }

    void missingRequiredFieldFailsToDecode()
    {
        m_server->serveBytes(u"/price"_s, R"({"set_number": "10497-1"})", 200, jsonHeaders);
        verifyDecodingError(fetch<SetPrice>(u"/price"_s), JSONDecodingError::Kind::keyNotFound);
    }

    void snakeCaseKeyIsFoundUnderTheCamelCaseFieldAndNotUnderItsOwnSpelling()
    {
        m_server->serveBytes(u"/price"_s, R"({"min_price": 12.5})", 200, jsonHeaders);
        const auto camel = fetch<MinimumPriceOnly>(u"/price"_s);
        QVERIFY2(camel.value, qPrintable(camel.failureText()));
        QCOMPARE(camel.value->minPrice.toString(), u"12.5"_s);

        const auto snake = fetch<SnakeKeyedPrice>(u"/price"_s);
        const auto error = httpErrorOf(snake);
        QVERIFY(error);
        QCOMPARE(error->kind(), HTTPError::Kind::decodingError);
        QCOMPARE(error->underlyingError()->kind(), JSONDecodingError::Kind::keyNotFound);
    }

    void fiveMegabyteAnswerIsDecodedWhole()
    {
        const QByteArray body = largeAnswer(75'000);
        QVERIFY(body.size() > 5 * 1024 * 1024);
        m_server->serveBytes(u"/prices"_s, body, 200, jsonHeaders);
        const auto outcome = fetch<PriceList>(u"/prices"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->items.size(), 75'000);
        QCOMPARE(outcome.value->items.last().setNumber, u"84999-1"_s);
        QCOMPARE(outcome.value->items.last().minPrice.toString(), u"74999.25"_s);
    }

    void fiveMegabyteErrorBodyIsKeptWhole()
    {
        const QByteArray body(5 * 1024 * 1024 + 17, 'x');
        m_server->serveBytes(u"/prices"_s, body, 500);
        const auto error = httpErrorOf(fetch<PriceList>(u"/prices"_s));
        QVERIFY(error);
        QCOMPARE(error->statusCode(), 500);
        QCOMPARE(error->data().size(), body.size());
        QCOMPARE(error->data(), body);
    }

    void serverThatNeverAnswersEndsAtTheRequestTimeOut()
    {
        LoopbackHttpServer::Response silent;
        silent.delayMilliseconds = 120'000;
        m_server->setResponse(u"/price"_s, silent);
        m_client->setRequestTimeoutForTesting(300ms);

        QElapsedTimer elapsed;
        elapsed.start();
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::timedOut);
        QCOMPARE(error->description(), u"The request timed out."_s);
        QVERIFY2(elapsed.elapsed() >= 250 && elapsed.elapsed() < 20'000, qPrintable(QString::number(elapsed.elapsed())));
        QCOMPARE(m_server->requestCount(u"/price"_s), 1);
    }

    void requestTimeOutRulesOverAShorterSessionTimeOut()
    {
        LoopbackHttpServer::Response slow;
        slow.status = 200;
        slow.body = goodAnswer;
        slow.delayMilliseconds = 800;
        m_server->setResponse(u"/price"_s, slow);
        m_client->session().setTransferTimeout(200);
        m_client->setRequestTimeoutForTesting(10s);

        const auto outcome = fetch<SetPrice>(u"/price"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
    }

    void requestWithoutItsOwnTimeOutEndsAtTheSessionTimeOut()
    {
        LoopbackHttpServer::Response silent;
        silent.delayMilliseconds = 120'000;
        m_server->setResponse(u"/price"_s, silent);
        m_client->session().setTransferTimeout(300);

        const auto outcome = waitForOutcome(m_client->fetch<SetPrice>(QNetworkRequest(m_server->url(u"/price"_s))));
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::timedOut);
    }

    void stopRequestEndsTheRequestAsCancelled()
    {
        LoopbackHttpServer::Response silent;
        silent.delayMilliseconds = 120'000;
        m_server->setResponse(u"/price"_s, silent);
        std::stop_source stop;
        QTimer::singleShot(100ms, [&stop] { stop.request_stop(); });

        const auto outcome = waitForOutcome(
            m_client->fetch<SetPrice>(m_client->makeRequest(m_server->url(u"/price"_s)), stop.get_token()));
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::cancelled);
    }

    void refusedConnectionPassesAsTheNetworkLayersErrorUnwrapped()
    {
        const QUrl url = m_server->url(u"/price"_s);
        m_server->close();
        const auto outcome = waitForOutcome(m_client->fetch<SetPrice>(m_client->makeRequest(url)));
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::failed);
        QCOMPARE(error->code(), QNetworkReply::ConnectionRefusedError);
        QVERIFY(!outcome.error<HTTPError>());
    }

    void connectionCutInTheBodyIsATransportFailureNotADecodingError()
    {
        LoopbackHttpServer::Response cut;
        cut.body = goodAnswer;
        cut.headers = jsonHeaders;
        cut.cutAfterBodyBytes = 10;
        m_server->setResponse(u"/price"_s, cut);
        const auto outcome = fetch<SetPrice>(u"/price"_s);
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::failed);
    }

    void answerThatIsNotHttpIsAnInvalidResponse()
    {
        // A data: address is answered by Qt itself, without a status line.
        const auto outcome = waitForOutcome(
            m_client->fetch<SetPrice>(m_client->makeRequest(QUrl(u"data:application/json,%7B%7D"_s))));
        const auto error = httpErrorOf(outcome);
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::invalidResponse);
        QCOMPARE(error->description(), u"Invalid server response"_s);
    }
};

QTEST_GUILESS_MAIN(HTTPClientTest)
#include "HTTPClientTest.moc"
