// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class EmptyStateView;
class QSplitter;
class QStackedWidget;
class QTreeWidget;

// The three columns of the main window: the sidebar, the middle list and the detail pane,
// side by side in a splitter whose sizes the window remembers. The detail pane shows an
// empty state whenever nothing is selected.
class ContentView : public QWidget
{
    Q_OBJECT

public:
    explicit ContentView(QWidget *parent = nullptr);

    QSplitter *splitter() const { return m_splitter; }
    QWidget *sidebarColumn() const;
    QStackedWidget *middleColumn() const { return m_middleColumn; }
    QStackedWidget *detailColumn() const { return m_detailColumn; }
    EmptyStateView *detailPlaceholder() const { return m_detailPlaceholder; }

    // Puts `widget` into the middle column and shows it; the column owns it from then on.
    void setMiddleWidget(QWidget *widget);

private:
    void buildSidebar();
    void showDetailPlaceholder();

    QSplitter *m_splitter;
    QTreeWidget *m_sidebar;
    QStackedWidget *m_middleColumn;
    QStackedWidget *m_detailColumn;
    EmptyStateView *m_detailPlaceholder;
};
