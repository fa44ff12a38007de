// SPDX-License-Identifier: GPL-3.0-or-later
#include "LegoGraphQLStandIn.h"

#include "Endpoints.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

const QString LegoGraphQLStandIn::path = u"/api/graphql/getBuildingInstructionsForSet"_s;

LegoGraphQLStandIn::LegoGraphQLStandIn()
    : m_server(std::make_unique<LoopbackHttpServer>())
{
}

LegoGraphQLStandIn::~LegoGraphQLStandIn() = default;

bool LegoGraphQLStandIn::listen()
{
    return m_server->listen();
}

void LegoGraphQLStandIn::pointEndpointsHere() const
{
    qputenv(Endpoints::overrideVariable, (u"lego="_s + m_server->baseUrl().toString()).toUtf8());
}

QByteArray LegoGraphQLStandIn::answer(const QString &status, const QList<Booklet> &booklets, bool withData)
{
    QJsonArray instructions;
    for (const Booklet &booklet : booklets) {
        QJsonObject pdf{{u"pdfUrl"_s, booklet.pdfUrl}};
        if (booklet.fileSize)
            pdf.insert(u"fileSize"_s, *booklet.fileSize);
        if (booklet.coverImage)
            pdf.insert(u"coverImage"_s, QJsonObject{{u"src"_s, *booklet.coverImage}});
        instructions.append(QJsonObject{
            {u"isAdditionalInfoBooklet"_s, booklet.isAdditionalInfoBooklet},
            {u"sequence"_s, QJsonObject{{u"total"_s, booklet.total}, {u"element"_s, booklet.element}}},
            {u"pdf"_s, pdf},
        });
    }
    QJsonObject result{{u"status"_s, status}};
    if (withData) {
        result.insert(u"data"_s, QJsonObject{{u"name"_s, u"Galaxy Explorer"_s},
                                             {u"setNumber"_s, u"10497"_s},
                                             {u"buildingInstructions"_s, instructions}});
    }
    const QJsonObject document{
        {u"data"_s, QJsonObject{{u"customerService"_s, QJsonObject{{u"getBuildingInstructionsForSet"_s, result}}}}}};
    return QJsonDocument(document).toJson(QJsonDocument::Compact);
}

LegoGraphQLStandIn::Booklet LegoGraphQLStandIn::booklet(const QString &element, const QString &total)
{
    Booklet booklet;
    booklet.element = element;
    booklet.total = total;
    booklet.pdfUrl = u"https://www.lego.com/cdn/product-assets/product.bi.core.pdf/6"_s + element + u".pdf"_s;
    booklet.fileSize = u"4718592"_s;
    booklet.coverImage = u"https://www.lego.com/cdn/product-assets/covers/6"_s + element + u".png"_s;
    return booklet;
}

void LegoGraphQLStandIn::serveBooklets(const QList<Booklet> &booklets, int delayMilliseconds)
{
    serveRaw(answer(u"ok"_s, booklets), 200, delayMilliseconds);
}

void LegoGraphQLStandIn::serveRaw(const QByteArray &body, int status, int delayMilliseconds)
{
    LoopbackHttpServer::Response response;
    response.status = status;
    response.headers = {{"Content-Type", "application/json"}};
    response.body = body;
    response.delayMilliseconds = delayMilliseconds;
    m_server->setResponse(path, response);
}

void LegoGraphQLStandIn::serveNothing()
{
    LoopbackHttpServer::Response response;
    response.delayMilliseconds = 10 * 60 * 1000;
    m_server->setResponse(path, response);
}

QJsonObject LegoGraphQLStandIn::requestBody(qsizetype index) const
{
    const QList<LoopbackHttpServer::Request> seen = m_server->requests();
    if (index < 0 || index >= seen.size())
        return {};
    return QJsonDocument::fromJson(seen.at(index).body).object();
}
