// SPDX-License-Identifier: GPL-3.0-or-later
// The collection store at the size of a large collection: 10,000 copies of 5,000 catalog
// sets, each set with two price guides. Measures the insert through a background
// context, opening the store, fetching the non-trashed copies with their catalog sets,
// and the live list after a one-object save; the fetch is compared with the sqlite3 shell
// running the same statement on the same file. One JSON object per line.
//
//   store-bench [--copies N] [--sets N] [--runs N] [--keep DIR]

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUuid>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

void report(QJsonObject figures)
{
    figures.insert(u"benchmark"_s, u"store"_s);
    std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values[values.size() / 2];
}

double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// CPU time of this thread: on a machine shared with other work, wall time also counts
// the time the thread waited for a core.
double threadCpuMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

FetchRequest<BrickSet> collectionRequest()
{
    return FetchRequest<BrickSet>(BrickSetQueries::notTrashed(), {{u"catalogSet.name"_s, true}});
}

// The statement ManagedObjectContext::fetchBrickSetsWithCatalogSets() runs for
// collectionRequest(), written out for the shell.
const char *const shellQuery =
    "SELECT t0.*, c.* FROM BrickSet t0 LEFT JOIN CatalogSet c ON c.pk = t0.catalogSet "
    "WHERE (t0.isTrashed IS 0) "
    "ORDER BY (SELECT r1.name FROM CatalogSet r1 WHERE r1.pk = t0.catalogSet) ASC, t0.pk ASC;";

void insertCollection(PersistentContainer &store, int sets, int copies)
{
    auto background = store.newBackgroundContext();
    QElapsedTimer timer;
    timer.start();
    background->performAndWait([sets, copies](ManagedObjectContext &context) {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        QList<ObjectID> setIDs;
        for (int index = 0; index < sets; ++index) {
            CatalogSet set;
            set.setNumber = QString::number(10000 + index) + u"-1"_s;
            set.name = u"Set %1 of the benchmark collection"_s.arg((index * 7919) % sets);
            set.themeName = u"Theme %1"_s.arg(index % 40);
            set.year = qint16(1980 + index % 45);
            set.pieceCount = 100 + index % 3000;
            set.imageURL = u"https://cdn.rebrickable.com/media/sets/%1.jpg"_s.arg(*set.setNumber);
            set.lastSyncDate = now;
            setIDs.append(context.insert(set).objectID);
            for (const QString &condition : {u"new"_s, u"used"_s}) {
                CachedPriceGuide guide;
                guide.catalogSet = setIDs.last();
                guide.conditionType = condition;
                guide.guideType = u"sold"_s;
                guide.avgPrice = Decimal::fromString(u"%1.99"_s.arg(20 + index % 500));
                guide.minPrice = Decimal::fromString(u"%1.50"_s.arg(10 + index % 500));
                guide.maxPrice = Decimal::fromString(u"%1.00"_s.arg(40 + index % 500));
                guide.currency = u"USD"_s;
                guide.providerName = u"brickeconomy"_s;
                guide.lastFetchDate = now.addDays(-(index % 20));
                context.insert(guide);
            }
        }
        for (int index = 0; index < copies; ++index) {
            BrickSet copy;
            copy.id = QUuid::createUuid();
            copy.dateAdded = now.addSecs(-index * 60);
            copy.catalogSet = setIDs[index % setIDs.size()];
            copy.setAcquisitionType(index % 3 ? AcquisitionType::purchased : AcquisitionType::unknown);
            copy.overallCondition = index % 2 ? u"used"_s : u"new"_s;
            copy.pricePaid = Decimal::fromString(u"%1.95"_s.arg(15 + index % 400));
            copy.priceCurrency = u"USD"_s;
            copy.isTrashed = index % 20 == 0; // one copy in twenty lies in the trash
            context.insert(copy);
        }
        context.save();
    });
    report({{u"step"_s, u"insert"_s}, {u"catalogSets"_s, sets}, {u"copies"_s, copies}, {u"priceGuides"_s, sets * 2},
          {u"ms"_s, milliseconds(timer)}, {u"targetMs"_s, 2000}});
}

void measureOpen(const QString &path, int runs)
{
    QList<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        auto store = PersistentContainer::open(path);
        times.append(milliseconds(timer));
    }
    report({{u"step"_s, u"open"_s}, {u"runs"_s, runs}, {u"medianMs"_s, median(times)}, {u"targetMs"_s, 100}});
}

