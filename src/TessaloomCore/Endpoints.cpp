// SPDX-License-Identifier: GPL-3.0-or-later
#include "Endpoints.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

QString Endpoints::name(Service service)
{
    switch (service) {
    case Service::rebrickable: return u"rebrickable"_s;
    case Service::bricklink: return u"bricklink"_s;
    case Service::bricklinkImages: return u"bricklinkImages"_s;
    case Service::brickeconomy: return u"brickeconomy"_s;
    case Service::brickset: return u"brickset"_s;
    case Service::brickowl: return u"brickowl"_s;
    case Service::ebay: return u"ebay"_s;
    case Service::rapidapi: return u"rapidapi"_s;
    case Service::lego: return u"lego"_s;
    case Service::updates: return u"updates"_s;
    }
    return {};
}

QUrl Endpoints::defaultBaseUrl(Service service)
{
    switch (service) {
    case Service::rebrickable: return QUrl(u"https://cdn.rebrickable.com"_s);
    case Service::bricklink: return QUrl(u"https://api.bricklink.com/api/store/v1"_s);
    case Service::bricklinkImages: return QUrl(u"https://img.bricklink.com"_s);
    case Service::brickeconomy: return QUrl(u"https://www.brickeconomy.com/api/v1"_s);
    case Service::brickset: return QUrl(u"https://brickset.com/api/v3.asmx"_s);
    case Service::brickowl: return QUrl(u"https://api.brickowl.com/v1"_s);
    case Service::ebay: return QUrl(u"https://api.ebay.com"_s);
    case Service::rapidapi: return QUrl(u"https://brick-price-list.p.rapidapi.com"_s);
    case Service::lego: return QUrl(u"https://www.lego.com"_s);
    case Service::updates: return QUrl(u"https://tessaloom.app/appcast.xml"_s);
    }
    return {};
}

// Read on every call rather than once: it is a short string, and a test may point a
// service at a fresh loopback server between two cases.
QUrl Endpoints::overriddenBaseUrl(Service service)
{
    const QString overrides = qEnvironmentVariable(overrideVariable);
    if (overrides.isEmpty())
        return {};
    const QString wanted = name(service);
    for (const QStringView pair : QStringView(overrides).split(u';', Qt::SkipEmptyParts)) {
        const qsizetype equals = pair.indexOf(u'=');
        if (equals <= 0)
            continue;
        if (pair.left(equals).trimmed() == wanted) {
            const QUrl url(pair.mid(equals + 1).trimmed().toString());
            if (url.isValid() && !url.scheme().isEmpty())
                return url;
        }
    }
    return {};
}

QUrl Endpoints::baseUrl(Service service)
{
    QUrl url = overriddenBaseUrl(service);
    if (url.isEmpty())
        url = defaultBaseUrl(service);
    QString path = url.path();
    while (path.endsWith(u'/'))
        path.chop(1);
    url.setPath(path);
    return url;
}

QUrl Endpoints::url(Service service, const QString &path)
{
    QUrl url = baseUrl(service);
    url.setPath(url.path() + path);
    return url;
}
