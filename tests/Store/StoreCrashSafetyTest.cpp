// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/StoreConnection.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// A writer killed with SIGKILL while it commits a large save must leave a store that
// opens, passes the integrity check, and holds all of that save or none of it.
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

        {
            StoreConnection connection(path, false, false);
            auto check = connection.prepare(u"PRAGMA integrity_check"_s);
            QVERIFY(check.step());
            QCOMPARE(check.text(0), u"ok"_s);
        }
        auto store = PersistentContainer::open(path);
        const qint64 copies = store->viewContext().count(FetchRequest<BrickSet>());
        const qint64 sets = store->viewContext().count(FetchRequest<CatalogSet>());
        QVERIFY2(copies == 10 || copies == 10 + largeSave, qPrintable(QString::number(copies)));
        QCOMPARE(sets, copies);
        if (finished)
            QCOMPARE(copies, qint64(10 + largeSave));
        qInfo() << "killed after" << delayMilliseconds << "ms:" << (copies == 10 ? "none" : "all") << "of the save";

        // The store still takes new work after the crash.
        auto &context = store->viewContext();
        const auto set = context.insert(catalogSet(u"99999-1"_s, u"After the crash"_s));
        context.insert(newCopy(set.objectID));
        context.save();
        QCOMPARE(context.count(FetchRequest<BrickSet>()), copies + 1);
    }
};

QTEST_GUILESS_MAIN(StoreCrashSafetyTest)
#include "StoreCrashSafetyTest.moc"
