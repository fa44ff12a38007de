// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QUrl>

#include <memory>

// A stand-in for BrickEconomy's set endpoint on 127.0.0.1: "/api/v1/set/<number>" answers
// {"data": {...}} with snake-case keys, as the service writes them. Unknown sets get 404.
// The underlying server is open to tests that need faults, latency or the requests seen.
class BrickEconomyStandIn
{
public:
    BrickEconomyStandIn();
    ~BrickEconomyStandIn();

    bool listen();
    // "http://127.0.0.1:PORT/api/v1"
    QUrl baseUrl() const;
    // Sets TESSALOOM_ENDPOINTS so that "brickeconomy" is this server.
    void pointEndpointsHere() const;
    static QString setPath(const QString &setNumber); // "/api/v1/set/<number>"

    // `data` under "data", as the service wraps every answer.
    static QByteArray answer(const QJsonObject &data);
    // Every field the set endpoint documents, with plausible values for a retired set.
    static QJsonObject fullSet(const QString &setNumber);

    void serveSet(const QString &setNumber, const QJsonObject &data, int latencyMilliseconds = 0);
    void serveRaw(const QString &setNumber, const QByteArray &body, int status = 200,
                  const QList<QPair<QByteArray, QByteArray>> &headers = {});

    LoopbackHttpServer &server() { return *m_server; }

private:
    std::unique_ptr<LoopbackHttpServer> m_server;
};
