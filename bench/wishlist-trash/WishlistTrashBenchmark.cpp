// SPDX-License-Identifier: GPL-3.0-or-later
// The trash and the wishlist offscreen, with real store files:
//
// - `emptyTrash`: a collection of 10,000 copies (bench/common/BenchmarkCollection: 500 of them
//   in the trash, each with 10 part inventory entries) open in the trash list, with the set
//   list's live list and the sidebar's badges listening as in the window. From the confirmed
//   "Empty Trash" to the trash list repainted empty: the deletions, the one save with the
//   store's cascade, every live list's refetch and the paint. `emptyTrashSaveAndRefetch` is
//   the same without the paint.
//   Baseline in the same run (`sqliteDelete`): the SQLite C API alone deleting the same 500
//   rows (and, through the same foreign keys, their entries) in one transaction, with the
//   store's pragmas, on a copy of the same file.
// - `wishlistOpen` (grid and table): a wishlist of 1,000 entries (950 sets of the full
//   catalog, 50 that it lacks) made, shown and painted; `wishlistCatalogFacts`: until the
//   catalog's answers for all of them have landed and been painted; `...MainThread`, the
//   longest single stretch of main-thread work from the first paint until then.
//   Baselines: `plainTableOpen`, a QTableWidget with as many rows of the same five texts
//   made, shown and painted; `catalogLookUpsOnCaller`, the 1,000 catalog look-ups alone on
//   the calling thread, which is what the screen would stall for if it asked them there.
//
// One JSON object per line, a summary line last.
//
//   QT_QPA_PLATFORM=offscreen wishlist-trash-bench [--catalog FILE | --work DIR] [--runs N]

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"
#include "CatalogFixture.h"

#include "Endpoints.h"
#include "LoopbackOnlyProxyFactory.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarViewModel.h"
#include "ViewModels/WishlistListModel.h"
#include "ViewModels/WishlistSetResolver.h"
#include "Views/EmptyStateView.h"
#include "Views/TrashListView.h"
#include "Views/WishlistListView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QWindow>

#include <sqlite3.h>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int collectionCopies = 10000;
constexpr int entriesPerTrashedCopy = 10;
constexpr double emptyTrashTargetMs = 500;
constexpr int wishlistItems = 1000;
constexpr int wishlistItemsGone = 50;
constexpr double wishlistOpenTargetMs = 100;

