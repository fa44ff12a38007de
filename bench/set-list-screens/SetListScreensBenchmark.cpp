// SPDX-License-Identifier: GPL-3.0-or-later
// Measures the set list's screens offscreen and prints one JSON object per line:
//
// - gridScroll: a grid of GRID sets whose pictures come from a server on 127.0.0.1 (20 ms
//   latency), scrolled top to bottom at one step per 16 ms frame, twice: while pictures
//   arrive, then with them at hand. A frame is the scroll plus a synchronous repaint of the
//   grid; the same scroll of a bare QListView grid (text cells, same model) is the
//   baseline. Peak memory is read after the grid has been scrolled through.
// - tableSort: the table of COPIES copies (two per set) sorted by a click on each header
//   in both directions, until the rows are regrouped and painted, beside a bare list fetch
//   with the same sort.
// - catalogSort (with a catalog file): the catalog table of all sets (1,000 rows) sorted by
//   each header until the new results are painted, beside sorting the same rows alone.
//
//   set-list-screens-bench [--copies N] [--grid N] [--runs N] [CATALOG]

#include "BenchmarkPictures.h"
#include "LoopbackHttpServer.h"

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"

#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListSortOrder.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/CatalogTableView.h"
#include "Views/CellPictureLoader.h"
#include "Views/SetGridCellPainter.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "Views/SetTableView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListView>
#include <QLoggingCategory>
#include <QScrollBar>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QUuid>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int frameMilliseconds = 16;
constexpr int scrollStep = 60;

// VmHWM and VmRSS of this process, in MB.
double memoryMegabytes(const char *field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return 0;
}

void processEventsFor(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
    } while (timer.elapsed() < milliseconds);
}

// The middle column as the window shows it, with the whole collection as a grid or table.
void showAllSets(SetListViewModel &model, SetListView &view, bool grid)
{
    model.setGridView(grid);
    model.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
    view.resize(900, 720);
    view.show();
    processEventsFor(100);
}

struct ScrollFigures
{
    QList<double> frames;
    double seconds = 0;
};

// Scrolls `view` from top to bottom, one step per frame, repainting synchronously.
ScrollFigures scrollThrough(QAbstractItemView &view)
{
    ScrollFigures figures;
    QScrollBar *bar = view.verticalScrollBar();
    bar->setValue(0);
    processEventsFor(50);
    QElapsedTimer total;
    total.start();
    for (int position = 0; position <= bar->maximum() + scrollStep; position += scrollStep) {
        QElapsedTimer frame;
        frame.start();
        bar->setValue(std::min(position, bar->maximum()));
        view.viewport()->repaint();
        const qint64 used = frame.nsecsElapsed();
        figures.frames << double(used) / 1e6;
        // The rest of the frame goes to the event loop: pictures arriving, timers.
        processEventsFor(std::max<int>(1, frameMilliseconds - int(used / 1'000'000)));
    }
    figures.seconds = double(total.nsecsElapsed()) / 1e9;
    return figures;
}

QJsonObject scrollJson(const QString &pass, const ScrollFigures &figures)
{
    return QJsonObject{{u"bench"_s, u"gridScroll"_s},
                       {u"pass"_s, pass},
                       {u"frames"_s, figures.frames.size()},
                       {u"frameP50Ms"_s, BenchmarkOutput::percentile(figures.frames, 0.5)},
                       {u"frameP95Ms"_s, BenchmarkOutput::percentile(figures.frames, 0.95)},
                       {u"frameMaxMs"_s, BenchmarkOutput::percentile(figures.frames, 1.0)},
                       {u"seconds"_s, figures.seconds},
                       {u"targetMs"_s, frameMilliseconds}};
}

