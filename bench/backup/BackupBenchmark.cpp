// SPDX-License-Identifier: GPL-3.0-or-later
// Backs up a store of 10,000 copies (BenchmarkCollection) with CollectionBackupService and
// restores the backup in place, each beside the baseline of the same run: a plain copy of
// the same store's files (the main file and its WAL, which together hold every commit).
// While each
// runs, a 1 ms precise timer on the main thread records the longest gap between its ticks
// (`maxStallMs`): the longest time the main thread could not serve its events. `startupMs`
// is what the daily backup costs the main thread at start-up before it returns to the
// event loop; the copy itself runs on a worker.

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"

#include "Services/CollectionBackupService.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreError.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double targetBackupMs = 1000;
constexpr double targetRestoreMs = 2000;
constexpr double targetStallMs = 16;

struct Timed
{
    double ms = 0;
    double maxStallMs = 0;
    bool succeeded = false;
};

// Runs `task` to its end in an event loop while a 1 ms timer ticks on this thread.
Timed runTicking(const std::function<QCoro::Task<bool>()> &start)
{
    QElapsedTimer clock;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    Timed timed;
    qint64 lastTick = 0;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        timed.maxStallMs = std::max(timed.maxStallMs, double(now - lastTick) / 1e6);
        lastTick = now;
    });
    ticker.start();
    clock.start();
    timed.succeeded = QCoro::waitFor(start());
    timed.ms = double(clock.nsecsElapsed()) / 1e6;
    timed.maxStallMs = std::max(timed.maxStallMs, double(clock.nsecsElapsed() - lastTick) / 1e6);
    return timed;
}

qint64 storeSize(const QString &path)
{
    return QFileInfo(path).size() + QFileInfo(path + u"-wal"_s).size();
}

void copyStoreFiles(const QString &path, const QString &copyPath)
{
    for (const QString &suffix : {QString(), u"-wal"_s}) {
        QFile::remove(copyPath + suffix);
        QFile::copy(path + suffix, copyPath + suffix);
    }
}

QCoro::Task<bool> restoreNewest(CollectionBackupService &service)
{
    const QList<CollectionBackup> backups = co_await service.backups();
    if (backups.isEmpty())
        co_return false;
    try {
        co_await service.restore(backups.first().path);
        co_return true;
    } catch (const std::exception &) {
        co_return false;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    int copies = 10000;
    int runs = 5;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--copies"_s)
            copies = arguments[index + 1].toInt();
        else if (arguments[index] == u"--runs"_s)
            runs = arguments[index + 1].toInt();
    }

    QTemporaryDir folder;
    const QString storePath = folder.filePath(u"Tessaloom.sqlite"_s);
    std::unique_ptr<PersistentContainer> container;
    try {
        container = PersistentContainer::open(storePath);
        BenchmarkCollection::fill(*container, copies);
    } catch (const StoreError &error) {
        BenchmarkOutput::print(QJsonObject{{u"benchmark"_s, u"backup"_s}, {u"error"_s, error.description()}});
        return 1;
    }
    CollectionBackupService service(*container);
    // Each run a day later, so that the start-up backup is due every time.
    QDateTime now = QDateTime::currentDateTime();
    service.setClock([&now] { return now; });

    QList<double> backups, backupStalls, restores, restoreStalls, fileCopies, startups;
    bool allSucceeded = true;
    qint64 storeBytes = 0;
    for (int index = 0; index < runs; ++index) {
        now = now.addDays(1);
        storeBytes = storeSize(storePath);
        const QString copyPath = folder.filePath(u"plain-copy.sqlite"_s);
        const double fileCopyMs = BenchmarkOutput::milliseconds([&] { copyStoreFiles(storePath, copyPath); });

        // The start-up's share: from the call until the main thread is back in its loop.
        QElapsedTimer startup;
        startup.start();
        QCoro::Task<bool> daily = service.backUpIfDue();
        const double startupMs = double(startup.nsecsElapsed()) / 1e6;
        const bool dailyMade = QCoro::waitFor(std::move(daily));

        now = now.addSecs(1);
        const Timed backup = runTicking([&service] { return service.tryBackUp(); });
        now = now.addSecs(1);
        const Timed restore = runTicking([&service] { return restoreNewest(service); });
        allSucceeded = allSucceeded && dailyMade && backup.succeeded && restore.succeeded;

        BenchmarkOutput::print(QJsonObject{
            {u"benchmark"_s, u"backup"_s},
            {u"run"_s, index},
            {u"copies"_s, copies},
            {u"storeBytes"_s, storeBytes},
            {u"backupMs"_s, backup.ms},
            {u"backupMaxStallMs"_s, backup.maxStallMs},
            {u"restoreMs"_s, restore.ms},
            {u"restoreMaxStallMs"_s, restore.maxStallMs},
            {u"plainFileCopyMs"_s, fileCopyMs},
            {u"startupMs"_s, startupMs},
            {u"succeeded"_s, backup.succeeded && restore.succeeded && dailyMade},
        });
        backups.append(backup.ms);
        backupStalls.append(backup.maxStallMs);
        restores.append(restore.ms);
        restoreStalls.append(restore.maxStallMs);
        fileCopies.append(fileCopyMs);
        startups.append(startupMs);
    }
    const double backupMedian = BenchmarkOutput::percentile(backups, 0.5);
    const double restoreMedian = BenchmarkOutput::percentile(restores, 0.5);
    const double copyMedian = BenchmarkOutput::percentile(fileCopies, 0.5);
    // The main thread's limit holds for the backup; a restore ends in a change notice that
    // every live list answers by reading again, on the main thread by design.
    const double worstStall = BenchmarkOutput::percentile(backupStalls, 1.0);
    BenchmarkOutput::print(QJsonObject{
        {u"benchmark"_s, u"backup"_s},
        {u"summary"_s, true},
        {u"copies"_s, copies},
        {u"runs"_s, runs},
        {u"storeBytes"_s, storeBytes},
        {u"backupMedianMs"_s, backupMedian},
        {u"backupWorstMaxStallMs"_s, worstStall},
        {u"backupMedianMaxStallMs"_s, BenchmarkOutput::percentile(backupStalls, 0.5)},
        {u"restoreMedianMs"_s, restoreMedian},
        {u"restoreWorstMaxStallMs"_s, BenchmarkOutput::percentile(restoreStalls, 1.0)},
        {u"restoreMedianMaxStallMs"_s, BenchmarkOutput::percentile(restoreStalls, 0.5)},
        {u"plainFileCopyMedianMs"_s, copyMedian},
        {u"backupRatioToFileCopy"_s, copyMedian > 0 ? backupMedian / copyMedian : 0},
        {u"restoreRatioToFileCopy"_s, copyMedian > 0 ? restoreMedian / copyMedian : 0},
        {u"startupMedianMs"_s, BenchmarkOutput::percentile(startups, 0.5)},
        {u"everyRunSucceeded"_s, allSucceeded},
        {u"targetHolds"_s, backupMedian <= targetBackupMs && restoreMedian <= targetRestoreMs
                               && worstStall <= targetStallMs && allSucceeded},
    });
    return allSucceeded ? 0 : 1;
}
