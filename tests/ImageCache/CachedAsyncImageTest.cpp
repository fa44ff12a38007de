// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageCacheIdle.h"
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheKey.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "TestPictures.h"
#include "Views/CachedAsyncImage.h"

#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

// The picture widget, shown offscreen, loading through a cache of its own over real HTTP
// on 127.0.0.1.
class CachedAsyncImageTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    std::unique_ptr<CachedAsyncImage> makeWidget(const QString &urlString, const QStringList &fallbacks = {})
    {
        auto widget = std::make_unique<CachedAsyncImage>();
        widget->setImageCache(m_service.get());
        widget->resize(120, 90);
        widget->setSource(urlString, fallbacks);
        return widget;
    }
    void serveSlowly(const QString &path, const QByteArray &body, int milliseconds, int status = 200)
    {
        LoopbackHttpServer::Response response;
        response.status = status;
        response.body = body;
        response.delayMilliseconds = milliseconds;
        m_server.setResponse(path, response);
    }
    static QProgressBar *busyIndicator(const CachedAsyncImage &widget)
    {
        return widget.findChild<QProgressBar *>();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_server.listen());
    }

    void init()
    {
        m_caches = std::make_unique<QTemporaryDir>();
        m_service = std::make_unique<ImageCacheService>(m_caches->path());
        m_server.resetCounters();
    }

    void cleanup()
    {
        // Downloads that outlived their widget finish, and store what they got, before the
        // service goes.
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        m_service.reset();
        m_caches.reset();
    }

    void widgetWithoutUrlStaysEmptyAndAsksForNothing()
    {
        const auto widget = makeWidget(QString());
        widget->show();
        QCOMPARE(widget->phase(), CachedAsyncImage::Phase::empty);
        QVERIFY(!busyIndicator(*widget)->isVisible());
        // A second widget, shown after this one, loads a picture: once that load and
        // everything else the cache had under way are over, a request of this one would be in.
        m_server.serveBytes(u"/view/after-empty.png"_s, TestPictures::png());
        const auto later = makeWidget(url(u"/view/after-empty.png"_s));
        later->show();
        QTRY_COMPARE(later->phase(), CachedAsyncImage::Phase::success);
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QCOMPARE(m_server.requestCount(), m_server.requestCount(u"/view/after-empty.png"_s));
        QCOMPARE(m_server.requestCount(), 1);
        QCOMPARE(widget->phase(), CachedAsyncImage::Phase::empty);
    }

    void showsABusyIndicatorWhileLoading()
    {
        serveSlowly(u"/view/busy.png"_s, TestPictures::png(), 400);
        const auto widget = makeWidget(url(u"/view/busy.png"_s));
        widget->show();
        QCOMPARE(widget->phase(), CachedAsyncImage::Phase::loading);
        QVERIFY(busyIndicator(*widget)->isVisible());
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
        QVERIFY(!busyIndicator(*widget)->isVisible());
    }

    void showsThePictureWhenItArrives()
    {
        m_server.serveBytes(u"/view/green.png"_s, TestPictures::png(QSize(40, 30), QColor(0, 200, 0)));
        const auto widget = makeWidget(url(u"/view/green.png"_s));
        widget->show();
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(widget->image().size(), QSize(40, 30));
        const QImage shown = widget->grab().toImage();
        QCOMPARE(shown.pixelColor(shown.width() / 2, shown.height() / 2), QColor(0, 200, 0));
    }

    void showsTheFailureStateWhenThereIsNoPicture()
    {
        m_server.serveBytes(u"/view/missing.png"_s, {}, 404);
        const auto widget = makeWidget(url(u"/view/missing.png"_s));
        QSignalSpy phases(widget.get(), &CachedAsyncImage::phaseChanged);
        widget->show();
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::failure);
        QVERIFY(!busyIndicator(*widget)->isVisible());
        QVERIFY(widget->image().isNull());
        QVERIFY(!widget->toolTip().isEmpty());
        QCOMPARE(phases.last().at(0).value<CachedAsyncImage::Phase>(), CachedAsyncImage::Phase::failure);
    }

    void contentFunctionBuildsTheWidgetThatShowsThePicture()
    {
        m_server.serveBytes(u"/view/content.png"_s, TestPictures::png(QSize(16, 8)));
        const auto widget = makeWidget(url(u"/view/content.png"_s));
        QSize handedOver;
        widget->setContent([&handedOver](const QImage &image) {
            handedOver = image.size();
            auto *label = new QLabel;
            label->setObjectName(u"content"_s);
            label->setPixmap(QPixmap::fromImage(image));
            return label;
        });
        widget->show();
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(handedOver, QSize(16, 8));
        QVERIFY(widget->contentWidget());
        QCOMPARE(widget->contentWidget()->parentWidget(), widget.get());
        QVERIFY(widget->contentWidget()->isVisible());
    }

    void hiddenWidgetWaitsUntilItIsShown()
    {
        m_server.serveBytes(u"/view/later.png"_s, TestPictures::png());
        const auto widget = makeWidget(url(u"/view/later.png"_s));
        // A second widget, made and shown after the hidden one, loads a picture: once that
        // load and everything else the cache had under way are over, a load of the hidden
        // one would have reached the server.
        m_server.serveBytes(u"/view/shown.png"_s, TestPictures::png());
        const auto shown = makeWidget(url(u"/view/shown.png"_s));
        shown->show();
        QTRY_COMPARE(shown->phase(), CachedAsyncImage::Phase::success);
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QCOMPARE(m_server.requestCount(u"/view/later.png"_s), 0);
        QVERIFY(widget->image().isNull());
        widget->show();
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
    }

    void fallbacksAreTriedInOrderAndThePictureIsKeptUnderTheFirstUrl()
    {
        m_server.serveBytes(u"/view/first.png"_s, {}, 404);
        m_server.serveBytes(u"/view/second.png"_s, TestPictures::png(QSize(9, 9)));
        const auto widget = makeWidget(url(u"/view/first.png"_s), {url(u"/view/second.png"_s)});
        widget->show();
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(widget->image().size(), QSize(9, 9));
        QVERIFY(QFile::exists(m_service->diskCacheDirectory() + u'/' + ImageCacheKey::forUrl(url(u"/view/first.png"_s))));
    }

    void newUrlCancelsTheLoadOfTheOldOne()
    {
        serveSlowly(u"/view/old.png"_s, TestPictures::png(QSize(5, 5)), 500);
        m_server.serveBytes(u"/view/new.png"_s, TestPictures::png(QSize(6, 6)));
        const auto widget = makeWidget(url(u"/view/old.png"_s));
        widget->show();
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        widget->setUrlString(url(u"/view/new.png"_s));
        QTRY_COMPARE(widget->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(widget->image().size(), QSize(6, 6));
        QTRY_VERIFY(m_service->memoryCache().contains(ImageCacheKey::forUrl(url(u"/view/old.png"_s))));
        // The old download has ended and handed its picture to every load that awaited it,
        // the cancelled one of this widget included.
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QVERIFY(!m_service->isInFlight(url(u"/view/old.png"_s)));
        QCOMPARE(widget->image().size(), QSize(6, 6)); // the old answer did not land here
        QCOMPARE(widget->phase(), CachedAsyncImage::Phase::success);
    }

    void widgetDeletedBeforeItsPictureArrivesIsNotTouchedAndTheOthersGetThePicture()
    {
        serveSlowly(u"/view/shared.png"_s, TestPictures::png(QSize(21, 21)), 400);
        auto leaving = makeWidget(url(u"/view/shared.png"_s));
        const auto staying = makeWidget(url(u"/view/shared.png"_s));
        leaving->show();
        staying->show();
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        leaving.reset();
        QTRY_COMPARE(staying->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(staying->image().size(), QSize(21, 21));
        QCOMPARE(m_server.requestCount(u"/view/shared.png"_s), 1);
        QVERIFY(QFile::exists(m_service->diskCacheDirectory() + u'/' + ImageCacheKey::forUrl(url(u"/view/shared.png"_s))));
    }

    void deletedWidgetWithFallbacksLeavesNoFailureBehind()
    {
        serveSlowly(u"/view/cancel.png"_s, TestPictures::png(), 1500);
        const QString first = url(u"/view/cancel.png"_s);
        auto widget = makeWidget(first, {url(u"/view/cancel-fallback.png"_s)});
        widget->show();
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        widget.reset();
        QTRY_COMPARE(m_service->fetchSemaphore().count(), 8);
        QVERIFY(!m_service->isTransientlyFailed(first));
        QVERIFY(!m_service->isPermanentlyFailedInMemory(first));
        QVERIFY(!QFile::exists(m_service->negativeCacheDirectory() + u'/' + ImageCacheKey::forUrl(first)));
        QCOMPARE(m_server.requestCount(u"/view/cancel-fallback.png"_s), 0);
    }
};

QTEST_MAIN(CachedAsyncImageTest)
#include "CachedAsyncImageTest.moc"
