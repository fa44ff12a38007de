// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ContentView.h"

#include "Views/EmptyStateView.h"
#include "Views/SymbolIcon.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {
constexpr int sidebarWidth = 220;
constexpr int middleWidth = 460;
constexpr int detailWidth = 520;
} // namespace

ContentView::ContentView(QWidget *parent)
    : QWidget(parent)
    , m_splitter(new QSplitter(Qt::Horizontal, this))
    , m_sidebar(new QTreeWidget(m_splitter))
    , m_middleColumn(new QStackedWidget(m_splitter))
    , m_detailColumn(new QStackedWidget(m_splitter))
    , m_detailPlaceholder(new EmptyStateView(m_detailColumn))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);

    m_splitter->setObjectName(u"contentSplitter"_s);
    m_splitter->setChildrenCollapsible(false);
    m_sidebar->setObjectName(u"sidebarColumn"_s);
    m_middleColumn->setObjectName(u"middleColumn"_s);
    m_detailColumn->setObjectName(u"detailColumn"_s);
    m_detailPlaceholder->setObjectName(u"detailPlaceholder"_s);

    buildSidebar();

    m_detailColumn->addWidget(m_detailPlaceholder);
    showDetailPlaceholder();

    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setStretchFactor(2, 1);
    m_splitter->setSizes({sidebarWidth, middleWidth, detailWidth});
}

QWidget *ContentView::sidebarColumn() const
{
    return m_sidebar;
}

void ContentView::buildSidebar()
{
    m_sidebar->setHeaderHidden(true);
    m_sidebar->setRootIsDecorated(false);
    m_sidebar->setMinimumWidth(160);
    //% "Collection"
    auto *collection = new QTreeWidgetItem(m_sidebar, {qtTrId("sidebar.section.collection")});
    collection->setFlags(Qt::ItemIsEnabled);
    QFont sectionFont = collection->font(0);
    sectionFont.setBold(true);
    collection->setFont(0, sectionFont);
    //% "All Sets"
    auto *allSets = new QTreeWidgetItem(collection, {qtTrId("sidebar.item.allSets")});
    allSets->setIcon(0, SymbolIcon::icon(u"square.grid.2x2"_s));
    allSets->setData(0, Qt::UserRole, u"all_sets"_s);
    m_sidebar->expandAll();
    m_sidebar->setCurrentItem(allSets);
}

void ContentView::setMiddleWidget(QWidget *widget)
{
    if (m_middleColumn->indexOf(widget) < 0)
        m_middleColumn->addWidget(widget);
    m_middleColumn->setCurrentWidget(widget);
}

void ContentView::showDetailPlaceholder()
{
    //% "No Set Selected"
    const QString title = qtTrId("detail.placeholder.title");
    //% "Select a set to see its details."
    const QString description = qtTrId("detail.placeholder.description");
    m_detailPlaceholder->setContent(u"square.grid.2x2"_s, title, description);
    m_detailColumn->setCurrentWidget(m_detailPlaceholder);
}
