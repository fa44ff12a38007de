// SPDX-License-Identifier: GPL-3.0-or-later
// How long the main thread stalls while a background context writes a large import in
// one transaction and the user toggles a favourite meanwhile. A store of a few copies; a
// background context inserts `--writes` new copies in one perform block with one save;
// while that save runs, the main thread toggles the favourite of an existing copy through
// the view context, saves, and reads the favourites (all within the stall measured). A 1 ms timer on the main thread
// measures the longest gap between its ticks from the start of the background block until
// the toggle is stored.
//
// Two modes in the same run, alternating, each in a fresh store:
// - `queued`: the view context as it is: its save queues behind the writer;
// - `waitForTurn` (the baseline): before saving, the main thread waits for the store's
//   write turn as every save did before, then saves.
// One JSON object per line.
//
//   store-stall-bench [--writes N] [--runs N]

#include "BenchmarkOutput.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTimer>
#include <QUuid>

#include <algorithm>
#include <atomic>

using namespace Qt::StringLiterals;

namespace {

constexpr double targetStallMilliseconds = 16;
constexpr int existingCopies = 5;

enum class Mode { queued, waitForTurn };

QString modeName(Mode mode)
{
    return mode == Mode::queued ? u"queued"_s : u"waitForTurn"_s;
}

struct Run
{
    double maxStallMs = 0;
    double idleSaveMs = 0;
    double saveCallMs = 0;
    double fetchDuringWriteMs = 0;
    double writerSaveMs = 0;
    double toggleStoredAfterMs = 0; // from the toggle to the moment it was committed
    bool toggleQueued = false;
    bool writerStillSaving = false; // the writer's save had not ended when the toggle was saved
    bool toggleStored = false;
};

BrickSet newCopy(const ObjectID &catalogSet)
{
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = catalogSet;
    copy.setAcquisitionType(AcquisitionType::purchased);
    return copy;
}

Run runOnce(Mode mode, int writes)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
    Run run;
    auto store = PersistentContainer::open(path);
    ManagedObjectContext &view = store->viewContext();
    CatalogSet set;
    set.setNumber = u"10497-1"_s;
    set.name = u"Galaxy Explorer"_s;
    set = view.insert(set);
    QList<BrickSet> copies;
    for (int index = 0; index < existingCopies; ++index)
        copies.append(view.insert(newCopy(set.objectID)));
    view.save();
    BrickSet target = copies[existingCopies / 2];
    // The floor: the same toggle saved with no writer about, its commit on the main thread.
    BrickSet other = copies[0];
    other.isFavorite = true;
    view.update(other);
    run.idleSaveMs = BenchmarkOutput::milliseconds([&view] { view.save(); });

    QElapsedTimer clock;
    clock.start();
    std::atomic<qint64> writerSaveStart = -1;
    std::atomic<qint64> writerSaveEnd = -1;
    auto background = store->newBackgroundContext();
    QFuture<void> writer = background->perform([&](ManagedObjectContext &context) {
        for (int index = 0; index < writes; ++index)
            context.insert(newCopy(set.objectID));
        writerSaveStart = clock.nsecsElapsed();
        context.save();
        writerSaveEnd = clock.nsecsElapsed();
    });

    QEventLoop loop;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    qint64 lastTick = -1;
    qint64 toggledAt = -1;
    qint64 storedAt = -1;
    bool failed = false;
    QObject::connect(store.get(), &PersistentContainer::queuedSaveDidFinish, &loop,
                     [&] { storedAt = clock.nsecsElapsed(); });
    QObject::connect(store.get(), &PersistentContainer::queuedSaveDidFail, &loop, [&] { failed = true; });
    QObject::connect(&ticker, &QTimer::timeout, &loop, [&] {
        const qint64 now = clock.nsecsElapsed();
        if (lastTick >= 0)
            run.maxStallMs = std::max(run.maxStallMs, double(now - lastTick) / 1e6);
        lastTick = now;
        // The toggle comes 3 ms into the writer's save, which takes far longer.
        const qint64 saveStart = writerSaveStart;
        if (toggledAt < 0 && saveStart >= 0 && now - saveStart >= 3'000'000) {
            toggledAt = clock.nsecsElapsed();
            target.isFavorite = !target.isFavorite;
            view.update(target);
            if (mode == Mode::waitForTurn) {
                // What every save did before: wait on the main thread for the turn.
                store->acquireWriteTurn();
                store->releaseWriteTurn();
            }
            run.writerStillSaving = writerSaveEnd < 0;
            run.saveCallMs = BenchmarkOutput::milliseconds([&view] { view.save(); });
            run.toggleQueued = view.hasQueuedSave();
            if (!run.toggleQueued)
                storedAt = clock.nsecsElapsed();
            run.fetchDuringWriteMs = BenchmarkOutput::milliseconds([&view] {
                view.fetch(FetchRequest<BrickSet>(Predicate::equal(u"isFavorite"_s, true)));
            });
        }
        // A callback that blocked counts even when no tick follows it.
        run.maxStallMs = std::max(run.maxStallMs, double(clock.nsecsElapsed() - lastTick) / 1e6);
        if (toggledAt >= 0 && writer.isFinished() && !view.hasQueuedSave())
            loop.quit();
    });
    ticker.start();
    loop.exec();
    ticker.stop();
    writer.waitForFinished();

