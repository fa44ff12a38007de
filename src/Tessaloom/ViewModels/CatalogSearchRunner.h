// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/CatalogSetSearch.h"

#include <QObject>

#include <functional>
#include <memory>

// Runs the set list's catalog searches on QtConcurrent's global pool, one current search
// at a time. Starting a search (or cancel()) makes the one on its way stale: a stale
// search still hands over the theme names it looked up, since they stay true, but its
// results are dropped even when it lands after the newer one. Main thread only; what runs
// on the pool holds values only, and a search outliving the runner ends unseen.
class CatalogSearchRunner : public QObject
{
    Q_OBJECT

public:
    // The search itself; tests put one in that they can hold and release.
    using Search =
        std::function<CatalogSetSearch::Outcome(const CatalogSetSearch::Request &, const std::atomic_bool &cancelled)>;

    explicit CatalogSearchRunner(QObject *parent = nullptr);
    explicit CatalogSearchRunner(Search search, QObject *parent = nullptr);
    ~CatalogSearchRunner() override;

    void start(const CatalogSetSearch::Request &request);
    void cancel();
    // Whether the current search has not landed yet.
    bool isRunning() const { return m_current != nullptr; }

Q_SIGNALS:
    // From every search that lands, current or stale, before resultsReady().
    void themeNamesFound(const CatalogSetSearch::ThemeNames &names);
    // From the current search only; empty when there is no catalog. `totalCount` is how
    // many sets match in all, more than the results when the limit cut them.
    void resultsReady(const QList<CatalogSetResult> &results, qsizetype totalCount);

private:
    Search m_search;
    // The current search's cancellation flag; a search landing with another flag is stale.
    std::shared_ptr<std::atomic_bool> m_current;
};
