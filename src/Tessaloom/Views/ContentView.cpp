// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ContentView.h"

#include "Store/PersistentContainer.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/EmptyStateView.h"
#include "Views/SetListView.h"
#include "Views/SidebarView.h"
#include "Views/ThemeBrowserView.h"

#include <QHBoxLayout>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace {
constexpr int sidebarWidth = 220;
constexpr int middleWidth = 460;
constexpr int detailWidth = 520;
const QString themeBrowserSearchKey = u"themeBrowser.searchText"_s;
} // namespace

ContentView::ContentView(PersistentContainer &container, CatalogDatabaseService &catalogService, QWidget *parent)
    : QWidget(parent)
    , m_sidebarViewModel(std::make_unique<SidebarViewModel>(container.viewContext(), catalogService))
    , m_listViewModel(std::make_unique<SetListViewModel>(container))
    , m_splitter(new QSplitter(Qt::Horizontal, this))
    , m_sidebar(new SidebarView(*m_sidebarViewModel, m_splitter))
    , m_middleColumn(new QStackedWidget(m_splitter))
    , m_setListView(new SetListView(*m_listViewModel, m_middleColumn))
    , m_themeBrowser(new ThemeBrowserView(m_middleColumn))
    , m_detailColumn(new QStackedWidget(m_splitter))
    , m_detailPlaceholder(new EmptyStateView(m_detailColumn))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);

    m_splitter->setObjectName(u"contentSplitter"_s);
    m_splitter->setChildrenCollapsible(false);
    m_middleColumn->setObjectName(u"middleColumn"_s);
    m_detailColumn->setObjectName(u"detailColumn"_s);
    m_detailPlaceholder->setObjectName(u"detailPlaceholder"_s);

    m_middleColumn->addWidget(m_setListView);
    m_middleColumn->addWidget(m_themeBrowser);
    m_detailColumn->addWidget(m_detailPlaceholder);

    // The theme browser's search stays with the window between visits.
    m_themeBrowser->setSearchText(QSettings().value(themeBrowserSearchKey).toString());
    connect(m_themeBrowser, &ThemeBrowserView::searchTextChanged, this,
            [](const QString &text) { QSettings().setValue(themeBrowserSearchKey, text); });
    connect(m_themeBrowser, &ThemeBrowserView::themeSelected, this, [this](int id, const QString &name) {
        m_sidebarViewModel->setSelectedItem(SidebarItem::catalogTheme(id, name));
    });
    connect(m_sidebarViewModel.get(), &SidebarViewModel::selectedItemChanged, this, &ContentView::selectionChanged);
    selectionChanged(m_sidebarViewModel->selectedItem());

    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setStretchFactor(2, 1);
    m_splitter->setSizes({sidebarWidth, middleWidth, detailWidth});
}

ContentView::~ContentView() = default;

void ContentView::selectionChanged(const std::optional<SidebarItem> &item)
{
    m_listViewModel->sidebarSelectionChanged(item);
    const bool themes = item && item->kind() == SidebarItem::Kind::catalogAllThemes;
    m_middleColumn->setCurrentWidget(themes ? static_cast<QWidget *>(m_themeBrowser) : m_setListView);
    showDetailPlaceholder(item);
}

void ContentView::showDetailPlaceholder(const std::optional<SidebarItem> &item)
{
    const SidebarItem::Kind kind = item ? item->kind() : SidebarItem::Kind::allSets;
    if (kind == SidebarItem::Kind::trash) {
        //% "No Set Selected"
        const QString title = qtTrId("trash.placeholder.title");
        //% "Select a set in the trash to restore it or delete it for good."
        const QString description = qtTrId("trash.placeholder.description");
        m_detailPlaceholder->setContent(u"trash"_s, title, description);
    } else if (kind == SidebarItem::Kind::catalogAllThemes) {
        //% "No Theme Selected"
        const QString title = qtTrId("detail.placeholder.selectTheme");
        //% "Select a theme to see its sets."
        const QString description = qtTrId("detail.placeholder.selectThemeDescription");
        m_detailPlaceholder->setContent(u"folder"_s, title, description);
    } else {
        //% "No Set Selected"
        const QString title = qtTrId("detail.placeholder.title");
        //% "Select a set to see its details."
        const QString description = qtTrId("detail.placeholder.description");
        m_detailPlaceholder->setContent(u"square.grid.2x2"_s, title, description);
    }
    m_detailColumn->setCurrentWidget(m_detailPlaceholder);
}
