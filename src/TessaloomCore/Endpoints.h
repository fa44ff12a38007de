// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUrl>

// The one place that names outside hosts. Every service builds its request URLs from
// these bases. For tests and staging only, the environment variable TESSALOOM_ENDPOINTS
// ("name=url;name=url") points any of them elsewhere, typically at a server on 127.0.0.1.
class Endpoints
{
public:
    enum class Service {
        rebrickable,     // catalog dumps and media
        bricklink,       // store API
        bricklinkImages, // set pictures when Rebrickable has none
        brickeconomy,
        brickset,
        brickowl,
        ebay,
        rapidapi,
        lego,            // building instructions
        updates,         // the application's appcast feed
    };

    // The base URL in force for `service`, without a trailing slash.
    static QUrl baseUrl(Service service);
    // `path` (starting with "/") appended to the base URL, keeping the base's own path.
    static QUrl url(Service service, const QString &path);

    // The name a service has in TESSALOOM_ENDPOINTS.
    static QString name(Service service);
    static QUrl defaultBaseUrl(Service service);

    static constexpr const char *overrideVariable = "TESSALOOM_ENDPOINTS";

private:
    static QUrl overriddenBaseUrl(Service service);
};
