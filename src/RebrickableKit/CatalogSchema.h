// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace RebrickableKit {

// The format of the catalog database, in one place: its tables, indexes and full-text
// table, the version it carries, and how each dump fills its table.
class CatalogSchema
{
public:
    // How one field of a dump row turns into one bound value.
    enum class Column {
        requiredInteger,  // refuses the row when it doesn't parse
        forgivingInteger, // NULL when empty or not a number
        text,             // as it stands, the empty text too
        optionalText,     // NULL when empty; NULL too when the row is too short for it
        boolean,          // 1 for "True" or "t", else 0
        relationType,     // one of the six relationship letters, else the row is refused
        partImageURL,     // optional text, stored without the part-image prefix
    };

    struct ImportTable {
        QString tableName;
        // Only a weight for progress; the real number of rows plays no part.
        double expectedRows = 0;
        QString insertStatement;
        // A row with fewer fields is refused.
        int leastFields = 0;
        // By field position, in the order of the INSERT's parameters.
        QList<Column> columns;
        // The names the dump's header carries for those fields, in the same order. Rows are
        // read by position only; the names serve to notice a dump whose columns changed.
        QStringList headerColumns;

        QString fileName() const;
    };

    static constexpr int userVersion = 2;
    // Part-image addresses all start with this; storing only the rest saves some 40 bytes
    // on each of the million-odd inventory lines. Readers put it back.
    static constexpr char partImagePrefix[] = "https://cdn.rebrickable.com/media/parts/";

    static const QList<ImportTable> &importTables();
    static double totalExpectedRows();

    static QString schemaScript();
    static QString indexScript();
    static QString fullTextScript();
};

} // namespace RebrickableKit
