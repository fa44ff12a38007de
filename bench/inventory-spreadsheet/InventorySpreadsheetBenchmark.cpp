// SPDX-License-Identifier: GPL-3.0-or-later
// The inventory sheet in the main window offscreen, over a store of COPIES copies of
// generated catalog sets (one copy in five disposed of, prices in three currencies,
// acquisition dates over twenty years). Every figure ends with the window painted.
//
// - `chooseInventory`: a window on all sets switches to the inventory item for the first
//   time, until the sheet, its footer and chart are painted (a new window per sample, since
//   only the first visit builds the sheet); `chooseInventoryAgain`: a later visit.
// - `searchKeystroke`: one key typed into or erased from the search field.
// - `statusChange`: a click on a status choice of the filter list.
// - `dateChange`: the first day of the date bar moved by the user.
// - `headerSort`: a click on a column header (new column, or the same one turned round).
// - `scroll`: the table scrolled one screen per 16 ms frame from top to bottom; the frame
//   (scroll plus synchronous repaint) p95.
// - `liveChange`: one copy's price saved on a background context, from the store's change
//   notice until the new price is in the table and painted.
//
// Baseline in the same run, beside every figure: `fetch`, the bare store fetch of the same
// copies with their catalog sets through the view context.
//
//   QT_QPA_PLATFORM=offscreen inventory-spreadsheet-bench [--copies N] [--runs N]

#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"

#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Services/CatalogDatabaseService.h"
#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/ContentView.h"
#include "Views/InventoryDateFilterBar.h"
#include "Views/InventoryFilterView.h"
#include "Views/InventorySpreadsheetView.h"
#include "Views/OptionalDateEdit.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCheckBox>
#include <QCommandLineParser>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QLoggingCategory>
#include <QScrollBar>
#include <QSettings>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize windowSize{1400, 900};
constexpr int frameMilliseconds = 16;
const QStringList currencies{u"USD"_s, u"EUR"_s, u"GBP"_s};
const QStringList conditions{u"new"_s, u"used"_s};
const QStringList builtStatuses{u"built"_s, u"disassembled"_s, u"partially_built"_s, u"never_built"_s};
const QStringList disposalTypes{u"sold"_s, u"gifted"_s, u"traded"_s, u"lost"_s};

double fetchBaseline = 0;

// A collector's accounts at scale: two copies per generated catalog set.
void fillStore(ManagedObjectContext &context, int copies)
{
    const int sets = std::max(1, copies / 2);
    QList<ObjectID> catalogSets;
    for (int index = 0; index < sets; ++index) {
        CatalogSet set;
        set.setNumber = QString::number(10000 + index) + u"-1"_s;
        set.name = u"Set "_s + QString::number((index * 7919) % sets);
        set.year = qint16(1980 + index % 45);
        set.pieceCount = index % 3000;
        catalogSets.append(context.insert(set).objectID);
    }
    const QDateTime start(QDate(2005, 1, 1), QTime(12, 0), Qt::UTC);
    for (int index = 0; index < copies; ++index) {
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.catalogSet = catalogSets[index % sets];
        const QDateTime acquired = start.addDays((index * 37) % 7300);
        copy.dateAdded = acquired.addDays(3);
        if (index % 7 != 0)
            copy.acquisitionDate = acquired;
        copy.setAcquisitionType(AcquisitionType::purchased);
        if (index % 9 != 0) {
            copy.pricePaid = Decimal::fromString(QString(QString::number(10 + index % 700) + u".99"_s));
            copy.priceCurrency = currencies[index % 3];
        }
        if (index % 4 != 0)
            copy.overallCondition = conditions[index % 2];
        copy.builtStatus = builtStatuses[index % 4];
        if (index % 5 == 4) {
            copy.isDisposed = true;
            copy.disposalType = disposalTypes[index % 4];
            copy.disposalDate = acquired.addDays(200 + index % 400);
            if (index % 2 == 0) {
                copy.disposalPrice = Decimal::fromString(QString::number(20 + index % 900));
                copy.disposalCurrency = currencies[(index / 5) % 3];
            }
        }
        context.insert(copy);
    }
    context.save();
}

