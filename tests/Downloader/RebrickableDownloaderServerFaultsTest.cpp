// SPDX-License-Identifier: GPL-3.0-or-later
// The downloader against a real HTTP server on 127.0.0.1 that answers in ways a download
// host should not: an error page or nothing in place of a dump, a body that trickles, a
// redirect loop, and a base address that carries credentials. The dumps here are small
// gzip files made in the test.
#include "DumpHostFixture.h"
#include "GzipTestFiles.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/RebrickableDownloader.h>
#include <RebrickableKit/TransportError.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace RebrickableKit;

namespace {

const QByteArray htmlPage = "<!DOCTYPE html>\n<html><head><title>Down for maintenance</title></head>\n"
                            "<body><p>We'll be back soon.</p></body></html>\n";

// The guard's window in these tests: long enough that a healthy slow body clears it many
// times over on a busy machine, short enough that a trickle ends within a second or two.
constexpr auto testRateWindow = 400ms;
constexpr qint64 testMinimumBytes = 1024;

QByteArray smallCsv(const QString &name)
{
    return "id,name\n1," + name.toUtf8() + "\n2,second row\n";
}

// Text that hardly compresses, so its gzip file is about as long as the text.
QByteArray randomText(qsizetype size)
{
    QByteArray text;
    QRandomGenerator random(7);
    while (text.size() < size)
        text += QByteArray::number(random.generate64(), 36) + '\n';
    return text;
}

} // namespace

