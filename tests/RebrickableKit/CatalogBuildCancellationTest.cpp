// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <stop_token>
#include <thread>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

using Builder = RebrickableDatabaseBuilder;

namespace {

#ifdef Q_OS_UNIX
// One dump replaced by a named pipe that a thread of the test feeds. The builder blocks in
// opening the pipe until the feeding side opens it too, so once that open returns the
// builder has passed its check before this table and cannot finish the table before the
// pipe is closed: a stop requested in between falls inside the table, every time, with no
// progress handler to time it.
class DumpPipe
{
public:
    // Delivers `firstPart`, requests the stop, then delivers `rest` and closes the pipe.
    DumpPipe(const QString &path, QByteArray firstPart, QByteArray rest, std::stop_source stop)
        : m_path(QFile::encodeName(path))
    {
        QFile::remove(path);
        m_valid = ::mkfifo(m_path.constData(), 0600) == 0;
        if (!m_valid)
            return;
        m_feeder = std::thread([this, firstPart = std::move(firstPart), rest = std::move(rest), stop]() mutable {
            const int pipe = ::open(m_path.constData(), O_WRONLY);
            if (pipe < 0)
                return;
            writeAll(pipe, firstPart);
            stop.request_stop();
            writeAll(pipe, rest);
            ::close(pipe);
        });
    }

    DumpPipe(const DumpPipe &) = delete;
    DumpPipe &operator=(const DumpPipe &) = delete;

    ~DumpPipe()
    {
        if (!m_feeder.joinable())
            return;
        // A build that ended without opening the pipe leaves the feeder waiting for a
        // reader: a reader that does not wait lets it through. The dumps are far smaller
        // than a pipe's buffer, so its writes do not block on this idle reader either.
        const int reader = ::open(m_path.constData(), O_RDONLY | O_NONBLOCK);
        m_feeder.join();
        if (reader >= 0)
            ::close(reader);
    }

    bool isValid() const { return m_valid; }

private:
    static void writeAll(int pipe, const QByteArray &bytes)
    {
        qsizetype written = 0;
        while (written < bytes.size()) {
            const ssize_t count = ::write(pipe, bytes.constData() + written, size_t(bytes.size() - written));
            if (count <= 0)
                return;
            written += count;
        }
    }

    QByteArray m_path;
    bool m_valid = false;
    std::thread m_feeder;
};
#endif

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// Cancellation of a build without a progress handler: the builder looks at the stop token
// before each table and once more before the indexes, whoever requests the stop and
// whether or not anyone listens to the build's phases. A stop is never looked at inside a
// table, so the table under way is always finished whole first.
class CatalogBuildCancellationTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_output;
    QString m_complete; // the small catalog built without a stop, to compare tables with

    QString output(const QString &name) const { return m_output.filePath(name); }

