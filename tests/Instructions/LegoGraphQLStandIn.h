// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

// A stand-in for LEGO's building-instructions GraphQL endpoint on 127.0.0.1. Every POST to
// "/api/graphql/getBuildingInstructionsForSet" gets the answer set last, shaped as LEGO
// writes it: {"data": {"customerService": {"getBuildingInstructionsForSet": {"status": ..,
// "data": {"name", "setNumber", "buildingInstructions": [..]}}}}}, sequence numbers and
// file sizes as text. The requests it saw stay readable for checks of what was asked.
class LegoGraphQLStandIn
{
public:
    // One booklet as the endpoint describes it.
    struct Booklet
    {
        bool isAdditionalInfoBooklet = false;
        QString total = QStringLiteral("1");
        QString element = QStringLiteral("1");
        QString pdfUrl;
        std::optional<QString> fileSize; // absent when not set
        std::optional<QString> coverImage; // absent when not set
    };

    static const QString path; // "/api/graphql/getBuildingInstructionsForSet"

    LegoGraphQLStandIn();
    ~LegoGraphQLStandIn();

    bool listen();
    // Sets TESSALOOM_ENDPOINTS so that "lego" is this server.
    void pointEndpointsHere() const;

    // A whole answer: `status`, and the set's data with `booklets` unless `withData` is false.
    static QByteArray answer(const QString &status, const QList<Booklet> &booklets, bool withData = true);
    // A booklet with the sequence `element` of `total`, its PDF at a plausible address.
    static Booklet booklet(const QString &element, const QString &total);

    // Answers "ok" with `booklets`, after `delayMilliseconds`.
    void serveBooklets(const QList<Booklet> &booklets, int delayMilliseconds = 0);
    // Answers exactly `body` with `status`.
    void serveRaw(const QByteArray &body, int status = 200, int delayMilliseconds = 0);
    // Takes the request and never answers within the life of a test.
    void serveNothing();

    QList<LoopbackHttpServer::Request> requests() const { return m_server->requests(); }
    // The JSON body of the request at `index`, as an object (empty when it is none).
    QJsonObject requestBody(qsizetype index) const;
    LoopbackHttpServer &server() { return *m_server; }

private:
    std::unique_ptr<LoopbackHttpServer> m_server;
};
