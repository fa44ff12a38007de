// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "ChecklistFixture.h"
#include "TestEnvironment.h"

#include "ViewModels/PartsChecklistViewModel.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace ChecklistFixture;

// "Mark all complete" on a set of 1,000 lines, in a process killed with SIGKILL while it
// saves: after a restart the copy's counts are all those from before the action or all
// those after it, never a mix, and the store passes its integrity check.
class PartsChecklistCrashTest : public QObject
{
    Q_OBJECT

private:
    static constexpr int lineCount = 1000;
    static constexpr int tickedBefore = 10;
    QTemporaryDir m_folder;
    QString m_catalogPath;
    int m_run = 0;

    // A catalog whose set "7000-1" has 1,000 lines: parts p0000…p0999 in ten colours,
    // quantities 1 to 7.
    static CatalogFixture thousandLineFixture()
    {
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Test Theme,\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n");
        fixture.addRows(u"sets"_s, "7000-1,Thousand Lines,2024,1,4000,\n");
        fixture.addRows(u"inventories"_s, "1,1,7000-1\n");
        QByteArray colors;
        for (int color = 0; color < 10; ++color)
            colors += QByteArray::number(color) + ",Colour " + QByteArray::number(color) + ",00000" + QByteArray::number(color) + ",False\n";
        fixture.addRows(u"colors"_s, colors);
        QByteArray parts;
        QByteArray lines;
        for (int line = 0; line < lineCount; ++line) {
            const QByteArray number = u"p%1"_s.arg(line, 4, 10, QChar(u'0')).toLatin1();
            parts += number + ",Part " + number + ",11,Plastic\n";
            lines += "1," + number + ',' + QByteArray::number(line % 10) + ',' + QByteArray::number(1 + line % 7)
                + ",False,\n";
        }
        fixture.addRows(u"parts"_s, parts);
        fixture.addRows(u"inventory_parts"_s, lines);
        return fixture;
    }

    // A store holding one copy of "7000-1" with the first ten lines ticked once; returns
    // its path and the counts it holds.
    QString prepareStore(QMap<QString, int> &before, QMap<QString, int> &after)
    {
        const QString path = m_folder.filePath(u"run%1/Tessaloom.sqlite"_s.arg(++m_run));
        QDir().mkpath(QFileInfo(path).path());
        auto store = PersistentContainer::open(path);
        const BrickSet copy = saveCopyOf(store->viewContext(), u"7000-1"_s);
        PartsChecklistViewModel model(copy, store->viewContext());
        model.loadItems();
        if (!QTest::qWaitFor([&model] { return !model.isLoading(); }, 30000))
            qFatal("the checklist never finished loading");
        if (model.items().size() != lineCount)
            qFatal("the checklist has %d lines", int(model.items().size()));
        for (int index = 0; index < tickedBefore; ++index)
            model.increment(model.items().at(index));
        before = storedCounts(path, copy.objectID);
        after.clear();
        for (const ChecklistItem &item : model.items())
            after.insert(item.id, item.quantity);
        return path;
    }

    static void verifyAllOrNothing(const QString &path, const QMap<QString, int> &before,
                                   const QMap<QString, int> &after, bool &wasAfter)
    {
        {
            StoreConnection connection(path, false, false);
            auto check = connection.prepare(u"PRAGMA integrity_check"_s);
            QVERIFY(check.step());
            QCOMPARE(check.string(0), u"ok"_s);
        }
        auto store = PersistentContainer::open(path);
        const QList<BrickSet> copies = store->viewContext().fetch(FetchRequest<BrickSet>());
        QCOMPARE(copies.size(), 1);
        const QMap<QString, int> found = storedCounts(path, copies.first().objectID);
        QVERIFY2(found == before || found == after,
                 qPrintable(u"%1 entries after the crash, neither the %2 from before nor the %3 after"_s
                                .arg(found.size())
                                .arg(before.size())
                                .arg(after.size())));
        wasAfter = found == after;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        m_catalogPath = thousandLineFixture().build(m_folder.filePath(u"catalog"_s));
        QVERIFY(!m_catalogPath.isEmpty());
        const auto catalog = RebrickableCatalog::openFile(m_catalogPath);
        QVERIFY(catalog);
        RebrickableCatalog::replaceShared(catalog);
    }

