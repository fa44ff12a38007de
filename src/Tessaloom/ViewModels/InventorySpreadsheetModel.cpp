// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventorySpreadsheetModel.h"

#include "ViewModels/InventoryRow.h"

using namespace Qt::StringLiterals;

namespace {

struct ColumnWidth
{
    int least;
    int ideal;
};

constexpr std::array<ColumnWidth, InventorySpreadsheetModel::columnCount_> columnWidths{{
    {80, 100}, // setNumber
    {120, 200}, // name
    {50, 50}, // year
    {60, 80}, // condition
    {50, 80}, // built
    {60, 80}, // paid
    {70, 85}, // acquired
    {60, 80}, // disposed
    {70, 85}, // disposedDate
    {70, 85}, // added
}};

bool isColumn(int column)
{
    return column >= 0 && column < InventorySpreadsheetModel::columnCount_;
}

} // namespace

InventorySpreadsheetModel::InventorySpreadsheetModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

InventorySpreadsheetModel::~InventorySpreadsheetModel() = default;

int InventorySpreadsheetModel::leastWidth(int column)
{
    return isColumn(column) ? columnWidths[std::size_t(column)].least : 0;
}

int InventorySpreadsheetModel::idealWidth(int column)
{
    return isColumn(column) ? columnWidths[std::size_t(column)].ideal : 0;
}

QString InventorySpreadsheetModel::title(int column)
{
    switch (column) {
    case setNumber:
        //% "Set #"
        return qtTrId("table.column.setNumber");
    case name:
        //% "Name"
        return qtTrId("table.column.name");
    case year:
        //% "Year"
        return qtTrId("table.column.year");
    case condition:
        //% "Condition"
        return qtTrId("table.column.condition");
    case built:
        //% "Built"
        return qtTrId("table.column.built");
    case paid:
        //% "Paid"
        return qtTrId("table.column.paid");
    case acquired:
        //% "Acquired"
        return qtTrId("table.column.acquired");
    case disposed:
        //% "Disposed"
        return qtTrId("table.column.disposed");
    case disposedDate:
        //% "Disposal Date"
        return qtTrId("table.column.disposedDate");
    case added:
        //% "Added"
        return qtTrId("table.column.added");
    default:
        return {};
    }
}

int InventorySpreadsheetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int InventorySpreadsheetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columnCount_;
}

QString InventorySpreadsheetModel::cellText(int row, int column) const
{
    if (row < 0 || row >= m_rows.size() || !isColumn(column))
        return {};
    const InventoryRow &inventoryRow = *m_rows[row];
    if (!inventoryRow.cells)
        inventoryRow.cells = m_format.cells(inventoryRow);
    return (*inventoryRow.cells)[std::size_t(column)];
}

QVariant InventorySpreadsheetModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return cellText(index.row(), index.column());
    case Qt::TextAlignmentRole:
        if (index.column() == year || index.column() == paid || index.column() == disposed)
            return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    case ObjectIDRole:
        return QVariant::fromValue(m_rows[index.row()]->objectID);
    default:
        return {};
    }
}

QVariant InventorySpreadsheetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || !isColumn(section))
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (role) {
    case Qt::DisplayRole:
        return title(section);
    case Qt::TextAlignmentRole:
        if (section == year || section == paid || section == disposed)
            return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    default:
        return {};
    }
}

ObjectID InventorySpreadsheetModel::objectIDAt(int row) const
{
    if (row < 0 || row >= m_rows.size())
        return ObjectID{EntityType::BrickSet, 0};
    return m_rows[row]->objectID;
}

int InventorySpreadsheetModel::rowOf(const ObjectID &copy) const
{
    if (copy.entity != EntityType::BrickSet)
        return -1;
    return m_rowOfKey.value(copy.primaryKey, -1);
}

void InventorySpreadsheetModel::rebuildRowIndex()
{
    m_rowOfKey.clear();
    m_rowOfKey.reserve(m_rows.size());
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        m_rowOfKey.insert(m_rows[row]->objectID.primaryKey, int(row));
}

void InventorySpreadsheetModel::setRows(QList<std::shared_ptr<const InventoryRow>> rows)
{
    if (!m_filled) {
        beginResetModel();
        m_rows = std::move(rows);
        rebuildRowIndex();
        m_filled = true;
        endResetModel();
        return;
    }

    bool sameCopies = rows.size() == m_rows.size();
    for (qsizetype row = 0; sameCopies && row < rows.size(); ++row)
        sameCopies = rows[row]->objectID == m_rows[row]->objectID;
    if (sameCopies) {
        // The same copies in the same order: only rows whose copy was read again change,
        // which keeps a live edit of one copy from relaying out the whole table.
        const QList<std::shared_ptr<const InventoryRow>> old = std::exchange(m_rows, std::move(rows));
        for (qsizetype row = 0; row < m_rows.size(); ++row) {
            if (m_rows[row] == old[row])
                continue;
            qsizetype last = row;
            while (last + 1 < m_rows.size() && m_rows[last + 1] != old[last + 1])
                ++last;
            Q_EMIT dataChanged(index(int(row), 0), index(int(last), columnCount_ - 1));
            row = last;
        }
        return;
    }

    // Another choice: one layout change, with every persistent index (a view's selection,
    // its current index) carried to its copy's new row, or dropped when the copy left.
    const bool reorderOnly = [&] {
        if (rows.size() != m_rows.size())
            return false;
        for (const auto &row : std::as_const(rows)) {
            if (!m_rowOfKey.contains(row->objectID.primaryKey))
                return false;
        }
        return true;
    }();
    const QAbstractItemModel::LayoutChangeHint hint =
        reorderOnly ? QAbstractItemModel::VerticalSortHint : QAbstractItemModel::NoLayoutChangeHint;
    Q_EMIT layoutAboutToBeChanged({}, hint);
    const QModelIndexList before = persistentIndexList();
    QList<qint64> keysBefore;
    keysBefore.reserve(before.size());
    for (const QModelIndex &index : before)
        keysBefore.append(m_rows[index.row()]->objectID.primaryKey);
    m_rows = std::move(rows);
    rebuildRowIndex();
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype at = 0; at < before.size(); ++at) {
        const int row = m_rowOfKey.value(keysBefore[at], -1);
        after.append(row < 0 ? QModelIndex() : index(row, before[at].column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, hint);
}
