// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "ViewModels/SetListTableModel.h"

#include <QHash>
#include <QSet>

// The catalog search results as rows for the catalog's grid and table: one row per
// CatalogSetResult in the order given, with the theme's name from the list's cache and
// whether a copy of the set is owned. Clicking a sortable header asks for a new order
// through sortRequested(); the rows change only when the results are set again.
class CatalogSetListModel : public SetListTableModel
{
    Q_OBJECT

public:
    enum Column { SetNumberColumn, NameColumn, ThemeColumn, YearColumn, PiecesColumn, OwnedColumn, ColumnCount };
    Q_ENUM(Column)

    enum Role {
        SetNumberRole = Qt::UserRole + 1, // QString, "75192-1"
        NameRole,                         // QString
        YearRole,                         // int
        ThemeIDRole,                      // int
        ThemeNameRole,                    // QString, empty until the name is known
        PieceCountRole,                   // int
        ImageURLRole,                     // QString, empty without a picture
        IsOwnedRole,                      // bool
    };
    Q_ENUM(Role)

    explicit CatalogSetListModel(QObject *parent = nullptr);

    const QList<CatalogSetResult> &results() const { return m_results; }
    const CatalogSetResult &resultAt(int row) const { return m_results.at(row); }
    // The row of set number `setNum`, or -1.
    int rowOf(const QString &setNum) const;

    void setResults(const QList<CatalogSetResult> &results);
    void setThemeNames(const QHash<int, QString> &themeNames);
    void setOwnedSetNumbers(const QSet<QString> &ownedSetNumbers);

    // The comparators a click on `column` stands for; empty for columns that do not sort
    // (theme, owned).
    static QList<SortDescriptor> comparatorsForColumn(int column, Qt::SortOrder order);
    // The header's indicator for a sort order: the column of its first comparator, or -1.
    static int columnOfSortOrder(const QList<SortDescriptor> &comparators);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    QList<CatalogSetResult> m_results;
    QHash<int, QString> m_themeNames;
    QSet<QString> m_ownedSetNumbers;
};
