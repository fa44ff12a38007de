// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QString>

#include <optional>

// A colour, looked up by the catalog's colour identifier. To-many: catalogSetParts.
struct CatalogColor
{
    ObjectID objectID{EntityType::CatalogColor, 0};

    qint32 colorID = 0;
    std::optional<QString> name;
    std::optional<QString> hexCode;
    bool isTransparent = false;

    friend bool operator==(const CatalogColor &, const CatalogColor &) = default;
};
