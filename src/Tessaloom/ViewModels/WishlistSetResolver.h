// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/WishlistItem.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

class RebrickableCatalog;

// Turns wishlist entries into the catalog sets the wishlist shows. An entry refers to its
// set by number only, so the catalog is asked for each number; when there is no catalog, or
// the set has left it, the entry's own copies of the facts stand in, so the entry stays
// visible and can still be removed.
class WishlistSetResolver
{
public:
    // What the catalog knows of one set number.
    struct CatalogFacts
    {
        CatalogSetResult set;
        QString themeName; // empty when the catalog has no name for the set's theme

        friend bool operator==(const CatalogFacts &, const CatalogFacts &) = default;
    };
    // Per set number: the catalog's facts, or nothing when the catalog lacks the set.
    using Answers = QHash<QString, std::optional<CatalogFacts>>;

    // Asks `catalog` for each number, and for the names of the themes met. For a worker
    // thread: the catalog serialises each statement, and the main thread's own short
    // look-ups get their turn between these.
    static Answers lookUp(const RebrickableCatalog &catalog, const QStringList &setNumbers);

    // The set as the entry itself describes it: its number, its name (else the number),
    // year, pieces and picture; no theme id.
    static CatalogSetResult fromItem(const WishlistItem &item);
    // The catalog's set when `facts` has it, else fromItem().
    static CatalogSetResult resolve(const WishlistItem &item, const std::optional<CatalogFacts> &facts);
    // The theme column's text: the catalog's theme name, else the one the entry kept.
    static QString themeName(const WishlistItem &item, const std::optional<CatalogFacts> &facts);
};
