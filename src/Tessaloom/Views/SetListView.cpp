// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetListView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListViewModel.h"
#include "Views/OwnedCopiesList.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QShortcut>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SetListView::SetListView(SetListViewModel &viewModel, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_searchField(new QLineEdit(this))
    , m_lists(new QStackedWidget(this))
    , m_copiesList(new OwnedCopiesList(viewModel.copies(), m_lists))
    , m_catalogTable(new QTableView(m_lists))
{
    setObjectName(u"setListView"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);
    layout->addWidget(m_searchField);
    layout->addWidget(m_lists, 1);

    //% "Search by name, number or year"
    m_searchField->setPlaceholderText(qtTrId("setList.search.prompt"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->setObjectName(u"setListSearchField"_s);
    connect(m_searchField, &QLineEdit::textEdited, &m_viewModel, &SetListViewModel::setSearchText);
    connect(&m_viewModel, &SetListViewModel::searchTextChanged, this, [this](const QString &text) {
        if (m_searchField->text() != text)
            m_searchField->setText(text);
    });
    connect(&m_viewModel, &SetListViewModel::searchFocusTriggerChanged, m_searchField,
            [this] { m_searchField->setFocus(Qt::ShortcutFocusReason); });
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, &m_viewModel, &SetListViewModel::toggleSearchFocusTrigger);

    m_catalogTable->setModel(viewModel.catalogModel());
    m_catalogTable->setObjectName(u"catalogResultsTable"_s);
    m_catalogTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_catalogTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_catalogTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_catalogTable->setSortingEnabled(true);
    m_catalogTable->verticalHeader()->hide();
    m_catalogTable->horizontalHeader()->setStretchLastSection(true);

    m_lists->addWidget(m_copiesList);
    m_lists->addWidget(m_catalogTable);
    connect(&m_viewModel, &SetListViewModel::selectionIDChanged, this, &SetListView::showListForSelection);
    showListForSelection();
}

QWidget *SetListView::currentList() const
{
    return m_lists->currentWidget();
}

void SetListView::showListForSelection()
{
    m_lists->setCurrentWidget(m_viewModel.isCatalogList() ? static_cast<QWidget *>(m_catalogTable) : m_copiesList);
}
