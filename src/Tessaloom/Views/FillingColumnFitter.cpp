// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/FillingColumnFitter.h"

#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QSettings>
#include <QTableView>
#include <QVariantList>

#include <algorithm>

FillingColumnFitter::FillingColumnFitter(QTableView &table, int fillingColumn, int leastWidth, QString settingsKey)
    : QObject(&table)
    , m_table(table)
    , m_fillingColumn(fillingColumn)
    , m_leastWidth(leastWidth)
    , m_settingsKey(std::move(settingsKey))
{
    restore();
    connect(m_table.horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column, int, int newSize) { sectionResized(column, newSize); });
    m_table.viewport()->installEventFilter(this);
    fit();
}

bool FillingColumnFitter::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_table.viewport() && event->type() == QEvent::Resize)
        fit();
    return QObject::eventFilter(watched, event);
}

// Stored as one width per column; 0 for a filling column the user never set.
void FillingColumnFitter::restore()
{
    const QVariantList stored = QSettings().value(m_settingsKey).toList();
    QHeaderView *header = m_table.horizontalHeader();
    if (stored.size() != header->count())
        return;
    const QScopedValueRollback resizing(m_resizing, true);
    for (int column = 0; column < header->count(); ++column) {
        const int width = stored.at(column).toInt();
        if (width <= 0)
            continue;
        header->resizeSection(column, width);
        if (column == m_fillingColumn)
            m_filling = false;
    }
}

void FillingColumnFitter::fit()
{
    if (!m_filling)
        return;
    QHeaderView *header = m_table.horizontalHeader();
    int others = 0;
    for (int column = 0; column < header->count(); ++column) {
        if (column != m_fillingColumn && !header->isSectionHidden(column))
            others += header->sectionSize(column);
    }
    const int width = std::max(m_leastWidth, m_table.viewport()->width() - others);
    if (header->sectionSize(m_fillingColumn) == width)
        return;
    const QScopedValueRollback resizing(m_resizing, true);
    header->resizeSection(m_fillingColumn, width);
}

void FillingColumnFitter::sectionResized(int column, int newSize)
{
    Q_UNUSED(newSize);
    if (m_resizing)
        return;
    if (column == m_fillingColumn)
        m_filling = false;
    else
        fit();
    store();
}

void FillingColumnFitter::store() const
{
    const QHeaderView *header = m_table.horizontalHeader();
    QVariantList widths;
    for (int column = 0; column < header->count(); ++column)
        widths.append(column == m_fillingColumn && m_filling ? 0 : header->sectionSize(column));
    QSettings().setValue(m_settingsKey, widths);
}
