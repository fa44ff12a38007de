// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/GridTablePicker.h"

#include "ViewModels/SetListViewModel.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QToolButton>

using namespace Qt::StringLiterals;

GridTablePicker::GridTablePicker(SetListViewModel &viewModel, const QString &accessibleName, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
{
    auto *group = new QActionGroup(this);
    group->setExclusive(true);
    //% "Grid"
    m_gridAction = new QAction(SymbolIcon::icon(u"square.grid.2x2"_s), qtTrId("setList.viewPicker.grid"), group);
    //% "Table"
    m_tableAction = new QAction(SymbolIcon::icon(u"list.bullet"_s), qtTrId("setList.viewPicker.table"), group);
    m_gridAction->setCheckable(true);
    m_tableAction->setCheckable(true);
    m_gridAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_1));
    m_tableAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_2));
    m_gridAction->setShortcutContext(Qt::WindowShortcut);
    m_tableAction->setShortcutContext(Qt::WindowShortcut);

    setAccessibleName(accessibleName);
    setToolTip(accessibleName);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (QAction *action : {m_gridAction, m_tableAction}) {
        auto *button = new QToolButton(this);
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        layout->addWidget(button);
    }

    showPicked();
    connect(m_gridAction, &QAction::triggered, &m_viewModel, [this] { m_viewModel.setGridView(true); });
    connect(m_tableAction, &QAction::triggered, &m_viewModel, [this] { m_viewModel.setGridView(false); });
    connect(&m_viewModel, &SetListViewModel::isGridViewChanged, this, &GridTablePicker::showPicked);
}

void GridTablePicker::showPicked()
{
    m_gridAction->setChecked(m_viewModel.isGridView());
    m_tableAction->setChecked(!m_viewModel.isGridView());
}