QJsonObject figure(const QString &step, const BenchmarkSamples &samples, double target = 0)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"wishlist-trash"_s}, {u"step"_s, step},
                       {u"medianMs"_s, samples.median()}, {u"worstMs"_s, samples.worst()}, {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

// Runs the event loop until `done`, and answers the longest single round of it.
double longestStepUntil(const std::function<bool()> &done)
{
    double longest = 0;
    QElapsedTimer patience;
    patience.start();
    while (!done() && patience.elapsed() < 60000) {
        QElapsedTimer step;
        step.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        longest = std::max(longest, double(step.nsecsElapsed()) / 1e6);
        QThread::usleep(100); // leave the cores to the pool meanwhile
    }
    return longest;
}

bool execute(sqlite3 *database, const char *sql)
{
    char *error = nullptr;
    if (sqlite3_exec(database, sql, nullptr, nullptr, &error) == SQLITE_OK)
        return true;
    qCritical("%s: %s", sql, error);
    sqlite3_free(error);
    return false;
}

// A collection at scale with the trashed copies' part inventory entries, written to `path`
// and closed, so the file alone holds it.
void prepareCollection(const QString &path)
{
    auto store = PersistentContainer::open(path);
    BenchmarkCollection::fill(*store, collectionCopies);
    ManagedObjectContext &context = store->viewContext();
    for (const ObjectID &copy : context.fetchObjectIDs(FetchRequest<BrickSet>(BrickSetQueries::trashed()))) {
        for (int entry = 0; entry < entriesPerTrashedCopy; ++entry) {
            PartInventoryEntry owned;
            owned.quantityOwned = entry + 1;
            owned.brickSet = copy;
            context.insert(owned);
        }
    }
    context.save();
}

struct EmptyTrashRun
{
    double total = 0;
    double saveAndRefetch = 0;
    double sqliteDelete = 0;
    int deleted = 0;
    int entriesLeft = -1;
    int copiesLeft = 0;
};

EmptyTrashRun emptyTrashOnce()
{
    EmptyTrashRun run;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
    const QString baselinePath = folder.filePath(u"Baseline.sqlite"_s);
    prepareCollection(path);
    QFile::copy(path, baselinePath);

    // Baseline: SQLite alone, on the copy.
    sqlite3 *database = nullptr;
    if (sqlite3_open(QFile::encodeName(baselinePath).constData(), &database) == SQLITE_OK) {
        execute(database, "PRAGMA foreign_keys = ON");
        execute(database, "PRAGMA synchronous = FULL");
        execute(database, "PRAGMA journal_mode = WAL");
        QElapsedTimer timer;
        timer.start();
        execute(database, "BEGIN IMMEDIATE");
        execute(database, "DELETE FROM BrickSet WHERE isTrashed = 1");
        const int changed = sqlite3_changes(database);
        execute(database, "COMMIT");
        run.sqliteDelete = double(timer.nsecsElapsed()) / 1e6;
        if (changed != collectionCopies / 20)
            qCritical("The baseline deleted %d copies.", changed);
    }
    sqlite3_close(database);

    auto store = PersistentContainer::open(path);
    ManagedObjectContext &context = store->viewContext();
    CatalogDatabaseService catalogService(folder.filePath(u"app"_s), QUrl());
    SidebarViewModel sidebar(context, catalogService, [] { return std::optional<QList<ThemeNode>>(); });
    SetListViewModel lists(*store);
    lists.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
    CollectionTrash trash(context);
    TrashListView view(*store, trash);
    view.setConfirmation([](QWidget *, const DestructiveConfirmation &) { return true; });
    view.resize(460, 800);
    view.show();
    BenchmarkWidgets::paintNow(view);
    run.deleted = view.trashedSets()->count();

    QElapsedTimer timer;
    QObject::connect(&trash, &CollectionTrash::copiesDeleted, &view,
                     [&run, &timer] { run.saveAndRefetch = double(timer.nsecsElapsed()) / 1e6; });
    timer.start();
    view.emptyTrash();
    BenchmarkWidgets::paintNow(view);
    run.total = double(timer.nsecsElapsed()) / 1e6;

    if (view.currentPage() != static_cast<QWidget *>(view.emptyState()))
        qCritical("The trash list did not show its empty state.");
    run.copiesLeft = int(context.count(FetchRequest<BrickSet>()));
    run.entriesLeft = int(context.count(FetchRequest<PartInventoryEntry>()));
    return run;
}

void benchmarkEmptyTrash(int runs, QJsonObject &summary)
{
    BenchmarkSamples total;
    BenchmarkSamples saveAndRefetch;
    BenchmarkSamples sqliteDelete;
    EmptyTrashRun last;
    for (int run = 0; run < runs; ++run) {
        last = emptyTrashOnce();
        total.values.append(last.total);
        saveAndRefetch.values.append(last.saveAndRefetch);
        sqliteDelete.values.append(last.sqliteDelete);
    }
    BenchmarkOutput::print({{u"benchmark"_s, u"wishlist-trash"_s}, {u"collectionCopies"_s, collectionCopies},
                            {u"trashedCopies"_s, last.deleted}, {u"copiesLeft"_s, last.copiesLeft},
                            {u"entriesLeft"_s, last.entriesLeft}});
    BenchmarkOutput::print(figure(u"emptyTrash"_s, total, emptyTrashTargetMs));
    BenchmarkOutput::print(figure(u"emptyTrashSaveAndRefetch"_s, saveAndRefetch));
    BenchmarkOutput::print(figure(u"sqliteDelete"_s, sqliteDelete));
    summary.insert(u"emptyTrashMedianMs"_s, total.median());
    summary.insert(u"emptyTrashWithinTarget"_s, total.median() <= emptyTrashTargetMs);
    summary.insert(u"emptyTrashRatioToSqlite"_s, sqliteDelete.median() > 0 ? total.median() / sqliteDelete.median() : 0);
}

// The entries of the wishlist: sets of the catalog, read straight from its file, and a few
// numbers it does not have.
QList<WishlistItem> wishlistEntries(const QString &catalogPath)
{
    QList<WishlistItem> items;
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(catalogPath).constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        const QByteArray sql = "SELECT set_num, name, year, num_parts, img_url FROM sets ORDER BY set_num LIMIT "
            + QByteArray::number(wishlistItems - wishlistItemsGone) + " OFFSET 5000";
        if (sqlite3_prepare_v2(database, sql.constData(), -1, &statement, nullptr) == SQLITE_OK) {
            while (sqlite3_step(statement) == SQLITE_ROW) {
                WishlistItem item;
                item.setNumber = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
                item.setName = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 1)));
                item.year = qint16(sqlite3_column_int(statement, 2));
                item.pieceCount = sqlite3_column_int(statement, 3);
                if (const unsigned char *image = sqlite3_column_text(statement, 4))
                    item.imageURL = QString::fromUtf8(reinterpret_cast<const char *>(image));
                items.append(item);
            }
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    for (int gone = 0; gone < wishlistItemsGone; ++gone) {
        WishlistItem item;
        item.setNumber = u"gone%1-1"_s.arg(gone); // no catalog has such a number
        item.setName = u"Retired long ago %1"_s.arg(gone);
        item.year = 1990;
        items.append(item);
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (qsizetype index = 0; index < items.size(); ++index)
        items[index].dateAdded = now.addSecs(-60 * index);
    return items;
}