class RebrickableDownloaderServerFaultsTest : public QObject, private DumpHostFixture
{
    Q_OBJECT

private:
    // The dumps before `name` arrived whole, nothing of `name` itself took the final name
    // ".csv", and the ones after it were never asked for.
    void verifyStoppedAt(const QString &name)
    {
        const QStringList &names = RebrickableDownloader::dumpNames();
        const qsizetype stop = names.indexOf(name);
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QString csv = output(names.at(i) + u".csv"_s);
            if (i < stop)
                QCOMPARE(GzipTestFiles::readAll(csv), smallCsv(names.at(i)));
            else
                QVERIFY2(!QFileInfo::exists(csv), qPrintable(csv));
            QVERIFY(!QFileInfo::exists(output(names.at(i) + u".csv.gz.part"_s)));
        }
        for (qsizetype i = stop + 1; i < names.size(); ++i)
            QCOMPARE(m_server->requestCount(urlPath(names.at(i))), 0);
    }

    void verifyNoSecretIn(const QString &text)
    {
        QVERIFY(!text.isEmpty());
        for (const QString &secret : secretParts())
            QVERIFY2(!text.contains(secret, Qt::CaseInsensitive), qPrintable(text));
    }

    void verifyNoSecretIn(const TransportError &error)
    {
        verifyNoSecretIn(error.description());
        verifyNoSecretIn(QString::fromUtf8(error.what()));
        verifyNoSecretIn(error.url().toString());
        verifyNoSecretIn(error.url().toString(QUrl::FullyEncoded));
    }

    // Answers `path` with a redirect to itself, for ever.
    void redirectToItself(const QString &path, int status)
    {
        LoopbackHttpServer::Response response;
        response.status = status;
        response.headers = {{"Location", m_server->url(path).toEncoded()}};
        m_server->setResponse(path, response);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void init()
    {
        start();
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveBytes(urlPath(name), GzipTestFiles::compress(smallCsv(name)));
    }

    void cleanup() { stop(); }

    void theRateGuardDefaultsToOneKibibyteAMinute()
    {
        const RebrickableDownloader downloader(u"/tmp/x"_s, QUrl(u"https://cdn.rebrickable.com"_s));
        QCOMPARE(downloader.minimumTransferBytes(), 1024);
        QVERIFY(downloader.transferRateWindow() == 60s);
        QVERIFY(downloader.downloadTimeout() == 300s);
    }

    void theSmallDumpsOfTheseTestsDownloadWhole()
    {
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        for (const QString &name : RebrickableDownloader::dumpNames())
            QCOMPARE(GzipTestFiles::readAll(output(name + u".csv"_s)), smallCsv(name));
    }

    // --- Bodies that are not gzip

    void anHtmlPageInPlaceOfADumpFailsToDecompressAndBecomesNoCsv()
    {
        m_server->serveBytes(urlPath(u"sets"_s), htmlPage, 200, {{"Content-Type", "text/html; charset=utf-8"}});
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), DownloadError::Kind::decompressionFailed);
        QCOMPARE(error->name(), u"sets.csv.gz"_s);
        QCOMPARE(error->description(), u"Failed to decompress sets.csv.gz"_s);
        verifyStoppedAt(u"sets"_s);
    }

    void anEmptyBodyInPlaceOfADumpFailsToDecompressAndBecomesNoCsv()
    {
        m_server->serveBytes(urlPath(u"themes"_s), QByteArray());
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), DownloadError::Kind::decompressionFailed);
        QCOMPARE(error->description(), u"Failed to decompress themes.csv.gz"_s);
        verifyStoppedAt(u"themes"_s);
    }

    void anHtmlPageLeavesALeftoverCsvAsItWas()
    {
        QVERIFY(QDir().mkpath(outputDirectory()));
        const QByteArray leftover = "set_num,name\nleft,over\n";
        GzipTestFiles::writeAll(output(u"sets.csv"_s), leftover);
        m_server->serveBytes(urlPath(u"sets"_s), htmlPage);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.error<DownloadError>(), qPrintable(outcome.failureText()));
        QCOMPARE(GzipTestFiles::readAll(output(u"sets.csv"_s)), leftover);
    }

    void aDumpSentWithContentEncodingGzipArrivesAsPublished()
    {
        // Some hosts label .gz files this way. Unpacked on the way, the dump would reach
        // the unpacking as plain text and be refused.
        m_server->serveBytes(urlPath(u"colors"_s), GzipTestFiles::compress(smallCsv(u"colors"_s)), 200,
                             {{"Content-Encoding", "gzip"}});
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(GzipTestFiles::readAll(output(u"colors.csv"_s)), smallCsv(u"colors"_s));
        QCOMPARE(m_server->requests().value(1).headers.value("accept-encoding"), QByteArray("identity"));
    }

    // --- Slow bodies

    void aBodyTricklingBelowTheMinimumRateTimesOut()
    {
        // 16 bytes every 100 ms: about 64 bytes a window against 1024 wanted. Sent whole it
        // would take some 50 s; Qt's own time-out alone would never fire, each piece
        // starting it over.
        LoopbackHttpServer::Response response;
        response.body = GzipTestFiles::compress(randomText(8 * 1024));
        response.chunkSize = 16;
        response.chunkDelayMilliseconds = 100;
        m_server->setResponse(urlPath(u"parts"_s), response);
        const auto downloader = makeDownloader();
        downloader->setMinimumTransferRate(testMinimumBytes, testRateWindow);
        QElapsedTimer clock;
        clock.start();
        const auto outcome = waitForOutcome(downloader->downloadAll());
        const qint64 elapsed = clock.elapsed();
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::timedOut);
        QCOMPARE(error->description(), u"The request timed out."_s);
        QVERIFY2(elapsed < 10000, qPrintable(QString::number(elapsed)));
        verifyStoppedAt(u"parts"_s);
        QVERIFY(!QFileInfo::exists(output(u"parts.csv.gz"_s)));
    }

    void aSlowButSteadyBodyAboveTheMinimumRateArrivesWhole()
    {
        // 1 KiB every 50 ms: several times the minimum in every window, for well over a
        // window's length in all.
        const QByteArray text = randomText(24 * 1024);
        LoopbackHttpServer::Response response;
        response.body = GzipTestFiles::compress(text);
        response.chunkSize = 1024;
        response.chunkDelayMilliseconds = 50;
        m_server->setResponse(urlPath(u"parts"_s), response);
        const auto downloader = makeDownloader();
        downloader->setMinimumTransferRate(testMinimumBytes, testRateWindow);
        const auto outcome = waitForOutcome(downloader->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(GzipTestFiles::readAll(output(u"parts.csv"_s)) == text);
    }

    void aServerThatWaitsBeforeAnsweringIsLeftToTheRequestTimeOut()
    {
        // The guard measures a body that has begun; a server still preparing its answer
        // is given the request's own time-out.
        LoopbackHttpServer::Response response;
        response.body = GzipTestFiles::compress(smallCsv(u"themes"_s));
        response.delayMilliseconds = 1500;
        m_server->setResponse(urlPath(u"themes"_s), response);
        const auto downloader = makeDownloader();
        downloader->setMinimumTransferRate(testMinimumBytes, testRateWindow);
        const auto outcome = waitForOutcome(downloader->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(GzipTestFiles::readAll(output(u"themes.csv"_s)), smallCsv(u"themes"_s));
    }

    // --- Redirects

    void aRedirectLoopSaysSoInWords()
    {
        redirectToItself(urlPath(u"colors"_s), 301);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::redirectLoop);
        QCOMPARE(error->code(), QNetworkReply::TooManyRedirectsError);
        QCOMPARE(error->description(), u"The server at 127.0.0.1 kept redirecting the request in a loop."_s);
        QVERIFY(m_server->requestCount(urlPath(u"colors"_s)) > 1);
        verifyStoppedAt(u"colors"_s);
    }

    void aRedirectLoopOfTheUpdateCheckSaysSoInWords()
    {
        const QString other = u"/elsewhere/sets.csv.gz"_s;
        LoopbackHttpServer::Response there;
        there.status = 302;
        there.headers = {{"Location", m_server->url(other).toEncoded()}};
        m_server->setResponse(urlPath(u"sets"_s), there);
        LoopbackHttpServer::Response back;
        back.status = 302;
        back.headers = {{"Location", m_server->url(urlPath(u"sets"_s)).toEncoded()}};
        m_server->setResponse(other, back);
        const auto outcome = waitForOutcome(makeDownloader()->checkForUpdates(std::nullopt));
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::redirectLoop);
        QCOMPARE(error->description(), u"The server at 127.0.0.1 kept redirecting the request in a loop."_s);
    }

    void aRedirectThatLeadsSomewhereIsFollowed()
    {
        const QString moved = u"/moved/themes.csv.gz"_s;
        m_server->serveBytes(urlPath(u"themes"_s), QByteArray(), 302, {{"Location", m_server->url(moved).toEncoded()}});
        m_server->serveBytes(moved, GzipTestFiles::compress(smallCsv(u"themes"_s)));
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(GzipTestFiles::readAll(output(u"themes.csv"_s)), smallCsv(u"themes"_s));
    }

    // --- Credentials in the address

    void anUnreachableHostWithCredentialsInItsAddressShowsNoneOfThem()
    {
        const QUrl address = addressWithSecrets();
        m_server->close(); // nobody listens on that port any more
        RebrickableDownloader downloader(outputDirectory(), address);
        const auto outcome = waitForOutcome(downloader.downloadAll());
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::failed);
        verifyNoSecretIn(*error);
        QCOMPARE(error->url().host(), u"127.0.0.1"_s);
        QCOMPARE(error->url().path(), u"/x/media/downloads/themes.csv.gz"_s);
    }

    void aRedirectLoopWithCredentialsInTheAddressShowsNoneOfThem()
    {
        redirectToItself(u"/x"_s + urlPath(u"sets"_s), 302);
        RebrickableDownloader downloader(outputDirectory(), addressWithSecrets());
        const auto outcome = waitForOutcome(downloader.checkForUpdates(std::nullopt));
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::redirectLoop);
        verifyNoSecretIn(*error);
    }

    void aBrokenConnectionWithCredentialsInTheAddressShowsNoneOfThem()
    {
        LoopbackHttpServer::Response response;
        response.closeWithoutAnswer = true;
        m_server->setResponse(u"/x"_s + urlPath(u"themes"_s), response);
        RebrickableDownloader downloader(outputDirectory(), addressWithSecrets());
        const auto outcome = waitForOutcome(downloader.downloadAll());
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        verifyNoSecretIn(*error);
        // The request itself still went out with its query: only the texts leave it off.
        QCOMPARE(m_server->requests().value(0).path, QByteArray("/x/media/downloads/themes.csv.gz?apikey=SECRET123"));
    }
};

QTEST_GUILESS_MAIN(RebrickableDownloaderServerFaultsTest)
#include "RebrickableDownloaderServerFaultsTest.moc"
