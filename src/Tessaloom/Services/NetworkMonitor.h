// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkInformation>
#include <QObject>

#include <optional>

// Publishes whether the machine is online and over what kind of interface. The platform's
// watcher reports on its own terms; the fields change only on the main thread, and
// `isConnected` notifies only when its value really changes.
class NetworkMonitor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY isConnectedChanged)

public:
    using ConnectionType = QNetworkInformation::TransportMedium;

    static NetworkMonitor &shared();
    explicit NetworkMonitor(QObject *parent = nullptr);

    // True until the first report says otherwise: an unknown state must not block work.
    bool isConnected() const { return m_isConnected; }
    // The kind of the first available interface; absent while none is known.
    std::optional<ConnectionType> connectionType() const { return m_connectionType; }

    // Takes one report of the watcher: whether the path is usable, and the medium of its
    // first interface (absent when it lists none).
    void applyPathUpdate(bool satisfied, std::optional<ConnectionType> firstInterface);

Q_SIGNALS:
    void isConnectedChanged(bool isConnected);
    void connectionTypeChanged();

private:
    void startWatching();
    void readPlatformState();

    bool m_isConnected = true;
    std::optional<ConnectionType> m_connectionType;
};
