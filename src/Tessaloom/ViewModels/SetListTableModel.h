// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SortDescriptor.h"
#include "ViewModels/SetListColumnTitle.h"

#include <QAbstractTableModel>

#include <optional>

// What the two tables of the set list share: their column titles, one kind of title (or
// none, for a picture or a mark) per column; and sorting, which they do not do themselves
// but ask of the list, with the comparators a click on a column stands for.
class SetListTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    // The comparators a click on `column` in `order` stands for; empty for a column that
    // does not sort.
    using ColumnComparators = QList<SortDescriptor> (*)(int column, Qt::SortOrder order);

    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Emits sortRequested() for a column that sorts; the list re-sorts and refills the rows.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

Q_SIGNALS:
    void sortRequested(const QList<SortDescriptor> &comparators);

protected:
    SetListTableModel(QList<std::optional<SetListColumnTitle::Kind>> columnTitles, ColumnComparators comparators,
                      QObject *parent = nullptr);

private:
    QList<std::optional<SetListColumnTitle::Kind>> m_columnTitles;
    ColumnComparators m_comparators;
};
