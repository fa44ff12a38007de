// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventoryDateFilterBar.h"

#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "Views/OptionalDateEdit.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

// The picker's check box carries the caption: ticking "From" is what sets a first day.
void caption(OptionalDateEdit &picker, const QString &label)
{
    picker.presentBox()->setText(label);
    picker.setAccessibleLabel(label);
}

} // namespace

InventoryDateFilterBar::InventoryDateFilterBar(InventorySpreadsheetViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_caption(new QLabel(this))
    , m_from(new OptionalDateEdit(this))
    , m_to(new OptionalDateEdit(this))
    , m_clear(new QPushButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(m_caption);
    layout->addWidget(m_from);
    layout->addWidget(m_to);
    layout->addWidget(m_clear);
    layout->addStretch(1);

    m_caption->setObjectName(u"dateRangeCaption"_s);
    m_from->setObjectName(u"dateFrom"_s);
    m_to->setObjectName(u"dateTo"_s);
    m_clear->setObjectName(u"dateClear"_s);
    //% "Date Range:"
    m_caption->setText(qtTrId("inventory.filter.dateRange"));
    //% "From"
    caption(*m_from, qtTrId("inventory.filter.from"));
    //% "To"
    caption(*m_to, qtTrId("inventory.filter.to"));
    //% "Clear"
    m_clear->setText(qtTrId("inventory.filter.clear"));

    showDates();
    connect(m_from, &OptionalDateEdit::dateEdited, &m_viewModel, &InventorySpreadsheetViewModel::setFilterDateFrom);
    connect(m_to, &OptionalDateEdit::dateEdited, &m_viewModel, &InventorySpreadsheetViewModel::setFilterDateTo);
    connect(m_clear, &QPushButton::clicked, &m_viewModel, &InventorySpreadsheetViewModel::clearDateFilter);
    connect(&m_viewModel, &InventorySpreadsheetViewModel::stateChanged, this, &InventoryDateFilterBar::showDates);
}

void InventoryDateFilterBar::showDates()
{
    // setDate() reports nothing back, so showing the model's dates never writes them again.
    if (m_from->date() != m_viewModel.filterDateFrom())
        m_from->setDate(m_viewModel.filterDateFrom());
    if (m_to->date() != m_viewModel.filterDateTo())
        m_to->setDate(m_viewModel.filterDateTo());
    m_clear->setEnabled(m_viewModel.filterDateFrom() || m_viewModel.filterDateTo());
}