void benchmarkGridScroll(int gridSets)
{
    QTemporaryDir pictures;
    BenchmarkPictures::Summary summary;
    // A quarter as many files as sets, each served under four addresses: every set still
    // has its own picture to fetch, decode and scale.
    const QStringList names = BenchmarkPictures::generate(pictures.path(), std::max(1, gridSets / 4), &summary);
    LoopbackHttpServer server;
    if (!server.listen()) {
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"gridScroll"_s}, {u"error"_s, u"no loopback port"_s}});
        return;
    }
    auto store = PersistenceController::open(QString(), true);
    ManagedObjectContext &context = store->container().viewContext();
    for (int index = 0; index < gridSets; ++index) {
        const QString path = u"/media/sets/"_s + QString::number(index) + u"-"_s + names[index % names.size()];
        LoopbackHttpServer::Response response;
        response.filePath = QDir(pictures.path()).filePath(names[index % names.size()]);
        response.delayMilliseconds = 20;
        server.setResponse(path, response);
        CatalogSet set;
        set.setNumber = QString::number(20000 + index) + u"-1"_s;
        set.name = u"Grid Set "_s + QString::number(index);
        set.year = qint16(1990 + index % 30);
        set.pieceCount = 100 + index;
        set.imageURL = server.url(path).toString();
        set = context.insert(set);
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc();
        copy.catalogSet = set.objectID;
        copy.isFavorite = index % 7 == 0;
        context.insert(copy);
    }
    context.save();
    const double rssBefore = memoryMegabytes("VmRSS:");

    SetListViewModel model(store->container());
    SetListView view(model);
    showAllSets(model, view, true);

    // The baseline: Qt's own grid over the same rows, painting the text cells only.
    QListView bare;
    bare.setViewMode(QListView::IconMode);
    bare.setUniformItemSizes(true);
    bare.setResizeMode(QListView::Adjust);
    bare.setMovement(QListView::Static);
    bare.setGridSize(view.copiesGrid()->gridSize());
    bare.setModelColumn(SetListGroupModel::NameColumn);
    bare.setModel(model.groups());
    bare.resize(view.copiesGrid()->size());
    bare.show();
    processEventsFor(100);
    const ScrollFigures baseline = scrollThrough(bare);
    bare.hide();

    const ScrollFigures cold = scrollThrough(*view.copiesGrid());
    // Let the last pictures land before the second pass.
    processEventsFor(1500);
    const ScrollFigures warm = scrollThrough(*view.copiesGrid());

    QJsonObject coldJson = scrollJson(u"picturesArriving"_s, cold);
    coldJson.insert(u"cells"_s, model.groups()->count());
    coldJson.insert(u"pictureFiles"_s, summary.count);
    coldJson.insert(u"requests"_s, server.requestCount());
    BenchmarkOutput::print(coldJson);
    BenchmarkOutput::print(scrollJson(u"picturesAtHand"_s, warm));
    BenchmarkOutput::print(scrollJson(u"bareQtGrid"_s, baseline));
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"gridMemory"_s},
                      {u"cells"_s, model.groups()->count()},
                      {u"rssBeforeGridMB"_s, rssBefore},
                      {u"rssAfterScrollMB"_s, memoryMegabytes("VmRSS:")},
                      {u"peakRssMB"_s, memoryMegabytes("VmHWM:")},
                      {u"gridPicturesHeldMB"_s, double(view.gridPictures()->bytesHeld()) / 1048576.0},
                      {u"targetMB"_s, 250}});
}

void benchmarkTableSort(int copies, int runs)
{
    auto store = PersistenceController::open(QString(), true);
    BenchmarkCollection::fill(store->container(), copies);
    SetListViewModel model(store->container());
    SetListView view(model);
    showAllSets(model, view, false);
    SetTableView &table = *view.copiesTable();
    BrickSetListModel bare(store->container());

    const QList<int> columns{SetListGroupModel::SetNumberColumn, SetListGroupModel::NameColumn,
                             SetListGroupModel::YearColumn,      SetListGroupModel::PiecesColumn,
                             SetListGroupModel::ConditionColumn, SetListGroupModel::ValueColumn,
                             SetListGroupModel::AddedColumn};
    QList<double> all;
    for (const int column : columns) {
        QList<double> samples;
        QList<double> baseline;
        for (int run = 0; run < runs; ++run) {
            for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                samples << BenchmarkOutput::milliseconds([&] {
                    table.model()->sort(column, order); // what a header click does
                    table.viewport()->repaint();
                });
                FetchRequest<BrickSet> request = model.fetchRequest(u"all_sets"_s);
                bare.setFetchRequest(FetchRequest<BrickSet>(Predicate::alwaysFalse()));
                baseline << BenchmarkOutput::milliseconds([&] { bare.setFetchRequest(request); });
            }
        }
        all << samples;
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"tableSort"_s},
                          {u"column"_s, table.model()->headerData(column, Qt::Horizontal).toString()},
                          {u"copies"_s, model.copies()->count()},
                          {u"rows"_s, model.groups()->count()},
                          {u"medianMs"_s, BenchmarkOutput::percentile(samples, 0.5)},
                          {u"maxMs"_s, BenchmarkOutput::percentile(samples, 1.0)},
                          {u"bareFetchMedianMs"_s, BenchmarkOutput::percentile(baseline, 0.5)}});
    }
    // The value column's header sorts by name; the market price sorts through the setting.
    QList<double> byPrice;
    for (int run = 0; run < runs; ++run) {
        for (const bool ascending : {true, false}) {
            model.setCollectionSortAscending(ascending);
            byPrice << BenchmarkOutput::milliseconds([&] {
                model.setCollectionSortColumn(SetListViewModel::SortColumn::value);
                table.viewport()->repaint();
            });
            model.setCollectionSortColumn(SetListViewModel::SortColumn::name);
        }
    }
    all << byPrice;
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"tableSort"_s},
                      {u"column"_s, u"market price (in memory)"_s},
                      {u"rows"_s, model.groups()->count()},
                      {u"medianMs"_s, BenchmarkOutput::percentile(byPrice, 0.5)},
                      {u"maxMs"_s, BenchmarkOutput::percentile(byPrice, 1.0)}});
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"tableSortSummary"_s},
                      {u"p50Ms"_s, BenchmarkOutput::percentile(all, 0.5)},
                      {u"p95Ms"_s, BenchmarkOutput::percentile(all, 0.95)},
                      {u"maxMs"_s, BenchmarkOutput::percentile(all, 1.0)},
                      {u"targetMs"_s, 50}});
}

