// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetRowUpdatePlan.h"

#include <algorithm>

std::optional<BrickSetRowUpdatePlan> BrickSetRowUpdatePlan::make(const QList<BrickSetWithCatalogSet> &rows,
                                                                 const BrickSetRowOrder &order,
                                                                 const QList<ObjectID> &updated,
                                                                 QHash<qint64, BrickSetWithCatalogSet> matching)
{
    QHash<qint64, int> rowOfCopy;
    for (const ObjectID &id : updated)
        rowOfCopy.insert(id.primaryKey, -1);
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const auto found = rowOfCopy.find(rows[row].brickSet.objectID.primaryKey);
        if (found != rowOfCopy.end())
            *found = int(row);
    }

    BrickSetRowUpdatePlan plan;
    QHash<int, qsizetype> changingAt; // row -> index in plan.changing
    for (auto copy = rowOfCopy.cbegin(); copy != rowOfCopy.cend(); ++copy) {
        const auto now = matching.find(copy.key());
        if (copy.value() < 0) {
            if (now != matching.end())
                plan.joining.append(std::move(*now));
        } else if (now == matching.end()) {
            plan.leaving.append(copy.value());
        } else {
            changingAt.insert(copy.value(), plan.changing.size());
            plan.changing.append({copy.value(), std::move(*now)});
        }
    }
    std::sort(plan.leaving.begin(), plan.leaving.end());

    // What a row shows once the plan is applied; a leaving row shows nothing.
    auto shownAt = [&](int row) -> const BrickSetWithCatalogSet * {
        if (std::binary_search(plan.leaving.cbegin(), plan.leaving.cend(), row))
            return nullptr;
        const auto changed = changingAt.constFind(row);
        return changed == changingAt.cend() ? &rows[row] : &plan.changing[*changed].second;
    };
    // The rows that stay were in order, and so are the ones that stay after leaving rows
    // are taken out; each changed row must still sit between its nearest staying
    // neighbours for the whole list to stay in order.
    for (const auto &[row, shown] : std::as_const(plan.changing)) {
        for (int before = row - 1; before >= 0; --before) {
            if (const BrickSetWithCatalogSet *neighbour = shownAt(before)) {
                if (!order.lessThan(*neighbour, shown))
                    return std::nullopt;
                break;
            }
        }
        for (int after = row + 1; after < rows.size(); ++after) {
            if (const BrickSetWithCatalogSet *neighbour = shownAt(after)) {
                if (!order.lessThan(shown, *neighbour))
                    return std::nullopt;
                break;
            }
        }
    }
    return plan;
}
