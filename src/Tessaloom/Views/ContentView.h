// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <memory>
#include <optional>

class CatalogDatabaseService;
class EmptyStateView;
class PersistentContainer;
class QSplitter;
class QStackedWidget;
class SetListView;
class SetListViewModel;
class SidebarItem;
class SidebarView;
class SidebarViewModel;
class ThemeBrowserView;

// The three columns of the main window: the sidebar, the middle list and the detail pane,
// side by side in a splitter whose sizes the window remembers. The sidebar's selection
// decides what the two other columns show.
class ContentView : public QWidget
{
    Q_OBJECT

public:
    ContentView(PersistentContainer &container, CatalogDatabaseService &catalogService, QWidget *parent = nullptr);
    ~ContentView() override;

    QSplitter *splitter() const { return m_splitter; }
    SidebarView *sidebarColumn() const { return m_sidebar; }
    QStackedWidget *middleColumn() const { return m_middleColumn; }
    QStackedWidget *detailColumn() const { return m_detailColumn; }
    EmptyStateView *detailPlaceholder() const { return m_detailPlaceholder; }
    SetListView *setListView() const { return m_setListView; }
    ThemeBrowserView *themeBrowser() const { return m_themeBrowser; }
    SidebarViewModel &sidebarViewModel() const { return *m_sidebarViewModel; }
    SetListViewModel &listViewModel() const { return *m_listViewModel; }

private:
    void selectionChanged(const std::optional<SidebarItem> &item);
    void showDetailPlaceholder(const std::optional<SidebarItem> &item);

    std::unique_ptr<SidebarViewModel> m_sidebarViewModel;
    std::unique_ptr<SetListViewModel> m_listViewModel;
    QSplitter *m_splitter;
    SidebarView *m_sidebar;
    QStackedWidget *m_middleColumn;
    SetListView *m_setListView;
    ThemeBrowserView *m_themeBrowser;
    QStackedWidget *m_detailColumn;
    EmptyStateView *m_detailPlaceholder;
};
