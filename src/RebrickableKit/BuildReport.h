// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TableImportReport.h"

#include <QList>

#include <optional>

namespace RebrickableKit {

// What a catalog build came to, table by table: the value RebrickableDatabaseBuilder::build
// gives back once the database is complete.
struct BuildReport {
    // One entry per table, in the order of the import; none when the build ran without
    // row accounting.
    QList<TableImportReport> tables;

    // Every table clean: all rows stored, headers as expected, no sign of a broken quote.
    bool isClean() const;
    std::optional<TableImportReport> table(const QString &tableName) const;

    friend bool operator==(const BuildReport &, const BuildReport &) = default;
};

} // namespace RebrickableKit
