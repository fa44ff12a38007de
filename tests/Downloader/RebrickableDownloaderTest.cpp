// SPDX-License-Identifier: GPL-3.0-or-later
// The downloader against a real HTTP server on 127.0.0.1 that serves twelve small dumps
// made in the test byte for byte as the download host serves its files, and against a
// server that misbehaves. The full-size dumps have a test of their own
// (RebrickableDownloaderFullDumpTest), so this one runs whole on a fresh clone.
#include "DumpHostFixture.h"
#include "GzipTestFiles.h"
#include "SmallDumpFiles.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/FileOperationError.h>
#include <RebrickableKit/RebrickableDownloader.h>
#include <RebrickableKit/TransportError.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <stop_token>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace RebrickableKit;

namespace {

// A slow response goes out in pieces this large, one every 40 ms: the sets dump then takes
// well over half a second, long enough to be caught in the middle.
constexpr int slowChunkSize = 4 * 1024;

struct ProgressCall
{
    QString name;
    int index = 0;
    int total = 0;
    bool operator==(const ProgressCall &) const = default;
};

} // namespace

class RebrickableDownloaderTest : public QObject, private DumpHostFixture
{
    Q_OBJECT

private:
    QTemporaryDir m_dumpFolder;
    std::unique_ptr<SmallDumpFiles> m_dumps;

    QString dump(const QString &name) const { return m_dumps->path(name); }
    // Data rows of a dump as the test wrote it (lines after the header).
    qint64 expectedRows(const QString &name) const { return m_dumps->rows(name); }

    // A response for `name` that goes out slowly enough to be caught in the middle.
    void serveSlowly(const QString &name, std::optional<qint64> cutAfter = std::nullopt)
    {
        LoopbackHttpServer::Response response;
        response.filePath = dump(name);
        response.chunkSize = slowChunkSize;
        response.chunkDelayMilliseconds = 40;
        response.cutAfterBodyBytes = cutAfter;
        m_server->setResponse(urlPath(name), response);
    }

    void answerHeadWith(int status)
    {
        LoopbackHttpServer::Response response;
        response.status = status;
        response.headers = {{"Last-Modified", publishedDate}};
        m_server->setResponse(urlPath(u"sets"_s), response);
    }

    TaskOutcome<RebrickableDownloader::UpdateCheckResult> check(std::optional<QString> stored)
    {
        return waitForOutcome(makeDownloader()->checkForUpdates(std::move(stored)));
    }

