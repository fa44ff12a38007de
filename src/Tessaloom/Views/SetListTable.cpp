// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetListTable.h"

#include "Views/TableSortHeader.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QSettings>

#include <algorithm>
#include <limits>

namespace {
// Enough rows to find the usual widths without reading a list of 26,000 rows per fill.
constexpr int measuredRows = 100;
// A column never gets narrower than this when it gives way to the name.
constexpr int narrowestColumn = 36;
// What a cell adds around its text: the style's margins on both sides.
constexpr int cellPadding = 16;
// The header's arrow beside the title of the sorted column.
constexpr int sortIndicatorWidth = 14;
} // namespace

SetListTable::SetListTable(QWidget *parent)
    : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
}

void SetListTable::installSortHeader(std::function<int()> sortedColumn, std::function<bool()> ascending)
{
    m_sortHeader = new TableSortHeader(*this, std::move(sortedColumn), std::move(ascending));
}

void SetListTable::setUpColumnWidths(const QString &settingsKey, int stretchColumn, const QList<int> &fixedColumns)
{
    m_columnSettingsKey = settingsKey;
    m_stretchColumn = stretchColumn;
    m_fixedColumns = fixedColumns;
    QHeaderView *header = horizontalHeader();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::Interactive);
    for (const int column : fixedColumns)
        header->setSectionResizeMode(column, QHeaderView::Fixed);
    header->setSectionResizeMode(stretchColumn, QHeaderView::Stretch);
    const QByteArray stored = QSettings().value(settingsKey).toByteArray();
    if (!stored.isEmpty()) {
        m_applyingWidths = true;
        m_userWidths = header->restoreState(stored);
        m_applyingWidths = false;
    }
    connect(header, &QHeaderView::sectionResized, this, [this](int column) { columnResized(column); });
    // Measured once per fill, not per row: a reset or a new ordering brings new content.
    connect(model(), &QAbstractItemModel::modelReset, this, &SetListTable::measureColumns);
    connect(model(), &QAbstractItemModel::layoutChanged, this, &SetListTable::measureColumns);
    measureColumns();
}

void SetListTable::measureColumns()
{
    if (m_userWidths || !model())
        return;
    const QAbstractItemModel &rows = *model();
    const QFontMetrics cellMetrics(font());
    const QFontMetrics headerMetrics(horizontalHeader()->font());
    const int rowCount = std::min(rows.rowCount(), measuredRows);
    m_contentWidths = QList<int>(rows.columnCount(), 0);
    for (int column = 0; column < rows.columnCount(); ++column) {
        if (column == m_stretchColumn || m_fixedColumns.contains(column))
            continue;
        // The header keeps room for its sort indicator.
        int widest = headerMetrics.horizontalAdvance(rows.headerData(column, Qt::Horizontal).toString()) + cellPadding
                     + sortIndicatorWidth;
        for (int row = 0; row < rowCount; ++row)
            widest = std::max(widest, cellMetrics.horizontalAdvance(rows.index(row, column).data().toString()) + cellPadding);
        m_contentWidths[column] = widest;
    }
    fitColumns();
}

void SetListTable::fitColumns()
{
    if (m_userWidths || m_contentWidths.isEmpty())
        return;
    QHeaderView *header = horizontalHeader();
    const int available = viewport()->width();
    int fixedWidth = 0;
    for (const int column : std::as_const(m_fixedColumns))
        fixedWidth += header->sectionSize(column);
    // What the content columns may take so that the name keeps its share. When they need
    // more, the widest give way first (a long theme name is cut before a set number): all
    // are capped at the one width that makes them fit.
    const int allowed = std::max(0, int(available * (1.0 - stretchColumnShare)) - fixedWidth);
    QList<int> widths;
    for (const int width : std::as_const(m_contentWidths)) {
        if (width > 0)
            widths.append(width);
    }
    std::sort(widths.begin(), widths.end());
    int cap = std::numeric_limits<int>::max();
    int used = 0;
    for (qsizetype index = 0; index < widths.size(); ++index) {
        const int remaining = int(widths.size() - index);
        if (used + widths[index] * remaining > allowed) {
            cap = std::max(narrowestColumn, (allowed - used) / remaining);
            break;
        }
        used += widths[index];
    }
    m_applyingWidths = true;
    for (int column = 0; column < m_contentWidths.size(); ++column) {
        // An unchanged width is left alone: each resize lays the header out again.
        const int width = std::min(m_contentWidths[column], cap);
        if (m_contentWidths[column] > 0 && header->sectionSize(column) != width)
            header->resizeSection(column, width);
    }
    m_applyingWidths = false;
}

void SetListTable::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    fitColumns();
}

void SetListTable::columnResized(int column)
{
    // Widths set here, and the name's stretching that follows any change, are not the
    // user's; any other change of a column is a drag of its edge.
    if (m_applyingWidths || column == m_stretchColumn || m_columnSettingsKey.isEmpty())
        return;
    QHeaderView *header = horizontalHeader();
    m_userWidths = true;
    QSettings().setValue(m_columnSettingsKey, header->saveState());
}
