// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ThemeNameCache.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ThemeNameCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foundNamesAreKeptAndTheirIdsKnown()
    {
        ThemeNameCache cache;
        QVERIFY(cache.knownThemeIDs().isEmpty());
        QVERIFY(cache.merge({{1, u"Star Wars"_s}, {5, u"Castle"_s}}));
        QCOMPARE(cache.names().value(1), u"Star Wars"_s);
        QCOMPARE(cache.names().value(5), u"Castle"_s);
        QCOMPARE(cache.knownThemeIDs(), (QSet<int>{1, 5}));
    }

    void aThemeWithoutANameGetsAPlaceholder()
    {
        ThemeNameCache cache;
        QVERIFY(cache.merge({{77, std::nullopt}}));
        QVERIFY(cache.names().contains(77));
        QVERIFY(!cache.names().value(77).isEmpty());
        QVERIFY(cache.knownThemeIDs().contains(77));
    }

    void aKnownNameIsNeitherReplacedNorCountedAsAChange()
    {
        ThemeNameCache cache;
        cache.merge({{1, u"Star Wars"_s}});
        QVERIFY(!cache.merge({{1, u"Another Name"_s}}));
        QVERIFY(!cache.merge({{1, std::nullopt}}));
        QVERIFY(!cache.merge({}));
        QCOMPARE(cache.names().value(1), u"Star Wars"_s);
        QCOMPARE(cache.names().size(), 1);
    }
};

QTEST_GUILESS_MAIN(ThemeNameCacheTest)
#include "ThemeNameCacheTest.moc"
