// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkProxyFactory>

// Keeps a test's network traffic on this machine. Every connection Qt makes asks this
// factory for its proxy: one to a loopback address goes straight, one to any other host is
// sent to a closed port of 127.0.0.1, so it fails at once, and is named in the log as
// "Blocked a connection to HOST". The test runner fails a test whose log holds that line.
class LoopbackOnlyProxyFactory : public QNetworkProxyFactory
{
public:
    static constexpr const char *blockedMessage = "Blocked a connection to";

    // Installs a factory for the whole process; idempotent.
    static void install();
    static bool isLoopback(const QString &host);

    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override;
};