void benchmarkCatalogSort(const QString &catalogPath, int runs)
{
    auto catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"catalogSort"_s}, {u"error"_s, QString(u"cannot open "_s + catalogPath)}});
        return;
    }
    RebrickableCatalog::replaceShared(catalog);
    auto store = PersistenceController::open(QString(), true);
    SetListViewModel model(store->container());
    model.setGridView(false);
    SetListView view(model);
    view.resize(900, 720);
    view.show();
    const auto waitForResults = [&] {
        do {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        } while (model.isCatalogSearchRunning());
    };
    model.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::catalogAll));
    waitForResults();
    CatalogTableView &table = *view.catalogTable();
    const QList<int> columns{CatalogSetListModel::SetNumberColumn, CatalogSetListModel::NameColumn,
                             CatalogSetListModel::YearColumn, CatalogSetListModel::PiecesColumn};
    QList<double> all;
    for (const int column : columns) {
        QList<double> samples;
        QList<double> baseline;
        for (int run = 0; run < runs; ++run) {
            for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                samples << BenchmarkOutput::milliseconds([&] {
                    table.model()->sort(column, order);
                    waitForResults();
                    table.viewport()->repaint();
                });
                QList<CatalogSetResult> rows = model.catalogResults();
                baseline << BenchmarkOutput::milliseconds([&] { SetListSortOrder::sortCatalogResults(rows, model.catalogSortOrder()); });
            }
        }
        all << samples;
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"catalogSort"_s},
                          {u"column"_s, table.model()->headerData(column, Qt::Horizontal).toString()},
                          {u"rows"_s, model.catalogResults().size()},
                          {u"medianMs"_s, BenchmarkOutput::percentile(samples, 0.5)},
                          {u"maxMs"_s, BenchmarkOutput::percentile(samples, 1.0)},
                          {u"bareSortMedianMs"_s, BenchmarkOutput::percentile(baseline, 0.5)}});
    }
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"catalogSortSummary"_s},
                      {u"p50Ms"_s, BenchmarkOutput::percentile(all, 0.5)},
                      {u"maxMs"_s, BenchmarkOutput::percentile(all, 1.0)},
                      {u"targetMs"_s, 50}});
    QThreadPool::globalInstance()->waitForDone();
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QSettings().clear();
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    // The cache's debug lines would be written during the frames being timed.
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.*.debug=false"_s);
    int copies = 10000;
    int gridSets = 1000;
    int runs = 3;
    QString catalogPath;
    const QStringList arguments = application.arguments().mid(1);
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        if (arguments[index] == u"--copies" && index + 1 < arguments.size())
            copies = arguments[++index].toInt();
        else if (arguments[index] == u"--grid" && index + 1 < arguments.size())
            gridSets = arguments[++index].toInt();
        else if (arguments[index] == u"--runs" && index + 1 < arguments.size())
            runs = arguments[++index].toInt();
        else
            catalogPath = arguments[index];
    }
    // The grid first, so that its memory figure is not the sorts' store.
    benchmarkGridScroll(gridSets);
    benchmarkTableSort(copies, runs);
    if (!catalogPath.isEmpty())
        benchmarkCatalogSort(catalogPath, runs);
    QSettings().clear();
    return 0;
}
