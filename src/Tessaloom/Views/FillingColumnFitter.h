// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QTableView;

// One column of a table takes the width the other columns leave, so the table meets its
// right edge at any window width; below the column's least width the table scrolls
// instead. The other columns keep the widths they have.
//
// The user's widths win. A drag of another column's edge takes the width from, or gives
// it to, the filling column; a drag of the filling column's own edge makes its width the
// user's, and it stops filling. The widths are stored under `settingsKey` at each drag and
// given back to the next table that uses the key (the filling column's only when the user
// set it).
class FillingColumnFitter : public QObject
{
    Q_OBJECT

public:
    // Call once the table's model is set and its columns have their first widths.
    FillingColumnFitter(QTableView &table, int fillingColumn, int leastWidth, QString settingsKey);

    // False once the user has set the filling column's width.
    bool isFilling() const { return m_filling; }
    QString settingsKey() const { return m_settingsKey; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void restore();
    void fit();
    void sectionResized(int column, int newSize);
    void store() const;

    QTableView &m_table;
    int m_fillingColumn;
    int m_leastWidth;
    QString m_settingsKey;
    bool m_filling = true;
    // Set while this object resizes sections itself, so that its own resizes are not
    // taken for the user's.
    bool m_resizing = false;
};
