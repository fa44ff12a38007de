// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/SortDescriptor.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <atomic>
#include <optional>

// One search of the set list over the shared catalog, from values to values so that it
// can run on any thread: the text query (over one theme, or over the whole catalog with a
// typed set number brought to the front), the sort, and the names of themes the caller
// does not know yet. When the limit cuts the results, how many there are in all.
class CatalogSetSearch
{
public:
    static constexpr int resultLimit = 1000;

    struct Request
    {
        QString text;
        std::optional<int> themeID;
        QList<SortDescriptor> sortOrder;
        // Themes whose names the caller has: they are not looked up again.
        QSet<int> knownThemes;
        // Whether the list asked for every match instead of the first resultLimit.
        bool unlimited = false;
    };

    // A theme id without a name in the catalog maps to nothing.
    using ThemeNames = QHash<int, std::optional<QString>>;

    struct Outcome
    {
        QList<CatalogSetResult> results;
        ThemeNames themeNames;
        // How many sets match in all: counted only when the limit cut the results, else
        // the number of results.
        qsizetype totalCount = 0;
    };

    // Without a shared catalog the outcome is empty. Stops early, before sorting and name
    // lookups, once `cancelled` is set: its caller drops what comes back anyway.
    static Outcome run(const Request &request, const std::atomic_bool &cancelled);
};
