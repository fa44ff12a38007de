// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-fetch as a process, pointed at a loopback server through TESSALOOM_ENDPOINTS.
#include "GzipTestFiles.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include <RebrickableKit/RebrickableDatabase.h>
#include <RebrickableKit/RebrickableDownloader.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDatabase;
using RebrickableKit::RebrickableDownloader;

namespace {

QString urlPath(const QString &name)
{
    return u"/media/downloads/"_s + name + u".csv.gz"_s;
}

} // namespace

class RebrickableFetchToolTest : public QObject
{
    Q_OBJECT

private:
    struct Run
    {
        int exitCode = -1;
        QString output;
        QString errors;
    };

    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_work;

    // The server runs on its own thread, so it answers while this thread waits here.
    Run run(const QString &program, const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TESSALOOM_ENDPOINTS"_s, u"rebrickable="_s + m_server->baseUrl().toString());
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        if (!process.waitForFinished(240000))
            return {};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
    }

    Run fetch(const QStringList &arguments) const { return run(QStringLiteral(REBRICKABLE_FETCH), arguments); }

    QString folder(const QString &name) const { return m_work->filePath(name); }

    void serveFullDumps()
    {
        const QString dumps = TestEnvironment::sharedDumpDirectory();
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveFile(urlPath(name), dumps + u'/' + name + u".csv.gz"_s,
                                {{"Last-Modified", "Thu, 02 Apr 2026 06:12:44 GMT"}});
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void init()
    {
        m_server = std::make_unique<LoopbackHttpServer>();
        QVERIFY(m_server->listen());
        m_work = std::make_unique<QTemporaryDir>();
        QVERIFY(m_work->isValid());
    }

    void cleanup()
    {
        m_server.reset();
        m_work.reset();
    }

    void fetchesAndUnpacksTheTwelveFullSizeDumpsWithProgress()
    {
        if (TestEnvironment::sharedDumpDirectory().isEmpty())
            QSKIP("The full-size dumps are not beside the checkout");
        serveFullDumps();
        const Run result = fetch({folder(u"dumps"_s)});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(m_server->baseUrl().toString() + u"/media/downloads/"_s));
        QVERIFY(result.output.contains(u"[ 1/12] themes.csv.gz"_s));
        QVERIFY(result.output.contains(u"[10/12] inventory_parts.csv.gz"_s));
        QVERIFY(result.output.contains(u"[12/12] inventory_minifigs.csv.gz"_s));
        QVERIFY(result.output.contains(u"Unpacked 12 files"_s));
        const QString dumps = TestEnvironment::sharedDumpDirectory();
        for (const QString &name : RebrickableDownloader::dumpNames()) {
            const QFileInfo csv(folder(u"dumps/"_s + name + u".csv"_s));
            QCOMPARE(csv.size(), GzipTestFiles::recordedUnpackedSize(dumps + u'/' + name + u".csv.gz"_s));
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
        const Run fetched = fetch({folder(u"dumps"_s)});
        QVERIFY2(fetched.exitCode == 0, qPrintable(fetched.errors));

        const QString database = folder(u"rebrickable.sqlite"_s);
        const Run built = run(QStringLiteral(REBRICKABLE_BUILD_DB), {folder(u"dumps"_s), database});
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
        const Run result = fetch({folder(u"dumps"_s)});
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
        const Run result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"Failed to decompress colors.csv.gz"_s), qPrintable(result.errors));
        QVERIFY(QFileInfo::exists(folder(u"dumps/themes.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/colors.csv"_s)));
        QVERIFY(!QFileInfo::exists(folder(u"dumps/colors.csv.gz"_s)));
    }

    void anUnreachableHostExitsWithTheConnectionError()
    {
        const QString deadHost = m_server->baseUrl().toString();
        m_server->close();
        const Run result = fetch({folder(u"dumps"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(u"rebrickable-fetch: "_s), qPrintable(result.errors));
        QVERIFY2(result.errors.contains(deadHost), qPrintable(result.errors));
    }

    void checkPrintsTheLastModifiedHeaderAndDownloadsNothing()
    {
        m_server->serveBytes(urlPath(u"sets"_s), "x", 200, {{"Last-Modified", "Thu, 02 Apr 2026 06:12:44 GMT"}});
        const Run result = fetch({u"--check"_s});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(u"Last-Modified: Thu, 02 Apr 2026 06:12:44 GMT"_s));
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->requestCount("HEAD", urlPath(u"sets"_s)), 1);
    }

    void withoutAFolderItShowsItsUsage()
    {
        const Run result = fetch({});
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.errors.contains(u"DIR"_s));
        QCOMPARE(m_server->requestCount(), 0);
    }

    void aFileInPlaceOfTheFolderIsNamedAndFails()
    {
        GzipTestFiles::writeAll(folder(u"taken"_s), "x");
        const Run result = fetch({folder(u"taken"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"Not a directory: "_s + folder(u"taken"_s)));
    }
};

QTEST_GUILESS_MAIN(RebrickableFetchToolTest)
#include "RebrickableFetchToolTest.moc"
