// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSetSearch.h"

#include "Services/RebrickableCatalog.h"
#include "ViewModels/SetListSortOrder.h"

CatalogSetSearch::Outcome CatalogSetSearch::run(const Request &request, const std::atomic_bool &cancelled)
{
    Outcome outcome;
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog)
        return outcome;
    // Over the whole catalog a bare set number typed alone is brought to the front even
    // when the text search misses it.
    // SQLite reads a negative limit as none.
    const int limit = request.unlimited ? -1 : resultLimit;
    outcome.results = request.themeID ? catalog->searchSets(*request.themeID, request.text, limit)
                                      : catalog->searchSetsPromotingExactHit(request.text, limit);
    outcome.totalCount = outcome.results.size();
    if (cancelled.load())
        return outcome;
    // Only a list that reached its limit may have been cut, so only then is it counted. A
    // promoted exact hit can make the list one longer than the count: the total never
    // falls below what the list shows.
    if (!request.unlimited && outcome.results.size() >= resultLimit) {
        const int counted = request.themeID ? catalog->searchSetCount(*request.themeID, request.text)
                                            : catalog->searchSetCount(request.text);
        outcome.totalCount = std::max<qsizetype>(counted, outcome.results.size());
        if (cancelled.load())
            return outcome;
    }
    // Stable: the promoted set keeps the front only among rows that compare equal.
    SetListSortOrder::sortCatalogResults(outcome.results, request.sortOrder);
    for (const CatalogSetResult &result : std::as_const(outcome.results)) {
        if (request.knownThemes.contains(result.themeID) || outcome.themeNames.contains(result.themeID))
            continue;
        const std::optional<CatalogThemeResult> theme = catalog->theme(result.themeID);
        outcome.themeNames.insert(result.themeID, theme ? std::optional<QString>(theme->name) : std::nullopt);
    }
    return outcome;
}
