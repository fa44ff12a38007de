// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageCacheIdle.h"
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "TestPictures.h"
#include "Views/TableThumbnail.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

// Thumbnails in a real table view, offscreen: the first column holds the picture's URL.
class TableThumbnailTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_service;
    std::unique_ptr<QStandardItemModel> m_model;
    std::unique_ptr<QTableView> m_view;
    TableThumbnail *m_thumbnails = nullptr;

    QString url(const QString &path) const { return m_server.url(path).toString(); }
    void addRow(const QString &urlString)
    {
        m_model->appendRow({new QStandardItem(urlString), new QStandardItem(u"name"_s)});
    }
    void showView()
    {
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }
    QColor cellCentre(int row)
    {
        const QRect cell = m_view->visualRect(m_model->index(row, 0));
        return m_view->viewport()->grab().toImage().pixelColor(cell.center());
    }
    void serveSlowly(const QString &path, const QByteArray &body, int milliseconds)
    {
        LoopbackHttpServer::Response response;
        response.body = body;
        response.delayMilliseconds = milliseconds;
        m_server.setResponse(path, response);
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
        m_model = std::make_unique<QStandardItemModel>(0, 2);
        m_view = std::make_unique<QTableView>();
        m_thumbnails = new TableThumbnail(m_view.get());
        m_thumbnails->setImageCache(m_service.get());
        m_view->setItemDelegateForColumn(0, m_thumbnails);
        m_view->setModel(m_model.get());
        m_view->resize(400, 400);
        m_view->verticalHeader()->setDefaultSectionSize(64);
        m_view->horizontalHeader()->setDefaultSectionSize(84);
        m_server.resetCounters();
    }

    void cleanup()
    {
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        m_view.reset();
        m_model.reset();
        m_service.reset();
        m_caches.reset();
    }

    void rowWithoutUrlStaysEmptyAndAsksForNothing()
    {
        addRow(QString());
        // The row below is painted after the empty one: once its thumbnail is in and the
        // cache has nothing left under way, whatever the empty row asked for would be in too.
        m_server.serveBytes(u"/rows/below.png"_s, TestPictures::png());
        addRow(url(u"/rows/below.png"_s));
        QSignalSpy arrivals(m_thumbnails, &TableThumbnail::thumbnailArrived);
        showView();
        QTRY_COMPARE(arrivals.count(), 1);
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QCOMPARE(arrivals.count(), 1);
        QCOMPARE(arrivals.first().at(0).toString(), url(u"/rows/below.png"_s));
        QCOMPARE(m_server.requestCount(), m_server.requestCount(u"/rows/below.png"_s));
        QCOMPARE(m_server.requestCount(), 1);
        QVERIFY(!m_thumbnails->isLoading(QString()));
        QVERIFY(m_thumbnails->thumbnail(QString(), m_model->index(0, 0), m_view.get()).isNull());
        QCOMPARE(arrivals.count(), 1);
    }

    void rowIsRepaintedWithItsThumbnailWhenThePictureArrives()
    {
        serveSlowly(u"/rows/red.png"_s, TestPictures::png(QSize(40, 30), QColor(220, 0, 0)), 200);
        addRow(url(u"/rows/red.png"_s));
        showView();
        QVERIFY(m_thumbnails->isLoading(url(u"/rows/red.png"_s)));
        QTRY_COMPARE(cellCentre(0), QColor(220, 0, 0));
    }

    void cacheIsAskedOnceForAUrlWithoutPicture()
    {
        serveSlowly(u"/rows/once.png"_s, TestPictures::png(), 1000);
        for (int i = 0; i < 5; ++i)
            addRow(url(u"/rows/once.png"_s));
        QSignalSpy arrivals(m_thumbnails, &TableThumbnail::thumbnailArrived);
        showView();
        // The picture is on its way: the cells are painted again while it is.
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        for (int i = 0; i < 5; ++i) {
            m_view->viewport()->repaint();
            QCoreApplication::processEvents();
        }
        QVERIFY(m_thumbnails->isLoading(url(u"/rows/once.png"_s)));
        QTRY_COMPARE(arrivals.count(), 1);
        m_view->viewport()->repaint();
        // Had the repaint asked again, that request would be over by now.
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QCOMPARE(arrivals.count(), 1);
        QCOMPARE(m_server.requestCount(u"/rows/once.png"_s), 1);
    }

    void urlWithoutPictureIsNotAskedForAgain()
    {
        m_server.serveBytes(u"/rows/missing.png"_s, {}, 404);
        addRow(url(u"/rows/missing.png"_s));
        QSignalSpy arrivals(m_thumbnails, &TableThumbnail::thumbnailArrived);
        showView();
        QTRY_COMPARE(arrivals.count(), 1);
        QVERIFY(arrivals.first().at(1).value<QImage>().isNull());
        QVERIFY(m_thumbnails->hasFailed(url(u"/rows/missing.png"_s)));
        m_view->viewport()->repaint();
        // Had the repaint asked again, the cache would have answered by now.
        QVERIFY(ImageCacheIdle::waitFor(*m_service, m_server));
        QCOMPARE(arrivals.count(), 1);
        QCOMPARE(m_server.requestCount(u"/rows/missing.png"_s), 1);
    }

    void rowRemovedBeforeThePictureArrivesIsSkipped()
    {
        serveSlowly(u"/rows/removed.png"_s, TestPictures::png(), 300);
        addRow(url(u"/rows/removed.png"_s));
        QSignalSpy arrivals(m_thumbnails, &TableThumbnail::thumbnailArrived);
        showView();
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        m_model->removeRow(0);
        QTRY_COMPARE(arrivals.count(), 1);
        QVERIFY(!arrivals.first().at(1).value<QImage>().isNull());
    }

    void viewDeletedBeforeThePictureArrivesIsSkipped()
    {
        TableThumbnail standalone;
        standalone.setImageCache(m_service.get());
        serveSlowly(u"/rows/view-gone.png"_s, TestPictures::png(), 300);
        addRow(url(u"/rows/view-gone.png"_s));
        QSignalSpy arrivals(&standalone, &TableThumbnail::thumbnailArrived);
        m_view->setItemDelegateForColumn(0, &standalone);
        showView();
        QTRY_COMPARE(m_server.inFlightRequests(), 1);
        m_view.reset();
        QTRY_COMPARE(arrivals.count(), 1);
        QVERIFY(!standalone.thumbnail(url(u"/rows/view-gone.png"_s)).isNull());
        m_view = std::make_unique<QTableView>(); // for cleanup
    }

    void sizeHintLeavesRoomForAThumbnail()
    {
        addRow(url(u"/rows/size.png"_s));
        const QSize hint = m_thumbnails->sizeHint(QStyleOptionViewItem(), m_model->index(0, 0));
        QVERIFY(hint.width() >= 80);
        QVERIFY(hint.height() >= 60);
    }
};

QTEST_MAIN(TableThumbnailTest)
#include "TableThumbnailTest.moc"
