// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventorySpreadsheetViewModel.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/PersistentContainer.h"
#include "ViewModels/DebouncedSettingWriter.h"
#include "ViewModels/InventoryClipboardText.h"
#include "ViewModels/InventoryFooter.h"
#include "ViewModels/InventoryRow.h"
#include "ViewModels/InventoryRowChoice.h"
#include "ViewModels/InventoryRowReader.h"
#include "ViewModels/InventorySpreadsheetModel.h"
#include "ViewModels/InventoryYearTally.h"

#include <QCollator>
#include <QSettings>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString statusFilterKey = u"inventoryStatusFilter"_s;

} // namespace

InventorySpreadsheetViewModel::InventorySpreadsheetViewModel(PersistentContainer &container, QObject *parent)
    : QObject(parent)
    , m_container(container)
    , m_statusFilterRaw(QSettings().value(statusFilterKey, u"all"_s).toString())
    , m_timeZone(QTimeZone::systemTimeZone())
    , m_statusFilterWriter(std::make_unique<DebouncedSettingWriter>(statusFilterKey))
    , m_reader(std::make_unique<InventoryRowReader>(m_timeZone))
    , m_collator(std::make_unique<QCollator>(QLocale()))
    , m_allSets(std::make_unique<BrickSetListModel>(container))
    , m_table(std::make_unique<InventorySpreadsheetModel>())
{
    m_collator->setCaseSensitivity(Qt::CaseInsensitive);
    m_allSets->setFetchRequest(FetchRequest<BrickSet>(BrickSetQueries::notTrashed()));

    // The rows follow the live list as it reports each insert, removal and change of a
    // commit; the choice runs once, when the list says the commit is through.
    BrickSetListModel *list = m_allSets.get();
    connect(list, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int first, int last) { insertRows(first, last); });
    connect(list, &QAbstractItemModel::rowsRemoved, this,
            [this](const QModelIndex &, int first, int last) { removeRows(first, last); });
    connect(list, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &topLeft, const QModelIndex &bottomRight) {
                readRows(topLeft.row(), bottomRight.row());
            });
    connect(list, &QAbstractItemModel::modelReset, this, &InventorySpreadsheetViewModel::readAllRows);
    connect(list, &QAbstractItemModel::layoutChanged, this, &InventorySpreadsheetViewModel::readAllRows);
    connect(list, &BrickSetListModel::refetched, this, &InventorySpreadsheetViewModel::chooseRows);

    readAllRows();
    chooseRows();
}

InventorySpreadsheetViewModel::~InventorySpreadsheetViewModel() = default;

InventorySpreadsheetViewModel::SortColumn InventorySpreadsheetViewModel::sortColumnOf(int column)
{
    switch (column) {
    case InventorySpreadsheetModel::name:
        return SortColumn::name;
    case InventorySpreadsheetModel::year:
        return SortColumn::year;
    case InventorySpreadsheetModel::condition:
        return SortColumn::condition;
    case InventorySpreadsheetModel::built:
        return SortColumn::built;
    case InventorySpreadsheetModel::paid:
        return SortColumn::paid;
    case InventorySpreadsheetModel::acquired:
        return SortColumn::acquired;
    case InventorySpreadsheetModel::disposed:
        return SortColumn::disposed;
    case InventorySpreadsheetModel::disposedDate:
        return SortColumn::disposedDate;
    case InventorySpreadsheetModel::added:
        return SortColumn::added;
    default:
        return SortColumn::setNumber;
    }
}

int InventorySpreadsheetViewModel::columnOf(SortColumn sortColumn)
{
    for (int column = 0; column < InventorySpreadsheetModel::columnCount_; ++column) {
        if (sortColumnOf(column) == sortColumn)
            return column;
    }
    return InventorySpreadsheetModel::setNumber;
}

ManagedObjectContext &InventorySpreadsheetViewModel::viewContext() const
{
    return m_container.viewContext();
}

QString InventorySpreadsheetViewModel::searchText() const
{
    return m_searchText;
}

void InventorySpreadsheetViewModel::setSearchText(const QString &text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    Q_EMIT stateChanged();
    chooseRows();
}

