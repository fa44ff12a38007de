// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSetRowOrder.h"
#include "Store/ManagedObjectContext.h"

#include <QHash>
#include <QList>

#include <optional>

// How the rows of a sorted list of copies change after a commit that updated some of its
// copies and nothing else the list reads: the rows that leave (the copy no longer
// matches), the rows that change where they are, and the copies that join. The list then
// follows the commit without reading all its identifiers again, which for thousands of
// copies is most of the time a single edit costs.
//
// There is no plan when a changed row would have to move (a sort key changed past a
// neighbour); the list then reads itself again.
class BrickSetRowUpdatePlan
{
public:
    // `rows` is the list in `order`; `updated` the copies the commit updated; `matching`
    // those of them that the list's request selects now, as read after the commit.
    static std::optional<BrickSetRowUpdatePlan> make(const QList<BrickSetWithCatalogSet> &rows,
                                                     const BrickSetRowOrder &order, const QList<ObjectID> &updated,
                                                     QHash<qint64, BrickSetWithCatalogSet> matching);

    // Rows of the list before the change, ascending.
    QList<int> leaving;
    // Rows of the list before the change, with what they show now.
    QList<std::pair<int, BrickSetWithCatalogSet>> changing;
    // Copies not in the list that now belong in it, in no particular order.
    QList<BrickSetWithCatalogSet> joining;
};
