// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TessaloomApp.h"

#include "Logging.h"
#include "OfferedCurrencies.h"
#include "Services/AppUpdateService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/CatalogSyncService.h"
#include "Services/CollectionBackupService.h"
#include "Services/DailyCatalogCheck.h"
#include "Services/NetworkMonitor.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "Views/CatalogSetupView.h"
#include "Views/LoggingDefaults.h"
#include "Views/MainWindow.h"
#include "Views/SampleCatalogNotice.h"

#include <QSettings>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace {
const QString hasRegisteredDefaultsKey = u"hasRegisteredDefaults"_s;
const QString preferredCurrencyKey = u"preferredCurrency"_s;
} // namespace

// Each shared object is taken in a statement of its own: as arguments of one call they would
// be created in whatever order the compiler chose.
TessaloomApp::SharedObjects TessaloomApp::obtainSharedObjects()
{
    // Before anything logs: debug lines stay off unless the environment asks for them.
    LoggingDefaults::apply();
    PersistenceController &persistenceController = PersistenceController::shared(); // a failure ends here
    NetworkMonitor::shared();
    AppUpdateService &updateService = AppUpdateService::shared();
    CatalogDatabaseService &catalogService = CatalogDatabaseService::shared();
    return {persistenceController, catalogService, updateService};
}

TessaloomApp::TessaloomApp(QObject *parent)
    : TessaloomApp(obtainSharedObjects(), parent)
{
    // The program's price service runs the refreshes the window reports on.
    m_priceRefreshProgress = &CatalogSyncService::shared().priceRefreshProgress();
}

TessaloomApp::TessaloomApp(const SharedObjects &objects, QObject *parent)
    : TessaloomApp(objects.persistenceController, objects.catalogService, objects.updateService, parent)
{
}

// The member order fixes the start-up order: the store first, then the network monitor,
// then the update service; the defaults follow in the body.
TessaloomApp::TessaloomApp(PersistenceController &persistenceController, CatalogDatabaseService &catalogService,
                           AppUpdateService &updateService, QObject *parent)
    : QObject(parent)
    , m_persistenceController(persistenceController)
    , m_networkMonitor(NetworkMonitor::shared())
    , m_updateService(updateService)
    , m_catalogService(catalogService)
{
    QSettings settings;
    registerDefaults(settings, QLocale());
    // Nothing builds yet at this point, so whatever a build left is a leftover.
    m_catalogService.removeLeftoversOfInterruptedBuild();
}

TessaloomApp::~TessaloomApp() = default;

void TessaloomApp::registerDefaults(QSettings &settings, const QLocale &locale)
{
    if (settings.value(hasRegisteredDefaultsKey).toBool())
        return;
    QString currency = locale.currencySymbol(QLocale::CurrencyIsoCode);
    if (currency.isEmpty())
        currency = u"USD"_s;
    settings.setValue(preferredCurrencyKey, OfferedCurrencies::codeOrDefault(currency));
    settings.setValue(hasRegisteredDefaultsKey, true);
    qCInfo(lcApp) << "Registered defaults; preferred currency" << settings.value(preferredCurrencyKey).toString();
}

CollectionBackupService &TessaloomApp::backupService() const
{
    return CollectionBackupService::of(m_persistenceController.container());
}

CatalogSetupView *TessaloomApp::catalogSetupView() const
{
    return m_catalogSetupView;
}

void TessaloomApp::showMainWindow()
{
    if (!m_mainWindow) {
        m_mainWindow = std::make_unique<MainWindow>(m_persistenceController.container(), m_catalogService,
                                                    m_updateService);
        if (m_priceRefreshProgress)
            m_mainWindow->showPriceRefreshProgress(*m_priceRefreshProgress);
        // Shown until the next message replaces it: one line per failed backup, however
        // it was started (the day's first start, an import, a restore).
        connect(&backupService(), &CollectionBackupService::backupFailed, m_mainWindow.get(),
                [window = m_mainWindow.get()](const QString &message) { window->statusBar()->showMessage(message); });
        connect(m_mainWindow.get(), &MainWindow::contentAppeared, this, [this] {
            openCatalogGate();
            runDailyCatalogCheck();
            // Once the window is on screen: the copy runs on a worker thread, and start-up
            // never waits for it.
            runDailyBackup();
        });
    }
    m_mainWindow->show();
    m_mainWindow->raise();
    m_mainWindow->activateWindow();
}

// A catalog that is absent, or older than the format this program reads, counts as none:
// the sheet stands in front of the window until one is built or the user quits.
void TessaloomApp::openCatalogGate()
{
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    m_showCatalogSetup = !catalog || catalog->schemaVersion() <= 1;
    if (!m_showCatalogSetup || m_catalogSetupView)
        return;
    m_catalogSetupView = new CatalogSetupView(m_catalogService, m_mainWindow.get());
    m_catalogSetupView->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_catalogSetupView, &QDialog::finished, this, [this] {
        m_showCatalogSetup = false;
        if (m_mainWindow)
            m_mainWindow->sampleCatalogNotice()->refresh();
    });
    m_catalogSetupView->open();
}

QCoro::Task<> TessaloomApp::runDailyCatalogCheck()
{
    QPointer<TessaloomApp> self(this);
    const bool startedBuild = co_await DailyCatalogCheck::run(m_catalogService, RebrickableCatalog::shared() != nullptr);
    if (self)
        Q_EMIT dailyCatalogCheckFinished(startedBuild);
}

QCoro::Task<> TessaloomApp::runDailyBackup()
{
    QPointer<TessaloomApp> self(this);
    const bool madeBackup = co_await backupService().backUpIfDue();
    if (self)
        Q_EMIT dailyBackupFinished(madeBackup);
}
