// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ThumbnailScaler.h"

#include <QTest>

class ThumbnailScalerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thumbnailFitsEightyBySixtyKeepingProportions_data()
    {
        QTest::addColumn<QSize>("source");
        QTest::addColumn<QSize>("thumbnail");
        QTest::newRow("40 x 30 is enlarged to 80 x 60") << QSize(40, 30) << QSize(80, 60);
        QTest::newRow("same proportions shrink exactly") << QSize(800, 600) << QSize(80, 60);
        QTest::newRow("wide picture is bound by the width") << QSize(400, 100) << QSize(80, 20);
        QTest::newRow("tall picture is bound by the height") << QSize(300, 600) << QSize(30, 60);
        QTest::newRow("tiny square is enlarged to the height") << QSize(1, 1) << QSize(60, 60);
        QTest::newRow("80 x 60 stays") << QSize(80, 60) << QSize(80, 60);
        QTest::newRow("zero width stands as it is") << QSize(0, 30) << QSize(0, 30);
        QTest::newRow("zero height stands as it is") << QSize(30, 0) << QSize(30, 0);
    }
    void thumbnailFitsEightyBySixtyKeepingProportions()
    {
        QFETCH(QSize, source);
        QFETCH(QSize, thumbnail);
        QCOMPARE(ThumbnailScaler::thumbnailSize(source), thumbnail);
    }

    void thumbnailImageHasTheComputedSizeAndTheSourceColours()
    {
        QImage source(40, 30, QImage::Format_RGB32);
        source.fill(QColor(10, 200, 30));
        const QImage small = ThumbnailScaler::thumbnail(source);
        QCOMPARE(small.size(), QSize(80, 60));
        QCOMPARE(small.pixelColor(40, 30), QColor(10, 200, 30));
    }

    void memoryCostOfAThumbnailIsEightyBySixtyAtFourBytes()
    {
        QCOMPARE(ThumbnailScaler::memoryCost, 19200);
    }
};

QTEST_GUILESS_MAIN(ThumbnailScalerTest)
#include "ThumbnailScalerTest.moc"
