// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/NetworkMonitor.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QThread>

NetworkMonitor &NetworkMonitor::shared()
{
    static NetworkMonitor *instance = [] {
        auto *monitor = new NetworkMonitor(QCoreApplication::instance());
        monitor->startWatching();
        qCInfo(lcNetwork) << "Network monitor started";
        return monitor;
    }();
    return *instance;
}

NetworkMonitor::NetworkMonitor(QObject *parent)
    : QObject(parent)
{
}

void NetworkMonitor::startWatching()
{
    // Without a backend (a container without NetworkManager, say) the monitor keeps its
    // optimistic initial state: the network code itself reports real failures.
    if (!QNetworkInformation::loadDefaultBackend()) {
        qCInfo(lcNetwork) << "No network information backend; assuming a connection";
        return;
    }
    QNetworkInformation *information = QNetworkInformation::instance();
    // The backend may report from its own thread; a queued connection brings every report
    // to this object's (the main) thread before a field changes.
    connect(information, &QNetworkInformation::reachabilityChanged, this,
            &NetworkMonitor::readPlatformState, Qt::QueuedConnection);
    connect(information, &QNetworkInformation::transportMediumChanged, this,
            &NetworkMonitor::readPlatformState, Qt::QueuedConnection);
    readPlatformState();
}

void NetworkMonitor::readPlatformState()
{
    const QNetworkInformation *information = QNetworkInformation::instance();
    if (!information)
        return;
    const auto reachability = information->reachability();
    if (reachability == QNetworkInformation::Reachability::Unknown)
        return;
    const bool satisfied = reachability == QNetworkInformation::Reachability::Online;
    const auto medium = information->transportMedium();
    applyPathUpdate(satisfied, medium == ConnectionType::Unknown ? std::nullopt : std::optional(medium));
}

void NetworkMonitor::applyPathUpdate(bool satisfied, std::optional<ConnectionType> firstInterface)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (m_isConnected != satisfied) {
        m_isConnected = satisfied;
        Q_EMIT isConnectedChanged(m_isConnected);
    }
    if (m_connectionType != firstInterface) {
        m_connectionType = firstInterface;
        Q_EMIT connectionTypeChanged();
    }
}
