// SPDX-License-Identifier: GPL-3.0-or-later
// What price sync costs in the store, in two figures, each beside a baseline of the same run.
//
// persistPrices: CatalogSyncService::persistPrices for one set of a store holding `--sets`
// owned sets with two guides each, replacing that set's two BrickEconomy guides with two
// new ones (forecasts and growth rates included), `--runs` times. Baseline: the same delete
// and two inserts written by hand with statements prepared once, in one transaction, on an
// equivalent store file made by the store (same schema, WAL, synchronous = FULL). Target:
// median at most 10 ms.
//
// refreshAllPrices: the refresh of `--sets` owned sets without prices, through the real
// BrickEconomy adapter (rate limiter opened up) against the BrickEconomy stand-in on
// 127.0.0.1 answering each set after `--latency` ms. Baseline, the transfer alone: the
// adapter's fetchPrices for the same numbers one after the other, storing nothing. Refresh
// and transfer alternate for `--rounds` rounds, each refresh on a fresh store filled
// outside the timing. Target: at most 3 ms per set beyond the transfer (difference of the
// medians divided by the number of sets). The refresh's log lines are formatted and dropped.
//
// The exit status is 1 when a target is missed. One JSON object per line.
//
//   price-sync-bench [--sets 1000] [--runs 25] [--rounds 3] [--latency 0]

#include "BenchmarkOutput.h"
#include "BrickEconomyAdapter.h"
#include "BrickEconomyStandIn.h"

#include "Services/CatalogSyncService.h"
#include "Services/PricingProviderRegistry.h"
#include "Store/BrickSet.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogSet.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <array>
#include <cstdio>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double persistTargetMilliseconds = 10;
constexpr double refreshTargetPerSetMilliseconds = 3;

QString setNumberAt(int index)
{
    return QString::number(10000 + index) + u"-1"_s;
}

// Two figures as BrickEconomy gives them for one set.
QList<PriceResult> brickEconomyResults(const QString &setNumber)
{
    PriceResult newFigure;
    newFigure.setNumber = setNumber;
    newFigure.condition = PricingCondition::new_;
    newFigure.guideType = PricingGuideType::sold;
    newFigure.avgPrice = Decimal::fromString(u"324.87"_s);
    newFigure.currency = u"USD"_s;
    newFigure.providerName = u"brickeconomy"_s;
    newFigure.fetchDate = QDateTime::currentDateTimeUtc();
    newFigure.forecasts = {{u"2 Years"_s, *Decimal::fromString(u"380.12"_s)}, {u"5 Years"_s, *Decimal::fromString(u"455"_s)}};
    newFigure.growthRates = {{u"12 Months"_s, *Decimal::fromString(u"9.75"_s)}, {u"Last Year"_s, *Decimal::fromString(u"14.2"_s)}};
    newFigure.retailPrice = Decimal::fromString(u"99.99"_s);
    newFigure.retailPriceCurrency = u"USD"_s;
    newFigure.retiredDate = u"2024-12-31"_s;
    PriceResult usedFigure = newFigure;
    usedFigure.condition = PricingCondition::used;
    usedFigure.avgPrice = Decimal::fromString(u"215.4"_s);
    usedFigure.minPrice = Decimal::fromString(u"180"_s);
    usedFigure.maxPrice = Decimal::fromString(u"260.55"_s);
    usedFigure.forecasts.clear();
    usedFigure.growthRates.clear();
    return {newFigure, usedFigure};
}

// `sets` owned sets, each with its two guides when `withGuides`, in one save.
QList<ObjectID> fillCollection(PersistentContainer &container, int sets, bool withGuides)
{
    ManagedObjectContext &context = container.viewContext();
    QList<ObjectID> ids;
    for (int index = 0; index < sets; ++index) {
        CatalogSet set;
        set.setNumber = setNumberAt(index);
        set = context.insert(set);
        ids.append(set.objectID);
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.catalogSet = set.objectID;
        context.insert(copy);
        if (withGuides) {
            for (const PriceResult &result : brickEconomyResults(*set.setNumber))
                context.insert(CachedPriceGuide::fromPriceResult(result, set.objectID));
        }
    }
    context.save();
    return ids;
}

