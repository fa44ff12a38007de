// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "TestPictures.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

// Thumbnails: made from the full picture, at most 80 × 60, kept in their own memory cache
// and as PNG files in their own folder.
class ImageCacheThumbnailTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    QString thumbnailFile(const QString &urlString) const
    {
        return m_service->thumbnailDiskDirectory() + u'/' + ImageCacheKey::forUrl(urlString);
    }
    QImage thumbnail(const QString &urlString) { return QCoro::waitFor(m_service->thumbnail(urlString)); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_server.listen());
    }

    void init()
    {
        m_caches = std::make_unique<QTemporaryDir>();
        QVERIFY(m_caches->isValid());
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        m_server.resetCounters();
    }

    void cleanup()
    {
        m_service.reset();
        m_caches.reset();
    }

    void pictureOfFortyByThirtyGetsAThumbnailOfEightyBySixty()
    {
        m_server.serveBytes(u"/thumb/small.png"_s, TestPictures::png(QSize(40, 30), QColor(0, 128, 255)));
        const QImage small = thumbnail(url(u"/thumb/small.png"_s));
        QCOMPARE(small.size(), QSize(80, 60));
        QCOMPARE(small.pixelColor(40, 30), QColor(0, 128, 255));
    }

    void largePictureIsShrunkToFitKeepingItsProportions()
    {
        m_server.serveBytes(u"/thumb/wide.jpg"_s, TestPictures::jpeg(QSize(1600, 400)));
        QCOMPARE(thumbnail(url(u"/thumb/wide.jpg"_s)).size(), QSize(80, 20));
    }

    void thumbnailIsKeptAsAPngFile()
    {
        m_server.serveBytes(u"/thumb/stored.jpg"_s, TestPictures::jpeg(QSize(800, 600)));
        QVERIFY(!thumbnail(url(u"/thumb/stored.jpg"_s)).isNull());
        QFile file(thumbnailFile(url(u"/thumb/stored.jpg"_s)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(bytes.startsWith("\x89PNG\r\n\x1a\n"));
        QCOMPARE(QImage::fromData(bytes).size(), QSize(80, 60));
    }

    void thumbnailMadeNowCostsTheFixedAmount()
    {
        m_server.serveBytes(u"/thumb/cost.png"_s, TestPictures::png(QSize(100, 10)));
        QVERIFY(!thumbnail(url(u"/thumb/cost.png"_s)).isNull());
        QCOMPARE(m_service->thumbnailCache().count(), 1);
        QCOMPARE(m_service->thumbnailCache().totalCost(), 19200);
    }

    void thumbnailReadFromDiskCostsItsFileSizeAndNeedsNoNetwork()
    {
        m_server.serveBytes(u"/thumb/disk.png"_s, TestPictures::png(QSize(160, 120)));
        QVERIFY(!thumbnail(url(u"/thumb/disk.png"_s)).isNull());
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        QCOMPARE(thumbnail(url(u"/thumb/disk.png"_s)).size(), QSize(80, 60));
        QCOMPARE(m_server.requestCount(u"/thumb/disk.png"_s), 1);
        QCOMPARE(m_service->thumbnailCache().totalCost(), QFileInfo(thumbnailFile(url(u"/thumb/disk.png"_s))).size());
        QCOMPARE(m_service->memoryCache().count(), 0); // the full picture was not needed
    }

    void thumbnailComesFromMemoryTheSecondTime()
    {
        m_server.serveBytes(u"/thumb/memory.png"_s, TestPictures::png());
        QVERIFY(!thumbnail(url(u"/thumb/memory.png"_s)).isNull());
        QVERIFY(QFile::remove(thumbnailFile(url(u"/thumb/memory.png"_s))));
        QVERIFY(!thumbnail(url(u"/thumb/memory.png"_s)).isNull());
        QVERIFY(!QFile::exists(thumbnailFile(url(u"/thumb/memory.png"_s))));
    }

    void thumbnailOfAMissingPictureIsNothing()
    {
        m_server.serveBytes(u"/thumb/missing.png"_s, {}, 404);
        QVERIFY(thumbnail(url(u"/thumb/missing.png"_s)).isNull());
        QVERIFY(!QFile::exists(thumbnailFile(url(u"/thumb/missing.png"_s))));
        QCOMPARE(m_service->thumbnailCache().count(), 0);
    }

    void thumbnailThatCannotBeStoredIsStillReturned()
    {
        QVERIFY(QDir(m_service->thumbnailDiskDirectory()).removeRecursively());
        QFile blocker(m_service->thumbnailDiskDirectory());
        QVERIFY(blocker.open(QIODevice::WriteOnly)); // a file where the folder belongs
        blocker.close();
        m_server.serveBytes(u"/thumb/blocked.png"_s, TestPictures::png(QSize(40, 30)));
        QCOMPARE(thumbnail(url(u"/thumb/blocked.png"_s)).size(), QSize(80, 60));
    }
};

QTEST_GUILESS_MAIN(ImageCacheThumbnailTest)
#include "ImageCacheThumbnailTest.moc"
