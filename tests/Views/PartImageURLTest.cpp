// SPDX-License-Identifier: GPL-3.0-or-later
#include "Endpoints.h"
#include "Services/PartImageURL.h"

#include <QTest>

using namespace Qt::StringLiterals;

// The address of a part's picture, shared by the parts tab and the checklist.
class PartImageURLTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        qunsetenv(Endpoints::overrideVariable);
    }

    void aRowWithItsOwnAddressKeepsIt()
    {
        QCOMPARE(PartImageURL::forPart(u"https://img.example.org/a.jpg"_s, 4, u"3001"_s),
                 u"https://img.example.org/a.jpg"_s);
    }

    void aRowWithoutAddressGetsTheRenderedPartOnTheMediaHost()
    {
        QCOMPARE(PartImageURL::forPart(std::nullopt, 4, u"3001"_s),
                 u"https://cdn.rebrickable.com/media/parts/ldraw/4/3001.png"_s);
        QCOMPARE(PartImageURL::forPart(std::nullopt, 0, u"3626cpr0001"_s),
                 u"https://cdn.rebrickable.com/media/parts/ldraw/0/3626cpr0001.png"_s);
    }

    void anEmptyAddressCountsAsNone()
    {
        QCOMPARE(PartImageURL::forPart(QString(), 72, u"3023"_s),
                 u"https://cdn.rebrickable.com/media/parts/ldraw/72/3023.png"_s);
    }

    void theMediaHostFollowsTheEndpointOverride()
    {
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:8123/base/");
        QCOMPARE(PartImageURL::formed(4, u"3001"_s), u"http://127.0.0.1:8123/base/media/parts/ldraw/4/3001.png"_s);
    }
};

QTEST_GUILESS_MAIN(PartImageURLTest)
#include "PartImageURLTest.moc"
