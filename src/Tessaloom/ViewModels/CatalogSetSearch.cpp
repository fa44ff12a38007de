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
    outcome.results = request.themeID ? catalog->searchSets(*request.themeID, request.text, resultLimit)
                                      : catalog->searchSetsPromotingExactHit(request.text, resultLimit);
    if (cancelled.load())
        return outcome;
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
