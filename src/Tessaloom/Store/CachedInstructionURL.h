// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QDateTime>
#include <QString>

#include <optional>

// One building-instruction booklet of a set, or, with pdfURL "none", the marker that the
// lookup was made and found nothing, which stops a further lookup.
struct CachedInstructionURL
{
    ObjectID objectID{EntityType::CachedInstructionURL, 0};

    std::optional<QString> pdfURL;
    std::optional<QString> descriptionText;
    std::optional<QString> coverImageURL;
    std::optional<QDateTime> lastFetchDate;

    std::optional<ObjectID> catalogSet; // inverse CatalogSet.cachedInstructions

    static inline const QString noneMarker = QStringLiteral("none");
    bool isNoneMarker() const { return pdfURL == noneMarker; }

    friend bool operator==(const CachedInstructionURL &, const CachedInstructionURL &) = default;
};
