// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "TestPictures.h"

#include <QCoroTask>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <QTest>

#include <memory>
#include <stop_token>
#include <vector>

using namespace Qt::StringLiterals;

// How the service remembers failures (five minutes, thirty days on disk, forever in
// memory) and how it lives through servers that are slow, silent, cut off or wrong, and
// through cache folders it cannot write. Served over real HTTP on 127.0.0.1.
class ImageCacheFailureTest : public QObject
{
    Q_OBJECT

private:
    static constexpr double day = 86400;

    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;
    double m_now = 1'763'891'212.25;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    QString negativeFile(const QString &urlString) const
    {
        return m_service->negativeCacheDirectory() + u'/' + ImageCacheKey::forUrl(urlString);
    }
    static QByteArray fileBytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QImage fetch(const QString &urlString) { return QCoro::waitFor(m_service->image(urlString)); }
    void makeService()
    {
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        m_service->setClock([this] { return m_now; });
    }
    // Puts a plain file where a cache folder belongs: nothing can be written below it,
    // whoever runs the test.
    static void blockDirectory(const QString &directory)
    {
        QVERIFY(QDir(directory).removeRecursively());
        writeFile(directory, "in the way");
    }
    bool isFailureFree(const QString &urlString) const
    {
        return !m_service->isTransientlyFailed(urlString) && !m_service->isPermanentlyFailedInMemory(urlString)
            && !QFile::exists(negativeFile(urlString));
    }
    bool semaphoreIsIdle() const
    {
        return m_service->fetchSemaphore().count() == 8 && m_service->fetchSemaphore().waitingCount() == 0;
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
        m_now = 1'763'891'212.25;
        makeService();
        // Answers that a previous test stopped waiting for must not count here.
        QTRY_COMPARE_WITH_TIMEOUT(m_server.inFlightRequests(), 0, 10000);
        m_server.resetCounters();
    }

    void cleanup()
    {
        m_service.reset();
        m_caches.reset();
    }

