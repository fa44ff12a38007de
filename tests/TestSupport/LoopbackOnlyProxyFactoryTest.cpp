// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogCapture.h"
#include "LoopbackHttpServer.h"
#include "LoopbackOnlyProxyFactory.h"
#include "TestEnvironment.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

// Tests keep their traffic on this machine: a request to another host fails at once and is
// named in the log, while loopback requests go through untouched.
class LoopbackOnlyProxyFactoryTest : public QObject
{
    Q_OBJECT

private:
    static std::unique_ptr<QNetworkReply> get(QNetworkAccessManager &network, const QUrl &url)
    {
        QNetworkRequest request(url);
        request.setTransferTimeout(10'000);
        std::unique_ptr<QNetworkReply> reply(network.get(request));
        if (!reply->isFinished())
            QSignalSpy(reply.get(), &QNetworkReply::finished).wait(15'000);
        return reply;
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void loopbackAddressesAreRecognised_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("loopback");
        QTest::newRow("127.0.0.1") << u"127.0.0.1"_s << true;
        QTest::newRow("127.8.9.10") << u"127.8.9.10"_s << true;
        QTest::newRow("localhost") << u"localhost"_s << true;
        QTest::newRow("::1") << u"::1"_s << true;
        QTest::newRow("[::1]") << u"[::1]"_s << true;
        QTest::newRow("download host") << u"cdn.rebrickable.com"_s << false;
        QTest::newRow("private address") << u"192.168.1.10"_s << false;
    }

    void loopbackAddressesAreRecognised()
    {
        QFETCH(QString, host);
        QFETCH(bool, loopback);
        QCOMPARE(LoopbackOnlyProxyFactory::isLoopback(host), loopback);
    }

    void requestToAnotherHostFailsAtOnceAndIsNamedInTheLog()
    {
        QNetworkAccessManager network;
        const LogCapture log;
        QElapsedTimer clock;
        clock.start();
        const auto reply = get(network, QUrl(u"http://outside.example/media/downloads/sets.csv.gz"_s));
        QVERIFY(reply->error() != QNetworkReply::NoError);
        QVERIFY(clock.elapsed() < 5'000);
        QVERIFY(log.indexOfMessageStartingWith(u"Blocked a connection to outside.example"_s) >= 0);
    }

    void loopbackRequestGoesThroughUntouched()
    {
        LoopbackHttpServer server;
        QVERIFY(server.listen());
        server.serveBytes(u"/hello"_s, "hello");
        QNetworkAccessManager network;
        const LogCapture log;
        const auto reply = get(network, server.url(u"/hello"_s));
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        QCOMPARE(reply->readAll(), QByteArray("hello"));
        QCOMPARE(log.indexOfMessageStartingWith(u"Blocked"_s), -1);
    }
};

QTEST_GUILESS_MAIN(LoopbackOnlyProxyFactoryTest)
#include "LoopbackOnlyProxyFactoryTest.moc"
