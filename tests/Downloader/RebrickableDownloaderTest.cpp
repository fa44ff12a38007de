// SPDX-License-Identifier: GPL-3.0-or-later
// The downloader against a real HTTP server on 127.0.0.1 that serves the full-size dumps
// byte for byte as the download host does, and against a server that misbehaves.
#include "GzipTestFiles.h"
#include "LoopbackHttpServer.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/DownloadError.h>
#include <RebrickableKit/FileOperationError.h>
#include <RebrickableKit/RebrickableDownloader.h>
#include <RebrickableKit/TransportError.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>
#include <stop_token>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace RebrickableKit;

namespace {

using Headers = QList<QPair<QByteArray, QByteArray>>;

const QByteArray publishedDate = "Thu, 02 Apr 2026 06:12:44 GMT";

// Data rows of each full-size dump (lines after the header).
const QHash<QString, qint64> &expectedRows()
{
    static const QHash<QString, qint64> rows = {
        {u"themes"_s, 492}, {u"colors"_s, 275}, {u"part_categories"_s, 76}, {u"parts"_s, 61770},
        {u"part_relationships"_s, 35577}, {u"elements"_s, 108920}, {u"minifigs"_s, 16663},
        {u"sets"_s, 26452}, {u"inventories"_s, 45032}, {u"inventory_parts"_s, 1371949},
        {u"inventory_sets"_s, 4936}, {u"inventory_minifigs"_s, 24894},
    };
    return rows;
}

QString urlPath(const QString &name)
{
    return u"/media/downloads/"_s + name + u".csv.gz"_s;
}

qint64 lineCount(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    qint64 lines = 0;
    while (!file.atEnd())
        lines += file.read(1 << 20).count('\n');
    return lines;
}

struct ProgressCall
{
    QString name;
    int index = 0;
    int total = 0;
    bool operator==(const ProgressCall &) const = default;
};

} // namespace

class RebrickableDownloaderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_work;
    QString m_dumps;

    QString outputDirectory() const { return m_work->filePath(u"RebrickableCSV"_s); }
    QString output(const QString &fileName) const { return outputDirectory() + u'/' + fileName; }
    QString dump(const QString &name) const { return m_dumps + u'/' + name + u".csv.gz"_s; }

    std::unique_ptr<RebrickableDownloader> makeDownloader() const
    {
        return std::make_unique<RebrickableDownloader>(outputDirectory(), m_server->baseUrl());
    }

    void serveAllDumps(const Headers &headers = {{"Last-Modified", publishedDate}})
    {
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveFile(urlPath(name), dump(name), headers);
    }

    // A response for `name` that goes out slowly enough to be caught in the middle.
    void serveSlowly(const QString &name, std::optional<qint64> cutAfter = std::nullopt)
    {
        LoopbackHttpServer::Response response;
        response.filePath = dump(name);
        response.chunkSize = 16 * 1024;
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
                QVERIFY2(lineCount(csv) == expectedRows().value(names.at(i)) + 1, qPrintable(csv));
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
        m_dumps = TestEnvironment::sharedDumpDirectory();
    }

    void init()
    {
        if (m_dumps.isEmpty())
            QSKIP("The full-size dumps are not beside the checkout");
        m_server = std::make_unique<LoopbackHttpServer>();
        QVERIFY(m_server->listen());
        m_work = std::make_unique<QTemporaryDir>();
        QVERIFY(m_work->isValid());
        serveAllDumps();
    }

    void cleanup()
    {
        m_server.reset();
        m_work.reset();
    }

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

    void downloadsAndUnpacksAllTwelveFullSizeDumps()
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
            QCOMPARE(lineCount(csv), expectedRows().value(name) + 1);
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
            QCOMPARE(lineCount(output(name + u".csv"_s)), expectedRows().value(name) + 1);
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
        QCOMPARE(lineCount(output(u"inventory_parts.csv"_s)), expectedRows().value(u"inventory_parts"_s) + 1);
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

    void theEventLoopKeepsTurningWhileDumpsDownloadAndUnpack()
    {
        // A timer that should fire every few milliseconds; the longest gap between two of its
        // ticks is the longest time the thread was kept from its events. Unpacking the largest
        // dump alone takes several hundred milliseconds, so the bound catches it being done
        // on this thread, with room left for a busy machine.
        QElapsedTimer clock;
        qint64 lastTick = 0;
        qint64 longestGap = 0;
        QTimer ticker;
        ticker.setInterval(2);
        connect(&ticker, &QTimer::timeout, this, [&] {
            const qint64 now = clock.elapsed();
            longestGap = std::max(longestGap, now - lastTick);
            lastTick = now;
        });
        clock.start();
        ticker.start();
        const auto outcome = waitForOutcome(makeDownloader()->downloadAll());
        ticker.stop();
        QVERIFY2(outcome.value, qPrintable(outcome.failureText()));
        qInfo("Longest gap between event loop ticks during the download: %lld ms", longestGap);
        QVERIFY2(longestGap < 200, qPrintable(QString::number(longestGap)));
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
        serveSlowly(u"parts"_s, 100000);
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
        QCOMPARE(lineCount(output(u"minifigs.csv"_s)), expectedRows().value(u"minifigs"_s) + 1);
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
