// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/AppcastItem.h"

#include <QCoroTask>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>
#include <QVersionNumber>

// The application's link to its own updates: on the user's request it reads the update
// feed and tells whether a newer release exists, and where to get it. Nothing runs on a
// schedule; the menu entry is enabled while no check is under way.
class AppUpdateService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

public:
    struct CheckResult
    {
        enum class Outcome { upToDate, updateAvailable, failed };
        Outcome outcome = Outcome::failed;
        AppcastItem newest;   // with updateAvailable
        QString errorText;    // with failed: what happened and what to do
        QString errorDetails; // with failed: the technical text, without secrets
    };

    static AppUpdateService &shared();
    AppUpdateService(QUrl feedUrl, QVersionNumber currentVersion, QObject *parent = nullptr);

    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    QUrl feedUrl() const { return m_feedUrl; }
    QVersionNumber currentVersion() const { return m_currentVersion; }

    QCoro::Task<CheckResult> checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged(bool canCheckForUpdates);

private:
    void setCanCheckForUpdates(bool value);

    QNetworkAccessManager m_network;
    QUrl m_feedUrl;
    QVersionNumber m_currentVersion;
    bool m_canCheckForUpdates = true;
};
