// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/NetworkMonitor.h"

#include <QSignalSpy>
#include <QTest>

class NetworkMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isConnectedBeforeTheFirstUpdate()
    {
        NetworkMonitor monitor;
        QVERIFY(monitor.isConnected());
        QCOMPARE(monitor.connectionType(), std::nullopt);
    }

    void satisfiedPathWithoutInterfacesIsConnectedWithoutType()
    {
        NetworkMonitor monitor;
        monitor.applyPathUpdate(false, NetworkMonitor::ConnectionType::WiFi);
        monitor.applyPathUpdate(true, std::nullopt);
        QVERIFY(monitor.isConnected());
        QCOMPARE(monitor.connectionType(), std::nullopt);
    }

    void updateWithTheSameStatusSendsNoChangeNotice()
    {
        NetworkMonitor monitor;
        QSignalSpy spy(&monitor, &NetworkMonitor::isConnectedChanged);
        monitor.applyPathUpdate(true, NetworkMonitor::ConnectionType::Ethernet);
        QCOMPARE(spy.count(), 0);
        monitor.applyPathUpdate(false, std::nullopt);
        monitor.applyPathUpdate(false, std::nullopt);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toBool(), false);
    }

    void connectionTypeFollowsTheFirstInterface()
    {
        NetworkMonitor monitor;
        QSignalSpy spy(&monitor, &NetworkMonitor::connectionTypeChanged);
        monitor.applyPathUpdate(true, NetworkMonitor::ConnectionType::Ethernet);
        QCOMPARE(monitor.connectionType(), NetworkMonitor::ConnectionType::Ethernet);
        monitor.applyPathUpdate(true, NetworkMonitor::ConnectionType::Ethernet);
        QCOMPARE(spy.count(), 1);
    }
};

QTEST_GUILESS_MAIN(NetworkMonitorTest)
#include "NetworkMonitorTest.moc"
