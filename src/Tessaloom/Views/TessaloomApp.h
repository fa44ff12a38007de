// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QLocale>
#include <QObject>
#include <QPointer>

#include <memory>

class AppUpdateService;
class CollectionBackupService;
class CatalogDatabaseService;
class CatalogSetupView;
class MainWindow;
class NetworkMonitor;
class PersistenceController;
class PriceRefreshProgress;
class QSettings;

// The application's entry: creates the process-wide objects in a fixed order before any
// window exists, registers the first-run defaults, then opens the main window. When the
// window first appears it demands a usable catalog (the set-up sheet) and runs the
// once-a-day catalog check and the once-a-day backup of the collection, both in the
// background; a failed backup is shown once in the window's status bar.
class TessaloomApp : public QObject
{
    Q_OBJECT

public:
    // Start-up, on the main thread: the store (a failure ends the program there), the
    // network monitor, the update service, then the defaults.
    explicit TessaloomApp(QObject *parent = nullptr);
    // The same with given objects, for tests.
    TessaloomApp(PersistenceController &persistenceController, CatalogDatabaseService &catalogService,
                 AppUpdateService &updateService, QObject *parent = nullptr);
    ~TessaloomApp() override;

    // Runs once per user: stores the locale's currency under "preferredCurrency" when it is
    // one of the offered ones, else "USD", and marks "hasRegisteredDefaults". Later launches,
    // in whatever locale, leave the stored choice alone.
    static void registerDefaults(QSettings &settings, const QLocale &locale);

    void showMainWindow();
    MainWindow *mainWindow() const { return m_mainWindow.get(); }
    CatalogSetupView *catalogSetupView() const;

    PersistenceController &persistenceController() const { return m_persistenceController; }
    NetworkMonitor &networkMonitor() const { return m_networkMonitor; }
    AppUpdateService &updateService() const { return m_updateService; }
    CollectionBackupService &backupService() const;
    bool showCatalogSetup() const { return m_showCatalogSetup; }

Q_SIGNALS:
    // The daily catalog check has run (or decided it had nothing to do).
    void dailyCatalogCheckFinished(bool startedBuild);
    // The start-up backup has run (or found today's backup made already).
    void dailyBackupFinished(bool madeBackup);

private:
    struct SharedObjects
    {
        PersistenceController &persistenceController;
        CatalogDatabaseService &catalogService;
        AppUpdateService &updateService;
    };
    // Start-up's order, fixed by the order of statements: the store (whose failure ends the
    // program), the network monitor, the update service; the catalog service after them.
    static SharedObjects obtainSharedObjects();
    TessaloomApp(const SharedObjects &objects, QObject *parent);

    void openCatalogGate();
    QCoro::Task<> runDailyCatalogCheck();
    QCoro::Task<> runDailyBackup();

    PersistenceController &m_persistenceController;
    // The refresh of all prices the window shows; only the program's own services have one.
    PriceRefreshProgress *m_priceRefreshProgress = nullptr;
    NetworkMonitor &m_networkMonitor;
    bool m_showCatalogSetup = false;
    AppUpdateService &m_updateService;
    CatalogDatabaseService &m_catalogService;
    std::unique_ptr<MainWindow> m_mainWindow;
    QPointer<CatalogSetupView> m_catalogSetupView;
};