    void goneStatusesAreRememberedOnDiskAndInMemory_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("404") << 404;
        QTest::newRow("410") << 410;
    }
    void goneStatusesAreRememberedOnDiskAndInMemory()
    {
        QFETCH(int, status);
        const QString path = u"/gone/"_s + QString::number(status) + u".png"_s;
        m_server.serveBytes(path, {}, status);
        QVERIFY(fetch(url(path)).isNull());
        QVERIFY(m_service->isPermanentlyFailedInMemory(url(path)));
        QVERIFY(!m_service->isTransientlyFailed(url(path)));
        QVERIFY(QFile::exists(negativeFile(url(path))));
        QVERIFY(fetch(url(path)).isNull());
        QCOMPARE(m_server.requestCount(path), 1);
    }

    void failureStampIsTheFailureTimeAsTheTextOfADouble()
    {
        m_server.serveBytes(u"/gone/stamp.png"_s, {}, 404);
        QVERIFY(fetch(url(u"/gone/stamp.png"_s)).isNull());
        QCOMPARE(fileBytes(negativeFile(url(u"/gone/stamp.png"_s))), QByteArray("1763891212.25"));
    }

    void otherStatusesAreTransientFailures_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {500, 503, 403, 429, 204})
            QTest::newRow(QByteArray::number(status).constData()) << status;
    }
    void otherStatusesAreTransientFailures()
    {
        QFETCH(int, status);
        const QString path = u"/transient/"_s + QString::number(status) + u".png"_s;
        m_server.serveBytes(path, status == 204 ? QByteArray() : TestPictures::png(), status);
        QVERIFY(fetch(url(path)).isNull());
        QVERIFY(m_service->isTransientlyFailed(url(path)));
        QVERIFY(!m_service->isPermanentlyFailedInMemory(url(path)));
        QVERIFY(!QFile::exists(negativeFile(url(path))));
    }

    void serverErrorIsNotAskedForAgainForThreeHundredSeconds()
    {
        m_server.serveBytes(u"/transient/500-again.png"_s, {}, 500);
        const QString failing = url(u"/transient/500-again.png"_s);
        QVERIFY(fetch(failing).isNull());
        m_server.serveBytes(u"/transient/500-again.png"_s, TestPictures::png());
        m_now += 299.999;
        QVERIFY(fetch(failing).isNull());
        QCOMPARE(m_server.requestCount(u"/transient/500-again.png"_s), 1);
    }

    void questionAtSecondThreeHundredGoesToTheNetwork()
    {
        m_server.serveBytes(u"/transient/500-later.png"_s, {}, 500);
        const QString failing = url(u"/transient/500-later.png"_s);
        QVERIFY(fetch(failing).isNull());
        m_server.serveBytes(u"/transient/500-later.png"_s, TestPictures::png());
        m_now += 300;
        QVERIFY(!fetch(failing).isNull());
        QCOMPARE(m_server.requestCount(u"/transient/500-later.png"_s), 2);
        QVERIFY(!m_service->isTransientlyFailed(failing));
    }

    void negativeFileOfTwentyNineDaysStopsTheRequest()
    {
        const QString picture = url(u"/stamp/29.png"_s);
        writeFile(negativeFile(picture), QByteArray::number(m_now - 29 * day, 'f', 3));
        m_server.serveBytes(u"/stamp/29.png"_s, TestPictures::png());
        QVERIFY(fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/stamp/29.png"_s), 0);
        QVERIFY(m_service->isPermanentlyFailedInMemory(picture));
    }

    void negativeFileOfThirtyOneDaysIsDeletedAndTheRequestGoesOut()
    {
        const QString picture = url(u"/stamp/31.png"_s);
        writeFile(negativeFile(picture), QByteArray::number(m_now - 31 * day, 'f', 3));
        m_server.serveBytes(u"/stamp/31.png"_s, TestPictures::png());
        QVERIFY(!fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/stamp/31.png"_s), 1);
        QVERIFY(!QFile::exists(negativeFile(picture)));
    }

    void negativeFileOfExactlyThirtyDaysStillCounts()
    {
        const QString picture = url(u"/stamp/30.png"_s);
        writeFile(negativeFile(picture), stampText(m_now - 30 * day));
        m_server.serveBytes(u"/stamp/30.png"_s, TestPictures::png());
        QVERIFY(fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/stamp/30.png"_s), 0);
    }

    void negativeFileWithGarbageIsIgnoredAndStays()
    {
        const QString picture = url(u"/stamp/garbage.png"_s);
        writeFile(negativeFile(picture), "yesterday, roughly");
        m_server.serveBytes(u"/stamp/garbage.png"_s, TestPictures::png());
        QVERIFY(!fetch(picture).isNull());
        QCOMPARE(m_server.requestCount(u"/stamp/garbage.png"_s), 1);
        QCOMPARE(fileBytes(negativeFile(picture)), QByteArray("yesterday, roughly"));
    }

    void permanentFailureInMemoryOutlastsThirtyDays()
    {
        m_server.serveBytes(u"/gone/old.png"_s, {}, 404);
        QVERIFY(fetch(url(u"/gone/old.png"_s)).isNull());
        m_server.serveBytes(u"/gone/old.png"_s, TestPictures::png());
        m_now += 31 * day;
        QVERIFY(fetch(url(u"/gone/old.png"_s)).isNull());
        QCOMPARE(m_server.requestCount(u"/gone/old.png"_s), 1);
    }

    void freshServiceLearnsAPermanentFailureFromDisk()
    {
        m_server.serveBytes(u"/gone/restart.png"_s, {}, 404);
        QVERIFY(fetch(url(u"/gone/restart.png"_s)).isNull());
        makeService();
        QVERIFY(!m_service->isPermanentlyFailedInMemory(url(u"/gone/restart.png"_s)));
        QVERIFY(fetch(url(u"/gone/restart.png"_s)).isNull());
        QCOMPARE(m_server.requestCount(u"/gone/restart.png"_s), 1);
        QVERIFY(m_service->isPermanentlyFailedInMemory(url(u"/gone/restart.png"_s)));
    }

    void bodyThatIsNoPictureIsAPermanentFailure()
    {
        m_server.serveBytes(u"/bad/html.png"_s, "<html><body>Not here</body></html>");
        QVERIFY(fetch(url(u"/bad/html.png"_s)).isNull());
        QVERIFY(m_service->isPermanentlyFailedInMemory(url(u"/bad/html.png"_s)));
        QVERIFY(QFile::exists(negativeFile(url(u"/bad/html.png"_s))));
        QVERIFY(QDir(m_service->diskCacheDirectory()).isEmpty());
    }

    void answerWithoutHttpStatusIsATransientFailure()
    {
        // A file URL is answered without any HTTP status, even when the file is a picture.
        const QString path = m_caches->filePath(u"local.png"_s);
        writeFile(path, TestPictures::png());
        const QString picture = QUrl::fromLocalFile(path).toString();
        QVERIFY(fetch(picture).isNull());
        QVERIFY(m_service->isTransientlyFailed(picture));
        QVERIFY(!m_service->isPermanentlyFailedInMemory(picture));
    }

    void truncatedBodyIsATransientFailure()
    {
        LoopbackHttpServer::Response response;
        response.body = TestPictures::png(QSize(300, 300));
        response.cutAfterBodyBytes = response.body.size() / 2;
        m_server.setResponse(u"/bad/truncated.png"_s, response);
        QVERIFY(fetch(url(u"/bad/truncated.png"_s)).isNull());
        QVERIFY(m_service->isTransientlyFailed(url(u"/bad/truncated.png"_s)));
        QVERIFY(!m_service->isPermanentlyFailedInMemory(url(u"/bad/truncated.png"_s)));
        QVERIFY(QDir(m_service->diskCacheDirectory()).isEmpty());
        QVERIFY(semaphoreIsIdle());
    }

    void connectionDroppedWithoutAnAnswerIsATransientFailure()
    {
        LoopbackHttpServer::Response response;
        response.closeWithoutAnswer = true;
        m_server.setResponse(u"/bad/reset.png"_s, response);
        QVERIFY(fetch(url(u"/bad/reset.png"_s)).isNull());
        QVERIFY(m_service->isTransientlyFailed(url(u"/bad/reset.png"_s)));
        QVERIFY(semaphoreIsIdle());
    }

    void unreachableServerIsATransientFailure()
    {
        LoopbackHttpServer closed;
        QVERIFY(closed.listen());
        const QString picture = closed.url(u"/nobody.png"_s).toString();
        closed.close();
        QVERIFY(fetch(picture).isNull());
        QVERIFY(m_service->isTransientlyFailed(picture));
        QVERIFY(semaphoreIsIdle());
    }

    void slowServerStillDeliversThePicture()
    {
        LoopbackHttpServer::Response response;
        response.body = TestPictures::jpeg(QSize(400, 300));
        response.delayMilliseconds = 600;
        response.chunkSize = 2048;
        response.chunkDelayMilliseconds = 15;
        m_server.setResponse(u"/slow/picture.jpg"_s, response);
        QCOMPARE(fetch(url(u"/slow/picture.jpg"_s)).size(), QSize(400, 300));
        QVERIFY(semaphoreIsIdle());
    }

    void silentServerTimesOutAsATransientFailureAndGivesItsPermitBack()
    {
        m_service->downloader().setIdleTimeout(std::chrono::milliseconds(300));
        LoopbackHttpServer::Response response;
        response.body = TestPictures::png();
        response.delayMilliseconds = 1500;
        m_server.setResponse(u"/slow/silent.png"_s, response);
        QVERIFY(fetch(url(u"/slow/silent.png"_s)).isNull());
        QVERIFY(m_service->isTransientlyFailed(url(u"/slow/silent.png"_s)));
        QVERIFY(semaphoreIsIdle());
    }

    void manyFailingDownloadsLeaveNoWaiterBehind()
    {
        LoopbackHttpServer::Response reset;
        reset.closeWithoutAnswer = true;
        reset.delayMilliseconds = 50;
        std::vector<QCoro::Task<QImage>> tasks;
        for (int i = 0; i < 20; ++i) {
            const QString path = u"/bad/many-"_s + QString::number(i) + u".png"_s;
            m_server.setResponse(path, reset);
            tasks.push_back(m_service->image(url(path)));
        }
        for (QCoro::Task<QImage> &task : tasks)
            QVERIFY(QCoro::waitFor(task).isNull());
        QVERIFY(semaphoreIsIdle());
        QVERIFY2(m_server.maximumInFlightRequests() <= 8, QByteArray::number(m_server.maximumInFlightRequests()).constData());
    }

    void cancelledRequestLeavesNoFailureBehind()
    {
        LoopbackHttpServer::Response response;
        response.body = TestPictures::png();
        response.delayMilliseconds = 3000;
        m_server.setResponse(u"/cancel/a.png"_s, response);
        const QStringList urls{url(u"/cancel/a.png"_s), url(u"/cancel/b.png"_s)};
        std::stop_source stop;
        QCoro::Task<QImage> request = m_service->image(urls, stop.get_token());
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        stop.request_stop();
        QVERIFY(QCoro::waitFor(request).isNull());
        QVERIFY(isFailureFree(urls.at(0)));
        QVERIFY(isFailureFree(urls.at(1)));
        QCOMPARE(m_server.requestCount(u"/cancel/b.png"_s), 0);
        QVERIFY(semaphoreIsIdle());
    }

    void cacheFoldersThatCannotBeWrittenStillGiveThePicture()
    {
        blockDirectory(m_service->diskCacheDirectory());
        blockDirectory(m_service->negativeCacheDirectory());
        m_server.serveBytes(u"/blocked/picture.png"_s, TestPictures::png(QSize(20, 10)));
        m_server.serveBytes(u"/blocked/gone.png"_s, {}, 404);
        QCOMPARE(fetch(url(u"/blocked/picture.png"_s)).size(), QSize(20, 10));
        QVERIFY(fetch(url(u"/blocked/gone.png"_s)).isNull());
        QVERIFY(m_service->isPermanentlyFailedInMemory(url(u"/blocked/gone.png"_s)));
        QCOMPARE(QCoro::waitFor(m_service->diskCacheSize()), qint64(0));

        // Nothing reached the disk, so a new start has to download again.
        makeService();
        QCOMPARE(fetch(url(u"/blocked/picture.png"_s)).size(), QSize(20, 10));
        QCOMPARE(m_server.requestCount(u"/blocked/picture.png"_s), 2);
    }

private:
    static QByteArray stampText(double seconds) { return QByteArray::number(seconds, 'f', 6); }
};

QTEST_GUILESS_MAIN(ImageCacheFailureTest)
#include "ImageCacheFailureTest.moc"