    // The dumps before `name` arrived whole; `name` and the ones after it left nothing.
    void verifyStoppedAt(const QString &name)
    {
        const QStringList &names = RebrickableDownloader::dumpNames();
        const qsizetype stop = names.indexOf(name);
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QString csv = output(names.at(i) + u".csv"_s);
            if (i < stop)
                QVERIFY2(lineCount(csv) == expectedRows(names.at(i)) + 1, qPrintable(csv));
            else
                QVERIFY2(!QFileInfo::exists(csv), qPrintable(csv));
            QVERIFY(!QFileInfo::exists(output(names.at(i) + u".csv.gz"_s)));
            QVERIFY(!QFileInfo::exists(output(names.at(i) + u".csv.gz.part"_s)));
        }
        for (qsizetype i = stop + 1; i < names.size(); ++i)
            QCOMPARE(m_server->requestCount(urlPath(names.at(i))), 0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_dumpFolder.isValid());
        m_dumps = std::make_unique<SmallDumpFiles>(m_dumpFolder.path());
        QVERIFY(m_dumps->isValid());
        // The tests that catch a transfer in the middle need the sets and parts dumps to go
        // out in many slow pieces.
        for (const QString &name : {u"sets"_s, u"parts"_s})
            QVERIFY2(QFileInfo(dump(name)).size() > 10 * slowChunkSize, qPrintable(name));
    }

    void init()
    {
        start();
        serveDumpFolder(m_dumps->folder());
    }

    void cleanup() { stop(); }

    // --- The list of dumps and their addresses

    void theDumpsComeInTheBuildersImportOrder()
    {
        QStringList importOrder;
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
            importOrder.append(table.tableName);
        QCOMPARE(RebrickableDownloader::dumpNames(), importOrder);
        QCOMPARE(RebrickableDownloader::dumpNames().size(), 12);
    }

    void aDumpsAddressIsTheHostAndItsDownloadPath()
    {
        const RebrickableDownloader downloader(u"/tmp/x"_s, QUrl(u"https://cdn.rebrickable.com"_s));
        QCOMPARE(downloader.downloadUrl(u"inventory_parts"_s),
                 QUrl(u"https://cdn.rebrickable.com/media/downloads/inventory_parts.csv.gz"_s));
        const RebrickableDownloader mirrored(u"/tmp/x"_s, QUrl(u"http://127.0.0.1:8080/mirror/"_s));
        QCOMPARE(mirrored.downloadUrl(u"sets"_s), QUrl(u"http://127.0.0.1:8080/mirror/media/downloads/sets.csv.gz"_s));
    }

    void requestsWaitFiveMinutesForDumpsAndOneMinuteForTheCheck()
    {
        const RebrickableDownloader downloader(u"/tmp/x"_s, QUrl(u"https://cdn.rebrickable.com"_s));
        QVERIFY(downloader.downloadTimeout() == 300s);
        QVERIFY(downloader.updateCheckTimeout() == 60s);
    }

    // --- The update check

    void theCheckIsOneHeadRequestForTheSetsDump()
    {
        const auto outcome = check(std::nullopt);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->requestCount("HEAD", urlPath(u"sets"_s)), 1);
        QVERIFY(!QFileInfo::exists(outputDirectory())); // a check writes nothing
    }

    void aHeaderWithNothingStoredIsAnUpdate()
    {
        const auto outcome = check(std::nullopt);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, true);
        QCOMPARE(outcome.value->lastModified.value_or(u"(none)"_s), QString::fromLatin1(publishedDate));
    }

    void theSameHeaderAsStoredIsNoUpdate()
    {
        const auto outcome = check(QString::fromLatin1(publishedDate));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, false);
        QCOMPARE(outcome.value->lastModified.value_or(u"(none)"_s), QString::fromLatin1(publishedDate));
    }

    void aDifferentHeaderIsAnUpdate()
    {
        const auto outcome = check(u"Mon, 02 Mar 2026 06:12:44 GMT"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, true);
        QCOMPARE(outcome.value->lastModified.value_or(u"(none)"_s), QString::fromLatin1(publishedDate));
    }

    void anOlderHeaderIsAnUpdateToo()
    {
        const auto outcome = check(u"Sat, 02 May 2026 06:12:44 GMT"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, true);
    }

    void headersThatDifferOnlyInLetterCaseAreDifferent()
    {
        const auto outcome = check(QString::fromLatin1(publishedDate).toUpper());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, true);
        QCOMPARE(outcome.value->lastModified.value_or(u"(none)"_s), QString::fromLatin1(publishedDate));
    }

    void theHeaderIsKeptExactlyAsSent()
    {
        // Not a date at all: the value is never parsed, only compared.
        m_server->serveFile(urlPath(u"sets"_s), dump(u"sets"_s), {{"Last-Modified", "build 42, 2nd try"}});
        const auto outcome = check(u"build 42, 2nd try"_s);
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value->hasUpdates, false);
        QCOMPARE(outcome.value->lastModified.value_or(u"(none)"_s), u"build 42, 2nd try"_s);
    }

    void aServerWithoutLastModifiedAlwaysReportsUpdatesAndNoDate()
    {
        m_server->serveFile(urlPath(u"sets"_s), dump(u"sets"_s), {});
        for (const std::optional<QString> &stored : {std::optional<QString>(), std::optional<QString>(QString::fromLatin1(publishedDate))}) {
            const auto outcome = check(stored);
            QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
            QCOMPARE(outcome.value->hasUpdates, true);
            QVERIFY(!outcome.value->lastModified);
        }
    }

    void aHeadAnswer304IsAnErrorNotNoChange()
    {
        answerHeadWith(304);
        const auto outcome = check(QString::fromLatin1(publishedDate));
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), DownloadError::Kind::httpError);
        QCOMPARE(error->status(), 304);
        QCOMPARE(error->description(), u"Failed to download sets.csv.gz: HTTP 304"_s);
    }

    void aHeadAnswer404IsAnError()
    {
        answerHeadWith(404);
        const auto outcome = check(QString::fromLatin1(publishedDate));
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->description(), u"Failed to download sets.csv.gz: HTTP 404"_s);
    }

    void aHeadAnswer500IsAnError()
    {
        answerHeadWith(500);
        const auto outcome = check(std::nullopt);
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->description(), u"Failed to download sets.csv.gz: HTTP 500"_s);
    }

    void anUnreachableHostFailsWithTheConnectionError()
    {
        const QUrl deadHost = m_server->baseUrl();
        m_server.reset(); // nobody listens on that port any more
        RebrickableDownloader downloader(outputDirectory(), deadHost);
        const auto outcome = waitForOutcome(downloader.checkForUpdates(std::nullopt));
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::failed);
        QCOMPARE(error->code(), QNetworkReply::ConnectionRefusedError);
        QVERIFY(!error->description().isEmpty());
        m_server = std::make_unique<LoopbackHttpServer>(); // for cleanup()
    }

    void aSilentServerMakesTheCheckTimeOut()
    {
        LoopbackHttpServer::Response response;
        response.delayMilliseconds = 5000;
        m_server->setResponse(urlPath(u"sets"_s), response);
        const auto downloader = makeDownloader();
        downloader->setRequestTimeouts(300s, 200ms);
        const auto outcome = waitForOutcome(downloader->checkForUpdates(std::nullopt));
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::timedOut);
        QCOMPARE(error->description(), u"The request timed out."_s);
    }

    // --- Downloading

    void downloadsAndUnpacksAllTwelveDumps()
    {
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        const QStringList &names = RebrickableDownloader::dumpNames();
        QCOMPARE(outcome.value->size(), 12);
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QString &name = names.at(i);
            const QString csv = output(name + u".csv"_s);
            QCOMPARE(outcome.value->at(i), csv);
            QCOMPARE(QFileInfo(csv).size(), GzipTestFiles::recordedUnpackedSize(dump(name)));
            QCOMPARE(lineCount(csv), expectedRows(name) + 1);
            QVERIFY2(GzipTestFiles::readAll(csv) == m_dumps->csv(name), qPrintable(name));
        }
        // Byte for byte what was published, down to the dumps' CRLF line ends.
        QFile sets(output(u"sets.csv"_s));
        QVERIFY(sets.open(QIODevice::ReadOnly));
        QCOMPARE(sets.readLine(), QByteArray("set_num,name,year,theme_id,num_parts,img_url\r\n"));
    }

    void onlyTheUnpackedFilesRemain()
    {
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QStringList expected;
        for (const QString &name : RebrickableDownloader::dumpNames())
            expected.append(name + u".csv"_s);
        expected.sort();
        QCOMPARE(QDir(outputDirectory()).entryList(QDir::Files | QDir::Hidden, QDir::Name), expected);
    }

    void dumpsAreFetchedOneAfterAnotherInListOrder()
    {
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
        QStringList paths;
        for (const LoopbackHttpServer::Request &request : m_server->requests()) {
            QCOMPARE(request.method, QByteArray("GET"));
            paths.append(QString::fromLatin1(request.path));
        }
        QStringList expected;
        for (const QString &name : RebrickableDownloader::dumpNames())
            expected.append(urlPath(name));
        QCOMPARE(paths, expected);
    }

    void progressIsReportedBeforeEachDumpAndOnceAtTheEnd()
    {
        QList<ProgressCall> calls;
        QList<int> requestsSeen;
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll([&](const QString &name, int index, int total) {
            calls.append({name, index, total});
            requestsSeen.append(m_server->requestCount());
        }));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QList<ProgressCall> expected;
        const QStringList &names = RebrickableDownloader::dumpNames();
        for (int i = 0; i < 12; ++i)
            expected.append({names.at(i), i, 12});
        expected.append({u"inventory_minifigs"_s, 12, 12});
        QCOMPARE(calls.size(), expected.size());
        for (qsizetype i = 0; i < calls.size(); ++i)
            QVERIFY2(calls.at(i) == expected.at(i), qPrintable(calls.at(i).name));
        // Each call comes before its own request goes out.
        for (int i = 0; i < 12; ++i)
            QCOMPARE(requestsSeen.at(i), i);
    }

    void theOutputFolderIsCreatedWithItsParents()
    {
        RebrickableDownloader downloader(m_work->filePath(u"a/b/c"_s), m_server->baseUrl());
        const auto outcome = waitForOutcome(downloader.downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QVERIFY(QFileInfo::exists(m_work->filePath(u"a/b/c/themes.csv"_s)));
    }

    void anOutputFolderThatCannotBeMadeFailsBeforeAnyRequest()
    {
        GzipTestFiles::writeAll(m_work->filePath(u"a-file"_s), "not a folder");
        RebrickableDownloader downloader(m_work->filePath(u"a-file/RebrickableCSV"_s), m_server->baseUrl());
        const auto outcome = waitForOutcome(downloader.downloadAll());
        const auto error = outcome.error<FileOperationError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), FileOperationError::Kind::createDirectoryFailed);
        QCOMPARE(m_server->requestCount(), 0);
    }

    void leftoversOfABrokenRunAreReplacedNotAppendedTo()
    {
        QVERIFY(QDir().mkpath(outputDirectory()));
        const QByteArray junk(3 * 1024 * 1024, 'j');
        for (const QString &name : {u"themes"_s, u"sets"_s}) {
            GzipTestFiles::writeAll(output(name + u".csv"_s), junk);
            GzipTestFiles::writeAll(output(name + u".csv.gz"_s), junk);
            GzipTestFiles::writeAll(output(name + u".csv.gz.part"_s), junk);
        }
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        for (const QString &name : {u"themes"_s, u"sets"_s}) {
            QCOMPARE(QFileInfo(output(name + u".csv"_s)).size(), GzipTestFiles::recordedUnpackedSize(dump(name)));
            QCOMPARE(lineCount(output(name + u".csv"_s)), expectedRows(name) + 1);
            QVERIFY(!QFileInfo::exists(output(name + u".csv.gz"_s)));
            QVERIFY(!QFileInfo::exists(output(name + u".csv.gz.part"_s)));
        }
    }

    void aSetsDumpWithOnlyItsHeaderDownloadsAsAnEmptyTable()
    {
        // Not the downloader's business to judge content: it delivers what was published,
        // and the catalog's own validation then finds no sets.
        const QByteArray header = "set_num,name,year,theme_id,num_parts,img_url\n";
        m_server->serveBytes(urlPath(u"sets"_s), GzipTestFiles::compress(header), 200,
                             {{"Last-Modified", publishedDate}});
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(GzipTestFiles::readAll(output(u"sets.csv"_s)), header);
        QCOMPARE(lineCount(output(u"inventory_parts.csv"_s)), expectedRows(u"inventory_parts"_s) + 1);
    }

    void aDumpMarkedAsGzipEncodedStillArrivesUnpacked()
    {
        m_server->serveFile(urlPath(u"colors"_s), dump(u"colors"_s), {{"Content-Encoding", "gzip"}});
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(QFileInfo(output(u"colors.csv"_s)).size(), GzipTestFiles::recordedUnpackedSize(dump(u"colors"_s)));
    }

    void theBodyGoesToDiskUnderATemporaryNameWhileItArrives()
    {
        serveSlowly(u"sets"_s);
        const auto downloader = makeDownloader();
        auto running = captureOutcome(downloader->downloadAll());
        const QString partial = output(u"sets.csv.gz.part"_s);
        const qint64 full = QFileInfo(dump(u"sets"_s)).size();
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(partial).size() > 0, 20000);
        QVERIFY(QFileInfo(partial).size() < full);
        QVERIFY(!QFileInfo::exists(output(u"sets.csv.gz"_s)));
        QVERIFY(!QFileInfo::exists(output(u"sets.csv"_s)));
        const auto outcome = QCoro::waitFor(std::move(running));
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        QCOMPARE(QFileInfo(output(u"sets.csv"_s)).size(), GzipTestFiles::recordedUnpackedSize(dump(u"sets"_s)));
    }

    // --- Faults

    void aServerThatDiesMidDownloadEndsItWithNoHalfFileLeft()
    {
        serveSlowly(u"sets"_s);
        const auto downloader = makeDownloader();
        auto running = captureOutcome(downloader->downloadAll());
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(output(u"sets.csv.gz.part"_s)).size() > 0, 20000);
        m_server->close();
        const auto outcome = QCoro::waitFor(std::move(running));
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        // Qt reports the broken connection either itself or as a clean end short of the
        // announced length; both are a failure of the transfer.
        QVERIFY(error->kind() != TransportError::Kind::timedOut);
        verifyStoppedAt(u"sets"_s);
    }

    void aConnectionCutShortOfTheContentLengthFails()
    {
        serveSlowly(u"parts"_s, QFileInfo(dump(u"parts"_s)).size() / 2);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        verifyStoppedAt(u"parts"_s);
    }

    void aDumpAnswered404StopsTheDownloadNamingIt()
    {
        m_server->serveBytes(urlPath(u"parts"_s), "Not Found", 404);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), DownloadError::Kind::httpError);
        QCOMPARE(error->name(), u"parts"_s);
        QCOMPARE(error->status(), 404);
        QCOMPARE(error->description(), u"Failed to download parts.csv.gz: HTTP 404"_s);
        verifyStoppedAt(u"parts"_s);
    }

    void aDumpAnswered500StopsTheDownloadNamingIt()
    {
        m_server->serveBytes(urlPath(u"inventory_parts"_s), "Internal error", 500);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->description(), u"Failed to download inventory_parts.csv.gz: HTTP 500"_s);
        verifyStoppedAt(u"inventory_parts"_s);
    }

    void aRefusalDoesNotTouchALeftoverOfTheSameDump()
    {
        QVERIFY(QDir().mkpath(outputDirectory()));
        GzipTestFiles::writeAll(output(u"themes.csv.gz"_s), "old");
        m_server->serveBytes(urlPath(u"themes"_s), "gone", 410);
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        QVERIFY(outcome.error<DownloadError>());
        QCOMPARE(GzipTestFiles::readAll(output(u"themes.csv.gz"_s)), QByteArray("old"));
        QVERIFY(!QFileInfo::exists(output(u"themes.csv.gz.part"_s)));
    }

    void aTruncatedGzipFailsToDecompress()
    {
        const QByteArray packed = GzipTestFiles::readAll(dump(u"sets"_s));
        m_server->serveBytes(urlPath(u"sets"_s), packed.left(packed.size() / 2));
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        const auto error = outcome.error<DownloadError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), DownloadError::Kind::decompressionFailed);
        QCOMPARE(error->description(), u"Failed to decompress sets.csv.gz"_s);
        // Whatever unpacked before the cut stays for the caller to clean up, as do the
        // dumps before it; nothing after it was asked for.
        QVERIFY(QFileInfo(output(u"sets.csv"_s)).size() < GzipTestFiles::recordedUnpackedSize(dump(u"sets"_s)));
        QCOMPARE(lineCount(output(u"minifigs.csv"_s)), expectedRows(u"minifigs"_s) + 1);
        QCOMPARE(m_server->requestCount(urlPath(u"inventories"_s)), 0);
    }

    void aStalledDownloadTimesOut()
    {
        LoopbackHttpServer::Response response;
        response.filePath = dump(u"colors"_s);
        response.delayMilliseconds = 5000;
        m_server->setResponse(urlPath(u"colors"_s), response);
        const auto downloader = makeDownloader();
        downloader->setRequestTimeouts(300ms, 60s);
        const auto outcome = waitForOutcome(downloader->downloadAll());
        const auto error = outcome.error<TransportError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), TransportError::Kind::timedOut);
        verifyStoppedAt(u"colors"_s);
    }

    // --- Stopping and taking turns

    void aStopRequestInTheMiddleOfADumpCancelsAndLeavesNoPartialFile()
    {
        serveSlowly(u"sets"_s);
        std::stop_source stop;
        const auto downloader = makeDownloader();
        auto running = captureOutcome(downloader->downloadAll({}, stop.get_token()));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(output(u"sets.csv.gz.part"_s)).size() > 0, 20000);
        stop.request_stop();
        const auto outcome = QCoro::waitFor(std::move(running));
        QVERIFY2(outcome.error<CancellationError>(), qPrintable(outcome.failureText()));
        verifyStoppedAt(u"sets"_s);
    }

    void aStopRequestedBeforehandSendsNoRequest()
    {
        std::stop_source stop;
        stop.request_stop();
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll({}, stop.get_token()));
        QVERIFY(outcome.error<CancellationError>());
        QCOMPARE(m_server->requestCount(), 0);
    }

    void operationsOnOneDownloaderTakeTurns()
    {
        const auto downloader = makeDownloader();
        auto download = captureOutcome(downloader->downloadAll());
        auto check = captureOutcome(downloader->checkForUpdates(std::nullopt));
        const auto downloaded = QCoro::waitFor(std::move(download));
        const auto checked = QCoro::waitFor(std::move(check));
        QVERIFY2(downloaded.value, qPrintable(downloaded.failureText()));
        QVERIFY2(checked.value, qPrintable(checked.failureText()));
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
        const QList<LoopbackHttpServer::Request> requests = m_server->requests();
        QCOMPARE(requests.size(), 13);
        QCOMPARE(requests.last().method, QByteArray("HEAD")); // asked second, served second
    }
};

QTEST_GUILESS_MAIN(RebrickableDownloaderTest)
#include "RebrickableDownloaderTest.moc"
