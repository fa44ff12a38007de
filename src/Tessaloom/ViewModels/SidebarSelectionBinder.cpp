// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SidebarSelectionBinder.h"

#include "ViewModels/SidebarTreeModel.h"
#include "ViewModels/SidebarViewModel.h"

#include <QItemSelectionModel>
#include <QScopedValueRollback>

SidebarSelectionBinder::SidebarSelectionBinder(SidebarTreeModel &model, QItemSelectionModel &selectionModel,
                                               QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_selectionModel(selectionModel)
{
    Q_ASSERT(selectionModel.model() == &model);
    connect(&selectionModel, &QItemSelectionModel::currentChanged, this, &SidebarSelectionBinder::takeUsersChoice);
    connect(&model.viewModel(), &SidebarViewModel::selectedItemChanged, this, &SidebarSelectionBinder::showSelection);
    connect(&model, &SidebarTreeModel::rowsChanged, this, &SidebarSelectionBinder::showSelection);
    showSelection();
}

void SidebarSelectionBinder::takeUsersChoice()
{
    // A selection model moves its current row to a neighbour when the current one is
    // removed; that is no choice of the user's.
    if (m_showing || m_model.isChangingRows())
        return;
    // Section rows and "no row" leave the selection as it is.
    if (const std::optional<SidebarItem> item = m_model.itemAt(m_selectionModel.currentIndex()))
        m_model.viewModel().setSelectedItem(item);
}

void SidebarSelectionBinder::showSelection()
{
    const QScopedValueRollback showing(m_showing, true);
    const std::optional<SidebarItem> selected = m_model.viewModel().selectedItem();
    const QModelIndex row = selected ? m_model.indexOf(*selected) : QModelIndex();
    if (row.isValid())
        m_selectionModel.setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
    else
        m_selectionModel.clear();
}
