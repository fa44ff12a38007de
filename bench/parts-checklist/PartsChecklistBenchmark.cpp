// SPDX-License-Identifier: GPL-3.0-or-later
// A copy's parts checklist on the set with the most lines of the full catalog: how long
// the user waits for each action on the main thread.
//
// - `increment` / `decrement`: one count up or down, to the saved count (the first tick of
//   a line also creates its part, colour and line in the store);
// - `markAllComplete` / `resetAll`: the whole list, one save each;
// - `searchKeystroke`, `colorToggle`, `sortChange`, `groupChange`: the change and the
//   list recomputed (groupedItems(), which runs the filters, the sort and the blocks);
// - `load`: loadItemsInBackground(), what the window calls, until the rows have landed,
//   and the longest the main thread was busy at once meanwhile (`loadMainThread`: the
//   call itself, and its share, the stored counts read and the rows handed over); the
//   same again with every line counted (`loadWithAllCounted…`).
//
// Baselines measured in the same run: `rawCommit`, one UPDATE of one row committed by
// plain SQLite in a file beside the store, WAL and synchronous FULL like the store (the
// floor of any durable save on this disk),
// and `copyAndSort`, the rows copied and stably sorted by part number (the floor of a
// recomputed list). One JSON object per line, a summary line with medians and targets.
//
//   parts-checklist-bench [--catalog FILE | --work DIR] [--set NUMBER] [--runs N]

#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "CatalogFixture.h"

#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/PartsChecklistViewModel.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double listTargetMs = 16;
constexpr double countTargetMs = 16;
constexpr double wholeListTargetMs = 300;