    run.writerSaveMs = double(writerSaveEnd - writerSaveStart) / 1e6;
    run.toggleStoredAfterMs = storedAt >= 0 ? double(storedAt - toggledAt) / 1e6 : -1;
    auto reader = PersistentContainer::open(path);
    const auto stored = reader->viewContext().existingObject<BrickSet>(target.objectID);
    const qint64 written = reader->viewContext().count(FetchRequest<BrickSet>());
    run.toggleStored = !failed && stored && stored->isFavorite == target.isFavorite
        && written == existingCopies + writes;
    return run;
}

QJsonObject figures(Mode mode, int index, const Run &run)
{
    return QJsonObject{
        {u"benchmark"_s, u"store-stall"_s},
        {u"mode"_s, modeName(mode)},
        {u"run"_s, index},
        {u"maxStallMs"_s, run.maxStallMs},
        {u"saveCallMs"_s, run.saveCallMs},
        {u"idleSaveMs"_s, run.idleSaveMs},
        {u"fetchDuringWriteMs"_s, run.fetchDuringWriteMs},
        {u"writerSaveMs"_s, run.writerSaveMs},
        {u"toggleStoredAfterMs"_s, run.toggleStoredAfterMs},
        {u"toggleQueued"_s, run.toggleQueued},
        {u"writerStillSaving"_s, run.writerStillSaving},
        {u"toggleStored"_s, run.toggleStored},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    int writes = 10000;
    int runs = 5;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--writes"_s)
            writes = arguments[index + 1].toInt();
        else if (arguments[index] == u"--runs"_s)
            runs = arguments[index + 1].toInt();
    }
    QList<double> queuedStalls;
    QList<double> baselineStalls;
    QList<double> writerSaves;
    QList<double> fetches;
    QList<double> idleSaves;
    bool allStored = true;
    bool allQueued = true;
    try {
        for (int index = 0; index < runs; ++index) {
            for (Mode mode : {Mode::queued, Mode::waitForTurn}) {
                const Run run = runOnce(mode, writes);
                BenchmarkOutput::print(figures(mode, index, run));
                allStored = allStored && run.toggleStored;
                if (mode == Mode::queued) {
                    queuedStalls.append(run.maxStallMs);
                    fetches.append(run.fetchDuringWriteMs);
                    allQueued = allQueued && run.toggleQueued && run.writerStillSaving;
                } else {
                    baselineStalls.append(run.maxStallMs);
                }
                writerSaves.append(run.writerSaveMs);
                idleSaves.append(run.idleSaveMs);
            }
        }
    } catch (const StoreError &error) {
        BenchmarkOutput::print(QJsonObject{{u"benchmark"_s, u"store-stall"_s}, {u"error"_s, error.description()}});
        return 1;
    }
    const double queuedMax = BenchmarkOutput::percentile(queuedStalls, 1.0);
    BenchmarkOutput::print(QJsonObject{
        {u"benchmark"_s, u"store-stall"_s},
        {u"summary"_s, true},
        {u"writes"_s, writes},
        {u"runs"_s, runs},
        {u"queuedMedianMaxStallMs"_s, BenchmarkOutput::percentile(queuedStalls, 0.5)},
        {u"queuedWorstMaxStallMs"_s, queuedMax},
        {u"waitForTurnMedianMaxStallMs"_s, BenchmarkOutput::percentile(baselineStalls, 0.5)},
        {u"idleSaveMedianMs"_s, BenchmarkOutput::percentile(idleSaves, 0.5)},
        {u"writerSaveMedianMs"_s, BenchmarkOutput::percentile(writerSaves, 0.5)},
        {u"fetchDuringWriteMedianMs"_s, BenchmarkOutput::percentile(fetches, 0.5)},
        {u"everyToggleQueuedBehindTheWriter"_s, allQueued},
        {u"everyToggleStored"_s, allStored},
        {u"targetMs"_s, targetStallMilliseconds},
        {u"targetHolds"_s, queuedMax <= targetStallMilliseconds && allStored},
    });
    return 0;
}
