// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OverallCondition.h"
#include "Store/BrickSet.h"
#include "Store/FetchRequest.h"
#include "ViewModels/SetListSelection.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// Builds the store's fetch of copies for a set list: the trash or the copies outside it,
// narrowed by the smart list, by every token of the search text and by the filters, all
// joined by AND, in the collection's sort.
class CollectionFetchRequest
{
public:
    // Exact matches that narrow the copies further; each absent one lets everything pass.
    struct Filters
    {
        std::optional<QString> themeName;
        std::optional<qint16> year;
        std::optional<OverallCondition> condition;
        friend bool operator==(const Filters &, const Filters &) = default;
    };

    // No selection fetches what "all_sets" fetches. Over a catalog selection the search
    // text is left out: there it goes to the catalog search. The smart lists measured
    // against the clock use `now`, taken at each fetch, so that a list left open moves
    // with the clock at its next refetch.
    static FetchRequest<BrickSet> build(const SetListSelection &selection, const QString &searchText,
                                        const Filters &filters, const QList<SortDescriptor> &sortDescriptors,
                                        const QDateTime &now = QDateTime::currentDateTime());
};
