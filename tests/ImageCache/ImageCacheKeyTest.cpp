// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageCacheKey.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ImageCacheKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keyIsTheFnv1aHashOfTheUtf8BytesInLowerCaseHexadecimal_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        QTest::newRow("empty text is the offset basis") << QString() << u"cbf29ce484222325"_s;
        QTest::newRow("a") << u"a"_s << u"af63dc4c8601ec8c"_s;
        QTest::newRow("foobar") << u"foobar"_s << u"85944171f73967e8"_s;
    }
    void keyIsTheFnv1aHashOfTheUtf8BytesInLowerCaseHexadecimal()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        QCOMPARE(ImageCacheKey::forUrl(text), key);
    }

    void keyOfANonAsciiUrlHashesItsUtf8Bytes()
    {
        const QString url = u"https://cdn.rebrickable.com/media/sets/caf\u00e9-1.jpg"_s;
        QCOMPARE(ImageCacheKey::forUrl(url), QString::number(ImageCacheKey::fnv1a(url.toUtf8()), 16));
        QVERIFY(ImageCacheKey::forUrl(url) != ImageCacheKey::forUrl(u"https://cdn.rebrickable.com/media/sets/cafe-1.jpg"_s));
    }

    void keyHasNoLeadingZeros()
    {
        // Search a few texts for hashes below 2^60: their keys are shorter than 16 digits.
        int shortKeys = 0;
        for (int i = 0; i < 4096; ++i) {
            const QString text = QString::number(i);
            const std::uint64_t hash = ImageCacheKey::fnv1a(text.toUtf8());
            const QString key = ImageCacheKey::forUrl(text);
            QVERIFY(!key.startsWith(u'0'));
            QCOMPARE(key.toULongLong(nullptr, 16), hash);
            if (hash < (std::uint64_t(1) << 60)) {
                QVERIFY(key.size() < 16);
                ++shortKeys;
            }
        }
        QVERIFY(shortKeys > 0);
    }

    void keyUsesLowerCaseDigitsOnly()
    {
        const QString key = ImageCacheKey::forUrl(u"https://img.bricklink.com/ItemImage/SN/0/75192-1.png"_s);
        QCOMPARE(key, key.toLower());
    }
};

QTEST_GUILESS_MAIN(ImageCacheKeyTest)
#include "ImageCacheKeyTest.moc"