double shellFetchMilliseconds(const QString &path, int runs)
{
    const QString shell = QStandardPaths::findExecutable(u"sqlite3"_s);
    if (shell.isEmpty())
        return -1;
    QByteArray script = ".timer on\n";
    for (int run = 0; run < runs + 1; ++run) // the first run warms the page cache, like ours
        script += ".once /dev/null\n" + QByteArray(shellQuery) + '\n';
    QProcess process;
    process.start(shell, {path});
    process.write(script);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    static const QRegularExpression realTime(u"Run Time: real ([0-9.]+)"_s);
    QList<double> times;
    auto matches = realTime.globalMatch(output);
    while (matches.hasNext())
        times.append(matches.next().captured(1).toDouble() * 1000);
    if (!times.isEmpty())
        times.removeFirst();
    return median(times);
}

void measureFetch(const QString &path, int runs)
{
    auto store = PersistentContainer::open(path);
    auto &context = store->viewContext();
    qsizetype rows = 0;
    QList<double> times;
    QList<double> cpuTimes;
    for (int run = 0; run < runs + 1; ++run) {
        QElapsedTimer timer;
        timer.start();
        const double cpuStart = threadCpuMilliseconds();
        rows = context.fetchBrickSetsWithCatalogSets(collectionRequest()).size();
        if (run > 0) { // the first run warms the page cache
            times.append(milliseconds(timer));
            cpuTimes.append(threadCpuMilliseconds() - cpuStart);
        }
    }
    const double shell = shellFetchMilliseconds(path, runs);
    report({{u"step"_s, u"fetch"_s}, {u"rows"_s, double(rows)}, {u"runs"_s, runs}, {u"medianMs"_s, median(times)},
          {u"medianCpuMs"_s, median(cpuTimes)}, {u"sqlite3ShellMs"_s, shell}, {u"ratioToShell"_s, shell > 0 ? median(times) / shell : 0}, {u"targetMs"_s, 50}});
}

void measureLiveList(const QString &path, int runs)
{
    auto store = PersistentContainer::open(path);
    auto &context = store->viewContext();
    QElapsedTimer sinceNotice;
    // Connected before the model, so it runs first on each notice.
    QObject::connect(store.get(), &PersistentContainer::objectsDidChange, [&sinceNotice] { sinceNotice.start(); });
    BrickSetListModel model(*store);
    model.setFetchRequest(collectionRequest());
    double lastRefetch = 0;
    QObject::connect(&model, &BrickSetListModel::refetched, [&] { lastRefetch = milliseconds(sinceNotice); });

    QList<double> saves;
    QList<double> refetches;
    for (int run = 0; run < runs; ++run) {
        BrickSet copy = model.rowAt(run * 97 % model.count()).brickSet;
        copy.isFavorite = !copy.isFavorite;
        context.update(copy);
        QElapsedTimer timer;
        timer.start();
        context.save();
        saves.append(milliseconds(timer) - lastRefetch);
        refetches.append(lastRefetch);
    }
    report({{u"step"_s, u"liveListAfterOneObjectSave"_s}, {u"rows"_s, model.count()}, {u"runs"_s, runs},
          {u"medianRefetchMs"_s, median(refetches)}, {u"medianCommitMs"_s, median(saves)}, {u"targetMs"_s, 20}});

    // A save that changes the list's membership rereads every row.
    QList<double> rereads;
    for (int run = 0; run < runs; ++run) {
        BrickSet copy = model.rowAt(run * 89 % model.count()).brickSet;
        copy.isTrashed = true;
        context.update(copy);
        context.save();
        rereads.append(lastRefetch);
    }
    report({{u"step"_s, u"liveListAfterTrashingOneCopy"_s}, {u"rows"_s, model.count()}, {u"runs"_s, runs},
          {u"medianRefetchMs"_s, median(rereads)}});
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    int copies = 10000;
    int sets = 5000;
    int runs = 7;
    QString keep;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        if (arguments[index] == u"--copies"_s)
            copies = arguments[index + 1].toInt();
        else if (arguments[index] == u"--sets"_s)
            sets = arguments[index + 1].toInt();
        else if (arguments[index] == u"--runs"_s)
            runs = arguments[index + 1].toInt();
        else if (arguments[index] == u"--keep"_s)
            keep = arguments[index + 1];
    }
    QTemporaryDir folder;
    const QString path = keep.isEmpty() ? folder.filePath(u"Tessaloom.sqlite"_s) : keep + u"/Tessaloom.sqlite"_s;
    QFile::remove(path);
    QFile::remove(path + u"-wal"_s);
    QFile::remove(path + u"-shm"_s);
    try {
        {
            auto store = PersistentContainer::open(path);
            insertCollection(*store, sets, copies);
        }
        measureOpen(path, runs);
        measureFetch(path, runs);
        measureLiveList(path, runs);
    } catch (const StoreError &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
