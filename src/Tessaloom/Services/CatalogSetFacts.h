// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/CatalogSet.h"

#include <QString>

#include <optional>

class RebrickableCatalog;

// What the local catalog says about one set, as a set's sync writes it into the set's
// CatalogSet: read from the catalog in one go, written into a store object without a store.
// Shared by the sync of a single set and by imports that bring many sets at once.
class CatalogSetFacts
{
public:
    // The catalog's facts of the set with the catalog number `number`, or nothing when the
    // catalog lacks it.
    static std::optional<CatalogSetFacts> read(const RebrickableCatalog &catalog, const QString &number);

    // Writes the facts into `set`: name, year, piece count, picture and the time of this
    // sync always; the theme's name and path only where the set has none yet, so what an
    // import of the user's own list put there stays.
    void writeInto(CatalogSet &set) const;

private:
    CatalogSetResult m_row;
    std::optional<CatalogThemeResult> m_theme;
    QString m_themePath;
};
