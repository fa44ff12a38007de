// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QMainWindow>

class AppUpdateService;
class ContentView;
class QAction;

// The main window: menus, status bar and the three-column ContentView. It remembers its
// geometry and column widths between launches.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(AppUpdateService &updateService, QWidget *parent = nullptr);

    ContentView *contentView() const { return m_contentView; }
    QAction *checkForUpdatesAction() const { return m_checkForUpdatesAction; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenus();
    void restoreWindowState();
    void saveWindowState() const;
    QCoro::Task<> checkForUpdates();
    void showAbout();

    AppUpdateService &m_updateService;
    ContentView *m_contentView;
    QAction *m_checkForUpdatesAction = nullptr;
};
