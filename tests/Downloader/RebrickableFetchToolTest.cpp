// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-fetch as a process, pointed at a loopback server through TESSALOOM_ENDPOINTS,
// with dumps made in the test. RebrickableFetchToolFullDumpTest runs it on the full-size ones.
#include "DumpHostFixture.h"
#include "GzipTestFiles.h"
#include "SmallDumpFiles.h"
#include "TestEnvironment.h"

#include <RebrickableKit/RebrickableDatabase.h>
#include <RebrickableKit/RebrickableDownloader.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDatabase;
using RebrickableKit::RebrickableDownloader;

class RebrickableFetchToolTest : public QObject, private DumpHostFixture
{
    Q_OBJECT

private:
    ToolRun fetch(const QStringList &arguments, const QUrl &baseUrl = {}) const
    {
        return runTool(QStringLiteral(REBRICKABLE_FETCH), arguments, baseUrl);
    }

    // Every dump as a small gzip file, under `prefix` in front of the download path.
    void serveSmallDumps(const QString &prefix = {})
    {
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveBytes(prefix + urlPath(name), GzipTestFiles::compress("id,name\n1,x\n"));
    }

    static void verifyNoSecretIn(const ToolRun &result)
    {
        for (const QString &secret : secretParts()) {
            QVERIFY2(!result.output.contains(secret), qPrintable(result.output));
            QVERIFY2(!result.errors.contains(secret), qPrintable(result.errors));
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void init() { start(); }

    void cleanup() { stop(); }

    void fetchesAndUnpacksTheTwelveDumpsWithProgress()
    {
        QVERIFY(QDir().mkpath(folder(u"served"_s)));
        const SmallDumpFiles dumps(folder(u"served"_s));
        QVERIFY(dumps.isValid());
        serveDumpFolder(dumps.folder());
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(m_server->baseUrl().toString() + u"/media/downloads/"_s));
        QVERIFY(result.output.contains(u"[ 1/12] themes.csv.gz"_s));
        QVERIFY(result.output.contains(u"[10/12] inventory_parts.csv.gz"_s));
        QVERIFY(result.output.contains(u"[12/12] inventory_minifigs.csv.gz"_s));
        QVERIFY(result.output.contains(u"Unpacked 12 files"_s));
        for (const QString &name : RebrickableDownloader::dumpNames()) {
            const QString csv = folder(u"dumps/"_s + name + u".csv"_s);
            QCOMPARE(QFileInfo(csv).size(), GzipTestFiles::recordedUnpackedSize(dumps.path(name)));
            QVERIFY2(GzipTestFiles::readAll(csv) == dumps.csv(name), qPrintable(name));
        }
        QCOMPARE(QDir(folder(u"dumps"_s)).entryList(QDir::Files).size(), 12);
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
    }

    void fetchThenBuildMakesACatalogByHand()
    {
        // The bundled subset of the dumps, packed as the host serves them.
        const QDir sample(QStringLiteral(SAMPLE_CATALOG_DIR));
        for (const QString &name : RebrickableDownloader::dumpNames()) {
            const QByteArray plain = GzipTestFiles::readAll(sample.filePath(name + u".csv"_s));
            QVERIFY2(!plain.isEmpty(), qPrintable(name));
            m_server->serveBytes(urlPath(name), GzipTestFiles::compress(plain));
        }
        const ToolRun fetched = fetch({folder(u"dumps"_s)});
        QVERIFY2(fetched.exitCode == 0, qPrintable(fetched.errors));

        const QString database = folder(u"rebrickable.sqlite"_s);
        const ToolRun built = runTool(QStringLiteral(REBRICKABLE_BUILD_DB), {folder(u"dumps"_s), database});
        QVERIFY2(built.exitCode == 0, qPrintable(built.errors));
        RebrickableDatabase catalog(database);
        const auto gears = catalog.set(u"001-1"_s);
        QVERIFY(gears);
        QCOMPARE(gears->name, u"Gears"_s);
    }

    void aRefusedDumpExitsWithItsSentenceAndNoHalfFile()
    {
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveBytes(urlPath(name), GzipTestFiles::compress("id,name\n1,x\n"));
        m_server->serveBytes(urlPath(u"sets"_s), "Not Found", 404);
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"rebrickable-fetch: Failed to download sets.csv.gz: HTTP 404"_s),
                 qPrintable(result.errors));
        QVERIFY(QFileInfo::exists(folder(u"dumps/minifigs.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/sets.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/sets.csv.gz.part"_s)));
        QCOMPARE(m_server->requestCount(urlPath(u"inventories"_s)), 0);
    }

    void aDamagedDumpExitsWithTheDecompressionSentenceAndRemovesTheHalfFile()
    {
        const QByteArray packed = GzipTestFiles::compress(QByteArray(2000000, 'a'));
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveBytes(urlPath(name), packed);
        m_server->serveBytes(urlPath(u"colors"_s), packed.left(packed.size() / 2));
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"Failed to decompress colors.csv.gz"_s), qPrintable(result.errors));
        QVERIFY(QFileInfo::exists(folder(u"dumps/themes.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/colors.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/colors.csv.gz"_s)));
    }

    void anHtmlPageInPlaceOfADumpExitsWithTheDecompressionSentence()
    {
        serveSmallDumps();
        m_server->serveBytes(urlPath(u"sets"_s), "<!DOCTYPE html><html><body>Service Unavailable</body></html>", 200,
                             {{"Content-Type", "text/html"}});
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"rebrickable-fetch: Failed to decompress sets.csv.gz"_s), qPrintable(result.errors));
        QVERIFY(!result.output.contains(u"Unpacked"_s));
        QVERIFY(QFileInfo::exists(folder(u"dumps/minifigs.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/sets.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/sets.csv.gz"_s)));
        QCOMPARE(m_server->requestCount(urlPath(u"inventories"_s)), 0);
    }

    void anEmptyDumpExitsWithTheDecompressionSentence()
    {
        serveSmallDumps();
        m_server->serveBytes(urlPath(u"parts"_s), QByteArray());
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"rebrickable-fetch: Failed to decompress parts.csv.gz"_s), qPrintable(result.errors));
        QVERIFY(QFileInfo::exists(folder(u"dumps/part_categories.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/parts.csv"_s)));
        QCOMPARE(m_server->requestCount(urlPath(u"part_relationships"_s)), 0);
    }

    void aRedirectLoopExitsSayingSo()
    {
        serveSmallDumps();
        m_server->serveBytes(urlPath(u"colors"_s), QByteArray(), 301,
                             {{"Location", m_server->url(urlPath(u"colors"_s)).toEncoded()}});
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"The server at 127.0.0.1 kept redirecting the request in a loop."_s),
                 qPrintable(result.errors));
    }

    void credentialsInTheHostsAddressAreNeverPrinted()
    {
        serveSmallDumps(u"/x"_s);
        m_server->serveBytes(u"/x"_s + urlPath(u"themes"_s), QByteArray(), 302,
                             {{"Location", m_server->url(u"/x"_s + urlPath(u"themes"_s)).toEncoded()}});
        const ToolRun looped = fetch({folder(u"dumps"_s)}, addressWithSecrets());
        QCOMPARE(looped.exitCode, 1);
        QVERIFY2(looped.output.contains(m_server->baseUrl().toString() + u"/x/media/downloads/NAME.csv.gz"_s),
                 qPrintable(looped.output));
        verifyNoSecretIn(looped);

        const ToolRun checked = fetch({u"--check"_s}, addressWithSecrets());
        QVERIFY2(checked.exitCode == 0, qPrintable(checked.errors));
        QVERIFY2(checked.output.contains(u"Checking "_s + m_server->baseUrl().toString() + u"/x/media/downloads/sets.csv.gz\n"_s),
                 qPrintable(checked.output));
        verifyNoSecretIn(checked);

        m_server->close();
        const ToolRun refused = fetch({folder(u"dumps"_s)}, addressWithSecrets());
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.errors.contains(u"rebrickable-fetch: "_s), qPrintable(refused.errors));
        verifyNoSecretIn(refused);
    }

    void anUnreachableHostExitsWithTheConnectionError()
    {
        const QString deadHost = m_server->baseUrl().toString();
        m_server->close();
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"rebrickable-fetch: "_s), qPrintable(result.errors));
        QVERIFY2(result.errors.contains(deadHost), qPrintable(result.errors));
    }

    void checkPrintsTheLastModifiedHeaderAndDownloadsNothing()
    {
        m_server->serveBytes(urlPath(u"sets"_s), "x", 200, {{"Last-Modified", "Thu, 02 Apr 2026 06:12:44 GMT"}});
        const ToolRun result = fetch({u"--check"_s});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(u"Last-Modified: Thu, 02 Apr 2026 06:12:44 GMT"_s));
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->requestCount("HEAD", urlPath(u"sets"_s)), 1);
    }

    void withoutAFolderItShowsItsUsage()
    {
        const ToolRun result = fetch({});
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.errors.contains(u"DIR"_s));
        QCOMPARE(m_server->requestCount(), 0);
    }

    void aFileInPlaceOfTheFolderIsNamedAndFails()
    {
        GzipTestFiles::writeAll(folder(u"taken"_s), "x");
        const ToolRun result = fetch({folder(u"taken"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"Not a directory: "_s + folder(u"taken"_s)));
    }
};

QTEST_GUILESS_MAIN(RebrickableFetchToolTest)
#include "RebrickableFetchToolTest.moc"