// The set whose newest inventory has the most non-spare lines.
QString largestSet(const QString &catalogPath, int &lines)
{
    sqlite3 *database = nullptr;
    QString number;
    if (sqlite3_open_v2(QFile::encodeName(catalogPath).constData(), &database, SQLITE_OPEN_READONLY, nullptr)
        == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        const char *sql = "SELECT i.set_num, count(*) AS n FROM inventory_parts ip JOIN inventories i "
                          "ON ip.inventory_id = i.id WHERE ip.is_spare = 0 AND i.version = "
                          "(SELECT max(version) FROM inventories i2 WHERE i2.set_num = i.set_num) "
                          "GROUP BY i.id ORDER BY n DESC LIMIT 1";
        if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW) {
            number = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
            lines = sqlite3_column_int(statement, 1);
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return number;
}

QJsonObject figure(const QString &name, const BenchmarkSamples &samples, double target)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"parts-checklist"_s}, {u"step"_s, name},
                       {u"medianMs"_s, samples.median()},   {u"worstMs"_s, samples.worst()},
                       {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

// The longest single stretch of main-thread work while `done` is false: each round of
// the event loop is timed alone, without its waiting, so the figure is what the main
// thread spends at once on what the load hands it.
double longestMainThreadStepWhile(const std::function<bool()> &done)
{
    double longest = 0;
    while (!done()) {
        QElapsedTimer step;
        step.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        longest = std::max(longest, double(step.nsecsElapsed()) / 1e6);
        QThread::usleep(200); // leave the cores to the pool meanwhile
    }
    return longest;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"catalog"_s, u"A built catalog database to use."_s, u"file"_s});
    parser.addOption({u"work"_s, u"Folder where the catalog is built from the full dumps, once."_s, u"dir"_s,
                      QDir::temp().filePath(u"tessaloom-parts-checklist-bench"_s)});
    parser.addOption({u"set"_s, u"The set number; default: the set with the most lines."_s, u"number"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"9"_s});
    parser.process(application);
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());

    QString catalogPath = parser.value(u"catalog"_s);
    if (catalogPath.isEmpty()) {
        QElapsedTimer building;
        building.start();
        catalogPath = CatalogFixture::buildFullCatalog(parser.value(u"work"_s));
        if (catalogPath.isEmpty()) {
            qCritical("No full-size dumps found; pass --catalog FILE.");
            return 1;
        }
        BenchmarkOutput::print({{u"benchmark"_s, u"parts-checklist"_s}, {u"catalog"_s, catalogPath},
                                {u"preparedSeconds"_s, double(building.elapsed()) / 1000}});
    }
    auto catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        qCritical("The catalog does not open.");
        return 1;
    }
    RebrickableCatalog::replaceShared(catalog);
    int lines = 0;
    QString setNumber = parser.value(u"set"_s);
    if (setNumber.isEmpty())
        setNumber = largestSet(catalogPath, lines);

    QTemporaryDir folder;
    const QString storePath = folder.filePath(u"Tessaloom.sqlite"_s);
    auto store = PersistentContainer::open(storePath);
    ManagedObjectContext &context = store->viewContext();
    CatalogSet set;
    set.setNumber = setNumber;
    set.name = setNumber;
    set = context.insert(set);
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = set.objectID;
    copy.setAcquisitionType(AcquisitionType::unknown);
    copy = context.insert(copy);
    context.save();

    // Loading, with the main thread's longest busy stretch meanwhile.
    BenchmarkSamples load;
    BenchmarkSamples loadMainThread;
    for (int run = 0; run < runs; ++run) {
        PartsChecklistViewModel model(copy, context);
        QElapsedTimer timer;
        timer.start();
        const double call = BenchmarkOutput::milliseconds([&model] { model.loadItemsInBackground(); });
        const double stall = std::max(call, longestMainThreadStepWhile([&model] { return !model.isLoading(); }));
        load.values.append(double(timer.nsecsElapsed()) / 1e6);
        loadMainThread.values.append(stall);
    }

    PartsChecklistViewModel model(copy, context);
    model.loadItemsInBackground();
    longestMainThreadStepWhile([&model] { return !model.isLoading(); });
    const QList<ChecklistItem> items = model.items();
    BenchmarkOutput::print({{u"benchmark"_s, u"parts-checklist"_s}, {u"set"_s, setNumber},
                            {u"items"_s, int(items.size())}, {u"catalogLines"_s, lines}, {u"pieces"_s, model.totalPieces()},
                            {u"colors"_s, int(model.availableColors().size())},
                            {u"categories"_s, int(model.availableCategories().size())}});
    if (items.size() < 2) {
        qCritical("The set has too few lines.");
        return 1;
    }

    // Counts: a first tick (creating part, colour, line and entry), a second tick, a
    // decrement, and the decrement to zero, on a different line each run.
    BenchmarkSamples firstTick;
    BenchmarkSamples increment;
    BenchmarkSamples decrement;
    BenchmarkSamples decrementToZero;
    for (int run = 0; run < runs; ++run) {
        ChecklistItem line = items.at((run * 97) % items.size());
        if (line.quantity < 2) {
            for (const ChecklistItem &candidate : items) {
                if (candidate.quantity >= 2 && model.ownedCount(candidate) == 0) {
                    line = candidate;
                    break;
                }
            }
        }
        firstTick.values.append(BenchmarkOutput::milliseconds([&] { model.increment(line); }));
        increment.values.append(BenchmarkOutput::milliseconds([&] { model.increment(line); }));
        decrement.values.append(BenchmarkOutput::milliseconds([&] { model.decrement(line); }));
        decrementToZero.values.append(BenchmarkOutput::milliseconds([&] { model.decrement(line); }));
    }

    // The floor of a save: one row's number changed and committed by plain SQLite, in a
    // file of its own beside the store, with the store's journal and sync settings.
    BenchmarkSamples rawCommit;
    {
        sqlite3 *database = nullptr;
        const QByteArray path = QFile::encodeName(folder.filePath(u"baseline.sqlite"_s));
        sqlite3_open(path.constData(), &database);
        sqlite3_exec(database,
                     "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
                     "CREATE TABLE counts (pk INTEGER PRIMARY KEY, n INTEGER NOT NULL);"
                     "INSERT INTO counts VALUES (1, 0);",
                     nullptr, nullptr, nullptr);
        for (int run = 0; run < runs; ++run) {
            rawCommit.values.append(BenchmarkOutput::milliseconds([&] {
                sqlite3_exec(database, "BEGIN IMMEDIATE; UPDATE counts SET n = n + 1 WHERE pk = 1; COMMIT;", nullptr,
                             nullptr, nullptr);
            }));
        }
        sqlite3_close(database);
    }

    // Whole list: mark all, then reset, alternating; the first mark creates every line.
    BenchmarkSamples markAll;
    BenchmarkSamples markAllAgain;
    BenchmarkSamples resetAll;
    for (int run = 0; run < runs; ++run) {
        markAll.values.append(BenchmarkOutput::milliseconds([&] { model.markAllComplete(); }));
        markAllAgain.values.append(BenchmarkOutput::milliseconds([&] { model.markAllComplete(); }));
        resetAll.values.append(BenchmarkOutput::milliseconds([&] { model.resetAll(); }));
    }

    // Half the lines ticked once, so filters and the completion order have work to do.
    model.markAllComplete();

    // Loading again with every line counted: the stored counts are read on the main thread.
    BenchmarkSamples loadCounted;
    BenchmarkSamples loadCountedMainThread;
    for (int run = 0; run < runs; ++run) {
        PartsChecklistViewModel again(copy, context);
        QElapsedTimer timer;
        timer.start();
        const double call = BenchmarkOutput::milliseconds([&again] { again.loadItemsInBackground(); });
        const double stall = std::max(call, longestMainThreadStepWhile([&again] { return !again.isLoading(); }));
        loadCounted.values.append(double(timer.nsecsElapsed()) / 1e6);
        loadCountedMainThread.values.append(stall);
        if (again.entriesByKey().size() != model.entriesByKey().size())
            qCritical("The counts read back differ.");
    }

    for (qsizetype index = 0; index < items.size(); index += 2)
        model.decrement(items.at(index));

    // The list recomputed after each kind of change.
    BenchmarkSamples keystroke;
    BenchmarkSamples colorToggle;
    BenchmarkSamples sortChange;
    BenchmarkSamples groupChange;
    BenchmarkSamples copyAndSort;
    const QString typed = u"brick 2"_s;
    const int colorID = model.availableColors().constFirst().colorID;
    const QList<PartsChecklistViewModel::SortMode> sorts = PartsChecklistViewModel::allSortModes();
    const QList<PartsChecklistViewModel::GroupMode> groups = PartsChecklistViewModel::allGroupModes();
    qsizetype rows = 0;
    for (int run = 0; run < runs; ++run) {
        for (qsizetype length = 1; length <= typed.size(); ++length) {
            keystroke.values.append(BenchmarkOutput::milliseconds([&] {
                model.setSearchText(typed.left(length));
                rows += model.groupedItems().size();
            }));
        }
        model.setSearchText(QString());
        for (int toggle = 0; toggle < 2; ++toggle) {
            colorToggle.values.append(BenchmarkOutput::milliseconds([&] {
                model.toggleColor(colorID);
                rows += model.groupedItems().size();
            }));
        }
        for (const auto mode : sorts) {
            sortChange.values.append(BenchmarkOutput::milliseconds([&] {
                model.setSortBy(mode);
                rows += model.groupedItems().size();
            }));
        }
        for (const auto mode : groups) {
            groupChange.values.append(BenchmarkOutput::milliseconds([&] {
                model.setGroupBy(mode);
                rows += model.groupedItems().size();
            }));
        }
        copyAndSort.values.append(BenchmarkOutput::milliseconds([&] {
            QList<ChecklistItem> copyOfItems = items;
            std::stable_sort(copyOfItems.begin(), copyOfItems.end(),
                             [](const ChecklistItem &a, const ChecklistItem &b) { return a.partNum < b.partNum; });
            rows += copyOfItems.size();
        }));
    }

    BenchmarkOutput::print(figure(u"load"_s, load, 0));
    BenchmarkOutput::print(figure(u"loadMainThread"_s, loadMainThread, listTargetMs));
    BenchmarkOutput::print(figure(u"loadWithAllCounted"_s, loadCounted, 0));
    BenchmarkOutput::print(figure(u"loadWithAllCountedMainThread"_s, loadCountedMainThread, listTargetMs));
    BenchmarkOutput::print(figure(u"firstTick"_s, firstTick, countTargetMs));
    BenchmarkOutput::print(figure(u"increment"_s, increment, countTargetMs));
    BenchmarkOutput::print(figure(u"decrement"_s, decrement, countTargetMs));
    BenchmarkOutput::print(figure(u"decrementToZero"_s, decrementToZero, countTargetMs));
    BenchmarkOutput::print(figure(u"rawCommit"_s, rawCommit, 0));
    BenchmarkOutput::print(figure(u"markAllComplete"_s, markAll, wholeListTargetMs));
    BenchmarkOutput::print(figure(u"markAllCompleteAgain"_s, markAllAgain, wholeListTargetMs));
    BenchmarkOutput::print(figure(u"resetAll"_s, resetAll, wholeListTargetMs));
    BenchmarkOutput::print(figure(u"searchKeystroke"_s, keystroke, listTargetMs));
    BenchmarkOutput::print(figure(u"colorToggle"_s, colorToggle, listTargetMs));
    BenchmarkOutput::print(figure(u"sortChange"_s, sortChange, listTargetMs));
    BenchmarkOutput::print(figure(u"groupChange"_s, groupChange, listTargetMs));
    BenchmarkOutput::print(figure(u"copyAndSort"_s, copyAndSort, 0));

    const bool within = firstTick.median() <= countTargetMs && increment.median() <= countTargetMs
        && decrement.median() <= countTargetMs && decrementToZero.median() <= countTargetMs
        && markAll.median() <= wholeListTargetMs && markAllAgain.median() <= wholeListTargetMs
        && resetAll.median() <= wholeListTargetMs && keystroke.median() <= listTargetMs
        && colorToggle.median() <= listTargetMs && sortChange.median() <= listTargetMs
        && groupChange.median() <= listTargetMs;
    BenchmarkOutput::print({{u"benchmark"_s, u"parts-checklist"_s},
                            {u"summary"_s, true},
                            {u"set"_s, setNumber},
                            {u"items"_s, int(items.size())},
                            {u"incrementMs"_s, increment.median()},
                            {u"decrementMs"_s, decrement.median()},
                            {u"rawCommitMs"_s, rawCommit.median()},
                            {u"incrementToRawCommit"_s, increment.median() / std::max(rawCommit.median(), 1e-3)},
                            {u"markAllCompleteMs"_s, markAll.median()},
                            {u"resetAllMs"_s, resetAll.median()},
                            {u"searchKeystrokeMs"_s, keystroke.median()},
                            {u"copyAndSortMs"_s, copyAndSort.median()},
                            {u"keystrokeToCopyAndSort"_s, keystroke.median() / std::max(copyAndSort.median(), 1e-3)},
                            {u"withinTargets"_s, within},
                            {u"rowsSeen"_s, qint64(rows)}});
    return 0;
}
