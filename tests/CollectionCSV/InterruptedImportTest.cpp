// SPDX-License-Identifier: GPL-3.0-or-later
// An import of 10,000 rows killed with SIGKILL at many moments, from its first progress
// report to inside its save: after a restart the store holds the whole import or none of
// it, and passes SQLite's integrity check.
#include "CollectionCSVFixture.h"
#include "TestEnvironment.h"

#include "CSVValueFormat.h"
#include "Services/RebrickableCatalog.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QSet>
#include <QTest>

#include <sys/stat.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace CollectionCSVFixture;

namespace {

// The collection the store holds before each import.
constexpr int preparedCopyCount = 300;
constexpr int preparedCatalogSetCount = 60;
constexpr int preparedWishlistCount = 20;
// The file: every owned row a new copy, on catalog sets the store does not have yet, and
// wishlist rows for sets not on the wishlist yet.
constexpr int fileRowCount = 10'000;
constexpr int fileWishlistCount = 500;
constexpr int fileCopyCount = fileRowCount - fileWishlistCount;
constexpr int fileCatalogSetCount = 1'000;
// The import reports every 500 rows; the last report inside its loop comes before the
// 500 rows left and the save, the one after comes once the save is done.
constexpr qint64 lastReportBeforeSave = 9'500;

constexpr int readyTimeoutMilliseconds = 30'000;

// What a kill waits for before SIGKILL goes out.
enum class Trigger {
    progressLine,  // the line "progress <value>" has arrived
    walBytes,      // the store's WAL has reached <value> per mille of what the whole save wrote
    timeAfterLastReport, // <value> per mille of the time the finished import took from its
                         // last report before the save to its report after it
    mainFileGrows, // the store's main file has grown: a checkpoint copies the WAL into it
    doneLine,      // the line "done …" has arrived: the store is about to close
};

// Which outcomes a kill point allows; every one of them allows only these two.
enum class Outcome { none, all, partial };

const char *outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::none:
        return "none";
    case Outcome::all:
        return "all";
    case Outcome::partial:
        return "partial";
    }
    return "";
}

qint64 fileSize(const QString &path)
{
    struct stat status{};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? qint64(status.st_size) : 0;
}

QString ownedRow(int index, const QString &number, const QUuid &id)
{
    return row({{u"id"_s, CSVValueFormat::uuidText(id)},
                {u"set_number"_s, number},
                {u"set_name"_s, u"Imported Set "_s + number},
                {u"year"_s, QString::number(1990 + index % 36)},
                {u"theme"_s, u"Theme "_s + QString::number(index % 40)},
                {u"piece_count"_s, QString::number(100 + index % 3000)},
                {u"date_added"_s, u"2024-03-0%1T10:20:30Z"_s.arg(1 + index % 9)},
                {u"is_favorite"_s, CSVValueFormat::booleanText(index % 7 == 0).toString()},
                {u"rating"_s, QString::number(index % 6)},
                {u"notes"_s, u"\"Bought with \"\"care\"\", copy "_s + QString::number(index) + u"\""_s},
                {u"acquisition_type"_s, u"purchased"_s},
                {u"acquisition_source"_s, u"LEGO Store"_s},
                {u"price_paid"_s, QString::number(5 + index % 900) + u".99"_s},
                {u"price_currency"_s, u"USD"_s},
                {u"box_condition"_s, u"good"_s},
                {u"built_status"_s, u"built"_s},
                {u"entry_type"_s, u"owned"_s}});
}

QString wishlistRow(int index, const QString &number)
{
    return row({{u"set_number"_s, number},
                {u"set_name"_s, u"Wanted "_s + QString::number(index)},
                {u"year"_s, QString::number(2000 + index % 26)},
                {u"piece_count"_s, QString::number(50 + index)},
                {u"entry_type"_s, u"wishlist"_s}});
}

