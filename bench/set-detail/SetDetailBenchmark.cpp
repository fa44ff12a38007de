// SPDX-License-Identifier: GPL-3.0-or-later
// The detail column of an owned copy offscreen, with a store of 10,000 copies and the full
// catalog: how long the user waits after selecting a copy and after switching tabs.
//
// - `select`: a new SetDetailView for one copy after another, placed in the column and
//   painted (pending layouts run, then a synchronous repaint) with its overview. Booklet
//   lookups never answer during the measure. Baseline in the same run, `previewSelect`:
//   the read-only SetPreviewView that the column shows for a copy today, given the same
//   copies and painted the same way.
// - `inventoryTab`: for a set with 20 copies (part counts included), a switch from the
//   overview to the inventory tab, first time (the tab is built then) until painted.
//   Baselines: `inventoryRead`, the same copies and their part counts read straight from
//   the view context; `inventoryTabAgain`, a later switch back to the built tab.
// - `partsTab`: for the set of the catalog with the most pieces, synced into the store,
//   a switch to the parts tab until its rows are read and painted. Baseline:
//   `partsTabAlone`, the PartsTab widget on its own for the same set.
//
// Pictures point at 127.0.0.1, which refuses them at once. One JSON object per line, a
// summary line last.
//
//   QT_QPA_PLATFORM=offscreen set-detail-bench [--catalog FILE | --work DIR] [--copies N] [--runs N]

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"
#include "CatalogFixture.h"

#include "Endpoints.h"
#include "Services/CatalogSyncService.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetQueries.h"
#include "Store/CatalogSetPart.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PartInventoryEntry.h"
#include "Store/PersistenceController.h"
#include "Views/CachedAsyncImage.h"
#include "Views/InventoryTab.h"
#include "Views/PartsTab.h"
#include "Views/SetDetailView.h"
#include "Views/SetPreviewView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoroFuture>
#include <QDir>
#include <QElapsedTimer>
#include <QFutureInterface>
#include <QJsonArray>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>

#include <sqlite3.h>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr double selectTargetMs = 50;
constexpr double inventoryTargetMs = 50;
constexpr double partsTargetMs = 100;
constexpr QSize columnSize{560, 900};
constexpr int inventoryCopies = 20;

