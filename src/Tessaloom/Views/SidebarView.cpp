// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SidebarView.h"

#include "ViewModels/SidebarSelectionBinder.h"
#include "ViewModels/SidebarTreeModel.h"
#include "Views/SidebarRowDelegate.h"
#include "Views/SymbolIcon.h"

#include <QHeaderView>

using namespace Qt::StringLiterals;

SidebarView::SidebarView(SidebarViewModel &viewModel, QWidget *parent)
    : QTreeView(parent)
    , m_model(new SidebarTreeModel(viewModel, this))
{
    setObjectName(u"sidebarColumn"_s);
    m_model->setIconProvider(&SymbolIcon::icon);
    setModel(m_model);
    setItemDelegate(new SidebarRowDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Its least and greatest widths are the window's: see ContentSplitterLayout.
    // The two sections stay open; theme branches open on demand.
    const auto expandSections = [this] {
        for (int row = 0; row < m_model->rowCount(); ++row)
            expand(m_model->index(row, 0));
    };
    connect(m_model, &QAbstractItemModel::modelReset, this, expandSections);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, expandSections);
    expandSections();
    m_binder = new SidebarSelectionBinder(*m_model, *selectionModel(), this);
}
