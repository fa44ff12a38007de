// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListTableModel.h"

SetListTableModel::SetListTableModel(QList<std::optional<SetListColumnTitle::Kind>> columnTitles,
                                     ColumnComparators comparators, QObject *parent)
    : QAbstractTableModel(parent)
    , m_columnTitles(std::move(columnTitles))
    , m_comparators(comparators)
{
}

QVariant SetListTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (section < 0 || section >= m_columnTitles.size() || !m_columnTitles[section])
        return QString();
    return SetListColumnTitle::text(*m_columnTitles[section]);
}

void SetListTableModel::sort(int column, Qt::SortOrder order)
{
    const QList<SortDescriptor> comparators = m_comparators(column, order);
    if (!comparators.isEmpty())
        Q_EMIT sortRequested(comparators);
}
