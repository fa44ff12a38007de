// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"

#include <QAbstractTableModel>
#include <QList>
#include <QString>

#include <optional>

// The rows of the theme browser: every theme with sets, as the catalog lists them, narrowed
// by the search text (ThemeFilter) and optionally sorted by one column. Without a sort the
// rows keep the catalog's order.
class FlatThemeTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { ThemeColumn, SetsColumn, MinYearColumn, MaxYearColumn, ColumnCount };
    enum Role {
        ThemeIDRole = Qt::UserRole + 1,
        ThemeNameRole,
    };

    explicit FlatThemeTableModel(QObject *parent = nullptr);

    QList<FlatThemeResult> themes() const { return m_allThemes; }
    void setThemes(const QList<FlatThemeResult> &themes);

    QString searchText() const { return m_searchText; }
    void setSearchText(const QString &searchText);

    // The row's theme, or nothing outside the rows.
    std::optional<FlatThemeResult> themeAt(int row) const;
    // The row showing the theme, or -1 when it is filtered out or unknown.
    int rowOfTheme(int id) const;
    // Any theme loaded, shown or filtered out.
    std::optional<FlatThemeResult> themeWithID(int id) const;

    // The column the rows are sorted by, -1 for the catalog's order.
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // A column outside the four puts the rows back into the catalog's order.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    void rebuildRows();
    QList<FlatThemeResult> orderedRows() const;

    QList<FlatThemeResult> m_allThemes;
    QList<FlatThemeResult> m_rows;
    QString m_searchText;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};
