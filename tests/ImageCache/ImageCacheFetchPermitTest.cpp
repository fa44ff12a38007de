// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageCacheIdle.h"
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageCacheService.h"
#include "Services/ImageFileStore.h"
#include "TestEnvironment.h"
#include "TestPictures.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QFile>
#include <QFuture>
#include <QPromise>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <stop_token>
#include <vector>

using namespace Qt::StringLiterals;

// A fetch holds its transfer permit until it has ended altogether, not only its download:
// while a picture is still being decoded and stored, the next fetch in the queue does not
// start. Whatever way a fetch ends, its permit comes back. Served over real HTTP on
// 127.0.0.1.
class ImageCacheFetchPermitTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    static QString partPath(int number) { return u"/rb/media/parts/permit-"_s + QString::number(number) + u".png"_s; }

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
        // Answers that a previous test stopped waiting for must not count here.
        QTRY_COMPARE_WITH_TIMEOUT(m_server.inFlightRequests(), 0, 10000);
        m_server.resetCounters();
    }

    void cleanup()
    {
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        m_service.reset();
        m_caches.reset();
    }

    void aFurtherFetchDoesNotStartItsTransferWhileEarlierPicturesAreStillBeingStored()
    {
        const int permits = ImageCacheService::maximumConcurrentFetches;
        for (int number = 1; number <= permits + 1; ++number)
            m_server.serveBytes(partPath(number), TestPictures::png(QSize(16, 12)));

        // Every picture's file write waits at this gate until the test opens it: its
        // download is done and the picture decoded, but its fetch has not ended.
        QPromise<void> storing;
        const QFuture<void> gate = storing.future();
        const auto waitingToBeStored = std::make_shared<int>(0);
        m_service->setPictureFileWriter([gate, waitingToBeStored](QString path, QByteArray bytes) -> QCoro::Task<bool> {
            ++*waitingToBeStored;
            QFuture<void> opened = gate;
            co_await opened;
            --*waitingToBeStored;
            co_return ImageFileStore::writeAtomically(path, bytes);
        });

        std::vector<QCoro::Task<QImage>> fetches;
        for (int number = 1; number <= permits; ++number)
            fetches.push_back(m_service->image(url(partPath(number))));
        QTRY_COMPARE(*waitingToBeStored, permits);
        QTRY_COMPARE(m_server.inFlightRequests(), 0); // every transfer of the first eight is over

        fetches.push_back(m_service->image(url(partPath(permits + 1))));
        QTRY_COMPARE(m_service->fetchSemaphore().waitingCount(), 1);
        QCOMPARE(m_service->fetchSemaphore().count(), 0);
        QCOMPARE(m_server.requestCount(partPath(permits + 1)), 0);

        storing.start();
        storing.finish();
        for (QCoro::Task<QImage> &fetch : fetches)
            QCOMPARE(QCoro::waitFor(fetch).size(), QSize(16, 12));
        QCOMPARE(m_server.requestCount(partPath(permits + 1)), 1);
        QCOMPARE(m_service->fetchSemaphore().count(), permits);
        QCOMPARE(m_service->fetchSemaphore().waitingCount(), 0);
        QCOMPARE(*waitingToBeStored, 0);
        for (int number = 1; number <= permits + 1; ++number)
            QVERIFY(QFile::exists(m_service->diskCacheDirectory() + u'/' + ImageCacheKey::forUrl(url(partPath(number)))));
    }

    void everyPermitComesBackWhateverWayAFetchEnds_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("givesPicture");
        QTest::newRow("picture stored") << 200 << TestPictures::png(QSize(8, 6)) << true;
        QTest::newRow("server error") << 500 << QByteArray() << false;
        QTest::newRow("picture gone") << 404 << QByteArray() << false;
        QTest::newRow("bytes that are no picture") << 200 << QByteArray("no picture at all") << false;
    }

    void everyPermitComesBackWhateverWayAFetchEnds()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(bool, givesPicture);
        const int permits = ImageCacheService::maximumConcurrentFetches;
        // As many fetches as there are permits, all at once, and then as many again: the
        // second round can only run if the first gave back every permit.
        for (int round = 0; round < 2; ++round) {
            std::vector<QCoro::Task<QImage>> fetches;
            for (int number = 1; number <= permits; ++number) {
                const QString path = partPath(round * permits + number);
                m_server.serveBytes(path, body, status);
                fetches.push_back(m_service->image(url(path)));
            }
            for (QCoro::Task<QImage> &fetch : fetches)
                QCOMPARE(!QCoro::waitFor(fetch).isNull(), givesPicture);
            QCOMPARE(m_service->fetchSemaphore().count(), permits);
            QCOMPARE(m_service->fetchSemaphore().waitingCount(), 0);
        }
        QCOMPARE(m_server.requestCount(), 2 * permits);
    }

    void aCancelledFetchGivesItsPermitBack()
    {
        LoopbackHttpServer::Response slow;
        slow.body = TestPictures::png();
        slow.delayMilliseconds = 2000;
        m_server.setResponse(partPath(1), slow);
        std::stop_source stop;
        QCoro::Task<QImage> fetch = m_service->image(QStringList{url(partPath(1))}, stop.get_token());
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        QCOMPARE(m_service->fetchSemaphore().count(), ImageCacheService::maximumConcurrentFetches - 1);
        stop.request_stop();
        QVERIFY(QCoro::waitFor(fetch).isNull());
        QCOMPARE(m_service->fetchSemaphore().count(), ImageCacheService::maximumConcurrentFetches);
        QCOMPARE(m_service->fetchSemaphore().waitingCount(), 0);
    }
};

QTEST_GUILESS_MAIN(ImageCacheFetchPermitTest)
#include "ImageCacheFetchPermitTest.moc"
