// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-fetch as a process on the full-size dumps, served by a loopback server it finds
// through TESSALOOM_ENDPOINTS. Skipped whole when the dumps are not beside the checkout;
// RebrickableFetchToolTest runs the same check on small dumps.
#include "GzipTestFiles.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include <RebrickableKit/RebrickableDownloader.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDownloader;

namespace {

QString urlPath(const QString &name)
{
    return u"/media/downloads/"_s + name + u".csv.gz"_s;
}

} // namespace

class RebrickableFetchToolFullDumpTest : public QObject
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
    QString m_dumps;

    // The server runs on its own thread, so it answers while this thread waits here.
    Run fetch(const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TESSALOOM_ENDPOINTS"_s, u"rebrickable="_s + m_server->baseUrl().toString());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(REBRICKABLE_FETCH), arguments);
        if (!process.waitForFinished(240000))
            return {};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
    }

    QString folder(const QString &name) const { return m_work->filePath(name); }
    QString dump(const QString &name) const { return m_dumps + u'/' + name + u".csv.gz"_s; }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_dumps = TestEnvironment::sharedDumpDirectory();
        if (m_dumps.isEmpty())
            QSKIP("The full-size dumps are not beside the checkout");
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
        for (const QString &name : RebrickableDownloader::dumpNames())
            m_server->serveFile(urlPath(name), dump(name), {{"Last-Modified", "Thu, 02 Apr 2026 06:12:44 GMT"}});
        const Run result = fetch({folder(u"dumps"_s)});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(m_server->baseUrl().toString() + u"/media/downloads/"_s));
        QVERIFY(result.output.contains(u"[ 1/12] themes.csv.gz"_s));
        QVERIFY(result.output.contains(u"[10/12] inventory_parts.csv.gz"_s));
        QVERIFY(result.output.contains(u"[12/12] inventory_minifigs.csv.gz"_s));
        QVERIFY(result.output.contains(u"Unpacked 12 files"_s));
        for (const QString &name : RebrickableDownloader::dumpNames()) {
            const QFileInfo csv(folder(u"dumps/"_s + name + u".csv"_s));
            QCOMPARE(csv.size(), GzipTestFiles::recordedUnpackedSize(dump(name)));
        }
        QCOMPARE(QDir(folder(u"dumps"_s)).entryList(QDir::Files).size(), 12);
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
    }
};

QTEST_GUILESS_MAIN(RebrickableFetchToolFullDumpTest)
#include "RebrickableFetchToolFullDumpTest.moc"