QJsonObject figure(const QString &step, const BenchmarkSamples &samples, double target, const QString &measure)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    const double value = measure == u"p95"_s ? BenchmarkOutput::percentile(samples.values, 0.95) : samples.median();
    QJsonObject object{{u"benchmark"_s, u"inventory-spreadsheet"_s}, {u"step"_s, step},
                       {u"samples"_s, samples.values.size()}, {u"medianMs"_s, samples.median()},
                       {u"p95Ms"_s, BenchmarkOutput::percentile(samples.values, 0.95)},
                       {u"worstMs"_s, samples.worst()}, {u"fetchBaselineMs"_s, fetchBaseline},
                       {u"ratioToFetch"_s, fetchBaseline > 0 ? value / fetchBaseline : 0}};
    if (samples.values.size() <= 40)
        object.insert(u"samplesMs"_s, all);
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"judgedBy"_s, measure);
        object.insert(u"withinTarget"_s, value <= target);
    }
    return object;
}

BenchmarkSamples measureFetch(ManagedObjectContext &context, int runs)
{
    BenchmarkSamples samples;
    const FetchRequest<BrickSet> request(BrickSetQueries::notTrashed());
    (void)context.fetchBrickSetsWithCatalogSets(request); // warms the page cache
    for (int run = 0; run < runs; ++run)
        samples.values.append(
            BenchmarkOutput::milliseconds([&] { (void)context.fetchBrickSetsWithCatalogSets(request); }));
    return samples;
}

void processEventsFor(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
    } while (timer.elapsed() < milliseconds);
}

std::unique_ptr<ContentView> newWindow(PersistenceController &store, CatalogDatabaseService &catalog)
{
    auto window = std::make_unique<ContentView>(store.container(), catalog);
    window->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
    window->resize(windowSize);
    window->show();
    BenchmarkWidgets::paintNow(*window);
    processEventsFor(50);
    return window;
}