// The keys an outcome is judged by.
QSet<QUuid> copyIds(const QList<BrickSet> &copies)
{
    QSet<QUuid> ids;
    for (const BrickSet &copy : copies)
        ids.insert(copy.id);
    return ids;
}

QSet<QString> catalogSetNumbers(const QList<CatalogSet> &sets)
{
    QSet<QString> numbers;
    for (const CatalogSet &set : sets)
        numbers.insert(set.setNumber.value_or(QString()));
    return numbers;
}

QSet<QString> wishlistNumbers(const QList<WishlistItem> &items)
{
    QSet<QString> numbers;
    for (const WishlistItem &item : items)
        numbers.insert(item.setNumber.value_or(QString()));
    return numbers;
}

template <typename T>
bool containsEvery(const QList<T> &found, const QList<T> &expected)
{
    return std::all_of(expected.cbegin(), expected.cend(),
                       [&found](const T &object) { return found.contains(object); });
}

} // namespace

class InterruptedImportTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_preparedStore; // the prepared collection's file, closed, without a WAL
    StoreContents m_prepared;
    QString m_csvPath;
    QSet<QUuid> m_fileCopyIds;
    QSet<QString> m_fileCatalogSetNumbers;
    QSet<QString> m_fileWishlistNumbers;
    // Measured on the import allowed to finish, to aim the kills into its save.
    qint64 m_walBytesOfTheImport = 0;
    qint64 m_lastReportToSavedMilliseconds = 0;
    QStringList m_outcomes;
    int m_runNumber = 0;

    // A copy of the prepared store in a folder of its own; its path.
    QString freshStore()
    {
        const QString directory = m_folder.filePath(u"run%1"_s.arg(++m_runNumber));
        QDir().mkpath(directory);
        const QString path = directory + u"/Tessaloom.sqlite"_s;
        return QFile::copy(m_preparedStore, path) ? path : QString();
    }

    // Reads the child's output that has arrived, without waiting.
    static void collect(QProcess &importer, QByteArray &output)
    {
        importer.waitForReadyRead(0);
        output += importer.readAllStandardOutput();
    }

    // The store reopened after the import ended: passes the integrity and foreign key
    // checks, then is judged against the prepared collection and the file.
    Outcome reopenAndJudge(const QString &path, QString &description)
    {
        StoreContents after;
        {
            // The restart: the store opens as the application opens it at start.
            const std::unique_ptr<PersistentContainer> store = PersistentContainer::open(path);
            after = contents(*store);
        }
        sqlite3 *database = nullptr;
        QStringList integrity;
        QStringList foreignKeys;
        if (sqlite3_open_v2(QFile::encodeName(path).constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
            sqlite3_stmt *statement = nullptr;
            if (sqlite3_prepare_v2(database, "PRAGMA integrity_check", -1, &statement, nullptr) == SQLITE_OK) {
                while (sqlite3_step(statement) == SQLITE_ROW)
                    integrity.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))));
            }
            sqlite3_finalize(statement);
            if (sqlite3_prepare_v2(database, "PRAGMA foreign_key_check", -1, &statement, nullptr) == SQLITE_OK) {
                while (sqlite3_step(statement) == SQLITE_ROW)
                    foreignKeys.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))));
            }
            sqlite3_finalize(statement);
        }
        sqlite3_close(database);
        if (integrity != QStringList{u"ok"_s}) {
            description = u"integrity check: "_s + integrity.join(u"; "_s);
            return Outcome::partial;
        }
        if (!foreignKeys.isEmpty()) {
            description = u"rows with a broken reference in: "_s + foreignKeys.join(u", "_s);
            return Outcome::partial;
        }

        description = u"%1 copies, %2 catalog sets, %3 wishlist items"_s.arg(after.copies.size())
                          .arg(after.catalogSets.size())
                          .arg(after.wishlist.size());
        if (after == m_prepared)
            return Outcome::none;
        const bool holdsAll = after.copies.size() == preparedCopyCount + fileCopyCount
            && after.catalogSets.size() == preparedCatalogSetCount + fileCatalogSetCount
            && after.wishlist.size() == preparedWishlistCount + fileWishlistCount
            && copyIds(after.copies) == (copyIds(m_prepared.copies) | m_fileCopyIds)
            && catalogSetNumbers(after.catalogSets) == (catalogSetNumbers(m_prepared.catalogSets) | m_fileCatalogSetNumbers)
            && wishlistNumbers(after.wishlist) == (wishlistNumbers(m_prepared.wishlist) | m_fileWishlistNumbers)
            // The file names none of the prepared objects: they are there as they were.
            && containsEvery(after.copies, m_prepared.copies) && containsEvery(after.catalogSets, m_prepared.catalogSets)
            && containsEvery(after.wishlist, m_prepared.wishlist);
        return holdsAll ? Outcome::all : Outcome::partial;
    }

    // Starts the import on a fresh copy of the prepared store, kills it once `trigger`
    // holds and `delayMilliseconds` more have passed (never, for a negative delay), and
    // judges the store. `what` names the kill point in the record of outcomes.
    Outcome runImport(Trigger trigger, qint64 value, int delayMilliseconds, const QString &what)
    {
        const QString path = freshStore();
        if (path.isEmpty()) {
            QTest::qFail("the prepared store could not be copied", __FILE__, __LINE__);
            return Outcome::partial;
        }
        const QString walPath = path + u"-wal"_s;
        const qint64 mainFileBytes = fileSize(path);
        const QByteArray progressLine = "progress " + QByteArray::number(value) + '\n';
        const qint64 walThreshold = std::max<qint64>(1, m_walBytesOfTheImport * value / 1000);
        const qint64 timeThreshold = m_lastReportToSavedMilliseconds * value / 1000;
        const QByteArray lastReportLine = "progress " + QByteArray::number(lastReportBeforeSave) + '\n';
        const QByteArray savedReportLine = "progress " + QByteArray::number(fileRowCount) + '\n';
        QElapsedTimer sinceLastReport;

        QProcess importer;
        importer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        importer.start(QStringLiteral(INTERRUPTED_IMPORT_PROCESS), {path, m_csvPath});
        if (!importer.waitForStarted()) {
            QTest::qFail("the import process did not start", __FILE__, __LINE__);
            return Outcome::partial;
        }
        QByteArray output;
        qint64 walBytesSeen = 0;
        const auto reached = [&] {
            switch (trigger) {
            case Trigger::progressLine:
                return output.contains(progressLine);
            case Trigger::walBytes:
                return walBytesSeen >= walThreshold;
            case Trigger::timeAfterLastReport:
                return sinceLastReport.isValid() && sinceLastReport.elapsed() >= timeThreshold;
            case Trigger::mainFileGrows:
                return fileSize(path) > mainFileBytes;
            case Trigger::doneLine:
                return output.contains("done ");
            }
            return false;
        };
        QElapsedTimer waiting;
        waiting.start();
        bool triggered = false;
        // The child is another process: nothing here can be awaited as a signal, so the
        // files and the pipe are watched as closely as a loop allows.
        while (importer.state() == QProcess::Running && waiting.elapsed() < readyTimeoutMilliseconds) {
            collect(importer, output);
            walBytesSeen = std::max(walBytesSeen, fileSize(walPath));
            if (!sinceLastReport.isValid() && output.contains(lastReportLine))
                sinceLastReport.start();
            if (delayMilliseconds < 0 && sinceLastReport.isValid() && output.contains(savedReportLine))
                m_lastReportToSavedMilliseconds = sinceLastReport.elapsed();
            if (reached()) {
                triggered = true;
                break;
            }
        }
        if (delayMilliseconds > 0)
            QTest::qSleep(delayMilliseconds);
        if (delayMilliseconds >= 0 && importer.state() == QProcess::Running)
            ::kill(pid_t(importer.processId()), SIGKILL);
        // waitForFinished() is false for a process that has ended already.
        if (importer.state() != QProcess::NotRunning && !importer.waitForFinished(readyTimeoutMilliseconds)) {
            importer.kill();
            importer.waitForFinished();
            QTest::qFail("the import process did not end", __FILE__, __LINE__);
            return Outcome::partial;
        }
        output += importer.readAllStandardOutput();
        const bool killed = importer.exitStatus() == QProcess::CrashExit;
        const bool finished = output.contains("done ");
        if (delayMilliseconds < 0)
            m_walBytesOfTheImport = walBytesSeen;

        QString description;
        const Outcome outcome = reopenAndJudge(path, description);
        const QList<QByteArray> lines = output.trimmed().split('\n');
        const QString record = u"%1: %2 (%3; %4 after \"%5\"%6; WAL %7 bytes)"_s.arg(
            what, QString::fromLatin1(outcomeName(outcome)), description,
            killed ? u"killed"_s : u"exited"_s, QString::fromUtf8(lines.last()),
            triggered ? QString() : u", kill point not reached"_s, QString::number(walBytesSeen));
        qInfo().noquote() << record;
        m_outcomes.append(record);
        if (finished && outcome != Outcome::all)
            QTest::qFail(qPrintable(u"the import finished, yet the store holds "_s + description), __FILE__, __LINE__);
        return outcome;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        // As in the import process: no catalog, whose look-ups only add image addresses.
        RebrickableCatalog::replaceShared(nullptr);

        // The prepared collection, made through the import itself, then closed so that
        // each run starts from a file without a WAL.
        QStringList prepared;
        for (int index = 0; index < preparedCopyCount; ++index) {
            const QString number = QString::number(10000 + index % preparedCatalogSetCount) + u"-1"_s;
            prepared.append(ownedRow(index, number, QUuid::createUuid()));
        }
        for (int index = 0; index < preparedWishlistCount; ++index)
            prepared.append(wishlistRow(index, QString::number(20000 + index) + u"-1"_s));
        {
            const std::unique_ptr<PersistentContainer> store = openStore(m_folder);
            m_preparedStore = store->path();
            const CSVExportImportService::ImportResult result = importText(*store, file(prepared));
            QCOMPARE(result.created, qint64(preparedCopyCount + preparedWishlistCount));
            m_prepared = contents(*store);
        }
        QCOMPARE(m_prepared.copies.size(), preparedCopyCount);
        QCOMPARE(m_prepared.catalogSets.size(), preparedCatalogSetCount);
        QCOMPARE(m_prepared.wishlist.size(), preparedWishlistCount);
        QVERIFY2(!QFile::exists(m_preparedStore + u"-wal"_s), "closing the store took its WAL away");

        // The file: owned rows and wishlist rows mixed, as an export of an older
        // collection with the wishlist behind would not be, so that a cut anywhere in the
        // file falls among both kinds.
        QStringList rows;
        rows.reserve(fileRowCount);
        int wishlistWritten = 0;
        for (int index = 0; index < fileRowCount; ++index) {
            if (index % (fileRowCount / fileWishlistCount) == 7) {
                const QString number = QString::number(50000 + wishlistWritten) + u"-1"_s;
                rows.append(wishlistRow(wishlistWritten++, number));
                m_fileWishlistNumbers.insert(number);
                continue;
            }
            const QString number = QString::number(40000 + m_fileCopyIds.size() % fileCatalogSetCount) + u"-1"_s;
            const QUuid id = QUuid::createUuid();
            rows.append(ownedRow(index, number, id));
            m_fileCopyIds.insert(id);
            m_fileCatalogSetNumbers.insert(number);
        }
        QCOMPARE(wishlistWritten, fileWishlistCount);
        QCOMPARE(m_fileCopyIds.size(), fileCopyCount);
        QCOMPARE(m_fileCatalogSetNumbers.size(), fileCatalogSetCount);
        m_csvPath = m_folder.filePath(u"collection.csv"_s);
        QSaveFile csv(m_csvPath);
        QVERIFY(csv.open(QIODevice::WriteOnly));
        csv.write(file(rows).toUtf8());
        QVERIFY(csv.commit());
    }

    void cleanupTestCase()
    {
        qInfo().noquote() << "Outcome of each run:\n " << m_outcomes.join(u"\n  "_s);
    }

    // Runs first: the WAL it writes tells the kills below where the save is.
    void importAllowedToFinishKeepsAllOfIt()
    {
        const Outcome outcome = runImport(Trigger::progressLine, fileRowCount, -1, u"allowed to finish"_s);
        QCOMPARE(outcomeName(outcome), outcomeName(Outcome::all));
        QVERIFY2(m_walBytesOfTheImport > 0, "the save wrote through the WAL");
        QVERIFY2(m_lastReportToSavedMilliseconds > 0, "the time from the last report to the save's end was measured");
        qInfo() << "From the last report before the save to the one after it:" << m_lastReportToSavedMilliseconds
                << "ms; the WAL grew to" << m_walBytesOfTheImport << "bytes";
    }

    void importKilledAtItsFirstProgressReportKeepsNoneOfIt()
    {
        const Outcome outcome = runImport(Trigger::progressLine, 500, 0, u"first progress report"_s);
        QCOMPARE(outcomeName(outcome), outcomeName(Outcome::none));
    }

    void importKilledAtAnyMomentKeepsAllOfItOrNoneOfIt_data()
    {
        QTest::addColumn<int>("trigger");
        QTest::addColumn<qint64>("value");
        QTest::addColumn<int>("delayMilliseconds");
        QTest::addRow("middle progress report") << int(Trigger::progressLine) << qint64(5000) << 0;
        QTest::addRow("last progress report before the save") << int(Trigger::progressLine) << lastReportBeforeSave << 0;
        for (const int delay : {2, 5, 10, 20})
            QTest::addRow("%d ms after the last report", delay) << int(Trigger::progressLine) << lastReportBeforeSave << delay;
        // The same, spread over the time the finished import took to its end, whatever
        // this machine's speed: most of them fall into the save.
        for (const qint64 perMille : {300, 600, 900})
            QTest::addRow("%lld per mille of the time after the last report", perMille)
                << int(Trigger::timeAfterLastReport) << perMille << 0;
        // The save writes its pages to the WAL, the commit frame last; then the checkpoint
        // copies them into the main file.
        for (const qint64 perMille : {0, 250, 500, 900, 1000})
            QTest::addRow("WAL at %lld per mille of the save", perMille) << int(Trigger::walBytes) << perMille << 0;
        // The save of this file stays below SQLite's automatic checkpoint, so the main file
        // grows when the store closes after the import.
        QTest::addRow("main file growing in a checkpoint") << int(Trigger::mainFileGrows) << qint64(0) << 0;
        QTest::addRow("report after the save") << int(Trigger::progressLine) << qint64(fileRowCount) << 0;
        QTest::addRow("import returned, store closing") << int(Trigger::doneLine) << qint64(0) << 0;
    }

    void importKilledAtAnyMomentKeepsAllOfItOrNoneOfIt()
    {
        QFETCH(int, trigger);
        QFETCH(qint64, value);
        QFETCH(int, delayMilliseconds);
        QVERIFY2(m_walBytesOfTheImport > 0 && m_lastReportToSavedMilliseconds > 0, "the finished import was measured");
        const Outcome outcome = runImport(Trigger(trigger), value, delayMilliseconds,
                                          QString::fromUtf8(QTest::currentDataTag()));
        QVERIFY2(outcome != Outcome::partial, "the import was kept in part");
        // Once the save has reported back, the import is the store's.
        if ((Trigger(trigger) == Trigger::progressLine && value == fileRowCount) || Trigger(trigger) == Trigger::doneLine)
            QCOMPARE(outcomeName(outcome), outcomeName(Outcome::all));
    }
};

QTEST_GUILESS_MAIN(InterruptedImportTest)
#include "InterruptedImportTest.moc"