void benchmarkWishlist(const QString &catalogPath, int runs, QJsonObject &summary)
{
    auto catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        qCritical("The catalog does not open.");
        return;
    }
    RebrickableCatalog::replaceShared(catalog);
    const QList<WishlistItem> entries = wishlistEntries(catalogPath);

    QTemporaryDir folder;
    auto store = PersistentContainer::open(folder.filePath(u"Tessaloom.sqlite"_s));
    ManagedObjectContext &context = store->viewContext();
    QStringList numbers;
    for (const WishlistItem &entry : entries) {
        context.insert(entry);
        numbers.append(*entry.setNumber);
    }
    context.save();
    SetListViewModel lists(*store);

    // Baseline: the look-ups alone, on this thread.
    BenchmarkSamples lookUps;
    for (int run = 0; run < runs; ++run)
        lookUps.values.append(BenchmarkOutput::milliseconds([&] { (void)WishlistSetResolver::lookUp(*catalog, numbers); }));

    // Baseline: a plain table of as many rows.
    BenchmarkSamples plainTable;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        QTableWidget table(int(entries.size()), 5);
        table.resize(900, 700);
        for (int row = 0; row < entries.size(); ++row) {
            const WishlistItem &entry = entries[row];
            const QStringList texts{*entry.setNumber, entry.setName.value_or(QString()), QString(),
                                    QString::number(entry.year), QString::number(entry.pieceCount)};
            for (int column = 0; column < texts.size(); ++column)
                table.setItem(row, column, new QTableWidgetItem(texts[column]));
        }
        table.show();
        BenchmarkWidgets::paintNow(table);
        plainTable.values.append(double(timer.nsecsElapsed()) / 1e6);
    }
    BenchmarkOutput::print({{u"benchmark"_s, u"wishlist-trash"_s}, {u"wishlistItems"_s, int(entries.size())},
                            {u"itemsTheCatalogLacks"_s, wishlistItemsGone}});
    BenchmarkOutput::print(figure(u"catalogLookUpsOnCaller"_s, lookUps));
    BenchmarkOutput::print(figure(u"plainTableOpen"_s, plainTable));

    for (const bool grid : {true, false}) {
        lists.setGridView(grid);
        const QString mode = grid ? u"Grid"_s : u"Table"_s;
        BenchmarkSamples open;
        BenchmarkSamples facts;
        BenchmarkSamples mainThread;
        int catalogNames = 0;
        for (int run = 0; run < runs; ++run) {
            QElapsedTimer timer;
            timer.start();
            WishlistListView view(context, lists);
            view.resize(900, 700);
            view.show();
            BenchmarkWidgets::paintNow(view);
            open.values.append(double(timer.nsecsElapsed()) / 1e6);
            double longest = longestStepUntil([&view] { return !view.items()->isLookingUp(); });
            QElapsedTimer last;
            last.start();
            BenchmarkWidgets::paintNow(view);
            longest = std::max(longest, double(last.nsecsElapsed()) / 1e6);
            facts.values.append(double(timer.nsecsElapsed()) / 1e6);
            mainThread.values.append(longest);
            catalogNames = 0;
            for (int row = 0; row < view.items()->count(); ++row)
                catalogNames += view.items()->resultAt(row).themeID != 0 ? 1 : 0;
        }
        if (catalogNames != wishlistItems - wishlistItemsGone)
            qCritical("%d rows show the catalog's facts.", catalogNames);
        BenchmarkOutput::print(figure(u"wishlistOpen"_s + mode, open, wishlistOpenTargetMs));
        BenchmarkOutput::print(figure(u"wishlistCatalogFacts"_s + mode, facts));
        BenchmarkOutput::print(figure(u"wishlistCatalogFactsMainThread"_s + mode, mainThread));
        summary.insert(u"wishlistOpen"_s + mode + u"MedianMs"_s, open.median());
        summary.insert(u"wishlistOpen"_s + mode + u"WithinTarget"_s, open.median() <= wishlistOpenTargetMs);
    }
    summary.insert(u"plainTableOpenMedianMs"_s, plainTable.median());
    RebrickableCatalog::replaceShared(nullptr);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Pictures come from an empty cache in a folder of the run's own, and any download is
    // refused at once on 127.0.0.1 (the catalog's own picture addresses through a proxy that
    // keeps every connection on this machine): no figure waits on the network.
    qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;bricklinkImages=http://127.0.0.1:9");
    QApplication application(argc, argv);
    LoopbackOnlyProxyFactory::install();
    QStandardPaths::setTestModeEnabled(true);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"catalog"_s, u"A built catalog database to use."_s, u"file"_s});
    parser.addOption({u"work"_s, u"Folder where the catalog is built from the full dumps, once."_s, u"dir"_s,
                      QDir::temp().filePath(u"tessaloom-parts-checklist-bench"_s)});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"5"_s});
    parser.process(application);
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());

    QJsonObject summary{{u"benchmark"_s, u"wishlist-trash"_s}, {u"summary"_s, true}};
    benchmarkEmptyTrash(runs, summary);

    QString catalogPath = parser.value(u"catalog"_s);
    if (catalogPath.isEmpty()) {
        QElapsedTimer building;
        building.start();
        catalogPath = CatalogFixture::buildFullCatalog(parser.value(u"work"_s));
        if (!catalogPath.isEmpty())
            BenchmarkOutput::print({{u"benchmark"_s, u"wishlist-trash"_s}, {u"catalog"_s, catalogPath},
                                    {u"preparedSeconds"_s, double(building.elapsed()) / 1000}});
    }
    if (catalogPath.isEmpty())
        BenchmarkOutput::print({{u"benchmark"_s, u"wishlist-trash"_s}, {u"step"_s, u"wishlistOpen"_s},
                                {u"skipped"_s, true},
                                {u"reason"_s, u"The full-size dumps were not found; pass --catalog FILE."_s}});
    else
        benchmarkWishlist(catalogPath, runs, summary);
    BenchmarkOutput::print(summary);
    return 0;
}
