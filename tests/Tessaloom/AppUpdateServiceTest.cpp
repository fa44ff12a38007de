// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogCapture.h"
#include "LoopbackHttpServer.h"
#include "Services/AppUpdateService.h"
#include "TestEnvironment.h"
#include "Views/TranslationLoader.h"

#include <QCoroTask>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using Outcome = AppUpdateService::CheckResult::Outcome;

namespace {
const QByteArray feedWithVersion0_3 =
    "<?xml version=\"1.0\"?><rss version=\"2.0\" "
    "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>"
    "<item><title>0.3</title><link>https://example.org/releases/0.3</link>"
    "<sparkle:version>3</sparkle:version><sparkle:shortVersionString>0.3.0</sparkle:shortVersionString></item>"
    "<item><title>0.2</title><sparkle:shortVersionString>0.2.0</sparkle:shortVersionString></item>"
    "</channel></rss>";
} // namespace

class AppUpdateServiceTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;

    AppUpdateService::CheckResult check(AppUpdateService &service)
    {
        return QCoro::waitFor(service.checkForUpdates());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        QVERIFY(m_server.listen());
    }

    void newerReleaseInTheFeedIsOfferedWithItsPage()
    {
        m_server.serveBytes(u"/appcast.xml"_s, feedWithVersion0_3, 200, {{"Content-Type", "application/rss+xml"}});
        AppUpdateService service(m_server.url(u"/appcast.xml"_s), QVersionNumber(0, 1, 0));
        const auto result = check(service);
        QCOMPARE(result.outcome, Outcome::updateAvailable);
        QCOMPARE(result.newest.displayVersion, u"0.3.0"_s);
        QCOMPARE(result.newest.pageUrl, QUrl(u"https://example.org/releases/0.3"_s));
    }

    void sameVersionIsUpToDate()
    {
        m_server.serveBytes(u"/appcast.xml"_s, feedWithVersion0_3);
        AppUpdateService service(m_server.url(u"/appcast.xml"_s), QVersionNumber(0, 3, 0));
        QCOMPARE(check(service).outcome, Outcome::upToDate);
    }

    void serverErrorFailsWithAText()
    {
        m_server.serveBytes(u"/broken.xml"_s, "oops", 500);
        AppUpdateService service(m_server.url(u"/broken.xml"_s), QVersionNumber(0, 1, 0));
        const auto result = check(service);
        QCOMPARE(result.outcome, Outcome::failed);
        QVERIFY(!result.errorText.isEmpty());
    }

    void failureShowsOurOwnSentenceAndNoSecretOfTheAddress()
    {
        m_server.serveBytes(u"/appcast.xml"_s, "gone", 404);
        QUrl feed = m_server.url(u"/appcast.xml"_s);
        feed.setQuery(u"apikey=SECRET123"_s);
        feed.setUserInfo(u"someone:PASSWORD42"_s);
        AppUpdateService service(feed, QVersionNumber(0, 1, 0));
        QStringList logged;
        AppUpdateService::CheckResult result;
        {
            const LogCapture log;
            result = check(service);
            logged = log.messages();
        }
        QCOMPARE(result.outcome, Outcome::failed);
        QCOMPARE(result.errorText, u"Tessaloom could not download from the update server (the server answered with "
                                   "error 404). Try again later."_s);
        QVERIFY(!result.errorDetails.isEmpty());
        QVERIFY2(!result.errorDetails.contains(u"SECRET123"_s) && !result.errorDetails.contains(u"PASSWORD42"_s),
                 qPrintable(result.errorDetails));
        QVERIFY(!logged.isEmpty());
        for (const QString &line : std::as_const(logged)) {
            QVERIFY2(!line.contains(u"SECRET123"_s) && !line.contains(u"PASSWORD42"_s), qPrintable(line));
            QVERIFY2(line.contains(u"/appcast.xml"_s), qPrintable(line));
        }
    }

    void unreadableFeedFails()
    {
        m_server.serveBytes(u"/garbage.xml"_s, "<html>maintenance</html>");
        AppUpdateService service(m_server.url(u"/garbage.xml"_s), QVersionNumber(0, 1, 0));
        QCOMPARE(check(service).outcome, Outcome::failed);
    }

    void cutConnectionFails()
    {
        LoopbackHttpServer::Response response;
        response.closeWithoutAnswer = true;
        m_server.setResponse(u"/cut.xml"_s, response);
        AppUpdateService service(m_server.url(u"/cut.xml"_s), QVersionNumber(0, 1, 0));
        QCOMPARE(check(service).outcome, Outcome::failed);
    }

    void checkingIsDisabledWhileACheckRuns()
    {
        LoopbackHttpServer::Response slow;
        slow.body = feedWithVersion0_3;
        slow.delayMilliseconds = 200;
        m_server.setResponse(u"/slow.xml"_s, slow);
        AppUpdateService service(m_server.url(u"/slow.xml"_s), QVersionNumber(0, 1, 0));
        QSignalSpy spy(&service, &AppUpdateService::canCheckForUpdatesChanged);
        QVERIFY(service.canCheckForUpdates());
        auto task = service.checkForUpdates();
        QVERIFY(!service.canCheckForUpdates());
        QCoro::waitFor(std::move(task));
        QVERIFY(service.canCheckForUpdates());
        QCOMPARE(spy.count(), 2);
    }
};

QTEST_GUILESS_MAIN(AppUpdateServiceTest)
#include "AppUpdateServiceTest.moc"
