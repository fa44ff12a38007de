// SPDX-License-Identifier: GPL-3.0-or-later
#include "BuildReport.h"

#include <algorithm>

namespace RebrickableKit {

bool BuildReport::isClean() const
{
    return std::all_of(tables.cbegin(), tables.cend(), [](const TableImportReport &table) { return table.isClean(); });
}

std::optional<TableImportReport> BuildReport::table(const QString &tableName) const
{
    for (const TableImportReport &table : tables)
        if (table.tableName == tableName)
            return table;
    return std::nullopt;
}

} // namespace RebrickableKit
