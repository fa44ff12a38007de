// SPDX-License-Identifier: GPL-3.0-or-later
// The collection's export and import at collection scale: 10,000 copies with most of their
// details filled in and 500 wishlist items. Figures, each the median of --runs runs:
//   export:   every copy and wishlist item read from the store, the file's text built and
//             turned into UTF-8 bytes (target 500 ms);
//   import:   that text into an empty store on a background context, one save (target 3 s);
//   reimport: the same text into the store that import filled, every row an update (3 s);
//   reimportChanged: then a text in which every copy's acquisition source differs, so that
//             every update writes (3 s);
//   memory:   the process's peak resident memory during an import into an empty store above
//             what it held just before (target 100 MB), from VmHWM and VmRSS, the peak reset
//             through /proc/self/clear_refs first.
// Beside them, measured in the same run: the sqlite3 shell importing the same file with
// ".import --csv" into one new table of text columns ("shellImport"), the floor of getting
// these rows into SQLite at all, and its start-up alone ("shellStart"). The exit status is 1
// when a target is missed or a count is wrong.
//
// The import asks the catalog about every set number that the store does not have yet. By
// default there is no catalog, as when none could be opened; --catalog PATH makes that
// catalog file the shared one, so its look-ups count too. The user's own files are never
// read: the benchmark runs in QStandardPaths' test mode.
#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"

#include "Services/CSVExportImportService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

constexpr int copyCount = 10'000;
constexpr int wishlistCount = 500;
constexpr double exportTargetMs = 500;
constexpr double importTargetMs = 3000;
constexpr double memoryTargetMegabytes = 100;

double median(QList<double> samples)
{
    return BenchmarkOutput::percentile(std::move(samples), 0.5);
}

// CPU time of every thread of this process: the import runs on a worker thread.
double processCpuMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// CPU time, user and system, of the child processes that have ended and been waited for.
double childrenCpuMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

// Wall and CPU milliseconds of the runs of one piece of work.
struct Samples
{
    QList<double> wall;
    QList<double> cpu;

    void measure(const std::function<void()> &work)
    {
        const double cpuBefore = processCpuMilliseconds();
        wall.append(BenchmarkOutput::milliseconds(work));
        cpu.append(processCpuMilliseconds() - cpuBefore);
    }
};

// A field of /proc/self/status in kilobytes ("VmRSS", "VmHWM"); 0 when unreadable.
qint64 statusKilobytes(const QByteArray &field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(QByteArray(field + ':')))
            return line.mid(field.size() + 1).trimmed().split(' ').value(0).toLongLong();
    }
    return 0;
}

// Lets VmHWM start again from the current resident size (Linux 4.0 and later).
bool resetPeakMemory()
{
    QFile clearRefs(u"/proc/self/clear_refs"_s);
    return clearRefs.open(QIODevice::WriteOnly) && clearRefs.write("5") == 1;
}

// The benchmark collection with the details people record: notes, prices, dates,
// conditions, a disposal now and then; and a wishlist.
void fillSource(PersistentContainer &store)
{
    BenchmarkCollection::fill(store, copyCount);
    ManagedObjectContext &context = store.viewContext();
    const QStringList notes{u"Bought at the LEGO Store"_s, u"Birthday present from Anna, 2019"_s,
                            u"Box slightly dented; bags \"sealed\""_s, u"Geschenk von Oma – ungeöffnet"_s,
                            u"レゴストアで購入"_s};
    QList<BrickSet> copies = context.fetch(FetchRequest<BrickSet>());
    for (qsizetype index = 0; index < copies.size(); ++index) {
        BrickSet &copy = copies[index];
        copy.notes = notes.at(index % notes.size());
        copy.rating = qint16(index % 6);
        copy.pricePaid = Decimal::fromString(QString(QString::number(5 + index % 900) + u".99"_s));
        copy.priceCurrency = u"USD"_s;
        copy.acquisitionDate = copy.dateAdded->addDays(-3);
        copy.acquisitionSource = u"LEGO Store"_s;
        copy.boxCondition = u"good"_s;
        copy.instructionsCondition = u"good"_s;
        copy.builtStatus = u"built"_s;
        copy.stickerStatus = u"applied"_s;
        copy.completeness = u"complete"_s;
        if (index % 10 == 0) {
            copy.isDisposed = true;
            copy.disposalType = u"sold"_s;
            copy.disposalDate = copy.dateAdded->addDays(30);
            copy.disposalPrice = Decimal::fromString(u"49.50");
            copy.disposalCurrency = u"EUR"_s;
            copy.disposalNotes = u"Sold on BrickLink"_s;
        }
        if (copy.isTrashed)
            copy.trashedDate = copy.dateAdded->addDays(1);
        context.update(copy);
    }
    for (int index = 0; index < wishlistCount; ++index) {
        WishlistItem item;
        item.setNumber = QString::number(70000 + index) + u"-1"_s;
        item.setName = u"Wanted "_s + QString::number(index);
        item.year = qint16(2000 + index % 26);
        item.pieceCount = 100 + index;
        item.themeName = u"Theme "_s + QString::number(index % 40);
        item.dateAdded = QDateTime::currentDateTimeUtc().addDays(-index);
        context.insert(item);
    }
    context.save();
}

