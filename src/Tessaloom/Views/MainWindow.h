// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QMainWindow>
#include <QPointer>

class AppUpdateService;
class CatalogDatabaseService;
class CatalogStatusIndicator;
class CollectionFileCommands;
class ContentView;
class PartsChecklistWindow;
class PartsChecklistWindowGroup;
class PriceRefreshProgress;
class PriceRefreshStatusView;
class PersistentContainer;
class QAction;
class QuitCommand;
class SampleCatalogNotice;
class SettingsView;
class UndoStatusNotice;

// The main window: menus, status bar, the sample-catalog notice and the three-column
// ContentView. It remembers its geometry and column widths between launches.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(PersistentContainer &container, CatalogDatabaseService &catalogService,
               AppUpdateService &updateService, QWidget *parent = nullptr);

    ContentView *contentView() const { return m_contentView; }
    SampleCatalogNotice *sampleCatalogNotice() const { return m_sampleCatalogNotice; }
    CatalogStatusIndicator *catalogStatusIndicator() const { return m_catalogStatusIndicator; }
    QAction *checkForUpdatesAction() const { return m_checkForUpdatesAction; }
    // File → Quit (Ctrl+Q); closing the window quits as well, after confirming while a
    // catalog build runs.
    QuitCommand *quitCommand() const { return m_quitCommand; }
    // Edit → Undo and Redo of the collection's changes (Ctrl+Z, Ctrl+Shift+Z).
    QAction *undoAction() const { return m_undoAction; }
    QAction *redoAction() const { return m_redoAction; }
    UndoStatusNotice *undoNotice() const { return m_undoNotice; }
    // File → Export… (Ctrl+E) and File → Import… (Ctrl+I) of the collection's CSV file.
    CollectionFileCommands *fileCommands() const { return m_fileCommands; }
    PartsChecklistWindowGroup *partsChecklistWindows() const { return m_partsChecklistWindows; }
    // Edit → Preferences… (Ctrl+,): opens the settings window, or brings the open one forward.
    QAction *preferencesAction() const { return m_preferencesAction; }
    SettingsView *settingsView() const;
    SettingsView *showPreferences();

    // Opens the parts checklist window of the copy `brickSet`, or brings its open window
    // to the front. Anything that is not an existing copy gets an empty window.
    // Shows the progress of a refresh of all prices in the status bar, with its cancel
    // button; the program passes the price service's, tests their own.
    PriceRefreshStatusView *showPriceRefreshProgress(PriceRefreshProgress &progress);
    PartsChecklistWindow *openPartsChecklist(const ObjectID &brickSet);

Q_SIGNALS:
    // Once, when the window's content first shows.
    void contentAppeared();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenus();
    void buildEditMenu();
    void restoreWindowState();
    void saveWindowState() const;
    QCoro::Task<> checkForUpdates();
    void showAbout();

    PersistentContainer &m_container;
    CatalogDatabaseService &m_catalogService;
    AppUpdateService &m_updateService;
    ContentView *m_contentView;
    SampleCatalogNotice *m_sampleCatalogNotice;
    CatalogStatusIndicator *m_catalogStatusIndicator;
    QAction *m_checkForUpdatesAction = nullptr;
    QuitCommand *m_quitCommand;
    QAction *m_undoAction = nullptr;
    QAction *m_redoAction = nullptr;
    QAction *m_preferencesAction = nullptr;
    QPointer<SettingsView> m_settingsView;
    UndoStatusNotice *m_undoNotice;
    CollectionFileCommands *m_fileCommands;
    PartsChecklistWindowGroup *m_partsChecklistWindows;
    bool m_hasAppeared = false;
};
