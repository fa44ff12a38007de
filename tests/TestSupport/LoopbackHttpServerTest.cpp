// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpServer.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

// The server that network tests rely on must itself behave as documented.
class LoopbackHttpServerTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    QNetworkAccessManager m_network;

    std::unique_ptr<QNetworkReply> send(const QByteArray &method, const QString &path)
    {
        const QNetworkRequest request(m_server.url(path));
        std::unique_ptr<QNetworkReply> reply(method == "HEAD" ? m_network.head(request)
                                                              : m_network.sendCustomRequest(request, method));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        finished.wait(10'000);
        return reply;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.listen()); }
    void init() { m_server.resetCounters(); }

    void servesBytesWithStatusAndHeaders()
    {
        m_server.serveBytes(u"/hello"_s, "world", 201, {{"Last-Modified", "Tue, 01 Apr 2026 10:00:00 GMT"}});
        const auto reply = send("GET", u"/hello?x=1"_s);
        QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 201);
        QCOMPARE(reply->rawHeader("Last-Modified"), QByteArray("Tue, 01 Apr 2026 10:00:00 GMT"));
        QCOMPARE(reply->readAll(), QByteArray("world"));
        QCOMPARE(m_server.requestCount(u"/hello"_s), 1);
        QCOMPARE(m_server.requests().first().path, QByteArray("/hello?x=1"));
    }

    void headAnswersHeadersOnly()
    {
        m_server.serveBytes(u"/file"_s, QByteArray(1000, 'x'));
        const auto reply = send("HEAD", u"/file"_s);
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        QCOMPARE(reply->header(QNetworkRequest::ContentLengthHeader).toLongLong(), 1000);
        QVERIFY(reply->readAll().isEmpty());
        QCOMPARE(m_server.requestCount("HEAD", u"/file"_s), 1);
        QCOMPARE(m_server.requestCount("GET", u"/file"_s), 0);
    }

    void unknownPathsAnswerNotFound()
    {
        const auto reply = send("GET", u"/nothing-here"_s);
        QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 404);
    }

    void delayedAnswerTakesItsTime()
    {
        LoopbackHttpServer::Response response;
        response.body = "late";
        response.delayMilliseconds = 150;
        m_server.setResponse(u"/late"_s, response);
        QElapsedTimer timer;
        timer.start();
        const auto reply = send("GET", u"/late"_s);
        QVERIFY(timer.elapsed() >= 140);
        QCOMPARE(reply->readAll(), QByteArray("late"));
    }

    void cutResponseEndsInAnError()
    {
        LoopbackHttpServer::Response response;
        response.body = QByteArray(100'000, 'y');
        response.cutAfterBodyBytes = 1000;
        m_server.setResponse(u"/cut"_s, response);
        const auto reply = send("GET", u"/cut"_s);
        QVERIFY(reply->error() != QNetworkReply::NoError);
    }

    void closeWithoutAnswerEndsInAnError()
    {
        LoopbackHttpServer::Response response;
        response.closeWithoutAnswer = true;
        m_server.setResponse(u"/drop"_s, response);
        const auto reply = send("GET", u"/drop"_s);
        QVERIFY(reply->error() != QNetworkReply::NoError);
    }

    void chunkedBodyArrivesWhole()
    {
        LoopbackHttpServer::Response response;
        response.body = QByteArray(10'000, 'z');
        response.chunkSize = 1000;
        response.chunkDelayMilliseconds = 5;
        m_server.setResponse(u"/slow"_s, response);
        const auto reply = send("GET", u"/slow"_s);
        QCOMPARE(reply->readAll().size(), 10'000);
    }

    void countsRequestsServedAtOnce()
    {
        LoopbackHttpServer::Response response;
        response.body = "x";
        response.delayMilliseconds = 300;
        m_server.setResponse(u"/parallel"_s, response);
        std::vector<std::unique_ptr<QNetworkReply>> replies;
        for (int i = 0; i < 4; ++i)
            replies.emplace_back(m_network.get(QNetworkRequest(m_server.url(u"/parallel"_s))));
        for (auto &reply : replies)
            QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), 10'000);
        QCOMPARE(m_server.requestCount(u"/parallel"_s), 4);
        QCOMPARE(m_server.maximumInFlightRequests(), 4);
        QTRY_COMPARE(m_server.inFlightRequests(), 0);
    }
};

QTEST_GUILESS_MAIN(LoopbackHttpServerTest)
#include "LoopbackHttpServerTest.moc"