CSVExportImportService::ImportResult importInto(PersistentContainer &store, const QString &text)
{
    const std::shared_ptr<ManagedObjectContext> context = store.newBackgroundContext();
    context->setName(u"backgroundContext"_s);
    return context->performAndWait(
        [&text](ManagedObjectContext &target) { return CSVExportImportService::importCSV(text, target); });
}

// Runs the sqlite3 shell with `script` on a new database and adds its wall and CPU
// milliseconds to `samples`; -1 for both when it fails.
void runShell(const QString &database, const QString &script, Samples &samples)
{
    QFile::remove(database);
    QProcess shell;
    const double cpuBefore = childrenCpuMilliseconds();
    const double elapsed = BenchmarkOutput::milliseconds([&] {
        shell.start(u"sqlite3"_s, {u"-batch"_s, database});
        shell.write(script.toUtf8());
        shell.closeWriteChannel();
        shell.waitForFinished(-1);
    });
    const bool succeeded = shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0;
    samples.wall.append(succeeded ? elapsed : -1);
    samples.cpu.append(succeeded ? childrenCpuMilliseconds() - cpuBefore : -1);
}

qint64 shellRowCount(const QString &database)
{
    QProcess shell;
    shell.start(u"sqlite3"_s, {database, u"SELECT count(*) FROM collection"_s});
    shell.waitForFinished(-1);
    return shell.readAllStandardOutput().trimmed().toLongLong();
}