void clickHeader(QTableView &table, int column)
{
    QHeaderView *header = table.horizontalHeader();
    const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TESSALOOM_ENDPOINTS", "rebrickable=http://127.0.0.1:9;lego=http://127.0.0.1:9");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.*.debug=false"_s);
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"copies"_s, u"Copies in the collection."_s, u"n"_s, u"10000"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"15"_s});
    parser.process(application);
    const int copies = std::max(10, parser.value(u"copies"_s).toInt());
    const int runs = std::max(3, parser.value(u"runs"_s).toInt());

    QTemporaryDir folder;
    QSettings().clear();
    auto store = PersistenceController::open(folder.filePath(u"Tessaloom.sqlite"_s));
    ManagedObjectContext &context = store->container().viewContext();
    fillStore(context, copies);
    CatalogDatabaseService catalog(folder.filePath(u"app"_s), QUrl(u"http://127.0.0.1:9"_s));
    // Connected before any window, so it runs first on each change notice: the clock of a
    // live change starts with the notice and the sheet's refetch follows.
    QElapsedTimer sinceNotice;
    QObject::connect(&store->container(), &PersistentContainer::objectsDidChange, &application,
                     [&sinceNotice] { sinceNotice.start(); });

    BenchmarkSamples fetch = measureFetch(context, runs);
    fetchBaseline = fetch.median();
    BenchmarkOutput::print({{u"benchmark"_s, u"inventory-spreadsheet"_s}, {u"copies"_s, copies},
                            {u"disposed"_s, copies / 5}, {u"currencies"_s, QJsonArray::fromStringList(currencies)}});

    // ---- Choosing the inventory item: the first visit builds the sheet ----
    BenchmarkSamples choose;
    BenchmarkSamples chooseAgain;
    const int windowRuns = std::max(3, runs / 3);
    for (int run = 0; run < windowRuns; ++run) {
        std::unique_ptr<ContentView> window = newWindow(*store, catalog);
        choose.values.append(BenchmarkOutput::milliseconds([&] {
            window->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::inventory));
            BenchmarkWidgets::paintNow(*window);
        }));
        window->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
        BenchmarkWidgets::paintNow(*window);
        chooseAgain.values.append(BenchmarkOutput::milliseconds([&] {
            window->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::inventory));
            BenchmarkWidgets::paintNow(*window);
        }));
        window.reset();
        QThreadPool::globalInstance()->waitForDone();
    }
    BenchmarkOutput::print(figure(u"chooseInventory"_s, choose, 100, u"median"_s));
    BenchmarkOutput::print(figure(u"chooseInventoryAgain"_s, chooseAgain, 0, u"median"_s));

    std::unique_ptr<ContentView> window = newWindow(*store, catalog);
    window->sidebarViewModel().setSelectedItem(SidebarItem(SidebarItem::Kind::inventory));
    BenchmarkWidgets::paintNow(*window);
    InventorySpreadsheetView &sheet = *window->inventorySpreadsheet();
    InventorySpreadsheetViewModel &viewModel = *window->inventoryViewModel();
    QTableView &table = *sheet.table();
    const int allRows = table.model()->rowCount();
    if (allRows != copies) {
        qCritical("The sheet shows %d rows of %d copies.", allRows, copies);
        return 1;
    }

    // ---- A keystroke in the search field ----
    BenchmarkSamples keystroke;
    QLineEdit &search = *sheet.searchField();
    search.setFocus();
    const QString typed = u"set 12"_s;
    while (keystroke.values.size() < runs * 2) {
        for (const QChar character : typed) {
            keystroke.values.append(BenchmarkOutput::milliseconds([&] {
                QTest::keyClick(&search, character.toLatin1());
                BenchmarkWidgets::paintNow(*window);
            }));
        }
        for (qsizetype erased = 0; erased < typed.size(); ++erased) {
            keystroke.values.append(BenchmarkOutput::milliseconds([&] {
                QTest::keyClick(&search, Qt::Key_Backspace);
                BenchmarkWidgets::paintNow(*window);
            }));
        }
    }
    if (viewModel.searchText() != QString() || table.model()->rowCount() != allRows) {
        qCritical("The search did not end empty.");
        return 1;
    }
    BenchmarkOutput::print(figure(u"searchKeystroke"_s, keystroke, 50, u"median"_s));

    // ---- A status choice clicked ----
    BenchmarkSamples status;
    QListWidget &choices = *window->inventoryFilterView()->list();
    for (int run = 0; run < runs; ++run) {
        const int row = (run + 1) % 3;
        status.values.append(BenchmarkOutput::milliseconds([&] {
            QTest::mouseClick(choices.viewport(), Qt::LeftButton, {},
                              choices.visualItemRect(choices.item(row)).center());
            BenchmarkWidgets::paintNow(*window);
        }));
    }
    QTest::mouseClick(choices.viewport(), Qt::LeftButton, {}, choices.visualItemRect(choices.item(0)).center());
    BenchmarkOutput::print(figure(u"statusChange"_s, status, 50, u"median"_s));

    // ---- The first day of the date bar moved ----
    viewModel.setShowDateFilter(true);
    BenchmarkWidgets::paintNow(*window);
    OptionalDateEdit &from = *sheet.dateFilterBar()->fromPicker();
    from.presentBox()->click();
    BenchmarkWidgets::paintNow(*window);
    BenchmarkSamples date;
    for (int run = 0; run < runs; ++run) {
        const QDate day = QDate(2008, 1, 1).addMonths(run * 7 % 180);
        date.values.append(BenchmarkOutput::milliseconds([&] {
            from.dateEdit()->setDate(day);
            BenchmarkWidgets::paintNow(*window);
        }));
    }
    if (viewModel.filterDateFrom() != QDate(2008, 1, 1).addMonths((runs - 1) * 7 % 180)) {
        qCritical("The date bar did not reach the view model.");
        return 1;
    }
    viewModel.clearDateFilter();
    viewModel.setShowDateFilter(false);
    BenchmarkWidgets::paintNow(*window);
    BenchmarkOutput::print(figure(u"dateChange"_s, date, 50, u"median"_s));

    // ---- A header click ----
    BenchmarkSamples sort;
    for (int run = 0; run < runs * 2; ++run) {
        // Each column twice in a row: a new column, then the same one turned round.
        const int column = (run / 2) % InventorySpreadsheetModel::columnCount_;
        sort.values.append(BenchmarkOutput::milliseconds([&] {
            clickHeader(table, column);
            BenchmarkWidgets::paintNow(*window);
        }));
    }
    viewModel.setSort(InventorySpreadsheetViewModel::SortColumn::setNumber, true);
    BenchmarkOutput::print(figure(u"headerSort"_s, sort, 50, u"median"_s));

    // ---- Scrolling one screen per frame ----
    BenchmarkWidgets::paintNow(*window);
    BenchmarkSamples frames;
    QScrollBar *bar = table.verticalScrollBar();
    bar->setValue(0);
    processEventsFor(50);
    for (int position = 0; position <= bar->maximum() + bar->pageStep(); position += bar->pageStep()) {
        QElapsedTimer frame;
        frame.start();
        bar->setValue(std::min(position, bar->maximum()));
        table.viewport()->repaint();
        const qint64 used = frame.nsecsElapsed();
        frames.values.append(double(used) / 1e6);
        processEventsFor(std::max<int>(1, frameMilliseconds - int(used / 1'000'000)));
    }
    BenchmarkOutput::print(figure(u"scroll"_s, frames, frameMilliseconds, u"p95"_s));

    // ---- A copy saved on another context ----
    BenchmarkSamples live;
    BenchmarkSamples commits;
    auto background = store->container().newBackgroundContext();
    bar->setValue(bar->maximum() / 3);
    BenchmarkWidgets::paintNow(*window);
    for (int run = 0; run < runs; ++run) {
        const int row = table.rowAt(table.viewport()->height() / 2);
        const ObjectID copy = viewModel.tableModel().objectIDAt(row);
        const QString price = QString::number(500 + run) + u".25"_s;
        sinceNotice.invalidate();
        commits.values.append(BenchmarkOutput::milliseconds([&] {
            background->performAndWait([copy, price](ManagedObjectContext &other) {
                std::optional<BrickSet> changed = other.existingObject<BrickSet>(copy);
                changed->pricePaid = Decimal::fromString(price);
                other.update(*changed);
                other.save();
            });
        }));
        const int column = InventorySpreadsheetModel::paid;
        const bool shown = BenchmarkWidgets::processUntil([&] {
            const int now = viewModel.tableModel().rowOf(copy);
            return sinceNotice.isValid() && now >= 0
                && table.model()->index(now, column).data().toString().contains(price);
        });
        BenchmarkWidgets::paintNow(*window);
        if (!shown) {
            qCritical("The changed copy never reached the sheet.");
            return 1;
        }
        live.values.append(double(sinceNotice.nsecsElapsed()) / 1e6);
    }
    QJsonObject liveJson = figure(u"liveChange"_s, live, 20, u"median"_s);
    liveJson.insert(u"backgroundSaveMedianMs"_s, commits.median());
    BenchmarkOutput::print(liveJson);

    // The baseline again at the end, so a change of load during the run shows.
    BenchmarkSamples fetchAfter = measureFetch(context, runs);
    QJsonObject fetchJson = figure(u"fetch"_s, fetch, 0, u"median"_s);
    fetchJson.insert(u"medianAtEndMs"_s, fetchAfter.median());
    BenchmarkOutput::print(fetchJson);

    const auto within = [](const BenchmarkSamples &samples, double target) { return samples.median() <= target; };
    BenchmarkOutput::print(
        {{u"benchmark"_s, u"inventory-spreadsheet"_s}, {u"summary"_s, true},
         {u"chooseInventoryMs"_s, choose.median()}, {u"searchKeystrokeMs"_s, keystroke.median()},
         {u"statusChangeMs"_s, status.median()}, {u"dateChangeMs"_s, date.median()},
         {u"headerSortMs"_s, sort.median()},
         {u"scrollFrameP95Ms"_s, BenchmarkOutput::percentile(frames.values, 0.95)},
         {u"liveChangeMs"_s, live.median()}, {u"fetchBaselineMs"_s, fetchBaseline},
         {u"allWithinTarget"_s, within(choose, 100) && within(keystroke, 50) && within(status, 50)
                                    && within(date, 50) && within(sort, 50) && within(live, 20)
                                    && BenchmarkOutput::percentile(frames.values, 0.95) <= frameMilliseconds}});
    window.reset();
    QThreadPool::globalInstance()->waitForDone();
    return 0;
}
