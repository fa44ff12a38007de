// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QString>

#include <optional>

// A part, looked up by its catalog part number. To-many: catalogSetParts.
struct CatalogPart
{
    ObjectID objectID{EntityType::CatalogPart, 0};

    std::optional<QString> partNumber;
    std::optional<QString> name;
    std::optional<QString> categoryName;
    std::optional<QString> imageURL;

    friend bool operator==(const CatalogPart &, const CatalogPart &) = default;
};
