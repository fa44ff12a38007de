// SPDX-License-Identifier: GPL-3.0-or-later
#include "Endpoints.h"

#include <QTest>

using namespace Qt::StringLiterals;

class EndpointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { qunsetenv(Endpoints::overrideVariable); }
    void cleanup() { qunsetenv(Endpoints::overrideVariable); }

    void defaultsNameTheRealHosts()
    {
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::rebrickable), QUrl(u"https://cdn.rebrickable.com"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::bricklink), QUrl(u"https://api.bricklink.com/api/store/v1"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::brickeconomy), QUrl(u"https://www.brickeconomy.com/api/v1"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::brickset), QUrl(u"https://brickset.com/api/v3.asmx"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::lego), QUrl(u"https://www.lego.com"_s));
    }

    void partImagePrefixIsFortyCharacters()
    {
        const QString prefix = Endpoints::url(Endpoints::Service::rebrickable, u"/media/parts/"_s).toString();
        QCOMPARE(prefix, u"https://cdn.rebrickable.com/media/parts/"_s);
        QCOMPARE(prefix.size(), 40);
    }

    void urlKeepsTheBasePath()
    {
        QCOMPARE(Endpoints::url(Endpoints::Service::bricklink, u"/items/SET/75192-1/price"_s),
                 QUrl(u"https://api.bricklink.com/api/store/v1/items/SET/75192-1/price"_s));
    }

    void environmentPointsNamedServicesElsewhere()
    {
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:8080/;brickset = http://127.0.0.1:9/x");
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::rebrickable), QUrl(u"http://127.0.0.1:8080"_s));
        QCOMPARE(Endpoints::url(Endpoints::Service::rebrickable, u"/media/downloads/sets.csv.gz"_s),
                 QUrl(u"http://127.0.0.1:8080/media/downloads/sets.csv.gz"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::brickset), QUrl(u"http://127.0.0.1:9/x"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::lego), QUrl(u"https://www.lego.com"_s));
    }

    void malformedOverridesAreIgnored()
    {
        qputenv(Endpoints::overrideVariable, "rebrickable;=http://x;lego=not a url;ebay=");
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::rebrickable), QUrl(u"https://cdn.rebrickable.com"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::lego), QUrl(u"https://www.lego.com"_s));
        QCOMPARE(Endpoints::baseUrl(Endpoints::Service::ebay), QUrl(u"https://api.ebay.com"_s));
    }

    void everyServiceHasItsOverrideName()
    {
        const QStringList expected{u"rebrickable"_s, u"bricklink"_s, u"bricklinkImages"_s, u"brickeconomy"_s,
                                   u"brickset"_s, u"brickowl"_s, u"ebay"_s, u"rapidapi"_s, u"lego"_s,
                                   u"updates"_s};
        QStringList names;
        for (int i = 0; i <= int(Endpoints::Service::updates); ++i)
            names << Endpoints::name(Endpoints::Service(i));
        QCOMPARE(names, expected);
    }
};

QTEST_GUILESS_MAIN(EndpointsTest)
#include "EndpointsTest.moc"
