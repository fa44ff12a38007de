// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "ViewModels/InventoryCellFormat.h"

#include <QAbstractTableModel>

#include <memory>

struct InventoryRow;

// The sheet's table: ten columns in a fixed order, one row per chosen copy. Rows move
// through layout changes that carry persistent indexes along, so a view keeps its
// selection and scroll position across filter, sort and live changes.
class InventorySpreadsheetModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { setNumber, name, year, condition, built, paid, acquired, disposed, disposedDate, added, columnCount_ };
    enum Role {
        ObjectIDRole = Qt::UserRole + 1, // ObjectID of the copy
    };

    explicit InventorySpreadsheetModel(QObject *parent = nullptr);
    ~InventorySpreadsheetModel() override;

    // Widths in device-independent pixels, the least a user may narrow a column to and
    // the width it starts at (equal for a fixed column).
    static int leastWidth(int column);
    static int idealWidth(int column);
    // The localised title of a column ("table.column.*").
    static QString title(int column);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    // DisplayRole: the cell's text; TextAlignmentRole: right for year and money columns;
    // ObjectIDRole on any column.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    // Horizontal DisplayRole: the localised column title ("table.column.*").
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    ObjectID objectIDAt(int row) const;
    // The row of the copy, or -1 when the filters leave it out.
    int rowOf(const ObjectID &copy) const;

    // The chosen rows in their order. The first call fills the table with a reset; every
    // later one moves, adds and drops rows in one layout change (or, when the same copies
    // stay in the same order, reports only the rows whose copy changed).
    void setRows(QList<std::shared_ptr<const InventoryRow>> rows);
    const QList<std::shared_ptr<const InventoryRow>> &rows() const { return m_rows; }
    const InventoryCellFormat &cellFormat() const { return m_format; }
    // The cell text of a row, formatted on first use and kept with the row.
    QString cellText(int row, int column) const;

private:
    void rebuildRowIndex();

    InventoryCellFormat m_format;
    QList<std::shared_ptr<const InventoryRow>> m_rows;
    QHash<qint64, int> m_rowOfKey; // primary key → row
    bool m_filled = false;
};