QString InventorySpreadsheetViewModel::statusFilterRaw() const
{
    return m_statusFilterRaw;
}

void InventorySpreadsheetViewModel::setStatusFilterRaw(const QString &raw)
{
    if (raw == m_statusFilterRaw)
        return;
    m_statusFilterRaw = raw;
    m_statusFilterWriter->setValue(raw);
    Q_EMIT stateChanged();
    chooseRows();
}

InventorySpreadsheetViewModel::SortColumn InventorySpreadsheetViewModel::sortOrder() const
{
    return m_sortOrder;
}

bool InventorySpreadsheetViewModel::sortAscending() const
{
    return m_sortAscending;
}

void InventorySpreadsheetViewModel::setSort(SortColumn column, bool ascending)
{
    if (column == m_sortOrder && ascending == m_sortAscending)
        return;
    m_sortOrder = column;
    m_sortAscending = ascending;
    invalidateOrder();
    Q_EMIT stateChanged();
    chooseRows();
}

void InventorySpreadsheetViewModel::sortByColumn(SortColumn column)
{
    setSort(column, column == m_sortOrder ? !m_sortAscending : true);
}

std::optional<QDate> InventorySpreadsheetViewModel::filterDateFrom() const
{
    return m_filterDateFrom;
}

void InventorySpreadsheetViewModel::setFilterDateFrom(const std::optional<QDate> &date)
{
    const std::optional<QDate> valid = date && date->isValid() ? date : std::nullopt;
    if (valid == m_filterDateFrom)
        return;
    m_filterDateFrom = valid;
    Q_EMIT stateChanged();
    chooseRows();
}

std::optional<QDate> InventorySpreadsheetViewModel::filterDateTo() const
{
    return m_filterDateTo;
}

void InventorySpreadsheetViewModel::setFilterDateTo(const std::optional<QDate> &date)
{
    const std::optional<QDate> valid = date && date->isValid() ? date : std::nullopt;
    if (valid == m_filterDateTo)
        return;
    m_filterDateTo = valid;
    Q_EMIT stateChanged();
    chooseRows();
}

void InventorySpreadsheetViewModel::clearDateFilter()
{
    if (!m_filterDateFrom && !m_filterDateTo)
        return;
    m_filterDateFrom.reset();
    m_filterDateTo.reset();
    Q_EMIT stateChanged();
    chooseRows();
}

bool InventorySpreadsheetViewModel::showDateFilter() const
{
    return m_showDateFilter;
}

void InventorySpreadsheetViewModel::setShowDateFilter(bool shown)
{
    if (shown == m_showDateFilter)
        return;
    // Closing the bar leaves the dates in force; only its clear button takes them away.
    m_showDateFilter = shown;
    Q_EMIT stateChanged();
}

void InventorySpreadsheetViewModel::setTimeZone(const QTimeZone &zone)
{
    if (zone == m_timeZone || !zone.isValid())
        return;
    m_timeZone = zone;
    // Every day of every row is counted anew in the new zone.
    m_reader = std::make_unique<InventoryRowReader>(m_timeZone);
    readAllRows();
    chooseRows();
}

QTimeZone InventorySpreadsheetViewModel::timeZone() const
{
    return m_timeZone;
}

BrickSetListModel &InventorySpreadsheetViewModel::allSets() const
{
    return *m_allSets;
}

InventorySpreadsheetModel &InventorySpreadsheetViewModel::tableModel() const
{
    return *m_table;
}

QString InventorySpreadsheetViewModel::footerText() const
{
    if (!m_footerText)
        m_footerText = InventoryFooter::text(m_table->rows(), m_table->cellFormat());
    return *m_footerText;
}

QString InventorySpreadsheetViewModel::clipboardText(const QList<int> &rows) const
{
    const QList<std::shared_ptr<const InventoryRow>> &all = m_table->rows();
    if (rows.isEmpty())
        return InventoryClipboardText::text(all, m_table->cellFormat());
    QList<int> ordered = rows;
    std::sort(ordered.begin(), ordered.end());
    ordered.erase(std::unique(ordered.begin(), ordered.end()), ordered.end());
    QList<std::shared_ptr<const InventoryRow>> chosen;
    chosen.reserve(ordered.size());
    for (const int row : std::as_const(ordered)) {
        if (row >= 0 && row < all.size())
            chosen.append(all[row]);
    }
    return InventoryClipboardText::text(chosen, m_table->cellFormat());
}

