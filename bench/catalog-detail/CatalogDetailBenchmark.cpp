// SPDX-License-Identifier: GPL-3.0-or-later
// The catalog set's detail screen offscreen, with a store of 10,000 copies and the full
// catalog: how long the user waits after selecting a set, and after "Add to Collection".
//
// - `select`: showCatalogSet() for one set of the catalog after another, until the screen
//   is painted (pending layouts run, then a synchronous repaint); `selectWithTheme`, the
//   same until the theme's path, read on the pool, has landed and been painted too. The
//   booklets would come later still: the lookup here never answers during the measure.
//   Baseline in the same run, `previewSelect`: the read-only SetPreviewView that the detail
//   column showed before, given the same sets and painted the same way.
// - `add`: for the set with the most pieces, a click on "Add to Collection" in a store
//   that lacks the set, until the collection list (SetListViewModel on "All Sets", as the
//   window has it) holds the new copy's row, and `addAgain`, a second add of the same set
//   (the catalog set and its parts already in the store). Baseline in the same run,
//   `syncOnly`: CatalogSyncService::syncSet of the set alone in the same fresh store.
//   Every run of `add` and `syncOnly` starts from a fresh copy of the same store file.
//
// Pictures point at 127.0.0.1, which refuses them at once: no figure waits on the network.
// One JSON object per line, a summary line last.
//
//   QT_QPA_PLATFORM=offscreen catalog-detail-bench [--catalog FILE | --work DIR] [--copies N] [--runs N] [--set NUMBER]

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"
#include "BenchmarkSamples.h"
#include "BenchmarkWidgets.h"
#include "CatalogFixture.h"

#include "Endpoints.h"
#include "Services/CatalogSyncService.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/CachedAsyncImage.h"
#include "Views/CatalogSetAdder.h"
#include "Views/CatalogSetDetailView.h"
#include "Views/SetPreviewView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoroFuture>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFutureInterface>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QWindow>

#include <sqlite3.h>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr double selectTargetMs = 50;
constexpr double addTargetMs = 300;
constexpr QSize detailSize{520, 900};

QJsonObject figure(const QString &name, const BenchmarkSamples &samples, double target)
{
    QJsonArray all;
    for (double value : samples.values)
        all.append(value);
    QJsonObject object{{u"benchmark"_s, u"catalog-detail"_s}, {u"step"_s, name},
                       {u"medianMs"_s, samples.median()}, {u"worstMs"_s, samples.worst()},
                       {u"samplesMs"_s, all}};
    if (target > 0) {
        object.insert(u"targetMs"_s, target);
        object.insert(u"withinTarget"_s, samples.median() <= target);
    }
    return object;
}

// Set numbers from the catalog file: `count` spread over all sets, or the one with the most
// pieces.
QStringList catalogSetNumbers(const QString &path, const char *sql, int limit)
{
    QStringList numbers;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return numbers;
    }
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_int(statement, 1, limit);
        while (sqlite3_step(statement) == SQLITE_ROW)
            numbers.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))));
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return numbers;
}

// The catalog's answer for `number`, with its picture pointed at a refusing local port.
std::optional<CatalogSetResult> catalogResult(const RebrickableCatalog &catalog, const QString &number)
{
    std::optional<CatalogSetResult> set = catalog.set(number);
    if (set)
        set->imgURL = u"http://127.0.0.1:9/media/sets/"_s + number + u".jpg"_s;
    return set;
}

