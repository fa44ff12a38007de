// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QDateTime>
#include <QString>

#include <optional>

// A wanted set. It has no relationship: it copies the facts it shows and refers to its
// set by number only.
struct WishlistItem
{
    ObjectID objectID{EntityType::WishlistItem, 0};

    std::optional<QString> setNumber;
    std::optional<QString> setName;
    qint16 year = 0;
    qint32 pieceCount = 0;
    std::optional<QString> imageURL;
    std::optional<QString> themeName;
    std::optional<QDateTime> dateAdded;
    std::optional<QString> notes;

    friend bool operator==(const WishlistItem &, const WishlistItem &) = default;
};
