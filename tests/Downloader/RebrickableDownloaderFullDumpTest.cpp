// SPDX-License-Identifier: GPL-3.0-or-later
// The downloader against a real HTTP server on 127.0.0.1 that serves the full-size dumps
// byte for byte as the download host does: their real sizes and row counts, and an event
// loop that keeps turning while the largest of them unpacks. Skipped whole when the dumps
// are not beside the checkout; RebrickableDownloaderTest covers the rest with small dumps.
#include "DumpHostFixture.h"
#include "GzipTestFiles.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <RebrickableKit/RebrickableDownloader.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

namespace {

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

} // namespace

class RebrickableDownloaderFullDumpTest : public QObject, private DumpHostFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        if (!findFullDumps())
            QSKIP("The full-size dumps are not beside the checkout");
    }

    void init()
    {
        start();
        serveDumpFolder(m_fullDumps);
    }

    void cleanup() { stop(); }

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
            QCOMPARE(QFileInfo(csv).size(), GzipTestFiles::recordedUnpackedSize(fullDump(name)));
            QCOMPARE(lineCount(csv), expectedRows().value(name) + 1);
        }
        // Byte for byte what was published, down to the dumps' CRLF line ends.
        QFile sets(output(u"sets.csv"_s));
        QVERIFY(sets.open(QIODevice::ReadOnly));
        QCOMPARE(sets.readLine(), QByteArray("set_num,name,year,theme_id,num_parts,img_url\r\n"));
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
};

QTEST_GUILESS_MAIN(RebrickableDownloaderFullDumpTest)
#include "RebrickableDownloaderFullDumpTest.moc"
