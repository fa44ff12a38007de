// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ObjectID.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ObjectIDTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void uriFormNamesEntityAndKeyAndReadsBack()
    {
        const ObjectID id{EntityType::BrickSet, 42};
        const QUrl uri = id.uriRepresentation();
        QCOMPARE(uri.toString(), u"x-tessaloom://store/BrickSet/p42"_s);
        QCOMPARE(ObjectID::fromURIRepresentation(uri), std::optional<ObjectID>(id));
        QCOMPARE(ObjectID::fromURIRepresentation(QUrl(uri.toString())), std::optional<ObjectID>(id));
    }

    void foreignOrMalformedUrisGiveNothing_data()
    {
        QTest::addColumn<QString>("uri");
        QTest::newRow("other scheme") << u"https://store/BrickSet/p1"_s;
        QTest::newRow("unknown entity") << u"x-tessaloom://store/Brick/p1"_s;
        QTest::newRow("no key") << u"x-tessaloom://store/BrickSet/p"_s;
        QTest::newRow("zero key") << u"x-tessaloom://store/BrickSet/p0"_s;
        QTest::newRow("letters") << u"x-tessaloom://store/BrickSet/pabc"_s;
        QTest::newRow("extra segment") << u"x-tessaloom://store/BrickSet/p1/x"_s;
        QTest::newRow("empty") << QString();
    }

    void foreignOrMalformedUrisGiveNothing()
    {
        QFETCH(QString, uri);
        QCOMPARE(ObjectID::fromURIRepresentation(QUrl(uri)), std::nullopt);
    }

    void everyEntityNameRoundTrips()
    {
        for (EntityType entity : allEntityTypes) {
            QCOMPARE(entityTypeFromName(entityName(entity)), std::optional<EntityType>(entity));
            const ObjectID id{entity, 7};
            QCOMPARE(ObjectID::fromURIRepresentation(id.uriRepresentation()), std::optional<ObjectID>(id));
        }
    }
};

QTEST_GUILESS_MAIN(ObjectIDTest)
#include "ObjectIDTest.moc"