// A booklet lookup that never answers while the figures are taken.
LegoInstructionsService::Fetcher silentFetcher(QFutureInterface<void> &never)
{
    return [&never](QString) -> QCoro::Task<QList<LegoInstructionsService::Instruction>> {
        co_await never.future();
        co_return QList<LegoInstructionsService::Instruction>{};
    };
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;bricklinkImages=http://127.0.0.1:9");
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    TranslationLoader::install(application, QLocale(QLocale::English, QLocale::UnitedStates));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({u"catalog"_s, u"A built catalog database to use."_s, u"file"_s});
    parser.addOption({u"work"_s, u"Folder where the catalog is built from the full dumps, once."_s, u"dir"_s,
                      QDir::temp().filePath(u"tessaloom-parts-checklist-bench"_s)});
    parser.addOption({u"copies"_s, u"Copies in the collection."_s, u"n"_s, u"10000"_s});
    parser.addOption({u"runs"_s, u"Repetitions of each step."_s, u"n"_s, u"9"_s});
    parser.addOption({u"set"_s, u"The set to add (default: the one with the most pieces)."_s, u"number"_s});
    parser.process(application);
    const int runs = std::max(1, parser.value(u"runs"_s).toInt());
    const int copies = std::max(2, parser.value(u"copies"_s).toInt());

    QString catalogPath = parser.value(u"catalog"_s);
    if (catalogPath.isEmpty()) {
        QElapsedTimer building;
        building.start();
        catalogPath = CatalogFixture::buildFullCatalog(parser.value(u"work"_s));
        if (catalogPath.isEmpty()) {
            BenchmarkOutput::print({{u"benchmark"_s, u"catalog-detail"_s},
                                    {u"skipped"_s, true},
                                    {u"reason"_s, u"The full-size dumps were not found; pass --catalog FILE."_s}});
            return 0;
        }
        BenchmarkOutput::print({{u"benchmark"_s, u"catalog-detail"_s}, {u"catalog"_s, catalogPath},
                                {u"preparedSeconds"_s, double(building.elapsed()) / 1000}});
    }
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        qCritical("The catalog does not open.");
        return 1;
    }
    RebrickableCatalog::replaceShared(catalog);

    QString largest = parser.value(u"set"_s);
    if (largest.isEmpty())
        largest = catalogSetNumbers(catalogPath, "SELECT set_num FROM sets ORDER BY num_parts DESC LIMIT ?", 1).value(0);
    const std::optional<CatalogSetResult> largestSet = catalogResult(*catalog, largest);
    // Sets to select one after the other: spread over the catalog, each with pieces.
    QStringList selected = catalogSetNumbers(
        catalogPath, "SELECT set_num FROM sets WHERE num_parts > 0 AND rowid % 97 = 0 ORDER BY set_num LIMIT ?",
        runs * 4);
    if (!largestSet || selected.size() < 2) {
        qCritical("The catalog has too few sets.");
        return 1;
    }

    // The collection, made once and copied for every run that writes.
    QTemporaryDir folder;
    const QString templatePath = folder.filePath(u"template.sqlite"_s);
    {
        auto controller = PersistenceController::open(templatePath);
        BenchmarkCollection::fill(controller->container(), copies);
    }
    int storeCounter = 0;
    const auto freshStore = [&] {
        const QString path = folder.filePath(u"run%1.sqlite"_s.arg(++storeCounter));
        QFile::copy(templatePath, path);
        return PersistenceController::open(path);
    };
    ImageCacheService pictures(folder.filePath(u"Caches"_s));
    QFutureInterface<void> never;
    never.reportStarted();

    BenchmarkOutput::print({{u"benchmark"_s, u"catalog-detail"_s}, {u"copies"_s, copies},
                            {u"largestSet"_s, largest}, {u"largestSetPieces"_s, largestSet->numParts},
                            {u"selectedSets"_s, int(selected.size())}});

    // ---- Selecting a set ----
    BenchmarkSamples select;
    BenchmarkSamples selectWithTheme;
    BenchmarkSamples previewSelect;
    {
        auto controller = freshStore();
        CatalogSetDetailView detail(controller->container(), silentFetcher(never));
        detail.setImageCache(&pictures);
        detail.resize(detailSize);
        detail.show();
        SetPreviewView preview;
        preview.picture()->setImageCache(&pictures);
        preview.resize(detailSize);
        preview.show();
        BenchmarkWidgets::paintNow(detail);
        BenchmarkWidgets::paintNow(preview);
        for (const QString &number : std::as_const(selected)) {
            const std::optional<CatalogSetResult> set = catalogResult(*catalog, number);
            if (!set)
                continue;
            QElapsedTimer timer;
            timer.start();
            detail.showCatalogSet(*set);
            BenchmarkWidgets::paintNow(detail);
            select.values.append(double(timer.nsecsElapsed()) / 1e6);
            const QString expected = catalog->themePath(set->themeID);
            BenchmarkWidgets::processUntil([&] { return detail.themePath() == expected; });
            BenchmarkWidgets::paintNow(detail);
            selectWithTheme.values.append(double(timer.nsecsElapsed()) / 1e6);
            // Let the refused pictures finish before the next sample.
            BenchmarkWidgets::processUntil([&] { return detail.picture()->phase() != CachedAsyncImage::Phase::loading; }, 2000);

            previewSelect.values.append(BenchmarkOutput::milliseconds([&] {
                preview.showCatalogSet(*set, expected);
                BenchmarkWidgets::paintNow(preview);
            }));
            BenchmarkWidgets::processUntil([&] { return preview.picture()->phase() != CachedAsyncImage::Phase::loading; }, 2000);
        }
    }

    // ---- Adding the largest set ----
    BenchmarkSamples add;
    BenchmarkSamples addAgain;
    BenchmarkSamples syncOnly;
    BenchmarkSamples addWithoutScreen; // CatalogSetAdder::add alone, with the collection list
    BenchmarkSamples addSyncPart; // click to the end of the sync
    BenchmarkSamples addCopyPart; // end of the sync to the copy saved (and announced)
    BenchmarkSamples addAgainSyncPart;
    BenchmarkSamples addAgainCopyPart;
    int listRowsAfterAdd = 0;
    for (int run = 0; run < runs; ++run) {
        {
            auto controller = freshStore();
            CatalogSyncService sync(*controller);
            QElapsedTimer timer;
            timer.start();
            const ObjectID id = QCoro::waitFor(sync.syncSet(largest));
            syncOnly.values.append(double(timer.nsecsElapsed()) / 1e6);
            if (!id.isValid())
                qCritical("The sync gave no set.");
        }
        {
            // Baseline: the same add without the screen, the collection list listening.
            auto controller = freshStore();
            CatalogSyncService sync(*controller);
            SetListViewModel list(controller->container());
            list.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
            QElapsedTimer timer;
            timer.start();
            const std::optional<BrickSet> copy = QCoro::waitFor(CatalogSetAdder::add(
                QPointer<PersistentContainer>(&controller->container()),
                [&sync](QString number) { return sync.syncSet(std::move(number)); }, largest));
            if (!copy || !BenchmarkWidgets::processUntil([&] { return list.copies()->rowOf(copy->objectID) >= 0; }))
                qCritical("The add without the screen made no listed copy.");
            addWithoutScreen.values.append(double(timer.nsecsElapsed()) / 1e6);
        }
        auto controller = freshStore();
        CatalogSyncService sync(*controller);
        SetListViewModel list(controller->container());
        list.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
        CatalogSetDetailView detail(controller->container(), silentFetcher(never));
        detail.setImageCache(&pictures);
        // The sync as the screen runs it, its end noted for the breakdown of an add.
        QElapsedTimer addTimer;
        double syncEndedMs = 0;
        detail.setSyncOperation([&sync, &addTimer, &syncEndedMs](QString number) -> QCoro::Task<ObjectID> {
            const ObjectID id = co_await sync.syncSet(std::move(number));
            syncEndedMs = double(addTimer.nsecsElapsed()) / 1e6;
            co_return id;
        });
        detail.resize(detailSize);
        detail.show();
        detail.showCatalogSet(*largestSet);
        BenchmarkWidgets::paintNow(detail);
        BenchmarkWidgets::processUntil([&] { return detail.picture()->phase() != CachedAsyncImage::Phase::loading; }, 2000);

        const auto timeAdd = [&](BenchmarkSamples &samples, BenchmarkSamples &syncPart, BenchmarkSamples &copyPart) {
            std::optional<ObjectID> added;
            double copyMadeMs = 0;
            const QMetaObject::Connection connection =
                QObject::connect(&detail, &CatalogSetDetailView::copyAdded, [&](const ObjectID &id) {
                    added = id;
                    copyMadeMs = double(addTimer.nsecsElapsed()) / 1e6;
                });
            addTimer.start();
            QTest::mouseClick(detail.addToCollectionButton(), Qt::LeftButton);
            const bool listed = BenchmarkWidgets::processUntil([&] { return added && list.copies()->rowOf(*added) >= 0; });
            samples.values.append(double(addTimer.nsecsElapsed()) / 1e6);
            syncPart.values.append(syncEndedMs);
            copyPart.values.append(copyMadeMs - syncEndedMs);
            QObject::disconnect(connection);
            if (!listed)
                qCritical("The new copy never reached the collection list.");
            listRowsAfterAdd = list.copies()->count();
        };
        timeAdd(add, addSyncPart, addCopyPart);
        // The second add: a new visit of the same set offers the button again only when it
        // is not owned, so the first copy goes to the trash the way the list's menu does it.
        std::optional<BrickSet> first = detail.addedSet();
        if (first) {
            first->isTrashed = true;
            first->trashedDate = QDateTime::currentDateTimeUtc();
            controller->container().viewContext().update(*first);
            controller->container().viewContext().save();
        }
        detail.showCatalogSet(*largestSet);
        BenchmarkWidgets::paintNow(detail);
        timeAdd(addAgain, addAgainSyncPart, addAgainCopyPart);
    }
    never.reportFinished();

    BenchmarkOutput::print(figure(u"select"_s, select, selectTargetMs));
    BenchmarkOutput::print(figure(u"selectWithTheme"_s, selectWithTheme, 0));
    BenchmarkOutput::print(figure(u"previewSelect"_s, previewSelect, 0));
    BenchmarkOutput::print(figure(u"add"_s, add, addTargetMs));
    BenchmarkOutput::print(figure(u"addAgain"_s, addAgain, addTargetMs));
    BenchmarkOutput::print(figure(u"syncOnly"_s, syncOnly, 0));
    BenchmarkOutput::print(figure(u"addWithoutScreen"_s, addWithoutScreen, 0));
    BenchmarkOutput::print(figure(u"addUntilSynced"_s, addSyncPart, 0));
    BenchmarkOutput::print(figure(u"addSyncedUntilCopySaved"_s, addCopyPart, 0));
    BenchmarkOutput::print(figure(u"addAgainUntilSynced"_s, addAgainSyncPart, 0));
    BenchmarkOutput::print(figure(u"addAgainSyncedUntilCopySaved"_s, addAgainCopyPart, 0));
    const bool within = select.median() <= selectTargetMs && add.median() <= addTargetMs
        && addAgain.median() <= addTargetMs;
    BenchmarkOutput::print({{u"benchmark"_s, u"catalog-detail"_s},
                            {u"summary"_s, true},
                            {u"copies"_s, copies},
                            {u"largestSet"_s, largest},
                            {u"selectMs"_s, select.median()},
                            {u"selectWithThemeMs"_s, selectWithTheme.median()},
                            {u"previewSelectMs"_s, previewSelect.median()},
                            {u"selectToPreview"_s, select.median() / std::max(previewSelect.median(), 1e-3)},
                            {u"addMs"_s, add.median()},
                            {u"addAgainMs"_s, addAgain.median()},
                            {u"syncOnlyMs"_s, syncOnly.median()},
                            {u"addWithoutScreenMs"_s, addWithoutScreen.median()},
                            {u"addToAddWithoutScreen"_s, add.median() / std::max(addWithoutScreen.median(), 1e-3)},
                            {u"addToSync"_s, add.median() / std::max(syncOnly.median(), 1e-3)},
                            {u"collectionRowsAfterAdd"_s, listRowsAfterAdd},
                            {u"withinTargets"_s, within}});
    return 0;
}
