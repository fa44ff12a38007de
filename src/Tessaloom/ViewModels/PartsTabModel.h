// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/PartRow.h"

#include <QList>
#include <QString>

#include <optional>

class RebrickableCatalog;

// The logic behind the parts tab of a set's detail: the rows of the set's inventory as the
// catalog has them, the search over them, their order, and how they fall into sections
// (regular parts first, spares after) and, for the regular parts, into blocks per colour or
// per category. Holds no widget, so each rule is testable alone.
class PartsTabModel
{
public:
    enum class SortMode { name, quantity, partNumber };
    enum class GroupMode { none, color, category };

    // A run of rows under one heading. Without grouping the heading is empty.
    struct Block
    {
        QString title;
        std::optional<int> colorID; // set for a colour block
        QString colorHex;           // the colour of a colour block
        QList<PartRow> rows;

        friend bool operator==(const Block &, const Block &) = default;
    };

    struct Section
    {
        enum class Kind { regular, spare };
        Kind kind = Kind::regular;
        QList<Block> blocks;

        friend bool operator==(const Section &, const Section &) = default;
    };

    // Reads the inventory of `setNum` (its newest version, ordered by part number) and
    // names each row's part, colour and category. Each distinct part, colour and category
    // is asked of the catalog once. Safe on any thread.
    static QList<PartRow> readRows(const RebrickableCatalog &catalog, const QString &setNum);

    QString setNum() const { return m_setNum; }
    void setSetNum(const QString &setNum) { m_setNum = setNum; }
    QList<PartRow> parts() const { return m_parts; }
    void setParts(const QList<PartRow> &parts) { m_parts = parts; }
    QString searchText() const { return m_searchText; }
    void setSearchText(const QString &searchText) { m_searchText = searchText; }
    bool isLoading() const { return m_isLoading; }
    void setLoading(bool isLoading) { m_isLoading = isLoading; }
    GroupMode groupBy() const { return m_groupBy; }
    void setGroupBy(GroupMode groupBy) { m_groupBy = groupBy; }
    SortMode sortBy() const { return m_sortBy; }
    void setSortBy(SortMode sortBy) { m_sortBy = sortBy; }

    QList<PartRow> regularParts() const;
    QList<PartRow> spareParts() const;

    // The header's figures: regular rows, pieces among them, spare rows.
    int uniqueCount() const;
    int totalPieces() const;
    int spareCount() const;

    // Whether `row` passes `searchText` (always, when the text is empty): the lower-cased
    // text must be found in the part's name, number, colour name or category.
    bool matches(const PartRow &row) const;
    // The rows that pass the search, in the order of `sortBy`.
    QList<PartRow> filteredAndSorted(const QList<PartRow> &rows) const;
    // What the list shows: the regular section whenever there are rows at all, the spare
    // section only when the inventory has spare rows, each holding the rows that pass.
    QList<Section> sections() const;

    // Orders `rows` by `sortBy`, keeping the catalog's order among equals.
    static void sort(QList<PartRow> &rows, SortMode sortBy);
    // Splits `rows` into blocks by `groupBy`, each block keeping the rows' order.
    static QList<Block> group(const QList<PartRow> &rows, GroupMode groupBy);

private:
    QString m_setNum;
    QList<PartRow> m_parts;
    QString m_searchText;
    bool m_isLoading = false;
    GroupMode m_groupBy = GroupMode::none;
    SortMode m_sortBy = SortMode::name;
};
