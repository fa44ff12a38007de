// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SettingsView.h"

#include "Services/CollectionBackupService.h"
#include "Views/APIKeysSettingsTab.h"
#include "Views/AboutSettingsTab.h"
#include "Views/CacheSettingsTab.h"
#include "Views/CollectionBackupsView.h"
#include "Views/GeneralSettingsTab.h"
#include "Views/SidebarSettingsTab.h"
#include "Views/SymbolIcon.h"

#include <QGroupBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// The API keys and cache tabs grow with the sources and the backups: they scroll rather
// than stretch the window.
QWidget *scrolling(QWidget *tab)
{
    auto *area = new QScrollArea();
    area->setWidget(tab);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    return area;
}

} // namespace

SettingsView::SettingsView(PersistentContainer &container, CatalogDatabaseService &catalogService,
                           AppUpdateService &updateService, ImageCacheService &imageCache, QWidget *parent)
    : QDialog(parent)
    , m_tabs(new QTabWidget(this))
    , m_generalTab(new GeneralSettingsTab())
    , m_apiKeysTab(new APIKeysSettingsTab())
    , m_sidebarTab(new SidebarSettingsTab())
    , m_cacheTab(new CacheSettingsTab(container, catalogService, imageCache))
    , m_aboutTab(new AboutSettingsTab(updateService))
{
    setObjectName(u"settingsView"_s);
    //% "Settings"
    setWindowTitle(qtTrId("settings.title"));
    setModal(false);
    m_tabs->setObjectName(u"settingsTabs"_s);
    m_tabs->setDocumentMode(true);
    //% "General"
    m_tabs->addTab(m_generalTab, SymbolIcon::icon(u"gearshape"_s), qtTrId("settings.tab.general"));
    //% "API Keys"
    m_tabs->addTab(scrolling(m_apiKeysTab), SymbolIcon::icon(u"key"_s), qtTrId("settings.tab.apiKeys"));
    //% "Sidebar"
    m_tabs->addTab(m_sidebarTab, SymbolIcon::icon(u"sidebar.left"_s), qtTrId("settings.tab.sidebar"));
    //% "Cache"
    m_tabs->addTab(scrolling(m_cacheTab), SymbolIcon::icon(u"internaldrive"_s), qtTrId("settings.tab.cache"));
    //% "About"
    m_tabs->addTab(m_aboutTab, SymbolIcon::icon(u"info.circle"_s), qtTrId("settings.tab.about"));

    addBackupsSection(CollectionBackupService::of(container));

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    resize(560, 620);
}

void SettingsView::addBackupsSection(CollectionBackupService &backups)
{
    // The collection is copied before a reset deletes it; a copy that fails stops the reset.
    m_cacheTab->setBackupBeforeReset(backups.backupBeforeReset());
    //% "Backups of the Collection"
    auto *section = new QGroupBox(qtTrId("settings.cache.backups"));
    section->setObjectName(u"backupsSection"_s);
    m_backupsView = new CollectionBackupsView(backups, section);
    auto *layout = new QVBoxLayout(section);
    layout->addWidget(m_backupsView);
    m_cacheTab->addSection(section);
}
