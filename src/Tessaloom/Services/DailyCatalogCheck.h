// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QDateTime>
#include <QVariant>

class CatalogDatabaseService;
class QSettings;

// Once per calendar day, asks whether newer dumps are published and, if so, renews the
// catalog behind the user's back. The day is the calendar day, not 24 hours: a start just
// after midnight checks again even if the last check ran minutes before. The time is
// stored before the check, so a failed check is not retried that day.
class DailyCatalogCheck
{
public:
    // Whether a check stored as `lastCheck` (any stored value) leaves today still to do.
    static bool isDue(const QVariant &lastCheck, const QDateTime &now);

    // Runs the check when a catalog is loaded and today's check has not run. Returns
    // whether a build was started.
    static QCoro::Task<bool> run(CatalogDatabaseService &service, bool catalogLoaded);
};
