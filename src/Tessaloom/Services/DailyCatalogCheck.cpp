// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/DailyCatalogCheck.h"

#include "Logging.h"
#include "Services/CatalogDatabaseService.h"

#include <QPointer>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString lastUpdateCheckKey = u"catalog.lastUpdateCheck"_s;
}

bool DailyCatalogCheck::isDue(const QVariant &lastCheck, const QDateTime &now)
{
    if (lastCheck.typeId() != QMetaType::QDateTime)
        return true;
    return lastCheck.toDateTime().toLocalTime().date() != now.toLocalTime().date();
}

QCoro::Task<bool> DailyCatalogCheck::run(CatalogDatabaseService &service, bool catalogLoaded)
{
    if (!catalogLoaded)
        co_return false; // the set-up sheet takes over
    QSettings settings;
    const QDateTime now = QDateTime::currentDateTime();
    if (!isDue(settings.value(lastUpdateCheckKey), now))
        co_return false;
    settings.setValue(lastUpdateCheckKey, now);
    settings.sync();

    QPointer<CatalogDatabaseService> guard(&service);
    const bool hasUpdates = co_await service.checkForUpdates();
    if (!hasUpdates || !guard)
        co_return false;
    qCInfo(lcCatalogDB) << "Newer catalog dumps are published; renewing the catalog";
    service.startBuild();
    co_return true;
}
