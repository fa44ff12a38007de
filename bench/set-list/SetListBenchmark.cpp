// SPDX-License-Identifier: GPL-3.0-or-later
// Measures the set list's model and prints one JSON object per line:
//
// - listSwitch: for each sidebar item, the time sidebarSelectionChanged() takes until the
//   grouped list is populated, over a store of COPIES copies (two per set), beside a bare
//   BrickSetListModel given the same request (the store's own cost);
// - catalogSearch: with a catalog file, every prefix of a few 6-letter words typed into the
//   catalog list, time from the end of the pause to the results being set, beside the
//   bare catalog call on the same thread.
//
//   set-list-bench [--copies N] [--runs N] [CATALOG]

#include "BenchmarkCollection.h"
#include "BenchmarkOutput.h"

#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

void benchmarkListSwitching(int copies, int runs)
{
    auto store = PersistenceController::open(QString(), true);
    BenchmarkCollection::fill(store->container(), copies);
    SetListViewModel model(store->container());
    BrickSetListModel bare(store->container());
    const QStringList items{u"all_sets"_s,          u"favorites"_s, u"recently_added"_s, u"unknown_acquisition"_s,
                            u"unknown_condition"_s, u"retired"_s,   u"no_pricing"_s,     u"outdated_pricing"_s,
                            u"trash"_s};
    QList<double> all;
    for (const QString &item : items) {
        QList<double> samples;
        QList<double> baseline;
        const FetchRequest<BrickSet> request = model.fetchRequest(item);
        const auto measureSwitch = [&] {
            model.sidebarSelectionChanged(u"catalog_all_themes"_s); // away, so each switch fetches
            samples << BenchmarkOutput::milliseconds([&] { model.sidebarSelectionChanged(item); });
        };
        const auto measureBare = [&] {
            bare.setFetchRequest(FetchRequest<BrickSet>(Predicate::alwaysFalse()));
            baseline << BenchmarkOutput::milliseconds([&] { bare.setFetchRequest(request); });
        };
        // Taking turns at going first, so that neither always reads a warmer store.
        for (int run = 0; run < runs; ++run) {
            if (run % 2 == 0) {
                measureSwitch();
                measureBare();
            } else {
                measureBare();
                measureSwitch();
            }
        }
        all << samples;
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"listSwitch"_s},
                          {u"item"_s, item},
                          {u"copies"_s, model.copies()->count()},
                          {u"cells"_s, model.groups()->count()},
                          {u"medianMs"_s, BenchmarkOutput::percentile(samples, 0.5)},
                          {u"maxMs"_s, *std::max_element(samples.cbegin(), samples.cend())},
                          {u"bareListMedianMs"_s, BenchmarkOutput::percentile(baseline, 0.5)},
                          {u"ratioToBareList"_s, BenchmarkOutput::percentile(samples, 0.5) / std::max(0.001, BenchmarkOutput::percentile(baseline, 0.5))}});
    }
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"listSwitchSummary"_s},
                      {u"storeCopies"_s, copies},
                      {u"p50Ms"_s, BenchmarkOutput::percentile(all, 0.5)},
                      {u"p95Ms"_s, BenchmarkOutput::percentile(all, 0.95)},
                      {u"targetMs"_s, 50}});
}

void benchmarkCatalogSearch(const QString &catalogPath, int runs)
{
    auto catalog = RebrickableCatalog::openFile(catalogPath);
    if (!catalog) {
        BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"catalogSearch"_s}, {u"error"_s, QString(u"cannot open "_s + catalogPath)}});
        return;
    }
    RebrickableCatalog::replaceShared(catalog);
    auto store = PersistenceController::open(QString(), true);
    SetListViewModel model(store->container());
    QElapsedTimer sinceStart;
    bool started = false;
    QObject::connect(&model, &SetListViewModel::catalogSearchStarted, &model, [&] {
        started = true;
        sinceStart.start();
    });
    // Until the search that the last change starts (after the pause) has delivered.
    auto waitForResults = [&] {
        while (!started || model.isCatalogSearchRunning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        started = false;
    };
    model.sidebarSelectionChanged(u"catalog_all"_s);
    waitForResults();
    const double shownAtStart = double(sinceStart.nsecsElapsed()) / 1e6;

    const QStringList words{u"castle"_s, u"falcon"_s, u"police"_s, u"10305"_s, u"train "_s, u"dragon"_s};
    QList<double> shown;
    QList<double> bare;
    QList<double> sorting;
    for (int run = 0; run < runs; ++run) {
        for (const QString &word : words) {
            for (qsizetype length = 1; length <= word.size(); ++length) {
                const QString prefix = word.left(length);
                // Every keystroke waits out the pause, so each prefix is one search.
                model.setSearchText(prefix);
                waitForResults();
                shown << double(sinceStart.nsecsElapsed()) / 1e6;
                QList<CatalogSetResult> results;
                bare << BenchmarkOutput::milliseconds([&] { results = catalog->searchSetsPromotingExactHit(prefix, 1000); });
                sorting << BenchmarkOutput::milliseconds([&] { SetListSortOrder::sortCatalogResults(results, model.catalogSortOrder()); });
            }
            model.setSearchText(QString());
            waitForResults();
        }
    }
    BenchmarkOutput::print(QJsonObject{{u"bench"_s, u"catalogSearch"_s},
                      {u"searches"_s, shown.size()},
                      {u"emptyQueryShownMs"_s, shownAtStart},
                      {u"shownP50Ms"_s, BenchmarkOutput::percentile(shown, 0.5)},
                      {u"shownP95Ms"_s, BenchmarkOutput::percentile(shown, 0.95)},
                      {u"shownMaxMs"_s, BenchmarkOutput::percentile(shown, 1.0)},
                      {u"bareP50Ms"_s, BenchmarkOutput::percentile(bare, 0.5)},
                      {u"bareP95Ms"_s, BenchmarkOutput::percentile(bare, 0.95)},
                      {u"bareMaxMs"_s, BenchmarkOutput::percentile(bare, 1.0)},
                      {u"sortP50Ms"_s, BenchmarkOutput::percentile(sorting, 0.5)},
                      {u"sortMaxMs"_s, BenchmarkOutput::percentile(sorting, 1.0)},
                      {u"targetMs"_s, 30}});
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    int copies = 5000;
    int runs = 5;
    QString catalogPath;
    const QStringList arguments = application.arguments().mid(1);
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        if (arguments[index] == u"--copies" && index + 1 < arguments.size())
            copies = arguments[++index].toInt();
        else if (arguments[index] == u"--runs" && index + 1 < arguments.size())
            runs = arguments[++index].toInt();
        else
            catalogPath = arguments[index];
    }
    benchmarkListSwitching(copies, runs);
    if (!catalogPath.isEmpty())
        benchmarkCatalogSearch(catalogPath, std::max(1, runs / 2));
    return 0;
}
