// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "ViewModels/InventoryYearTotals.h"

#include <QDate>
#include <QObject>
#include <QTimeZone>

#include <memory>
#include <optional>
#include <vector>

class BrickSetListModel;
class DebouncedSettingWriter;
class InventoryRowReader;
class InventorySpreadsheetModel;
class ManagedObjectContext;
class PersistentContainer;
class QCollator;
struct InventoryRow;

// Everything the inventory sheet shows: every copy that is not in the trash as one row,
// chosen by status, search and date range, sorted by one column; the footer line, the
// copied text and the yearly totals of the rows that are left.
class InventorySpreadsheetViewModel : public QObject
{
    Q_OBJECT

public:
    enum class SortColumn { setNumber, name, year, condition, built, paid, disposed, acquired, disposedDate, added };
    Q_ENUM(SortColumn)

    explicit InventorySpreadsheetViewModel(PersistentContainer &container, QObject *parent = nullptr);
    ~InventorySpreadsheetViewModel() override;

    // The sort column behind a column of the table (whose order differs), and back.
    static SortColumn sortColumnOf(int column);
    static int columnOf(SortColumn sortColumn);

    ManagedObjectContext &viewContext() const;

    QString searchText() const;
    void setSearchText(const QString &text);
    // "all", "inStock" or "disposed"; stored under "inventoryStatusFilter" (default "all")
    // and read back by every new view model, so it outlives the program.
    QString statusFilterRaw() const;
    void setStatusFilterRaw(const QString &raw);
    SortColumn sortOrder() const;
    bool sortAscending() const;
    void setSort(SortColumn column, bool ascending);
    // A click on a column header: the same column again turns the order round, another
    // column sorts ascending.
    void sortByColumn(SortColumn column);
    std::optional<QDate> filterDateFrom() const;
    void setFilterDateFrom(const std::optional<QDate> &date);
    std::optional<QDate> filterDateTo() const;
    void setFilterDateTo(const std::optional<QDate> &date);
    // The date bar's clear button: both dates go.
    void clearDateFilter();
    bool showDateFilter() const;
    void setShowDateFilter(bool shown);
    // The zone whose days the date filter counts in and dates print in; the system's by default.
    void setTimeZone(const QTimeZone &zone);
    QTimeZone timeZone() const;

    // All copies not in the trash, before any filter (a live list).
    BrickSetListModel &allSets() const;
    // The rows left by the filters, in the chosen order (a live table).
    InventorySpreadsheetModel &tableModel() const;
    // The footer line of the rows left by the filters.
    QString footerText() const;
    // The rows (of tableModel(), any order; sorted by row before writing) as tab-separated
    // text with a header line and a line feed after every line; an empty list copies all rows.
    QString clipboardText(const QList<int> &rows) const;
    // Money paid and money received per year and currency over the rows left by the filters.
    InventoryYearTotals yearTotals() const;

Q_SIGNALS:
    // Any of the state fields above changed (search, status, sort, dates, date bar).
    void stateChanged();
    // The rows were chosen anew (a filter, the order or a live change); footerText() and
    // yearTotals() may have changed with them.
    void rowsChanged();

private:
    void readRows(int first, int last);
    void readAllRows();
    void insertRows(int first, int last);
    void removeRows(int first, int last);
    void chooseRows();
    void invalidateOrder();

    PersistentContainer &m_container;
    QString m_searchText;
    QString m_statusFilterRaw;
    SortColumn m_sortOrder = SortColumn::setNumber;
    bool m_sortAscending = true;
    std::optional<QDate> m_filterDateFrom;
    std::optional<QDate> m_filterDateTo;
    bool m_showDateFilter = false;
    QTimeZone m_timeZone;

    // The status filter reaches the settings file once the clicking pauses: writing it
    // costs tens of milliseconds, more than choosing the rows.
    std::unique_ptr<DebouncedSettingWriter> m_statusFilterWriter;
    std::unique_ptr<InventoryRowReader> m_reader;
    std::unique_ptr<QCollator> m_collator;
    std::unique_ptr<BrickSetListModel> m_allSets;
    std::unique_ptr<InventorySpreadsheetModel> m_table;
    // One row per copy of allSets(), in its order.
    std::vector<std::shared_ptr<const InventoryRow>> m_source;
    // The positions of every row of m_source in the chosen order, before any filter;
    // sorted anew only when the order or the list's positions change.
    QList<int> m_order;
    bool m_orderValid = false;
    // Worked out on the first request after each choice: the footer and the chart may
    // both ask, and more than once.
    mutable std::optional<QString> m_footerText;
    mutable std::optional<InventoryYearTotals> m_yearTotals;
};
