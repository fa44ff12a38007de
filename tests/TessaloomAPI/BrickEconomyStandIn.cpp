// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomyStandIn.h"

#include "Endpoints.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

BrickEconomyStandIn::BrickEconomyStandIn()
    : m_server(std::make_unique<LoopbackHttpServer>())
{
}

BrickEconomyStandIn::~BrickEconomyStandIn() = default;

bool BrickEconomyStandIn::listen()
{
    return m_server->listen();
}

QUrl BrickEconomyStandIn::baseUrl() const
{
    return m_server->url(u"/api/v1"_s);
}

void BrickEconomyStandIn::pointEndpointsHere() const
{
    qputenv(Endpoints::overrideVariable, (u"brickeconomy="_s + baseUrl().toString()).toUtf8());
}

QString BrickEconomyStandIn::setPath(const QString &setNumber)
{
    return u"/api/v1/set/"_s + setNumber;
}

QByteArray BrickEconomyStandIn::answer(const QJsonObject &data)
{
    return QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson(QJsonDocument::Compact);
}

QJsonObject BrickEconomyStandIn::fullSet(const QString &setNumber)
{
    const QJsonArray newEvents{QJsonObject{{u"date"_s, u"2024-01-15"_s}, {u"value"_s, 301.5}},
                               QJsonObject{{u"date"_s, u"2024-06-15"_s}, {u"value"_s, 318.25}}};
    const QJsonArray usedEvents{QJsonObject{{u"date"_s, u"2024-03-01"_s}, {u"value"_s, 210.0}}};
    return QJsonObject{
        {u"set_number"_s, setNumber},
        {u"name"_s, u"Galaxy Explorer"_s},
        {u"theme"_s, u"Icons"_s},
        {u"subtheme"_s, u"Space"_s},
        {u"year"_s, 2022},
        {u"retired"_s, true},
        {u"pieces_count"_s, 1254},
        {u"minifigs_count"_s, 4},
        {u"minifigs"_s, QJsonArray{u"sp148"_s, u"sp149"_s, u"sp150"_s, u"sp151"_s}},
        {u"availability"_s, u"Retired"_s},
        {u"retail_price_us"_s, 99.99},
        {u"retail_price_uk"_s, 89.99},
        {u"retail_price_ca"_s, 129.99},
        {u"retail_price_eu"_s, 99.99},
        {u"retail_price_au"_s, 149.99},
        {u"ean"_s, u"5702017155319"_s},
        {u"upc"_s, u"673419358234"_s},
        {u"released_date"_s, u"2022-01-01"_s},
        {u"retired_date"_s, u"2024-12-31"_s},
        {u"current_value_new"_s, 324.87},
        {u"current_value_used"_s, 215.4},
        {u"current_value_used_low"_s, 180.0},
        {u"current_value_used_high"_s, 260.55},
        {u"forecast_value_new_2_years"_s, 380.12},
        {u"forecast_value_new_5_years"_s, 455.0},
        {u"rolling_growth_lastyear"_s, 14.2},
        {u"rolling_growth_12_months"_s, 9.75},
        {u"price_events_new"_s, newEvents},
        {u"price_events_used"_s, usedEvents},
        {u"currency"_s, u"USD"_s},
    };
}

void BrickEconomyStandIn::serveSet(const QString &setNumber, const QJsonObject &data, int latencyMilliseconds)
{
    LoopbackHttpServer::Response response;
    response.headers = {{"Content-Type", "application/json"}};
    response.body = answer(data);
    response.delayMilliseconds = latencyMilliseconds;
    m_server->setResponse(setPath(setNumber), response);
}

void BrickEconomyStandIn::serveRaw(const QString &setNumber, const QByteArray &body, int status,
                                   const QList<QPair<QByteArray, QByteArray>> &headers)
{
    m_server->serveBytes(setPath(setNumber), body, status, headers);
}
