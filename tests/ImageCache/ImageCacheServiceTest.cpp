// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "TestPictures.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

namespace {

// Log lines caught while a test runs: category and text.
QList<QPair<QString, QString>> caughtLines;

void catchLine(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    caughtLines.append({QString::fromUtf8(context.category), message});
}

} // namespace

using namespace Qt::StringLiterals;

// The service's road to a picture over real HTTP on 127.0.0.1: memory, disk, network,
// one download per URL, eight at once, the BrickLink fallback, the list form, and the
// size and clearing of the disk cache. Rebrickable and BrickLink images are served by
// the same loopback server under "/rb" and "/bl".
class ImageCacheServiceTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    QString setPicture(const QString &name) const { return url(u"/rb/media/sets/"_s + name); }
    QString brickLinkPath(const QString &name) const { return u"/bl/ItemImage/SN/0/"_s + name; }
    QString diskFile(const QString &urlString) const
    {
        return m_service->diskCacheDirectory() + u'/' + ImageCacheKey::forUrl(urlString);
    }
    QString negativeFile(const QString &urlString) const
    {
        return m_service->negativeCacheDirectory() + u'/' + ImageCacheKey::forUrl(urlString);
    }
    static QByteArray fileBytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QImage fetch(const QString &urlString) { return QCoro::waitFor(m_service->image(urlString)); }
    void delayed(const QString &path, const QByteArray &body, int milliseconds, int status = 200)
    {
        LoopbackHttpServer::Response response;
        response.status = status;
        response.body = body;
        response.delayMilliseconds = milliseconds;
        m_server.setResponse(path, response);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_server.listen());
        const QString base = m_server.baseUrl().toString();
        qputenv("TESSALOOM_ENDPOINTS", (u"rebrickable="_s + base + u"/rb;bricklinkImages="_s + base + u"/bl"_s).toUtf8());
    }

    void init()
    {
        m_caches = std::make_unique<QTemporaryDir>();
        QVERIFY(m_caches->isValid());
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        QTRY_COMPARE_WITH_TIMEOUT(m_server.inFlightRequests(), 0, 10000);
        m_server.resetCounters();
    }

    void cleanup()
    {
        m_service.reset();
        m_caches.reset();
    }

    void directoriesAreCreatedAtStartUnderTheCachesFolder()
    {
        const QDir caches(m_caches->path());
        QCOMPARE(m_service->diskCacheDirectory(), caches.filePath(u"Tessaloom/ImageCache"_s));
        QCOMPARE(m_service->negativeCacheDirectory(), caches.filePath(u"Tessaloom/ImageCache404"_s));
        QCOMPARE(m_service->thumbnailDiskDirectory(), caches.filePath(u"Tessaloom/ImageCacheThumbs"_s));
        QVERIFY(QDir(m_service->diskCacheDirectory()).exists());
        QVERIFY(QDir(m_service->negativeCacheDirectory()).exists());
        QVERIFY(QDir(m_service->thumbnailDiskDirectory()).exists());
    }

    void defaultDirectoriesAreUnderTheUserCachesFolder()
    {
        const ImageCacheService service;
        const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
        QCOMPARE(service.diskCacheDirectory(), QDir(caches).filePath(u"Tessaloom/ImageCache"_s));
        QVERIFY(QDir(service.diskCacheDirectory()).exists());
    }

    void memoryCachesHaveTheirLimits()
    {
        QCOMPARE(m_service->memoryCache().countLimit(), 150);
        QCOMPARE(m_service->memoryCache().totalCostLimit(), 104857600);
        QCOMPARE(m_service->thumbnailCache().countLimit(), 500);
        QCOMPARE(m_service->thumbnailCache().totalCostLimit(), 20971520);
        QCOMPARE(m_service->fetchSemaphore().limit(), 8);
    }

    void pictureFromTheNetworkIsStoredOnDiskAsItCame()
    {
        const QByteArray jpeg = TestPictures::jpeg(QSize(120, 90));
        m_server.serveBytes(u"/rb/media/sets/1000-1.jpg"_s, jpeg);
        const QString picture = setPicture(u"1000-1.jpg"_s);
        const QImage image = fetch(picture);
        QCOMPARE(image.size(), QSize(120, 90));
        QCOMPARE(fileBytes(diskFile(picture)), jpeg);
        QVERIFY(!m_service->isInFlight(picture));
    }

    void pictureInMemoryCostsFourBytesPerPoint()
    {
        m_server.serveBytes(u"/rb/media/sets/1001-1.png"_s, TestPictures::png(QSize(50, 20)));
        QVERIFY(!fetch(setPicture(u"1001-1.png"_s)).isNull());
        QCOMPARE(m_service->memoryCache().count(), 1);
        QCOMPARE(m_service->memoryCache().totalCost(), 50 * 20 * 4);
    }

    void secondRequestIsAnsweredFromMemory()
    {
        m_server.serveBytes(u"/rb/media/sets/1002-1.png"_s, TestPictures::png());
        const QString picture = setPicture(u"1002-1.png"_s);
        QVERIFY(!fetch(picture).isNull());
        QFile::remove(diskFile(picture));
        QVERIFY(!fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/rb/media/sets/1002-1.png"_s), 1);
    }

    void freshServiceReadsThePictureFromDisk()
    {
        m_server.serveBytes(u"/rb/media/sets/1003-1.png"_s, TestPictures::png(QSize(30, 30)));
        const QString picture = setPicture(u"1003-1.png"_s);
        QVERIFY(!fetch(picture).isNull());
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        QCOMPARE(fetch(picture).size(), QSize(30, 30));
        QCOMPARE(m_server.requestCount(u"/rb/media/sets/1003-1.png"_s), 1);
        QCOMPARE(m_service->memoryCache().count(), 1);
    }

    void logLinesGoToTheCacheCategoryWithTheUrlCutToSixtyCharacters()
    {
        const QString longPath = u"/rb/media/sets/"_s + QString(80, u'x') + u".png"_s;
        m_server.serveBytes(longPath, TestPictures::png());
        const QString picture = url(longPath);
        QVERIFY(!fetch(picture).isNull());

        QLoggingCategory::setFilterRules(u"com.tessaloom.app.cache.debug=true"_s);
        caughtLines.clear();
        const QtMessageHandler previous = qInstallMessageHandler(catchLine);
        const QImage fromMemory = fetch(picture);
        qInstallMessageHandler(previous);
        QLoggingCategory::setFilterRules(QString());

        QVERIFY(!fromMemory.isNull());
        const QPair<QString, QString> expected{u"com.tessaloom.app.cache"_s,
                                               u"image(for:) memory hit: "_s + picture.left(60)};
        QVERIFY2(caughtLines.contains(expected), qPrintable(caughtLines.value(0).second));
    }

    void undecodableDiskFileCountsAsAMissAndStays()
    {
        const QString picture = setPicture(u"1004-1.png"_s);
        QFile garbage(diskFile(picture));
        QVERIFY(garbage.open(QIODevice::WriteOnly));
        garbage.write("not a picture");
        garbage.close();
        m_server.serveBytes(u"/rb/media/sets/1004-1.png"_s, {}, 503);
        QVERIFY(fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/rb/media/sets/1004-1.png"_s), 1);
        QCOMPARE(fileBytes(diskFile(picture)), QByteArray("not a picture"));
    }

    void twoSimultaneousRequestsForOneUrlMakeOneRequestAndBothGetThePicture()
    {
        delayed(u"/rb/media/sets/1005-1.png"_s, TestPictures::png(QSize(64, 48)), 300);
        const QString picture = setPicture(u"1005-1.png"_s);
        QCoro::Task<QImage> first = m_service->image(picture);
        QCoro::Task<QImage> second = m_service->image(picture);
        const QImage firstImage = QCoro::waitFor(first);
        const QImage secondImage = QCoro::waitFor(second);
        QCOMPARE(firstImage.size(), QSize(64, 48));
        QCOMPARE(secondImage.size(), QSize(64, 48));
        QCOMPARE(m_server.requestCount(u"/rb/media/sets/1005-1.png"_s), 1);
        QVERIFY(!m_service->isInFlight(picture));
    }

    void coalescedRequestsAllGetNothingWhenTheDownloadFails()
    {
        delayed(u"/rb/media/parts/1006.png"_s, {}, 200, 500);
        const QString part = url(u"/rb/media/parts/1006.png"_s);
        QCoro::Task<QImage> first = m_service->image(part);
        QCoro::Task<QImage> second = m_service->image(part);
        QCoro::Task<QImage> third = m_service->image(part);
        QVERIFY(QCoro::waitFor(first).isNull());
        QVERIFY(QCoro::waitFor(second).isNull());
        QVERIFY(QCoro::waitFor(third).isNull());
        QCOMPARE(m_server.requestCount(u"/rb/media/parts/1006.png"_s), 1);
    }

    void nineSimultaneousUrlsTransferEightAtOnceAndTheNinthTakesTheFirstReleasedPermit()
    {
        // The first answers quickly, the other seven slowly: the ninth must start on the
        // first one's permit while the seven are still under way.
        std::vector<QCoro::Task<QImage>> tasks;
        for (int i = 1; i <= 9; ++i) {
            const QString path = u"/rb/media/parts/nine-"_s + QString::number(i) + u".png"_s;
            delayed(path, TestPictures::png(QSize(10, 10)), i == 1 ? 800 : 3000);
        }
        for (int i = 1; i <= 9; ++i) {
            tasks.push_back(m_service->image(url(u"/rb/media/parts/nine-"_s + QString::number(i) + u".png"_s)));
            if (i == 8)
                QTRY_COMPARE(m_server.inFlightRequests(), 8); // the first eight hold the permits
        }
        QTRY_COMPARE(m_service->fetchSemaphore().waitingCount(), 1);
        QCOMPARE(m_service->fetchSemaphore().count(), 0);
        QCOMPARE(m_server.requestCount(u"/rb/media/parts/nine-9.png"_s), 0);

        QTRY_COMPARE(m_server.requestCount(u"/rb/media/parts/nine-9.png"_s), 1);
        QCOMPARE(m_server.inFlightRequests(), 8); // the seven slow ones and the ninth
        QCOMPARE(m_service->fetchSemaphore().count(), 0);
        QCOMPARE(m_service->fetchSemaphore().waitingCount(), 0);
        for (QCoro::Task<QImage> &task : tasks)
            QVERIFY(!QCoro::waitFor(task).isNull());
        QCOMPARE(m_server.maximumInFlightRequests(), 8);
        QCOMPARE(m_service->fetchSemaphore().count(), 8);
    }

    void notFoundMainUrlFallsBackToBrickLinkAndTheNextStartReadsItFromDisk()
    {
        const QByteArray png = TestPictures::png(QSize(40, 40));
        m_server.serveBytes(u"/rb/media/sets/75192-1.jpg"_s, {}, 404);
        m_server.serveBytes(brickLinkPath(u"75192-1.png"_s), png);
        const QString picture = setPicture(u"75192-1.jpg"_s);

        QCOMPARE(fetch(picture).size(), QSize(40, 40));
        QCOMPARE(m_server.requestCount(brickLinkPath(u"75192-1.png"_s)), 1);
        QVERIFY(QFile::exists(negativeFile(picture)));
        QCOMPARE(fileBytes(diskFile(picture)), png);

        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        QCOMPARE(fetch(picture).size(), QSize(40, 40));
        QCOMPARE(m_server.requestCount(u"/rb/media/sets/75192-1.jpg"_s), 1);
        QCOMPARE(m_server.requestCount(brickLinkPath(u"75192-1.png"_s)), 1);
    }

    void setPictureGoneOnBothHostsLeavesTwoFailureRecords()
    {
        m_server.serveBytes(u"/rb/media/sets/1007-1.jpg"_s, {}, 404);
        m_server.serveBytes(brickLinkPath(u"1007-1.png"_s), {}, 404);
        const QString picture = setPicture(u"1007-1.jpg"_s);
        QVERIFY(fetch(picture).isNull());
        QVERIFY(QFile::exists(negativeFile(picture)));
        QVERIFY(QFile::exists(negativeFile(url(brickLinkPath(u"1007-1.png"_s)))));
        QVERIFY(!QFile::exists(diskFile(picture)));
    }

    void urlOnAnotherHostHasNoBrickLinkFallback()
    {
        m_server.serveBytes(u"/elsewhere/media/sets/1008-1.jpg"_s, {}, 404);
        QVERIFY(fetch(url(u"/elsewhere/media/sets/1008-1.jpg"_s)).isNull());
        QCOMPARE(m_server.requestCount(brickLinkPath(u"1008-1.png"_s)), 0);
    }

    void rebrickableUrlOutsideSetPicturesHasNoBrickLinkFallback()
    {
        m_server.serveBytes(u"/rb/media/parts/1008-1.jpg"_s, {}, 404);
        QVERIFY(fetch(url(u"/rb/media/parts/1008-1.jpg"_s)).isNull());
        QCOMPARE(m_server.requestCount(brickLinkPath(u"1008-1.png"_s)), 0);
    }

    void brickLinkUrlIsDerivedFromTheSetPictureName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("fallbackPath");
        QTest::newRow("jpeg set picture") << u"/rb/media/sets/75192-1.jpg"_s << u"/bl/ItemImage/SN/0/75192-1.png"_s;
        QTest::newRow("several dots") << u"/rb/media/sets/a.b.jpg"_s << u"/bl/ItemImage/SN/0/a.b.png"_s;
        QTest::newRow("no extension") << u"/rb/media/sets/10221-1"_s << u"/bl/ItemImage/SN/0/10221-1.png"_s;
        QTest::newRow("nested folder") << u"/rb/media/sets/10/10221-1.webp"_s << u"/bl/ItemImage/SN/0/10221-1.png"_s;
        QTest::newRow("no file name") << u"/rb/media/sets/"_s << QString();
        QTest::newRow("extension only") << u"/rb/media/sets/.jpg"_s << QString();
        QTest::newRow("part picture") << u"/rb/media/parts/3001.jpg"_s << QString();
        QTest::newRow("other host") << u"/other/media/sets/75192-1.jpg"_s << QString();
    }
    void brickLinkUrlIsDerivedFromTheSetPictureName()
    {
        QFETCH(QString, path);
        QFETCH(QString, fallbackPath);
        const QString expected = fallbackPath.isEmpty() ? QString() : url(fallbackPath);
        QCOMPARE(ImageCacheService::brickLinkFallbackUrl(url(path)), expected);
    }

    void listFormTriesTheUrlsInOrderAndStoresUnderTheFirstKey()
    {
        const QByteArray png = TestPictures::png(QSize(33, 22));
        m_server.serveBytes(u"/list/a.png"_s, {}, 404);
        m_server.serveBytes(u"/list/b.png"_s, png);
        m_server.serveBytes(u"/list/c.png"_s, TestPictures::png());
        const QStringList urls{url(u"/list/a.png"_s), url(u"/list/b.png"_s), url(u"/list/c.png"_s)};
        QCOMPARE(QCoro::waitFor(m_service->image(urls)).size(), QSize(33, 22));
        QCOMPARE(m_server.requestCount(u"/list/a.png"_s), 1);
        QCOMPARE(m_server.requestCount(u"/list/b.png"_s), 1);
        QCOMPARE(m_server.requestCount(u"/list/c.png"_s), 0);
        QCOMPARE(fileBytes(diskFile(urls.first())), png);
        QVERIFY(m_service->memoryCache().contains(ImageCacheKey::forUrl(urls.first())));
    }

    void listFormWithoutUrlsGivesNothing()
    {
        QVERIFY(QCoro::waitFor(m_service->image(QStringList())).isNull());
        QCOMPARE(m_server.requestCount(), 0);
    }

    void listFormAnswersFromDiskUnderTheFirstKey()
    {
        const QStringList urls{url(u"/list/d.png"_s), url(u"/list/e.png"_s)};
        QFile file(diskFile(urls.first()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(TestPictures::png(QSize(7, 7)));
        file.close();
        QCOMPARE(QCoro::waitFor(m_service->image(urls)).size(), QSize(7, 7));
        QCOMPARE(m_server.requestCount(), 0);
    }

    void listFormSkipsUrlsThatHaveFailed()
    {
        m_server.serveBytes(u"/list/gone.png"_s, {}, 404);
        QVERIFY(fetch(url(u"/list/gone.png"_s)).isNull());
        m_server.serveBytes(u"/list/first.png"_s, {}, 500);
        m_server.serveBytes(u"/list/third.png"_s, TestPictures::png());
        const QStringList urls{url(u"/list/first.png"_s), url(u"/list/gone.png"_s), url(u"/list/third.png"_s)};
        QVERIFY(!QCoro::waitFor(m_service->image(urls)).isNull());
        QCOMPARE(m_server.requestCount(u"/list/gone.png"_s), 1);
        QCOMPARE(m_server.requestCount(u"/list/third.png"_s), 1);
    }

    void listFormGivesNothingWhenTheFirstUrlHasFailed()
    {
        m_server.serveBytes(u"/list/dead.png"_s, {}, 410);
        QVERIFY(fetch(url(u"/list/dead.png"_s)).isNull());
        m_server.serveBytes(u"/list/alive.png"_s, TestPictures::png());
        QVERIFY(QCoro::waitFor(m_service->image(QStringList{url(u"/list/dead.png"_s), url(u"/list/alive.png"_s)})).isNull());
        QCOMPARE(m_server.requestCount(u"/list/alive.png"_s), 0);
    }

    void listFormRecordsATransientFailureForTheFirstUrlAndDerivesNoBrickLinkUrl()
    {
        m_server.serveBytes(u"/rb/media/sets/1009-1.jpg"_s, {}, 404);
        m_server.serveBytes(u"/list/other.png"_s, {}, 404);
        const QString picture = setPicture(u"1009-1.jpg"_s);
        QVERIFY(QCoro::waitFor(m_service->image(QStringList{picture, url(u"/list/other.png"_s)})).isNull());
        QVERIFY(m_service->isTransientlyFailed(picture));
        QCOMPARE(m_server.requestCount(brickLinkPath(u"1009-1.png"_s)), 0);
    }

    void diskCacheSizeCountsOnlyDownloadedPictures()
    {
        const QByteArray jpeg = TestPictures::jpeg(QSize(200, 150));
        const QByteArray png = TestPictures::png(QSize(90, 90));
        m_server.serveBytes(u"/size/a.jpg"_s, jpeg);
        m_server.serveBytes(u"/size/b.png"_s, png);
        m_server.serveBytes(u"/size/gone.png"_s, {}, 404);
        QVERIFY(!fetch(url(u"/size/a.jpg"_s)).isNull());
        QVERIFY(!QCoro::waitFor(m_service->thumbnail(url(u"/size/b.png"_s))).isNull());
        QVERIFY(fetch(url(u"/size/gone.png"_s)).isNull());
        QCOMPARE(QCoro::waitFor(m_service->diskCacheSize()), qint64(jpeg.size() + png.size()));
    }

    void diskCacheSizeIsZeroWhenTheFolderCannotBeListed()
    {
        QVERIFY(QDir(m_service->diskCacheDirectory()).removeRecursively());
        QCOMPARE(QCoro::waitFor(m_service->diskCacheSize()), qint64(0));
    }

    void afterClearAllTheDiskCacheIsEmptyAndAFailedUrlIsTriedAgain()
    {
        m_server.serveBytes(u"/clear/a.png"_s, TestPictures::png());
        m_server.serveBytes(u"/clear/b.png"_s, {}, 404);
        m_server.serveBytes(u"/clear/c.png"_s, {}, 500);
        QVERIFY(!QCoro::waitFor(m_service->thumbnail(url(u"/clear/a.png"_s))).isNull());
        QVERIFY(fetch(url(u"/clear/b.png"_s)).isNull());
        QVERIFY(fetch(url(u"/clear/c.png"_s)).isNull());

        QCoro::waitFor(m_service->clearAll());
        QCOMPARE(QCoro::waitFor(m_service->diskCacheSize()), qint64(0));
        QVERIFY(QDir(m_service->negativeCacheDirectory()).isEmpty());
        QVERIFY(QDir(m_service->thumbnailDiskDirectory()).isEmpty());
        QCOMPARE(m_service->memoryCache().count(), 0);
        QCOMPARE(m_service->thumbnailCache().count(), 0);

        m_server.serveBytes(u"/clear/b.png"_s, TestPictures::png());
        m_server.serveBytes(u"/clear/c.png"_s, TestPictures::png());
        QVERIFY(!fetch(url(u"/clear/b.png"_s)).isNull());
        QVERIFY(!fetch(url(u"/clear/c.png"_s)).isNull());
        QVERIFY(!fetch(url(u"/clear/a.png"_s)).isNull());
        QCOMPARE(m_server.requestCount(u"/clear/a.png"_s), 2);
        QCOMPARE(m_server.requestCount(u"/clear/b.png"_s), 2);
        QCOMPARE(m_server.requestCount(u"/clear/c.png"_s), 2);
    }

    void clearAllLeavesADownloadUnderWayToFinish()
    {
        delayed(u"/clear/slow.png"_s, TestPictures::png(QSize(12, 12)), 400);
        QCoro::Task<QImage> download = m_service->image(url(u"/clear/slow.png"_s));
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        QCoro::waitFor(m_service->clearAll());
        QVERIFY(m_service->isInFlight(url(u"/clear/slow.png"_s)));
        QCOMPARE(QCoro::waitFor(download).size(), QSize(12, 12));
    }

    void invalidUrlIsNotFetchedAndLeavesNoFailure()
    {
        const QString invalid = u"http://exa mple.com/picture.png"_s;
        QVERIFY(fetch(invalid).isNull());
        QVERIFY(fetch(QString()).isNull());
        QVERIFY(!m_service->isTransientlyFailed(invalid));
        QVERIFY(!m_service->isPermanentlyFailedInMemory(invalid));
        QVERIFY(QDir(m_service->negativeCacheDirectory()).isEmpty());
        QCOMPARE(m_service->fetchSemaphore().count(), 8);
    }
};

QTEST_GUILESS_MAIN(ImageCacheServiceTest)
#include "ImageCacheServiceTest.moc"
