// SPDX-License-Identifier: GPL-3.0-or-later
// LegoInstructionsService over real HTTP against a stand-in of LEGO's GraphQL endpoint on
// 127.0.0.1, pointed at through TESSALOOM_ENDPOINTS: what it asks, how an answer becomes
// booklets, and what each kind of failure gives the caller.
#include "LegoGraphQLStandIn.h"

#include "Endpoints.h"
#include "EnglishTexts.h"
#include "HTTPError.h"
#include "NetworkTransportError.h"
#include "Services/LegoInstructionsService.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Instruction = LegoInstructionsService::Instruction;
using Booklet = LegoGraphQLStandIn::Booklet;

// The query the endpoint is sent, written out here independently of the service.
const QString expectedQuery = QString::fromUtf8(R"(query getBuildingInstructionsForSet($setNumber: String!) {
    customerService {
        getBuildingInstructionsForSet(setNumber: $setNumber) {
            status
            data {
                name
                setNumber
                buildingInstructions {
                    isAdditionalInfoBooklet
                    sequence { total element }
                    pdf { pdfUrl fileSize coverImage { src } }
                }
            }
        }
    }
})");

} // namespace

class LegoInstructionsServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LegoGraphQLStandIn> m_standIn;
    std::unique_ptr<LegoInstructionsService> m_service;

    TaskOutcome<QList<Instruction>> fetch(const QString &setNumber = u"10497-1"_s)
    {
        return waitForOutcome(m_service->fetchInstructions(setNumber));
    }

    QList<Instruction> fetchBooklets(const QList<Booklet> &booklets)
    {
        m_standIn->serveBooklets(booklets);
        const auto outcome = fetch();
        if (!outcome.value)
            qWarning("fetchInstructions failed: %s", qPrintable(outcome.failureText()));
        return outcome.value.value_or(QList<Instruction>{});
    }

    QString askedSetNumber(qsizetype request) const
    {
        return m_standIn->requestBody(request).value(u"variables"_s).toObject().value(u"setNumber"_s).toString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // The error sentences are looked up by key; without the table they log warnings.
        QVERIFY(EnglishTexts::install());
    }

    void init()
    {
        m_standIn = std::make_unique<LegoGraphQLStandIn>();
        QVERIFY(m_standIn->listen());
        m_standIn->pointEndpointsHere();
        m_service = std::make_unique<LegoInstructionsService>();
    }

    void cleanup()
    {
        m_service.reset();
        m_standIn.reset();
        qunsetenv(Endpoints::overrideVariable);
    }

    // --- What an answer becomes ---

    void oneBookletComesBackWithAllItsFields()
    {
        Booklet only = LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s);
        only.fileSize = u"12345678"_s;
        only.coverImage = u"https://www.lego.com/cdn/cover.png"_s;
        const QList<Instruction> instructions = fetchBooklets({only});
        QCOMPARE(instructions.size(), 1);
        const Instruction &instruction = instructions.first();
        QCOMPARE(instruction.bookNumber, 1);
        QCOMPARE(instruction.totalBooks, 1);
        QCOMPARE(instruction.pdfURL, QUrl(only.pdfUrl));
        QCOMPARE(instruction.fileSize, qint64(12345678));
        QCOMPARE(instruction.isAdditional, false);
        QCOMPARE(instruction.coverImageURL, std::optional<QString>(u"https://www.lego.com/cdn/cover.png"_s));
    }

    void bookletsArrivingTwoThenOneComeBackOneThenTwoWithTheirTitles()
    {
        const QList<Instruction> instructions = fetchBooklets(
            {LegoGraphQLStandIn::booklet(u"2"_s, u"2"_s), LegoGraphQLStandIn::booklet(u"1"_s, u"2"_s)});
        QCOMPARE(instructions.size(), 2);
        QCOMPARE(instructions.at(0).bookNumber, 1);
        QCOMPARE(instructions.at(1).bookNumber, 2);
        QCOMPARE(instructions.at(0).displayTitle(), u"Book 1 of 2"_s);
        QCOMPARE(instructions.at(1).displayTitle(), u"Book 2 of 2"_s);
        QVERIFY(instructions.at(0).pdfURL.toString().endsWith(u"61.pdf"_s));
    }

    void additionalInfoBookletIsTitledAdditionalInfoWhateverItsSequence()
    {
        Booklet additional = LegoGraphQLStandIn::booklet(u"3"_s, u"3"_s);
        additional.isAdditionalInfoBooklet = true;
        Booklet alone = LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s);
        alone.isAdditionalInfoBooklet = true;
        const QList<Instruction> instructions = fetchBooklets({additional, alone});
        QCOMPARE(instructions.size(), 2);
        QVERIFY(instructions.at(0).isAdditional);
        QCOMPARE(instructions.at(0).displayTitle(), u"Additional Info"_s);
        QCOMPARE(instructions.at(1).displayTitle(), u"Additional Info"_s);
    }

    void bookletWithTotalOfOneIsTitledBuildingInstructions()
    {
        const QList<Instruction> instructions = fetchBooklets({LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s)});
        QCOMPARE(instructions.size(), 1);
        QCOMPARE(instructions.first().displayTitle(), u"Building Instructions"_s);
    }

    void emptySequenceElementGivesBookNumberOne()
    {
        const QList<Instruction> instructions = fetchBooklets({LegoGraphQLStandIn::booklet(QString(), u"3"_s)});
        QCOMPARE(instructions.size(), 1);
        QCOMPARE(instructions.first().bookNumber, 1);
        QCOMPARE(instructions.first().totalBooks, 3);
        QCOMPARE(instructions.first().displayTitle(), u"Book 1 of 3"_s);
    }

    void sequenceTextsThatAreNoNumbersCountAsOne()
    {
        const QList<Instruction> instructions = fetchBooklets({LegoGraphQLStandIn::booklet(u"first"_s, u"many"_s)});
        QCOMPARE(instructions.size(), 1);
        QCOMPARE(instructions.first().bookNumber, 1);
        QCOMPARE(instructions.first().totalBooks, 1);
    }

    void missingFileSizeGivesZero()
    {
        Booklet withoutSize = LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s);
        withoutSize.fileSize.reset();
        Booklet unreadableSize = LegoGraphQLStandIn::booklet(u"2"_s, u"2"_s);
        unreadableSize.fileSize = u"4.5 MB"_s;
        const QList<Instruction> instructions = fetchBooklets({withoutSize, unreadableSize});
        QCOMPARE(instructions.size(), 2);
        QCOMPARE(instructions.at(0).fileSize, qint64(0));
        QCOMPARE(instructions.at(1).fileSize, qint64(0));
    }

    void bookletWithoutCoverHasNoCoverImage()
    {
        Booklet withoutCover = LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s);
        withoutCover.coverImage.reset();
        const QList<Instruction> instructions = fetchBooklets({withoutCover});
        QCOMPARE(instructions.size(), 1);
        QCOMPARE(instructions.first().coverImageURL, std::nullopt);
    }

    void pdfUrlThatIsNoUrlDropsThatBooklet_data()
    {
        QTest::addColumn<QString>("pdfUrl");
        QTest::newRow("empty") << QString();
        QTest::newRow("words with spaces") << u"not a link"_s;
        QTest::newRow("relative path") << u"/cdn/product-assets/6123456.pdf"_s;
        QTest::newRow("broken port") << u"https://www.lego.com:port/6123456.pdf"_s;
    }

    void pdfUrlThatIsNoUrlDropsThatBooklet()
    {
        QFETCH(QString, pdfUrl);
        Booklet broken = LegoGraphQLStandIn::booklet(u"1"_s, u"2"_s);
        broken.pdfUrl = pdfUrl;
        const Booklet good = LegoGraphQLStandIn::booklet(u"2"_s, u"2"_s);
        const QList<Instruction> instructions = fetchBooklets({broken, good});
        QCOMPARE(instructions.size(), 1);
        QCOMPARE(instructions.first().bookNumber, 2);
        QCOMPARE(instructions.first().pdfURL, QUrl(good.pdfUrl));
    }

    void noBookletsGivesAnEmptyList()
    {
        m_standIn->serveBooklets({});
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    // --- Answers that give no booklets ---

    void statusOtherThanOkGivesAnEmptyList_data()
    {
        QTest::addColumn<QString>("status");
        QTest::newRow("not found") << u"not_found"_s;
        QTest::newRow("upper case") << u"OK"_s;
        QTest::newRow("empty") << QString();
    }

    void statusOtherThanOkGivesAnEmptyList()
    {
        QFETCH(QString, status);
        m_standIn->serveRaw(LegoGraphQLStandIn::answer(status, {LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s)}));
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    void okStatusWithoutDataGivesAnEmptyList()
    {
        m_standIn->serveRaw(LegoGraphQLStandIn::answer(u"ok"_s, {}, false));
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    void serverErrorGivesAnEmptyListAndTheLogLine()
    {
        m_standIn->serveRaw("<html>Internal Server Error</html>", 500);
        QTest::ignoreMessage(QtWarningMsg, "LEGO instructions API returned non-200 status");
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    void clientErrorGivesAnEmptyListAndTheLogLine()
    {
        m_standIn->serveRaw("{\"errors\":[{\"message\":\"Bad Request\"}]}", 400);
        QTest::ignoreMessage(QtWarningMsg, "LEGO instructions API returned non-200 status");
        const auto outcome = fetch();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(outcome.value->isEmpty());
    }

    // --- Failures that reach the caller ---

    void brokenJsonFailsWithDecodingError()
    {
        m_standIn->serveRaw("{\"data\": {\"customerService\": ");
        const auto outcome = fetch();
        QVERIFY(!outcome.value);
        const auto error = outcome.error<HTTPError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), HTTPError::Kind::decodingError);
    }

    void bookletWithoutPdfFailsTheWholeAnswer()
    {
        const QByteArray body = R"({"data":{"customerService":{"getBuildingInstructionsForSet":{"status":"ok","data":)"
                                R"({"buildingInstructions":[{"isAdditionalInfoBooklet":false,)"
                                R"("sequence":{"total":"1","element":"1"}}]}}}}})";
        m_standIn->serveRaw(body);
        const auto error = fetch().error<HTTPError>();
        QVERIFY(error);
        QCOMPARE(error->kind(), HTTPError::Kind::decodingError);
    }

    void silentServerFailsAfterTheRequestTimeout()
    {
        m_standIn->serveNothing();
        m_service->setRequestTimeoutForTesting(300ms);
        QElapsedTimer clock;
        clock.start();
        const auto outcome = fetch();
        QVERIFY(!outcome.value);
        const auto error = outcome.error<NetworkTransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), NetworkTransportError::Kind::timedOut);
        QVERIFY2(clock.elapsed() < 30'000, "the shortened time-out should end the call");
    }

    void closedPortFailsWithTransportError()
    {
        m_standIn->server().close();
        const auto error = fetch().error<NetworkTransportError>();
        QVERIFY(error);
        QCOMPARE(error->kind(), NetworkTransportError::Kind::failed);
    }

    // --- What is asked ---

    void requestIsAPostOfTheLiteralQueryWithItsHeaders()
    {
        m_standIn->serveBooklets({});
        QVERIFY(fetch(u"10497-1"_s).value);
        const QList<LoopbackHttpServer::Request> requests = m_standIn->requests();
        QCOMPARE(requests.size(), 1);
        const LoopbackHttpServer::Request &request = requests.first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.path, QByteArray("/api/graphql/getBuildingInstructionsForSet"));
        QCOMPARE(request.headers.value("content-type"), QByteArray("application/json"));
        QCOMPARE(request.headers.value("accept"), QByteArray("application/json"));
        QCOMPARE(request.headers.value("user-agent"), QByteArray("Tessaloom/1.0"));
        QCOMPARE(request.headers.value("x-locale"), QByteArray("en-AU"));

        QJsonParseError parseError;
        const QJsonDocument body = QJsonDocument::fromJson(request.body, &parseError);
        QCOMPARE(parseError.error, QJsonParseError::NoError);
        const QJsonObject object = body.object();
        QCOMPARE(object.keys(), (QStringList{u"operationName"_s, u"query"_s, u"variables"_s}));
        QCOMPARE(object.value(u"operationName"_s).toString(), u"getBuildingInstructionsForSet"_s);
        QCOMPARE(object.value(u"query"_s).toString().toUtf8(), expectedQuery.toUtf8());
        const QJsonObject variables = object.value(u"variables"_s).toObject();
        QCOMPARE(variables.keys(), QStringList{u"setNumber"_s});
        QCOMPARE(variables.value(u"setNumber"_s).toString(), u"10497"_s);
    }

    void setNumberFormsAllAskForTheBareNumber_data()
    {
        QTest::addColumn<QString>("setNumber");
        QTest::newRow("with variant suffix") << u"10497-1"_s;
        QTest::newRow("bare") << u"10497"_s;
        QTest::newRow("blanks and a line feed around it") << u" 10497-1 \n"_s;
    }

    void setNumberFormsAllAskForTheBareNumber()
    {
        QFETCH(QString, setNumber);
        m_standIn->serveBooklets({});
        QVERIFY(fetch(setNumber).value);
        QCOMPARE(m_standIn->requests().size(), 1);
        QCOMPARE(askedSetNumber(0), u"10497"_s);
    }

    void twoCallsAtOnceRunOneAfterTheOther()
    {
        // The first answer takes a while; a second request sent meanwhile would be seen
        // while the first is still open.
        m_standIn->serveBooklets({LegoGraphQLStandIn::booklet(u"1"_s, u"1"_s)}, 400);
        auto first = captureOutcome(m_service->fetchInstructions(u"10497-1"_s));
        auto second = captureOutcome(m_service->fetchInstructions(u"75192-1"_s));
        QTRY_COMPARE(m_standIn->requests().size(), 1);
        QCOMPARE(askedSetNumber(0), u"10497"_s);

        const auto firstOutcome = QCoro::waitFor(std::move(first));
        const auto secondOutcome = QCoro::waitFor(std::move(second));
        QVERIFY2(firstOutcome.value, qPrintable(firstOutcome.failureText()));
        QVERIFY2(secondOutcome.value, qPrintable(secondOutcome.failureText()));
        QCOMPARE(firstOutcome.value->size(), 1);
        QCOMPARE(secondOutcome.value->size(), 1);
        QCOMPARE(m_standIn->requests().size(), 2);
        QCOMPARE(askedSetNumber(1), u"75192"_s);
        QCOMPARE(m_standIn->server().maximumInFlightRequests(), 1);
    }

    void failedCallLetsTheNextOneRun()
    {
        m_standIn->serveRaw("not json");
        auto failing = captureOutcome(m_service->fetchInstructions(u"10497-1"_s));
        auto next = captureOutcome(m_service->fetchInstructions(u"10497-1"_s));
        QVERIFY(QCoro::waitFor(std::move(failing)).error<HTTPError>());
        const auto nextOutcome = QCoro::waitFor(std::move(next));
        QVERIFY(nextOutcome.error<HTTPError>());
        QCOMPARE(m_standIn->requests().size(), 2);
    }

    // --- The display title alone ---

    void displayTitleFollowsAdditionalThenTotal_data()
    {
        QTest::addColumn<bool>("isAdditional");
        QTest::addColumn<int>("bookNumber");
        QTest::addColumn<int>("totalBooks");
        QTest::addColumn<QString>("title");
        QTest::newRow("additional") << true << 2 << 3 << u"Additional Info"_s;
        QTest::newRow("single") << false << 1 << 1 << u"Building Instructions"_s;
        QTest::newRow("total zero") << false << 1 << 0 << u"Building Instructions"_s;
        QTest::newRow("second of three") << false << 2 << 3 << u"Book 2 of 3"_s;
    }

    void displayTitleFollowsAdditionalThenTotal()
    {
        QFETCH(bool, isAdditional);
        QFETCH(int, bookNumber);
        QFETCH(int, totalBooks);
        QFETCH(QString, title);
        Instruction instruction;
        instruction.isAdditional = isAdditional;
        instruction.bookNumber = bookNumber;
        instruction.totalBooks = totalBooks;
        QCOMPARE(instruction.displayTitle(), title);
    }
};

QTEST_GUILESS_MAIN(LegoInstructionsServiceTest)
#include "LegoInstructionsServiceTest.moc"