    void killedDuringMarkAllCompleteLeavesAllCountsBeforeOrAllAfter_data()
    {
        QTest::addColumn<int>("delayMilliseconds");
        for (int delay : {0, 2, 10, 30, 80, 200})
            QTest::addRow("killed after %d ms", delay) << delay;
        QTest::addRow("killed after the save") << -1;
    }

    void killedDuringMarkAllCompleteLeavesAllCountsBeforeOrAllAfter()
    {
        QFETCH(int, delayMilliseconds);
        QMap<QString, int> before;
        QMap<QString, int> after;
        const QString path = prepareStore(before, after);
        QCOMPARE(before.size(), tickedBefore);
        QCOMPARE(after.size(), lineCount);

        QProcess writer;
        writer.start(QStringLiteral(CHECKLIST_WRITER_PROCESS), {path, m_catalogPath});
        QVERIFY(writer.waitForStarted());
        QByteArray output;
        while (!output.contains("marking\n")) {
            QVERIFY2(writer.waitForReadyRead(60000), "the writer never reached its action");
            output += writer.readAllStandardOutput();
        }
        if (delayMilliseconds < 0) {
            while (!output.contains("marked\n")) {
                QVERIFY2(writer.waitForReadyRead(60000), "the writer never finished its action");
                output += writer.readAllStandardOutput();
            }
        } else if (delayMilliseconds > 0) {
            QTest::qSleep(delayMilliseconds); // the writer is another process: nothing to await
        }
        ::kill(pid_t(writer.processId()), SIGKILL);
        QVERIFY(writer.waitForFinished(30000));
        output += writer.readAllStandardOutput();
        const bool finished = output.contains("marked\n");

        bool wasAfter = false;
        verifyAllOrNothing(path, before, after, wasAfter);
        if (QTest::currentTestFailed())
            return;
        if (finished)
            QVERIFY(wasAfter);
        qInfo() << "killed after" << delayMilliseconds << "ms:" << (wasAfter ? "after" : "before") << "the action";
    }

    // Stopped at known moments inside the COMMIT and killed there: before the frame that
    // carries the commit mark is whole, the counts from before; after it, those after.
    void killedInsideTheCommitLeavesAllCountsBeforeOrAllAfter_data()
    {
        QTest::addColumn<QString>("moment");
        QTest::addColumn<bool>("committed");
        QTest::addRow("beforeFirstWalWrite") << u"beforeFirstWalWrite"_s << false;
        QTest::addRow("beforeCommitFramePage") << u"beforeCommitFramePage"_s << false;
        QTest::addRow("beforeWalSync") << u"beforeWalSync"_s << true;
    }

    void killedInsideTheCommitLeavesAllCountsBeforeOrAllAfter()
    {
        QFETCH(QString, moment);
        QFETCH(bool, committed);
        QMap<QString, int> before;
        QMap<QString, int> after;
        const QString path = prepareStore(before, after);

        QProcess writer;
        writer.start(QStringLiteral(CHECKLIST_WRITER_PROCESS), {path, m_catalogPath, moment});
        QVERIFY(writer.waitForStarted());
        QByteArray output;
        const QByteArray blocked = "blocked " + moment.toUtf8() + '\n';
        while (!output.contains(blocked)) {
            QVERIFY2(writer.state() == QProcess::Running, output.constData());
            QVERIFY2(writer.waitForReadyRead(60000), "the writer never stopped inside its commit");
            output += writer.readAllStandardOutput();
        }
        QVERIFY(!output.contains("marked\n"));
        ::kill(pid_t(writer.processId()), SIGKILL);
        QVERIFY(writer.waitForFinished(30000));
        QCOMPARE(writer.exitStatus(), QProcess::CrashExit);

        bool wasAfter = false;
        verifyAllOrNothing(path, before, after, wasAfter);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(wasAfter, committed);
    }
};

QTEST_GUILESS_MAIN(PartsChecklistCrashTest)
#include "PartsChecklistCrashTest.moc"