    // Tables before `firstNotImported` hold what a full build stores, the others nothing,
    // and nothing of the build's end (indexes, full-text table, version) was done.
    void verifyStoppedBefore(const QString &database, qsizetype firstNotImported) const
    {
        const QList<CatalogSchema::ImportTable> &tables = CatalogSchema::importTables();
        for (qsizetype index = 0; index < tables.size(); ++index) {
            const QString &name = tables.at(index).tableName;
            const QStringList rows = CatalogTableDump::rows(database, name);
            if (index < firstNotImported)
                QVERIFY2(rows == CatalogTableDump::rows(m_complete, name), qPrintable(name + u" is not whole"_s));
            else
                QVERIFY2(rows.isEmpty(), qPrintable(name + u" was imported after the stop"_s));
        }
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND name LIKE 'idx_%'"_s), u"0"_s);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sqlite_master WHERE name = 'sets_fts'"_s), u"0"_s);
        QCOMPARE(CatalogTableDump::value(database, u"PRAGMA user_version"_s), u"0"_s);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        m_complete = output(u"complete.sqlite"_s);
        Builder::build(dumps.path(), m_complete);
        // Every table has rows, so that a table imported after the stop would show.
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
            QVERIFY2(!CatalogTableDump::rows(m_complete, table.tableName).isEmpty(), qPrintable(table.tableName));
    }

    void aStopRequestedBeforeTheBuildEndsItBeforeTheFirstTable()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        const QString database = output(u"before.sqlite"_s);
        std::stop_source stop;
        stop.request_stop();
        QVERIFY_THROWS_EXCEPTION(CancellationError, Builder::build(dumps.path(), database, {}, stop.get_token()));
        // The builder cleans nothing up: the unfinished file is the caller's to remove.
        QVERIFY(QFileInfo::exists(database));
        verifyStoppedBefore(database, 0);
    }

    void aStopRequestedDuringATableEndsTheBuildAtTheNextCheck_data()
    {
        QTest::addColumn<int>("table");
        const QList<CatalogSchema::ImportTable> &tables = CatalogSchema::importTables();
        for (int index = 0; index < tables.size(); ++index) {
            const QString next = index + 1 < tables.size() ? u"before "_s + tables.at(index + 1).tableName
                                                           : u"before the indexes"_s;
            QTest::addRow("during %s, stops %s", qPrintable(tables.at(index).tableName), qPrintable(next)) << index;
        }
    }

    void aStopRequestedDuringATableEndsTheBuildAtTheNextCheck()
    {
#ifdef Q_OS_UNIX
        QFETCH(int, table);
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        const QString csvPath = dumps.filePath(CatalogSchema::importTables().at(table).fileName());
        const QByteArray content = fileBytes(csvPath);
        QVERIFY(!content.isEmpty());
        const QString database = output(u"during-"_s + QString::number(table) + u".sqlite"_s);
        std::stop_source stop;
        {
            // The stop comes the moment the builder has opened the dump, before any byte.
            DumpPipe pipe(csvPath, {}, content, stop);
            QVERIFY(pipe.isValid());
            QVERIFY_THROWS_EXCEPTION(CancellationError, Builder::build(dumps.path(), database, {}, stop.get_token()));
        }
        QVERIFY(stop.stop_requested());
        QVERIFY(QFileInfo::exists(database));
        verifyStoppedBefore(database, table + 1);
#else
        QSKIP("Needs named pipes (mkfifo)");
#endif
    }

    void aStopRequestedHalfwayThroughATablesRowsLetsThatTableFinishWhole()
    {
#ifdef Q_OS_UNIX
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        const QList<CatalogSchema::ImportTable> &tables = CatalogSchema::importTables();
        qsizetype sets = 0;
        while (tables.at(sets).tableName != u"sets"_s)
            ++sets;
        const QString csvPath = dumps.filePath(tables.at(sets).fileName());
        const QByteArray content = fileBytes(csvPath);
        // The header and the first half of the rows, then the stop, then the other half.
        const QList<QByteArray> lines = content.split('\n');
        QVERIFY(lines.size() >= 4);
        const qsizetype half = 1 + (lines.size() - 1) / 2;
        const QByteArray firstPart = lines.mid(0, half).join('\n') + '\n';
        const QByteArray rest = content.mid(firstPart.size());
        QCOMPARE(firstPart + rest, content);
        QVERIFY(!rest.trimmed().isEmpty());

        const QString database = output(u"halfway.sqlite"_s);
        std::stop_source stop;
        {
            DumpPipe pipe(csvPath, firstPart, rest, stop);
            QVERIFY(pipe.isValid());
            QVERIFY_THROWS_EXCEPTION(CancellationError, Builder::build(dumps.path(), database, {}, stop.get_token()));
        }
        QCOMPARE(CatalogTableDump::rows(database, u"sets"_s), CatalogTableDump::rows(m_complete, u"sets"_s));
        verifyStoppedBefore(database, sets + 1);
#else
        QSKIP("Needs named pipes (mkfifo)");
#endif
    }
};

QTEST_GUILESS_MAIN(CatalogBuildCancellationTest)
#include "CatalogBuildCancellationTest.moc"
