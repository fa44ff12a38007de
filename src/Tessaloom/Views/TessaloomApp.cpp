// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TessaloomApp.h"

#include "Logging.h"
#include "OfferedCurrencies.h"
#include "Services/AppUpdateService.h"
#include "Services/NetworkMonitor.h"
#include "Views/MainWindow.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString hasRegisteredDefaultsKey = u"hasRegisteredDefaults"_s;
const QString preferredCurrencyKey = u"preferredCurrency"_s;
} // namespace

TessaloomApp::TessaloomApp(QObject *parent)
    : QObject(parent)
    , m_networkMonitor(NetworkMonitor::shared())
    , m_updateService(AppUpdateService::shared())
{
    QSettings settings;
    registerDefaults(settings, QLocale());
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

void TessaloomApp::showMainWindow()
{
    if (!m_mainWindow)
        m_mainWindow = std::make_unique<MainWindow>(m_updateService);
    m_mainWindow->show();
    m_mainWindow->raise();
    m_mainWindow->activateWindow();
}
