// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ChecklistRowModel.h"

#include "Services/PartImageURL.h"
#include "ViewModels/PartsChecklistViewModel.h"

using namespace Qt::StringLiterals;

ChecklistRowModel::ChecklistRowModel(const PartsChecklistViewModel &viewModel, QObject *parent)
    : QAbstractListModel(parent)
    , m_viewModel(viewModel)
{
}

void ChecklistRowModel::setGroups(const QList<ChecklistGroup> &groups)
{
    beginResetModel();
    m_rows.clear();
    m_itemCount = 0;
    for (const ChecklistGroup &group : groups) {
        if (!group.title.isEmpty()) {
            Row heading;
            heading.isHeading = true;
            heading.title = group.title;
            if (group.colorID)
                heading.colorHex = group.colorHex;
            m_rows.append(std::move(heading));
        }
        for (const ChecklistItem &item : group.items) {
            Row row;
            row.item = item;
            row.owned = m_viewModel.ownedCount(item);
            row.isComplete = m_viewModel.isComplete(item);
            m_rows.append(std::move(row));
            ++m_itemCount;
        }
    }
    endResetModel();
}

void ChecklistRowModel::refreshCounts()
{
    for (qsizetype index = 0; index < m_rows.size(); ++index) {
        Row &row = m_rows[index];
        if (row.isHeading)
            continue;
        const int owned = m_viewModel.ownedCount(row.item);
        const bool isComplete = m_viewModel.isComplete(row.item);
        if (owned == row.owned && isComplete == row.isComplete)
            continue;
        row.owned = owned;
        row.isComplete = isComplete;
        const QModelIndex changed = this->index(int(index));
        Q_EMIT dataChanged(changed, changed);
    }
}

const ChecklistItem *ChecklistRowModel::item(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != this || index.row() >= m_rows.size() || m_rows.at(index.row()).isHeading)
        return nullptr;
    return &m_rows.at(index.row()).item;
}

QList<QModelIndex> ChecklistRowModel::itemIndexes() const
{
    QList<QModelIndex> indexes;
    indexes.reserve(m_itemCount);
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (!m_rows.at(row).isHeading)
            indexes.append(index(int(row)));
    }
    return indexes;
}

int ChecklistRowModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

Qt::ItemFlags ChecklistRowModel::flags(const QModelIndex &index) const
{
    // The rows are not selected: the list is ticked off through the buttons of each row.
    return index.isValid() ? Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant ChecklistRowModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows.at(index.row());
    if (row.isHeading) {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return row.title;
        case IsHeadingRole:
            return true;
        case ColorHexRole:
            return row.colorHex;
        default:
            return {};
        }
    }
    const ChecklistItem &item = row.item;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return item.partName;
    case Qt::AccessibleTextRole:
        return QStringList{item.partName, data(index, DetailRole).toString(), data(index, CountRole).toString()}.join(
            u", "_s);
    case IsHeadingRole:
        return false;
    case DetailRole:
        // Made when asked: only the rows in sight are ever asked.
        return QStringList{item.partNum, item.colorName, item.category}.join(u" · "_s);
    case CountRole:
        //% "%1 / %2"
        return qtTrId("detail.parts.ownedOfRequired.").arg(row.owned).arg(item.quantity);
    case OwnedRole:
        return row.owned;
    case IsCompleteRole:
        return row.isComplete;
    case PictureURLRole:
        return PartImageURL::forPart(item.imgURL, item.colorID, item.partNum);
    case ColorHexRole:
        return item.colorHex;
    case ItemIDRole:
        return item.id;
    case CompletionMarkAccessibleNameRole:
        //% "Complete"
        return row.isComplete ? qtTrId("accessibility.parts.complete") : QString();
    case DecrementAccessibleNameRole:
        //% "Remove one"
        return qtTrId("accessibility.parts.decrement");
    case IncrementAccessibleNameRole:
        //% "Add one"
        return qtTrId("accessibility.parts.increment");
    case CanDecrementRole:
        return row.owned > 0;
    case CanIncrementRole:
        return !row.isComplete;
    default:
        return {};
    }
}
