// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventoryFilterView.h"

#include "ViewModels/InventorySpreadsheetViewModel.h"

#include <QListWidget>
#include <QScopedValueRollback>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int valueRole = Qt::UserRole + 1;
}

InventoryFilterView::InventoryFilterView(InventorySpreadsheetViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_list(new QListWidget(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    m_list->setObjectName(u"inventoryFilterList"_s);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(m_list);

    const auto addChoice = [this](const QString &title, const QString &value) {
        auto *item = new QListWidgetItem(title, m_list);
        item->setData(valueRole, value);
    };
    //% "All"
    addChoice(qtTrId("inventory.filter.all"), u"all"_s);
    //% "In Stock"
    addChoice(qtTrId("inventory.filter.inStock"), u"inStock"_s);
    //% "Disposed"
    addChoice(qtTrId("inventory.filter.disposed"), u"disposed"_s);

    showStoredFilter();
    // Arrow keys move the selection with the current row, so the keyboard chooses as a
    // click does; the selection, not the current row, is what counts, since a list that
    // gains focus makes a row current without choosing it.
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &InventoryFilterView::userSelected);
    connect(&m_viewModel, &InventorySpreadsheetViewModel::stateChanged, this, &InventoryFilterView::showStoredFilter);
}

QString InventoryFilterView::valueAt(int row) const
{
    const QListWidgetItem *item = m_list->item(row);
    return item ? item->data(valueRole).toString() : QString();
}

void InventoryFilterView::showStoredFilter()
{
    const QScopedValueRollback showing(m_showing, true);
    const QString stored = m_viewModel.statusFilterRaw();
    for (int row = 0; row < m_list->count(); ++row) {
        if (valueAt(row) == stored) {
            if (m_list->currentRow() != row || !m_list->item(row)->isSelected())
                m_list->setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
            return;
        }
    }
    m_list->clearSelection();
    m_list->setCurrentItem(nullptr, QItemSelectionModel::Clear);
}

void InventoryFilterView::userSelected()
{
    if (m_showing)
        return;
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    if (selected.isEmpty()) {
        // A choice is never taken away by the user (a Ctrl+click on the selected row):
        // the stored filter stays and is shown again.
        showStoredFilter();
        return;
    }
    const QString value = selected.constFirst()->data(valueRole).toString();
    if (value != m_viewModel.statusFilterRaw())
        m_viewModel.setStatusFilterRaw(value);
}