// The wall time decides the target; CPU time, of all this process's threads, is beside it
// because on a shared machine it says more about the work than the wall time does.
QJsonObject figures(const QString &operation, const Samples &samples, double targetMs, const Samples &floor,
                    bool countsRight)
{
    const double ms = median(samples.wall);
    const double cpuMs = median(samples.cpu);
    const double floorMs = median(floor.wall);
    const double floorCpuMs = median(floor.cpu);
    return QJsonObject{
        {u"benchmark"_s, u"collection-csv"_s},
        {u"operation"_s, operation},
        {u"copies"_s, copyCount},
        {u"wishlistItems"_s, wishlistCount},
        {u"medianMs"_s, ms},
        {u"medianCpuMs"_s, cpuMs},
        {u"targetMs"_s, targetMs},
        {u"targetMet"_s, ms <= targetMs},
        {u"targetMetOnCpuTime"_s, cpuMs <= targetMs},
        {u"shellImportMs"_s, floorMs},
        {u"shellImportCpuMs"_s, floorCpuMs},
        {u"ratioToShellImport"_s, floorMs > 0 ? ms / floorMs : 0},
        {u"cpuRatioToShellImport"_s, floorCpuMs > 0 ? cpuMs / floorCpuMs : 0},
        {u"countsAsExpected"_s, countsRight},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    int runs = 3;
    QString catalogPath;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--runs"_s)
            runs = std::max(1, arguments[index + 1].toInt());
        else if (arguments[index] == u"--catalog"_s)
            catalogPath = arguments[index + 1];
    }
    std::shared_ptr<RebrickableCatalog> catalog;
    if (!catalogPath.isEmpty()) {
        QString reason;
        catalog = RebrickableCatalog::openFile(catalogPath, &reason);
        if (!catalog)
            qFatal("cannot open the catalog %s: %s", qPrintable(catalogPath), qPrintable(reason));
    }
    RebrickableCatalog::replaceShared(catalog);

    QTemporaryDir folder;
    if (!folder.isValid())
        qFatal("no temporary folder");
    int storeNumber = 0;
    const auto newStore = [&folder, &storeNumber] {
        const QString directory = folder.filePath(u"store%1"_s.arg(++storeNumber));
        QDir().mkpath(directory);
        return PersistentContainer::open(directory + u"/Tessaloom.sqlite"_s);
    };

    const std::unique_ptr<PersistentContainer> source = newStore();
    fillSource(*source);

    // The floor: the shell's own CSV import of the same bytes into one table.
    QString text = CSVExportImportService::exportCSV(source->viewContext());
    const QString csvPath = folder.filePath(u"collection.csv"_s);
    {
        QSaveFile file(csvPath);
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
            qFatal("cannot write %s", qPrintable(csvPath));
    }
    const QString shellDatabase = folder.filePath(u"shell.sqlite"_s);
    Samples shellImport;
    Samples shellStart;
    for (int run = 0; run < runs; ++run) {
        runShell(shellDatabase, u"SELECT 1;\n"_s, shellStart);
        runShell(shellDatabase, u".import --csv '"_s + csvPath + u"' collection\n"_s, shellImport);
    }
    const qint64 shellRows = shellRowCount(shellDatabase);

    bool everyTargetMet = true;
    const auto report = [&everyTargetMet](const QJsonObject &object) {
        BenchmarkOutput::print(object);
        everyTargetMet = everyTargetMet && object[u"targetMet"_s].toBool() && object[u"countsAsExpected"_s].toBool();
    };

    // Export.
    Samples exporting;
    qsizetype bytes = 0;
    for (int run = 0; run < runs; ++run) {
        exporting.measure([&] {
            text = CSVExportImportService::exportCSV(source->viewContext());
            bytes = text.toUtf8().size();
        });
    }
    QJsonObject exportFigures = figures(u"export"_s, exporting, exportTargetMs, shellImport,
                                        text.count(u'\n') == copyCount + wishlistCount);
    exportFigures.insert(u"megabytes"_s, double(bytes) / 1e6);
    exportFigures.insert(u"shellStartMs"_s, median(shellStart.wall));
    exportFigures.insert(u"shellImportRows"_s, double(shellRows));
    report(exportFigures);

    // Import into an empty store; the first run also measures memory.
    Samples importing;
    Samples reimporting;
    Samples reimportingChanged;
    bool changedCountsRight = true;
    const QString changedText = QString(text).replace(u"LEGO Store"_s, u"LEGO Shop"_s);
    bool importCountsRight = true;
    bool reimportCountsRight = true;
    double peakAboveIdleMegabytes = 0;
    bool peakMeasured = false;
    for (int run = 0; run < runs; ++run) {
        const std::unique_ptr<PersistentContainer> target = newStore();
        CSVExportImportService::ImportResult result;
        const qint64 idleKilobytes = statusKilobytes("VmRSS");
        const bool resetDone = run == 0 && resetPeakMemory();
        importing.measure([&] { result = importInto(*target, text); });
        if (resetDone) {
            peakAboveIdleMegabytes = double(statusKilobytes("VmHWM") - idleKilobytes) / 1024;
            peakMeasured = true;
        }
        importCountsRight = importCountsRight && result.created == copyCount + wishlistCount && result.updated == 0
            && result.errors.isEmpty();
        reimporting.measure([&] { result = importInto(*target, text); });
        reimportCountsRight = reimportCountsRight && result.created == wishlistCount && result.updated == copyCount
            && result.errors.isEmpty();
        reimportingChanged.measure([&] { result = importInto(*target, changedText); });
        changedCountsRight = changedCountsRight && result.created == wishlistCount && result.updated == copyCount
            && result.errors.isEmpty();
    }
    report(figures(u"import"_s, importing, importTargetMs, shellImport, importCountsRight));
    report(figures(u"reimport"_s, reimporting, importTargetMs, shellImport, reimportCountsRight));
    report(figures(u"reimportChanged"_s, reimportingChanged, importTargetMs, shellImport, changedCountsRight));

    QJsonObject memory{
        {u"benchmark"_s, u"collection-csv"_s},
        {u"operation"_s, u"importMemory"_s},
        {u"peakAboveIdleMegabytes"_s, peakAboveIdleMegabytes},
        {u"targetMegabytes"_s, memoryTargetMegabytes},
        {u"targetMet"_s, peakMeasured && peakAboveIdleMegabytes <= memoryTargetMegabytes},
        {u"countsAsExpected"_s, peakMeasured},
        {u"fileMegabytes"_s, double(bytes) / 1e6},
    };
    report(memory);

    BenchmarkOutput::print(QJsonObject{
        {u"benchmark"_s, u"collection-csv"_s},
        {u"summary"_s, true},
        {u"runs"_s, runs},
        {u"catalog"_s, catalogPath.isEmpty() ? u"none"_s : catalogPath},
        {u"shellImportMs"_s, median(shellImport.wall)},
        {u"shellImportCpuMs"_s, median(shellImport.cpu)},
        {u"shellStartMs"_s, median(shellStart.wall)},
        {u"shellImportedEveryRow"_s, shellRows == copyCount + wishlistCount},
        {u"everyTargetMet"_s, everyTargetMet},
    });
    return everyTargetMet ? 0 : 1;
}
