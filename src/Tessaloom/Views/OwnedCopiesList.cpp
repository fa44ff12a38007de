// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/OwnedCopiesList.h"

#include "Store/BrickSetListModel.h"
#include "Views/EmptyStateView.h"

#include <QListView>

using namespace Qt::StringLiterals;

OwnedCopiesList::OwnedCopiesList(BrickSetListModel *model, QWidget *parent)
    : QStackedWidget(parent)
    , m_model(model)
    , m_listView(new QListView(this))
    , m_emptyState(new EmptyStateView(this))
{
    setObjectName(u"ownedCopiesList"_s);
    m_listView->setModel(m_model);
    m_listView->setUniformItemSizes(true);
    m_listView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_listView->setObjectName(u"ownedCopiesView"_s);

    //% "No Sets Yet"
    const QString emptyTitle = qtTrId("list.empty.title");
    //% "Sets you add to your collection appear here."
    const QString emptyDescription = qtTrId("list.empty.description");
    m_emptyState->setContent(u"shippingbox"_s, emptyTitle, emptyDescription);

    addWidget(m_emptyState);
    addWidget(m_listView);
    connect(m_model, &BrickSetListModel::countChanged, this, &OwnedCopiesList::showListOrEmptyState);
    connect(m_model, &QAbstractItemModel::modelReset, this, &OwnedCopiesList::showListOrEmptyState);
    showListOrEmptyState();
}

void OwnedCopiesList::showListOrEmptyState()
{
    setCurrentWidget(m_model->count() > 0 ? static_cast<QWidget *>(m_listView) : m_emptyState);
}
