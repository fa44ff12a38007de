// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageMemoryCache.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QImage picture(int width = 4, int height = 3)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::red);
    return image;
}

} // namespace

class ImageMemoryCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storedPictureIsFoundUnderItsKey()
    {
        ImageMemoryCache cache(10, 1000);
        cache.setObject(u"k"_s, picture(), 48);
        const std::optional<QImage> found = cache.object(u"k"_s);
        QVERIFY(found);
        QCOMPARE(found->size(), QSize(4, 3));
        QVERIFY(!cache.object(u"other"_s));
    }

    void countLimitEvictsTheLeastRecentlyUsed()
    {
        ImageMemoryCache cache(2, 1000);
        cache.setObject(u"a"_s, picture(), 1);
        cache.setObject(u"b"_s, picture(), 1);
        QVERIFY(cache.object(u"a"_s)); // a is now more recent than b
        cache.setObject(u"c"_s, picture(), 1);
        QCOMPARE(cache.count(), 2);
        QVERIFY(cache.contains(u"a"_s));
        QVERIFY(!cache.contains(u"b"_s));
        QVERIFY(cache.contains(u"c"_s));
    }

    void totalCostLimitEvictsUntilTheRestFits()
    {
        ImageMemoryCache cache(10, 100);
        cache.setObject(u"a"_s, picture(), 40);
        cache.setObject(u"b"_s, picture(), 40);
        cache.setObject(u"c"_s, picture(), 40);
        QCOMPARE(cache.totalCost(), 80);
        QVERIFY(!cache.contains(u"a"_s));
    }

    void replacingAnEntryCountsItsCostOnce()
    {
        ImageMemoryCache cache(10, 100);
        cache.setObject(u"a"_s, picture(), 40);
        cache.setObject(u"a"_s, picture(8, 8), 60);
        QCOMPARE(cache.count(), 1);
        QCOMPARE(cache.totalCost(), 60);
        QCOMPARE(cache.object(u"a"_s)->size(), QSize(8, 8));
    }

    void pictureCostingMoreThanTheWholeLimitIsNotKept()
    {
        ImageMemoryCache cache(10, 100);
        cache.setObject(u"small"_s, picture(), 10);
        cache.setObject(u"huge"_s, picture(), 101);
        QVERIFY(!cache.contains(u"huge"_s));
        QVERIFY(cache.contains(u"small"_s));
    }

    void removeAllObjectsEmptiesTheCache()
    {
        ImageMemoryCache cache(10, 100);
        cache.setObject(u"a"_s, picture(), 10);
        cache.removeAllObjects();
        QCOMPARE(cache.count(), 0);
        QCOMPARE(cache.totalCost(), 0);
        QVERIFY(!cache.object(u"a"_s));
    }
};

QTEST_GUILESS_MAIN(ImageMemoryCacheTest)
#include "ImageMemoryCacheTest.moc"
