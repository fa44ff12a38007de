// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class APIKeysSettingsTab;
class AboutSettingsTab;
class AppUpdateService;
class CacheSettingsTab;
class CatalogDatabaseService;
class CollectionBackupService;
class CollectionBackupsView;
class GeneralSettingsTab;
class ImageCacheService;
class PersistentContainer;
class QTabWidget;
class SidebarSettingsTab;

// The settings window (Edit → Preferences…): five tabs, General, API Keys, Sidebar, Cache
// and About, in that order. A window of its own beside the main window, not modal; the
// main window keeps one and brings it forward when asked again. Building it reads nothing
// from disk: each tab fetches what it shows when it first appears, off the main thread.
class SettingsView : public QDialog
{
    Q_OBJECT

public:
    SettingsView(PersistentContainer &container, CatalogDatabaseService &catalogService,
                 AppUpdateService &updateService, ImageCacheService &imageCache, QWidget *parent = nullptr);

    QTabWidget *tabs() const { return m_tabs; }
    GeneralSettingsTab *generalTab() const { return m_generalTab; }
    APIKeysSettingsTab *apiKeysTab() const { return m_apiKeysTab; }
    SidebarSettingsTab *sidebarTab() const { return m_sidebarTab; }
    CacheSettingsTab *cacheTab() const { return m_cacheTab; }
    AboutSettingsTab *aboutTab() const { return m_aboutTab; }
    // The list of the collection's backups with its Restore… button, in the cache tab.
    CollectionBackupsView *backupsView() const { return m_backupsView; }

private:
    void addBackupsSection(CollectionBackupService &backups);

    QTabWidget *m_tabs;
    GeneralSettingsTab *m_generalTab;
    APIKeysSettingsTab *m_apiKeysTab;
    SidebarSettingsTab *m_sidebarTab;
    CacheSettingsTab *m_cacheTab;
    AboutSettingsTab *m_aboutTab;
    CollectionBackupsView *m_backupsView = nullptr;
};
