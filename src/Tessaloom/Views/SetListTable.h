// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableView>

#include <QList>
#include <QString>

#include <functional>

class TableSortHeader;

// What the set list's tables share: whole rows selected one at a time, read-only cells,
// striped rows without a grid, no row numbers, and a header that sorts the list by a click
// and shows the sort the list has.
//
// Column widths: one column (the name) takes the spare width; the others get the width of
// their content, measured once per fill on a sample of rows, and give way so that the
// stretching column keeps at least two fifths of the table. Once the user drags a column
// edge the widths are the user's: stored under the table's settings key and restored by
// the next table with that key.
class SetListTable : public QTableView
{
    Q_OBJECT

public:
    TableSortHeader *sortHeader() const { return m_sortHeader; }

    // The settings key under which the user's column widths are kept.
    QString columnSettingsKey() const { return m_columnSettingsKey; }
    // Whether the user has set the widths (here or in an earlier table with the same key).
    bool hasUserColumnWidths() const { return m_userWidths; }
    // The smallest share of the viewport's width that the stretching column keeps.
    static constexpr double stretchColumnShare = 0.4;

protected:
    explicit SetListTable(QWidget *parent = nullptr);

    // `sortedColumn` and `ascending` read the list's sort back for the header's indicator.
    void installSortHeader(std::function<int()> sortedColumn, std::function<bool()> ascending);

    // Sizes the columns from their content; `stretchColumn` takes the spare width, the
    // `fixedColumns` keep the widths already given. Restores the widths the user stored
    // under `settingsKey`. Call once the model is set.
    void setUpColumnWidths(const QString &settingsKey, int stretchColumn, const QList<int> &fixedColumns = {});

    void resizeEvent(QResizeEvent *event) override;

private:
    void measureColumns();
    void fitColumns();
    void columnResized(int column);

    TableSortHeader *m_sortHeader = nullptr;
    QString m_columnSettingsKey;
    int m_stretchColumn = -1;
    QList<int> m_fixedColumns;
    // Content widths of the last fill, by column; the fitting shrinks from these.
    QList<int> m_contentWidths;
    bool m_userWidths = false;
    bool m_applyingWidths = false;
};
