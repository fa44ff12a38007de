// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/ChecklistGroup.h"
#include "ViewModels/ChecklistItem.h"

#include <QAbstractListModel>
#include <QList>

class PartsChecklistViewModel;

// The rows of a copy's parts checklist for a list view: a heading per block when the list
// is grouped, then one row per item. A list view paints only the rows in sight, so a set
// of a thousand lines costs on screen what its twenty visible rows cost.
//
// Every text the row shows, and the accessibility texts of its completion mark and its
// two buttons, are data roles, so that the delegate paints them and assistive tools and
// tests read them without any widget per row.
class ChecklistRowModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        IsHeadingRole = Qt::UserRole + 1,
        DetailRole,       // "3001 · Red · Bricks"
        CountRole,        // "2 / 3"
        OwnedRole,        // int
        IsCompleteRole,   // bool
        PictureURLRole,   // the part's picture address
        ColorHexRole,     // the swatch beside the details, or of a colour block's heading
        ItemIDRole,       // the key of the owned count
        CompletionMarkAccessibleNameRole, // "Complete", or empty
        DecrementAccessibleNameRole,      // "Remove one"
        IncrementAccessibleNameRole,      // "Add one"
        CanDecrementRole, // bool: something to take away
        CanIncrementRole, // bool: not complete yet
    };

    explicit ChecklistRowModel(const PartsChecklistViewModel &viewModel, QObject *parent = nullptr);

    // The blocks to show, replacing every row.
    void setGroups(const QList<ChecklistGroup> &groups);
    // The owned counts read again from the view model; only the rows whose count or
    // completion changed are announced.
    void refreshCounts();

    // The item of an item row; null for a heading.
    const ChecklistItem *item(const QModelIndex &index) const;
    // The item rows' indexes, in order (headings left out).
    QList<QModelIndex> itemIndexes() const;
    qsizetype itemCount() const { return m_itemCount; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    struct Row
    {
        bool isHeading = false;
        QString title;    // a heading's
        QString colorHex; // a colour heading's swatch; empty for a category heading
        ChecklistItem item;
        int owned = 0;
        bool isComplete = false;
    };

    const PartsChecklistViewModel &m_viewModel;
    QList<Row> m_rows;
    qsizetype m_itemCount = 0;
};
