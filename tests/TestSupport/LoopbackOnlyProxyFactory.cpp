// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackOnlyProxyFactory.h"

#include <QHostAddress>

using namespace Qt::StringLiterals;

namespace {
// The discard port: nothing listens there, so a blocked connection is refused at once.
constexpr quint16 closedPort = 9;
} // namespace

void LoopbackOnlyProxyFactory::install()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    QNetworkProxyFactory::setApplicationProxyFactory(new LoopbackOnlyProxyFactory);
}

bool LoopbackOnlyProxyFactory::isLoopback(const QString &host)
{
    if (host.isEmpty() || host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0)
        return true;
    QString bare = host;
    if (bare.startsWith(u'[') && bare.endsWith(u']'))
        bare = bare.mid(1, bare.size() - 2);
    const QHostAddress address(bare);
    return !address.isNull() && address.isLoopback();
}

QList<QNetworkProxy> LoopbackOnlyProxyFactory::queryProxy(const QNetworkProxyQuery &query)
{
    if (query.queryType() == QNetworkProxyQuery::TcpServer || isLoopback(query.peerHostName()))
        return {QNetworkProxy(QNetworkProxy::NoProxy)};
    qWarning("%s %s", blockedMessage, qUtf8Printable(query.peerHostName()));
    return {QNetworkProxy(QNetworkProxy::HttpProxy, u"127.0.0.1"_s, closedPort)};
}
