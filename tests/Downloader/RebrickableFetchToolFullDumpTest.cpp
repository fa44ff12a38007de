// SPDX-License-Identifier: GPL-3.0-or-later
// rebrickable-fetch as a process on the full-size dumps, served by a loopback server it finds
// through TESSALOOM_ENDPOINTS. Skipped whole when the dumps are not beside the checkout;
// RebrickableFetchToolTest runs the same check on small dumps.
#include "DumpHostFixture.h"
#include "GzipTestFiles.h"
#include "TestEnvironment.h"

#include <RebrickableKit/RebrickableDownloader.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDownloader;

class RebrickableFetchToolFullDumpTest : public QObject, private DumpHostFixture
{
    Q_OBJECT

private:
    ToolRun fetch(const QStringList &arguments) const { return runTool(QStringLiteral(REBRICKABLE_FETCH), arguments); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        if (!findFullDumps())
            QSKIP("The full-size dumps are not beside the checkout");
    }

    void init() { start(); }

    void cleanup() { stop(); }

    void fetchesAndUnpacksTheTwelveFullSizeDumpsWithProgress()
    {
        serveDumpFolder(m_fullDumps);
        const ToolRun result = fetch({folder(u"dumps"_s)});
        QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
        QVERIFY(result.output.contains(m_server->baseUrl().toString() + u"/media/downloads/"_s));
        QVERIFY(result.output.contains(u"[ 1/12] themes.csv.gz"_s));
        QVERIFY(result.output.contains(u"[10/12] inventory_parts.csv.gz"_s));
        QVERIFY(result.output.contains(u"[12/12] inventory_minifigs.csv.gz"_s));
        QVERIFY(result.output.contains(u"Unpacked 12 files"_s));
        for (const QString &name : RebrickableDownloader::dumpNames()) {
            const QFileInfo csv(folder(u"dumps/"_s + name + u".csv"_s));
            QCOMPARE(csv.size(), GzipTestFiles::recordedUnpackedSize(fullDump(name)));
        }
        QCOMPARE(QDir(folder(u"dumps"_s)).entryList(QDir::Files).size(), 12);
        QCOMPARE(m_server->maximumInFlightRequests(), 1);
    }
};

QTEST_GUILESS_MAIN(RebrickableFetchToolFullDumpTest)
#include "RebrickableFetchToolFullDumpTest.moc"