QJsonObject figure(const QString &name, const BenchmarkSamples &samples, double target)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"set-detail"_s}, {u"step"_s, name},
                       {u"medianMs"_s, samples.median()}, {u"worstMs"_s, samples.worst()},
                       {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

QString largestSetNumber(const QString &path)
{
    QString number;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(db, "SELECT set_num FROM sets ORDER BY num_parts DESC LIMIT 1", -1, &statement,
                               nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW)
            number = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
    return number;
}

LegoInstructionsService::Fetcher silentFetcher(QFutureInterface<void> &never)
{
    return [&never](QString) -> QCoro::Task<QList<LegoInstructionsService::Instruction>> {
        co_await never.future();
        co_return QList<LegoInstructionsService::Instruction>{};
    };
}

// The detail column: one view at a time in a fixed-size host, as the window places it.
class Column : public QWidget
{
public:
    Column()
    {
        m_layout = new QVBoxLayout(this);
        m_layout->setContentsMargins(0, 0, 0, 0);
        resize(columnSize);
    }

    void place(QWidget *view)
    {
        delete m_current;
        m_current = view;
        m_layout->addWidget(view);
    }

private:
    QVBoxLayout *m_layout;
    QWidget *m_current = nullptr;
};

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;bricklinkImages=http://127.0.0.1:9");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    // The JSON lines alone on the console: the picture cache's debug lines are many here.
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.*.debug=false"_s);
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"catalog"_s, u"A built catalog database to use."_s, u"file"_s});
    parser.addOption({u"work"_s, u"Folder where the catalog is built from the full dumps, once."_s, u"dir"_s,
                      QDir::temp().filePath(u"tessaloom-parts-checklist-bench"_s)});
    parser.addOption({u"copies"_s, u"Copies in the collection."_s, u"n"_s, u"10000"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"15"_s});
    parser.process(application);
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());
    const int copies = std::max(inventoryCopies, parser.value(u"copies"_s).toInt());

    QString catalogPath = parser.value(u"catalog"_s);
    if (catalogPath.isEmpty()) {
        catalogPath = CatalogFixture::buildFullCatalog(parser.value(u"work"_s));
        if (catalogPath.isEmpty()) {
            BenchmarkOutput::print({{u"benchmark"_s, u"set-detail"_s},
                                    {u"skipped"_s, true},
                                    {u"reason"_s, u"The full-size dumps were not found; pass --catalog FILE."_s}});
            return 0;
        }
    }
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        qCritical("The catalog does not open.");
        return 1;
    }
    RebrickableCatalog::replaceShared(catalog);
    const QString largest = largestSetNumber(catalogPath);

    QTemporaryDir folder;
    auto controller = PersistenceController::open(folder.filePath(u"Tessaloom.sqlite"_s));
    PersistentContainer &container = controller->container();
    ManagedObjectContext &context = container.viewContext();
    BenchmarkCollection::fill(container, copies);
    ImageCacheService pictures(folder.filePath(u"Caches"_s));
    QFutureInterface<void> never;
    never.reportStarted();

    // The largest set of the catalog in the store, with its parts lines, and 20 copies of
    // it, each with a count on a third of its lines.
    CatalogSyncService sync(*controller);
    const ObjectID largestID = QCoro::waitFor(sync.syncSet(largest));
    // The synced set names its pictures on the catalog's media host; they are pointed at a
    // refusing local port like every other picture here.
    if (std::optional<CatalogSet> set = context.existingObject<CatalogSet>(largestID)) {
        set->imageURL = u"http://127.0.0.1:9/media/sets/"_s + largest + u".jpg"_s;
        set->thumbnailURL.reset();
        context.update(*set);
        context.save();
    }
    const QList<CatalogSetPart> lines =
        context.related<CatalogSetPart>(largestID, u"catalogSetParts"_s);
    QList<BrickSet> inventoryCopiesList;
    for (int index = 0; index < inventoryCopies; ++index) {
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc().addDays(-index);
        copy.catalogSet = largestID;
        copy.setAcquisitionType(AcquisitionType::purchased);
        copy.pricePaid = Decimal::fromString(u"679.99"_s);
        copy.priceCurrency = u"USD"_s;
        copy = context.insert(copy);
        for (qsizetype line = index % 3; line < lines.size(); line += 3) {
            PartInventoryEntry entry;
            entry.quantityOwned = 1;
            entry.brickSet = copy.objectID;
            entry.catalogSetPart = lines[line].objectID;
            context.insert(entry);
        }
        inventoryCopiesList.append(copy);
    }
    context.save();

    BenchmarkOutput::print({{u"benchmark"_s, u"set-detail"_s}, {u"copies"_s, copies}, {u"largestSet"_s, largest},
                            {u"largestSetLines"_s, int(lines.size())}, {u"inventoryCopies"_s, inventoryCopies}});

    // ---- Selecting a copy ----
    const QList<BrickSetWithCatalogSet> listed = context.fetchBrickSetsWithCatalogSets(
        FetchRequest<BrickSet>(BrickSetQueries::notTrashed(), {SortDescriptor{u"dateAdded"_s, true}}));
    BenchmarkSamples select;
    BenchmarkSamples previewSelect;
    {
        Column column;
        column.show();
        BenchmarkWidgets::paintNow(column);
        SetPreviewView preview;
        preview.picture()->setImageCache(&pictures);
        preview.resize(columnSize);
        preview.show();
        BenchmarkWidgets::paintNow(preview);
        const qsizetype step = std::max<qsizetype>(1, listed.size() / (runs * 2));
        for (qsizetype index = 0; index < listed.size() && select.values.size() < runs * 2; index += step) {
            const BrickSetWithCatalogSet &copy = listed[index];
            select.values.append(BenchmarkOutput::milliseconds([&] {
                auto *view = new SetDetailView(copy.brickSet, context, silentFetcher(never));
                view->setImageCache(&pictures);
                column.place(view);
                BenchmarkWidgets::paintNow(column);
            }));
            previewSelect.values.append(BenchmarkOutput::milliseconds([&] {
                preview.showCopy(copy);
                BenchmarkWidgets::paintNow(preview);
            }));
            QCoreApplication::processEvents();
        }
    }

    // ---- The inventory tab of a set with 20 copies ----
    BenchmarkSamples inventoryTab;
    BenchmarkSamples inventoryTabAgain;
    BenchmarkSamples inventoryRead;
    BenchmarkSamples partsTab;
    BenchmarkSamples partsTabAlone;
    {
        Column column;
        column.show();
        for (int run = 0; run < runs; ++run) {
            auto *view = new SetDetailView(inventoryCopiesList[run % inventoryCopies], context, silentFetcher(never));
            view->setImageCache(&pictures);
            view->setEditorFactory([](const ObjectID &, QWidget *parent) { return new QWidget(parent); });
            column.place(view);
            BenchmarkWidgets::paintNow(column);
            inventoryTab.values.append(BenchmarkOutput::milliseconds([&] {
                view->selectTab(SetDetailView::DetailTab::inventory);
                BenchmarkWidgets::paintNow(column);
            }));
            if (view->inventoryTab()->rows().size() != inventoryCopies)
                qCritical("The inventory tab lists %d copies.", int(view->inventoryTab()->rows().size()));
            BenchmarkWidgets::processUntil([view] { return view->inventoryTab()->isEditorReady(); }, 2000);
            view->selectTab(SetDetailView::DetailTab::overview);
            BenchmarkWidgets::paintNow(column);
            inventoryTabAgain.values.append(BenchmarkOutput::milliseconds([&] {
                view->selectTab(SetDetailView::DetailTab::inventory);
                BenchmarkWidgets::paintNow(column);
            }));
            inventoryRead.values.append(BenchmarkOutput::milliseconds([&] {
                const QList<BrickSet> read = context.fetch(FetchRequest<BrickSet>(
                    BrickSetQueries::setNumber(largest) && BrickSetQueries::notTrashed(),
                    {SortDescriptor{u"dateAdded"_s, true}}));
                qint64 owned = 0;
                for (const BrickSet &copy : read)
                    owned += context.partsCount(copy.objectID).owned;
                if (owned == 0)
                    qCritical("No parts counted.");
            }));

            // ---- The parts tab of the largest set ----
            partsTab.values.append(BenchmarkOutput::milliseconds([&] {
                view->selectTab(SetDetailView::DetailTab::parts);
                BenchmarkWidgets::processUntil([view] { return !view->partsTab()->isLoading(); });
                BenchmarkWidgets::paintNow(column);
            }));
            partsTabAlone.values.append(BenchmarkOutput::milliseconds([&] {
                PartsTab tab;
                tab.setImageCache(&pictures);
                tab.resize(columnSize);
                tab.show();
                tab.setSetNumber(largest);
                BenchmarkWidgets::processUntil([&tab] { return !tab.isLoading(); });
                BenchmarkWidgets::paintNow(tab);
            }));
        }
    }
    never.reportFinished();

    BenchmarkOutput::print(figure(u"select"_s, select, selectTargetMs));
    BenchmarkOutput::print(figure(u"previewSelect"_s, previewSelect, 0));
    BenchmarkOutput::print(figure(u"inventoryTab"_s, inventoryTab, inventoryTargetMs));
    BenchmarkOutput::print(figure(u"inventoryTabAgain"_s, inventoryTabAgain, 0));
    BenchmarkOutput::print(figure(u"inventoryRead"_s, inventoryRead, 0));
    BenchmarkOutput::print(figure(u"partsTab"_s, partsTab, partsTargetMs));
    BenchmarkOutput::print(figure(u"partsTabAlone"_s, partsTabAlone, 0));
    const bool within = select.median() <= selectTargetMs && inventoryTab.median() <= inventoryTargetMs
        && partsTab.median() <= partsTargetMs;
    BenchmarkOutput::print({{u"benchmark"_s, u"set-detail"_s},
                            {u"summary"_s, true},
                            {u"copies"_s, copies},
                            {u"selectMs"_s, select.median()},
                            {u"previewSelectMs"_s, previewSelect.median()},
                            {u"selectToPreview"_s, select.median() / std::max(previewSelect.median(), 1e-3)},
                            {u"inventoryTabMs"_s, inventoryTab.median()},
                            {u"inventoryReadMs"_s, inventoryRead.median()},
                            {u"partsTabMs"_s, partsTab.median()},
                            {u"partsTabAloneMs"_s, partsTabAlone.median()},
                            {u"partsTabToAlone"_s, partsTab.median() / std::max(partsTabAlone.median(), 1e-3)},
                            {u"withinTargets"_s, within}});
    return 0;
}