InventoryYearTotals InventorySpreadsheetViewModel::yearTotals() const
{
    if (!m_yearTotals)
        m_yearTotals = InventoryYearTally::of(m_table->rows(), m_table->cellFormat().localeCurrency());
    return *m_yearTotals;
}

void InventorySpreadsheetViewModel::readRows(int first, int last)
{
    const QList<BrickSetWithCatalogSet> &copies = m_allSets->rows();
    // A few edited copies each move to their new place; many are sorted again at once.
    constexpr int mostMovedOneByOne = 32;
    const bool oneByOne = last - first < mostMovedOneByOne;
    const InventoryRowChoice::Order order{m_sortOrder, m_sortAscending};
    for (int row = std::max(first, 0); row <= last && row < int(m_source.size()) && row < copies.size(); ++row) {
        m_source[std::size_t(row)] = m_reader->read(copies[row]);
        if (m_orderValid && oneByOne)
            InventoryRowChoice::reposition(m_order, m_source, row, order, *m_collator);
    }
    if (!oneByOne)
        invalidateOrder();
}

void InventorySpreadsheetViewModel::readAllRows()
{
    const QList<BrickSetWithCatalogSet> &copies = m_allSets->rows();
    m_source.clear();
    m_source.reserve(std::size_t(copies.size()));
    for (const BrickSetWithCatalogSet &copy : copies)
        m_source.push_back(m_reader->read(copy));
    invalidateOrder();
}

void InventorySpreadsheetViewModel::insertRows(int first, int last)
{
    const QList<BrickSetWithCatalogSet> &copies = m_allSets->rows();
    std::vector<std::shared_ptr<const InventoryRow>> added;
    for (int row = first; row <= last && row < copies.size(); ++row)
        added.push_back(m_reader->read(copies[row]));
    const std::size_t at = std::min(std::size_t(std::max(first, 0)), m_source.size());
    m_source.insert(m_source.begin() + qsizetype(at), added.begin(), added.end());
    invalidateOrder();
}

void InventorySpreadsheetViewModel::removeRows(int first, int last)
{
    const std::size_t begin = std::min(std::size_t(std::max(first, 0)), m_source.size());
    const std::size_t end = std::min(std::size_t(last) + 1, m_source.size());
    if (begin < end)
        m_source.erase(m_source.begin() + qsizetype(begin), m_source.begin() + qsizetype(end));
    invalidateOrder();
}

void InventorySpreadsheetViewModel::invalidateOrder()
{
    m_orderValid = false;
    m_order.clear();
}

void InventorySpreadsheetViewModel::chooseRows()
{
    if (!m_orderValid) {
        m_order = InventoryRowChoice::sorted(m_source, {m_sortOrder, m_sortAscending}, *m_collator);
        m_orderValid = true;
    }
    InventoryRowChoice::Filter filter;
    filter.statusFilterRaw = m_statusFilterRaw;
    filter.searchText = m_searchText;
    if (m_filterDateFrom)
        filter.from = m_filterDateFrom->startOfDay(m_timeZone).toMSecsSinceEpoch();
    // The start of the day after the last day, so that the whole last day counts.
    if (m_filterDateTo)
        filter.before = m_filterDateTo->addDays(1).startOfDay(m_timeZone).toMSecsSinceEpoch();

    const QList<int> chosen = InventoryRowChoice::filtered(m_source, m_order, filter);
    QList<std::shared_ptr<const InventoryRow>> rows;
    rows.reserve(chosen.size());
    for (const int at : chosen)
        rows.append(m_source[std::size_t(at)]);
    m_table->setRows(std::move(rows));
    m_footerText.reset();
    m_yearTotals.reset();
    Q_EMIT rowsChanged();
}