// The rows persistPrices writes for one set, by hand.
class RawGuideWriter
{
public:
    explicit RawGuideWriter(const QString &path)
    {
        sqlite3_open_v2(QFile::encodeName(path).constData(), &m_database, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_exec(m_database, "PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(m_database, "DELETE FROM CachedPriceGuide WHERE catalogSet = ? AND (providerName = ? OR providerName IS NULL)",
                           -1, &m_delete, nullptr);
        sqlite3_prepare_v2(m_database,
                           "INSERT INTO CachedPriceGuide (conditionType, guideType, avgPrice, minPrice, maxPrice, quantitySold, "
                           "currency, lastFetchDate, providerName, forecastsJSON, growthRatesJSON, catalogSet) "
                           "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                           -1, &m_insert, nullptr);
    }
    ~RawGuideWriter()
    {
        sqlite3_finalize(m_delete);
        sqlite3_finalize(m_insert);
        sqlite3_close(m_database);
    }
    RawGuideWriter(const RawGuideWriter &) = delete;
    RawGuideWriter &operator=(const RawGuideWriter &) = delete;

    bool isReady() const { return m_delete && m_insert; }

    bool write(qint64 catalogSet, const QList<PriceResult> &results)
    {
        bool ok = sqlite3_exec(m_database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) == SQLITE_OK;
        sqlite3_bind_int64(m_delete, 1, catalogSet);
        bindText(m_delete, 2, u"brickeconomy"_s);
        ok = ok && sqlite3_step(m_delete) == SQLITE_DONE;
        sqlite3_reset(m_delete);
        for (const PriceResult &result : results) {
            const CachedPriceGuide guide = CachedPriceGuide::fromPriceResult(result, ObjectID{EntityType::CatalogSet, catalogSet});
            bindText(m_insert, 1, guide.conditionType);
            bindText(m_insert, 2, guide.guideType);
            bindText(m_insert, 3, guide.avgPrice ? std::optional(guide.avgPrice->toString()) : std::nullopt);
            bindText(m_insert, 4, guide.minPrice ? std::optional(guide.minPrice->toString()) : std::nullopt);
            bindText(m_insert, 5, guide.maxPrice ? std::optional(guide.maxPrice->toString()) : std::nullopt);
            sqlite3_bind_int(m_insert, 6, guide.quantitySold);
            bindText(m_insert, 7, guide.currency);
            sqlite3_bind_int64(m_insert, 8, guide.lastFetchDate->toMSecsSinceEpoch());
            bindText(m_insert, 9, guide.providerName);
            bindText(m_insert, 10, guide.forecastsJSON);
            bindText(m_insert, 11, guide.growthRatesJSON);
            sqlite3_bind_int64(m_insert, 12, catalogSet);
            ok = ok && sqlite3_step(m_insert) == SQLITE_DONE;
            sqlite3_reset(m_insert);
        }
        return sqlite3_exec(m_database, ok ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr) == SQLITE_OK && ok;
    }

private:
    static void bindText(sqlite3_stmt *statement, int index, const std::optional<QString> &text)
    {
        if (!text) {
            sqlite3_bind_null(statement, index);
            return;
        }
        const QByteArray bytes = text->toUtf8();
        sqlite3_bind_text(statement, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
    }

    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_delete = nullptr;
    sqlite3_stmt *m_insert = nullptr;
};

QCoro::Task<std::optional<QString>> storedToken(QString)
{
    co_return u"bench-token"_s;
}

QCoro::Task<std::optional<QString>> noLegacyValue(KeychainService::KeychainKey)
{
    co_return std::nullopt;
}

// The refresh logs one line per set; they are formatted as usual and dropped here, so the
// benchmark's output stays JSON.
void dropSyncLines(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (qstrcmp(context.category, "com.tessaloom.app.sync") == 0 && type == QtInfoMsg)
        return;
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
}

bool measurePersist(int sets, int runs)
{
    QTemporaryDir folder;
    const std::unique_ptr<PersistenceController> service = PersistenceController::open(folder.filePath(u"service.sqlite"_s));
    const std::unique_ptr<PersistenceController> raw = PersistenceController::open(folder.filePath(u"raw.sqlite"_s));
    const QList<ObjectID> serviceSets = fillCollection(service->container(), sets, true);
    const QList<ObjectID> rawSets = fillCollection(raw->container(), sets, true);
    PricingProviderRegistry registry({storedToken, noLegacyValue}, PricingProviderRegistry::defaultProviderFactories());
    CatalogSyncService sync(*service, registry);
    RawGuideWriter writer(raw->container().path());
    if (!writer.isReady())
        return false;

    const qsizetype middle = serviceSets.size() / 2;
    QList<double> serviceTimes;
    QList<double> rawTimes;
    bool ok = true;
    for (int run = 0; run < runs; ++run) {
        const QList<PriceResult> results = brickEconomyResults(setNumberAt(int(middle)));
        // Taking turns at going first, so that neither always finds a warm page cache.
        const auto timeService = [&] {
            serviceTimes.append(BenchmarkOutput::milliseconds(
                [&] { QCoro::waitFor(sync.persistPrices(results, u"brickeconomy"_s, serviceSets[middle])); }));
        };
        const auto timeRaw = [&] {
            rawTimes.append(BenchmarkOutput::milliseconds([&] { ok = writer.write(rawSets[middle].primaryKey, results) && ok; }));
        };
        if (run % 2 == 0) {
            timeService();
            timeRaw();
        } else {
            timeRaw();
            timeService();
        }
    }
    // Where the time goes: a background context made, given an empty block and dropped, as
    // each persistPrices does around its work; and the registry's choice of provider,
    // which each syncPrices makes before its request.
    QList<double> contextTimes;
    QList<double> providerTimes;
    QList<double> goneTimes;
    QList<double> readTimes;
    QList<double> changeTimes;
    QList<double> saveTimes;
    for (int run = 0; run < runs; ++run) {
        // persistPrices with nothing to write: context, hop to the worker and back.
        const QList<PriceResult> unused = brickEconomyResults(u"0-1"_s);
        goneTimes.append(BenchmarkOutput::milliseconds([&] {
            QCoro::waitFor(sync.persistPrices(unused, u"brickeconomy"_s, ObjectID{EntityType::CatalogSet, 1'000'000'000}));
        }));
        // The block of persistPrices by hand, each of its steps timed on the worker.
        const std::shared_ptr<ManagedObjectContext> phases = service->container().newBackgroundContext();
        const ObjectID target = serviceSets[middle];
        const QList<PriceResult> results = brickEconomyResults(setNumberAt(int(middle)));
        QFuture<std::array<double, 3>> timed = phases->perform([target, results](ManagedObjectContext &store) {
            std::array<double, 3> times{};
            QList<CachedPriceGuide> guides;
            times[0] = BenchmarkOutput::milliseconds([&] {
                store.existingObject<CatalogSet>(target);
                guides = store.related<CachedPriceGuide>(target, u"cachedPriceGuides"_s);
            });
            times[1] = BenchmarkOutput::milliseconds([&] {
                for (const CachedPriceGuide &guide : std::as_const(guides))
                    store.deleteObject(guide);
                for (const PriceResult &result : results)
                    store.insert(CachedPriceGuide::fromPriceResult(result, target));
            });
            times[2] = BenchmarkOutput::milliseconds([&] { store.save(); });
            return times;
        });
        timed.waitForFinished();
        readTimes.append(timed.result()[0]);
        changeTimes.append(timed.result()[1]);
        saveTimes.append(timed.result()[2]);
        contextTimes.append(BenchmarkOutput::milliseconds([&] {
            const std::shared_ptr<ManagedObjectContext> context = service->container().newBackgroundContext();
            QFuture<void> block = context->perform([](ManagedObjectContext &) {});
            block.waitForFinished();
        }));
        providerTimes.append(BenchmarkOutput::milliseconds([&] { QCoro::waitFor(registry.activeProvider(false)); }));
    }
    const double serviceMedian = BenchmarkOutput::percentile(serviceTimes, 0.5);
    const double rawMedian = BenchmarkOutput::percentile(rawTimes, 0.5);
    const qint64 guides = service->container().viewContext().count(FetchRequest<CachedPriceGuide>(Predicate()));
    ok = ok && guides == qint64(sets) * 2;
    BenchmarkOutput::print({
        {u"figure"_s, u"persistPrices"_s},
        {u"setsInStore"_s, sets},
        {u"runs"_s, runs},
        {u"medianMs"_s, serviceMedian},
        {u"p90Ms"_s, BenchmarkOutput::percentile(serviceTimes, 0.9)},
        {u"rawStatementsMedianMs"_s, rawMedian},
        {u"ratio"_s, rawMedian > 0 ? serviceMedian / rawMedian : 0},
        {u"emptyContextMedianMs"_s, BenchmarkOutput::percentile(contextTimes, 0.5)},
        {u"activeProviderMedianMs"_s, BenchmarkOutput::percentile(providerTimes, 0.5)},
        {u"nothingToWriteMedianMs"_s, BenchmarkOutput::percentile(goneTimes, 0.5)},
        {u"blockReadMedianMs"_s, BenchmarkOutput::percentile(readTimes, 0.5)},
        {u"blockChangeMedianMs"_s, BenchmarkOutput::percentile(changeTimes, 0.5)},
        {u"blockSaveMedianMs"_s, BenchmarkOutput::percentile(saveTimes, 0.5)},
        {u"targetMs"_s, persistTargetMilliseconds},
        {u"guidesAfter"_s, guides},
    });
    return ok && serviceMedian <= persistTargetMilliseconds;
}

QCoro::Task<int> transferRound(BrickEconomyAdapter &adapter, const QStringList &setNumbers)
{
    int failures = 0;
    for (const QString &setNumber : setNumbers) {
        try {
            const QList<PriceResult> results = co_await adapter.fetchPrices(setNumber);
            if (results.size() != 2)
                ++failures;
        } catch (const std::exception &) {
            ++failures;
        }
    }
    co_return failures;
}

bool measureRefresh(int sets, int rounds, int latency)
{
    BrickEconomyStandIn standIn;
    if (!standIn.listen())
        return false;
    standIn.pointEndpointsHere();
    QStringList setNumbers;
    for (int index = 0; index < sets; ++index) {
        setNumbers.append(setNumberAt(index));
        standIn.serveSet(setNumbers.last(), BrickEconomyStandIn::fullSet(setNumbers.last()), latency);
    }
    PricingProviderRegistry registry({storedToken, noLegacyValue}, PricingProviderRegistry::defaultProviderFactories());
    auto *adapter = dynamic_cast<BrickEconomyAdapter *>(registry.providers().constFirst());
    if (!adapter)
        return false;
    adapter->setRateLimiterForTesting(RateLimiter(std::numeric_limits<int>::max(), 1.0));

    QList<double> refreshTimes;
    QList<double> transferTimes;
    bool ok = true;
    for (int round = 0; round < rounds; ++round) {
        QTemporaryDir folder;
        const std::unique_ptr<PersistenceController> store = PersistenceController::open(folder.filePath(u"Tessaloom.sqlite"_s));
        fillCollection(store->container(), sets, false);
        CatalogSyncService sync(*store, registry);
        standIn.server().resetCounters();

        const double refresh = BenchmarkOutput::milliseconds([&] { QCoro::waitFor(sync.refreshAllPrices()); });
        const qint64 guides = store->container().viewContext().count(FetchRequest<CachedPriceGuide>(Predicate()));
        int failures = 0;
        const double transfer = BenchmarkOutput::milliseconds([&] { failures = QCoro::waitFor(transferRound(*adapter, setNumbers)); });
        ok = ok && guides == qint64(sets) * 2 && failures == 0;
        refreshTimes.append(refresh);
        transferTimes.append(transfer);
        BenchmarkOutput::print({
            {u"figure"_s, u"refreshAllPricesRound"_s},
            {u"round"_s, round + 1},
            {u"refreshMs"_s, refresh},
            {u"transferMs"_s, transfer},
            {u"overheadPerSetMs"_s, (refresh - transfer) / sets},
            {u"guidesStored"_s, guides},
            {u"transferFailures"_s, failures},
        });
        standIn.server().resetCounters();
    }
    const double refreshMedian = BenchmarkOutput::percentile(refreshTimes, 0.5);
    const double transferMedian = BenchmarkOutput::percentile(transferTimes, 0.5);
    const double overheadPerSet = (refreshMedian - transferMedian) / sets;
    BenchmarkOutput::print({
        {u"figure"_s, u"refreshAllPrices"_s},
        {u"sets"_s, sets},
        {u"latencyMs"_s, latency},
        {u"rounds"_s, rounds},
        {u"refreshMedianMs"_s, refreshMedian},
        {u"transferMedianMs"_s, transferMedian},
        {u"overheadPerSetMs"_s, overheadPerSet},
        {u"targetPerSetMs"_s, refreshTargetPerSetMilliseconds},
    });
    return ok && overheadPerSet <= refreshTargetPerSetMilliseconds;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    qInstallMessageHandler(dropSyncLines);
    int sets = 1000;
    int runs = 25;
    int rounds = 3;
    int latency = 0;
    const QStringList arguments = application.arguments();
    for (qsizetype index = 1; index + 1 < arguments.size(); index += 2) {
        const int value = std::max(0, arguments[index + 1].toInt());
        if (arguments[index] == u"--sets"_s)
            sets = std::max(1, value);
        else if (arguments[index] == u"--runs"_s)
            runs = std::max(1, value);
        else if (arguments[index] == u"--rounds"_s)
            rounds = std::max(1, value);
        else if (arguments[index] == u"--latency"_s)
            latency = value;
    }
    const bool persistMet = measurePersist(sets, runs);
    const bool refreshMet = measureRefresh(sets, rounds, latency);
    return persistMet && refreshMet ? 0 : 1;
}
