// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/StoreConnection.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// A writer killed with SIGKILL while it saves must leave a store that opens, passes the
// integrity check, and holds all of that save or none of it: killed at moments in time
// around a large save, and killed at known moments inside its COMMIT, on both sides of
// the commit point.
class StoreCrashSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void writerKilledDuringALargeSaveLeavesAllOrNothing_data()
    {
        QTest::addColumn<int>("delayMilliseconds");
        for (int delay : {0, 5, 20, 60, 150, 400})
            QTest::addRow("killed after %d ms", delay) << delay;
        QTest::addRow("killed after the save") << -1;
    }

    void writerKilledDuringALargeSaveLeavesAllOrNothing()
    {
        QFETCH(int, delayMilliseconds);
        constexpr int largeSave = 40000;
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        QProcess writer;
        writer.start(QStringLiteral(STORE_WRITER_PROCESS), {u"write"_s, path, QString::number(largeSave)});
        QVERIFY(writer.waitForStarted());
        QByteArray output;
        while (!output.contains("saving\n")) {
            QVERIFY2(writer.waitForReadyRead(30000), "the writer never reached its large save");
            output += writer.readAllStandardOutput();
        }
        if (delayMilliseconds < 0) {
            while (!output.contains("saved\n")) {
                QVERIFY2(writer.waitForReadyRead(60000), "the writer never finished its large save");
                output += writer.readAllStandardOutput();
            }
        } else if (delayMilliseconds > 0) {
            QTest::qSleep(delayMilliseconds); // the writer is another process: nothing to await here
        }
        ::kill(pid_t(writer.processId()), SIGKILL);
        QVERIFY(writer.waitForFinished(30000));
        output += writer.readAllStandardOutput();
        const bool finished = output.contains("saved\n");
        qint64 copies = -1;
        verifyReopenedStore(path, largeSave, copies);
        if (QTest::currentTestFailed())
            return;
        if (finished)
            QCOMPARE(copies, qint64(10 + largeSave));
        qInfo() << "killed after" << delayMilliseconds << "ms:" << (copies == 10 ? "none" : "all") << "of the save";
    }

    // The writer stops itself at a known moment inside the COMMIT (CommitPointShim) and is
    // killed there, on either side of the commit point: before the frame that carries the
    // commit mark is written whole nothing of the save survives, after it all of it does,
    // synced or not, since the kernel keeps what a killed process wrote.
    void writerKilledInsideTheCommitLeavesAllOrNothing_data()
    {
        QTest::addColumn<QString>("moment");
        QTest::addColumn<int>("copies");
        QTest::addColumn<bool>("committed");
        const struct
        {
            const char *moment;
            bool committed;
        } moments[] = {
            {"beforeFirstWalWrite", false}, {"beforeCommitFrame", false}, {"beforeCommitFramePage", false},
            {"beforeWalSync", true},        {"afterWalSync", true},
        };
        // A small save fits the page cache and reaches the WAL only at COMMIT; a large one
        // spills pages to the WAL before it, and its COMMIT rewrites their checksums.
        for (const int copies : {50, 20000}) {
            for (const auto &entry : moments)
                QTest::addRow("%s, %d copies", entry.moment, copies) << QString::fromLatin1(entry.moment) << copies
                                                                     << entry.committed;
        }
    }

    void writerKilledInsideTheCommitLeavesAllOrNothing()
    {
        QFETCH(QString, moment);
        QFETCH(int, copies);
        QFETCH(bool, committed);
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        QProcess writer;
        writer.start(QStringLiteral(STORE_WRITER_PROCESS),
                     {u"commit-point"_s, path, QString::number(copies), moment});
        QVERIFY(writer.waitForStarted());
        QByteArray output;
        const QByteArray blocked = "blocked " + moment.toUtf8() + '\n';
        while (!output.contains(blocked)) {
            QVERIFY2(writer.state() == QProcess::Running, output.constData());
            QVERIFY2(writer.waitForReadyRead(60000), "the writer never stopped inside its commit");
            output += writer.readAllStandardOutput();
        }
        QVERIFY(!output.contains("saved\n"));
        ::kill(pid_t(writer.processId()), SIGKILL);
        QVERIFY(writer.waitForFinished(30000));
        QCOMPARE(writer.exitStatus(), QProcess::CrashExit);

        qint64 found = -1;
        verifyReopenedStore(path, copies, found);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(found, committed ? qint64(10 + copies) : qint64(10));
    }

private:
    // Reopens the store after a crash: it passes the integrity check, holds the first
    // 10 copies and all or none of the `largeSave` copies of the save that was cut, and
    // still takes new work. Sets `copies` to the number found before that new work.
    static void verifyReopenedStore(const QString &path, int largeSave, qint64 &copies)
    {
        {
            StoreConnection connection(path, false, false);
            auto check = connection.prepare(u"PRAGMA integrity_check"_s);
            QVERIFY(check.step());
            QCOMPARE(check.string(0), u"ok"_s);
        }
        auto store = PersistentContainer::open(path);
        auto &context = store->viewContext();
        copies = context.count(FetchRequest<BrickSet>());
        QVERIFY2(copies == 10 || copies == 10 + largeSave, qPrintable(u"%1 copies after the crash"_s.arg(copies)));
        QCOMPARE(context.count(FetchRequest<CatalogSet>()), copies);
        const auto set = context.insert(catalogSet(u"99999-1"_s, u"After the crash"_s));
        context.insert(newCopy(set.objectID));
        context.save();
        QCOMPARE(context.count(FetchRequest<BrickSet>()), copies + 1);
    }
};

QTEST_GUILESS_MAIN(StoreCrashSafetyTest)
#include "StoreCrashSafetyTest.moc"
