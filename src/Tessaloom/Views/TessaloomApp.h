// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QObject>

#include <memory>

class AppUpdateService;
class MainWindow;
class NetworkMonitor;
class QSettings;

// The application's entry: creates the process-wide objects in a fixed order before any
// window exists, registers the first-run defaults, then opens the main window.
class TessaloomApp : public QObject
{
    Q_OBJECT

public:
    // Start-up, on the main thread: the store (a failure ends the program there), the
    // network monitor, the update service, then the defaults.
    explicit TessaloomApp(QObject *parent = nullptr);
    ~TessaloomApp() override;

    // Runs once per user: stores the locale's currency under "preferredCurrency" when it is
    // one of the offered ones, else "USD", and marks "hasRegisteredDefaults". Later launches,
    // in whatever locale, leave the stored choice alone.
    static void registerDefaults(QSettings &settings, const QLocale &locale);

    void showMainWindow();
    MainWindow *mainWindow() const { return m_mainWindow.get(); }

    NetworkMonitor &networkMonitor() const { return m_networkMonitor; }
    AppUpdateService &updateService() const { return m_updateService; }
    bool showCatalogSetup() const { return m_showCatalogSetup; }

private:
    NetworkMonitor &m_networkMonitor;
    bool m_showCatalogSetup = false;
    AppUpdateService &m_updateService;
    std::unique_ptr<MainWindow> m_mainWindow;
};
