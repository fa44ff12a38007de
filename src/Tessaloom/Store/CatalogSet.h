// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "Store/ObjectID.h"

#include <QDateTime>
#include <QString>

#include <optional>

// The catalog facts of one set number, shared by all its copies and wishlist entries and
// outliving them: a cache of catalog facts and prices. Its to-many relationships
// (catalogSetParts, cachedInstructions, cachedPriceGuides, brickSets) are the rows whose
// to-one points here; ManagedObjectContext fetches them, CatalogSetAccessors reads them.
struct CatalogSet
{
    ObjectID objectID{EntityType::CatalogSet, 0};

    std::optional<QString> setNumber;
    std::optional<QString> name;
    std::optional<QString> themeGroup;
    std::optional<QString> themeName;
    qint16 year = 0;
    qint32 pieceCount = 0;
    std::optional<QString> imageURL;
    std::optional<QString> thumbnailURL;
    std::optional<Decimal> retailPrice;
    std::optional<QString> retailPriceCurrency;
    std::optional<QDateTime> dateFirstAvailable;
    std::optional<QDateTime> dateLastAvailable;
    std::optional<QDateTime> lastSyncDate;
    std::optional<QDateTime> partsSyncDate;

    friend bool operator==(const CatalogSet &, const CatalogSet &) = default;
};
