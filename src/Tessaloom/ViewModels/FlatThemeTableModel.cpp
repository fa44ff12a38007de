// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/FlatThemeTableModel.h"

#include "ViewModels/ThemeFilter.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

FlatThemeTableModel::FlatThemeTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void FlatThemeTableModel::setThemes(const QList<FlatThemeResult> &themes)
{
    m_allThemes = themes;
    rebuildRows();
}

void FlatThemeTableModel::setSearchText(const QString &searchText)
{
    if (searchText == m_searchText)
        return;
    m_searchText = searchText;
    rebuildRows();
}

std::optional<FlatThemeResult> FlatThemeTableModel::themeAt(int row) const
{
    if (row < 0 || row >= m_rows.size())
        return std::nullopt;
    return m_rows.at(row);
}

int FlatThemeTableModel::rowOfTheme(int id) const
{
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).id == id)
            return int(row);
    }
    return -1;
}

std::optional<FlatThemeResult> FlatThemeTableModel::themeWithID(int id) const
{
    for (const FlatThemeResult &theme : m_allThemes) {
        if (theme.id == id)
            return theme;
    }
    return std::nullopt;
}

int FlatThemeTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int FlatThemeTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FlatThemeTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const FlatThemeResult &theme = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        // Numbers go out as plain text: the default delegate would group the digits by
        // locale and show the year 1990 as "1,990".
        switch (index.column()) {
        case ThemeColumn:
            return theme.path;
        case SetsColumn:
            // A count, unlike the years: grouped in the user's number format.
            return QLocale().toString(theme.setCount);
        case MinYearColumn:
            return QString::number(theme.minYear);
        case MaxYearColumn:
            return QString::number(theme.maxYear);
        }
        break;
    case Qt::TextAlignmentRole:
        if (index.column() != ThemeColumn)
            return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
        break;
    case ThemeIDRole:
        return theme.id;
    case ThemeNameRole:
        return theme.name;
    }
    return {};
}

QVariant FlatThemeTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case ThemeColumn:
        //% "Theme"
        return qtTrId("catalog.themes.column.theme");
    case SetsColumn:
        //% "Sets"
        return qtTrId("catalog.themes.column.sets");
    case MinYearColumn:
        //% "First Year"
        return qtTrId("catalog.themes.column.minYear");
    case MaxYearColumn:
        //% "Last Year"
        return qtTrId("catalog.themes.column.maxYear");
    }
    return {};
}

void FlatThemeTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= ColumnCount)
        column = -1;
    if (column == m_sortColumn && order == m_sortOrder)
        return;
    m_sortColumn = column;
    m_sortOrder = order;

    // A rearrangement, not a reset: the selection and the current row follow their themes.
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QList<int> idsBefore;
    idsBefore.reserve(before.size());
    for (const QModelIndex &index : before)
        idsBefore.append(m_rows.at(index.row()).id);

    m_rows = orderedRows();

    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i)
        after.append(index(rowOfTheme(idsBefore.at(i)), before.at(i).column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void FlatThemeTableModel::rebuildRows()
{
    beginResetModel();
    m_rows = orderedRows();
    endResetModel();
}

QList<FlatThemeResult> FlatThemeTableModel::orderedRows() const
{
    // The filter keeps the catalog's order, which is the order without a sort column.
    QList<FlatThemeResult> rows = ThemeFilter::filter(m_allThemes, m_searchText);
    if (m_sortColumn < 0)
        return rows;
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const auto key = [this](const FlatThemeResult &theme) {
        switch (m_sortColumn) {
        case SetsColumn:
            return theme.setCount;
        case MinYearColumn:
            return theme.minYear;
        case MaxYearColumn:
            return theme.maxYear;
        }
        return 0;
    };
    const auto lessThan = [&](const FlatThemeResult &left, const FlatThemeResult &right) {
        if (m_sortColumn == ThemeColumn)
            return collator.compare(left.path, right.path) < 0;
        return key(left) < key(right);
    };
    // Stable, so rows that tie keep the catalog's order among themselves.
    if (m_sortOrder == Qt::AscendingOrder)
        std::stable_sort(rows.begin(), rows.end(), lessThan);
    else
        std::stable_sort(rows.begin(), rows.end(),
                         [&](const FlatThemeResult &left, const FlatThemeResult &right) { return lessThan(right, left); });
    return rows;
}
