// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/EntityTraits.h"
#include "Store/Predicate.h"
#include "Store/SortDescriptor.h"

#include <QList>

// What to fetch of entity T: a predicate, sort descriptors and an optional limit (0: no
// limit). Objects that compare equal under every descriptor keep the order in which they
// were inserted.
template <StoreEntity T>
struct FetchRequest
{
    Predicate predicate;
    QList<SortDescriptor> sortDescriptors;
    int fetchLimit = 0;

    FetchRequest() = default;
    explicit FetchRequest(Predicate where, QList<SortDescriptor> sortBy = {}, int limit = 0)
        : predicate(std::move(where))
        , sortDescriptors(std::move(sortBy))
        , fetchLimit(limit)
    {
    }
};
