// SPDX-License-Identifier: GPL-3.0-or-later
#include "../ImageCache/TestPictures.h"
#include "HeldCalls.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Views/CachedAsyncImage.h"
#include "Views/CatalogSetDetailView.h"
#include "Views/CatalogSetInstructionsView.h"
#include "Views/InstructionBookletButton.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

LegoInstructionsService::Instruction booklet(int number, int total, const QString &pdf,
                                             const std::optional<QString> &cover = std::nullopt)
{
    LegoInstructionsService::Instruction instruction;
    instruction.bookNumber = number;
    instruction.totalBooks = total;
    instruction.pdfURL = QUrl(pdf);
    instruction.fileSize = 12'345'678;
    instruction.coverImageURL = cover;
    return instruction;
}

} // namespace

// The building-instructions block of the catalog set's detail screen: booklets looked up
// through a fetcher that the test answers, kept on the screen only, and the pages it opens.
class CatalogSetInstructionsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_storeFolder;
    std::unique_ptr<PersistenceController> m_store;
    HeldCalls m_lookups;
    QList<QUrl> m_opened;
    std::unique_ptr<CatalogSetDetailView> m_view;

    CatalogSetDetailView &view() { return *m_view; }
    CatalogSetInstructionsView &block() { return *m_view->instructionsView(); }

    static CatalogSetResult falcon() { return {u"75192-1"_s, u"Millennium Falcon"_s, 2017, 171, 7541, std::nullopt}; }
    static CatalogSetResult castle() { return {u"10305-1"_s, u"Lion Knights' Castle"_s, 2022, 5, 4514, std::nullopt}; }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        // No catalog: the theme's path stays empty, which this block does not care about.
        RebrickableCatalog::replaceShared(nullptr);
    }

    void init()
    {
        m_storeFolder = std::make_unique<QTemporaryDir>();
        m_store = PersistenceController::open(m_storeFolder->filePath(u"Tessaloom.sqlite"_s));
        m_lookups.calls.clear();
        m_opened.clear();
        m_view = std::make_unique<CatalogSetDetailView>(m_store->container(), m_lookups.instructionsFetcher());
        view().setUrlOpener([this](const QUrl &url) { m_opened.append(url); });
        view().resize(520, 900);
        view().show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

    void cleanup()
    {
        m_view.reset();
        m_store.reset();
        m_storeFolder.reset();
    }

    void lookupShowsItsProgressThenTheBookletsInOrder()
    {
        QSignalSpy loading(&block(), &CatalogSetInstructionsView::loadingChanged);
        view().showCatalogSet(falcon());
        QCOMPARE(m_lookups.calls.size(), 1);
        QCOMPARE(m_lookups.calls.constFirst()->setNumber, u"75192-1"_s);
        QVERIFY(view().isLoadingInstructions());
        QVERIFY(block().loadingLabel()->isVisible());
        QCOMPARE(block().loadingLabel()->text(), u"Looking for instructions…"_s);
        QVERIFY(block().bookletButtons().isEmpty());

        const QList<LegoInstructionsService::Instruction> booklets{
            booklet(1, 2, u"https://www.lego.com/cdn/product-assets/product.bi.core.pdf/6186680.pdf"_s),
            booklet(2, 2, u"https://www.lego.com/cdn/product-assets/product.bi.core.pdf/6186681.pdf"_s)};
        m_lookups.answer(0, booklets);
        QTRY_VERIFY(!view().isLoadingInstructions());
        QVERIFY(!block().loadingLabel()->isVisible());
        QCOMPARE(view().instructions(), booklets);
        QCOMPARE(block().bookletButtons().size(), 2);
        QCOMPARE(block().bookletButtons().at(0)->title(), u"Book 1 of 2"_s);
        QCOMPARE(block().bookletButtons().at(1)->title(), u"Book 2 of 2"_s);
        QVERIFY(block().bookletButtons().at(0)->isVisible());
        QCOMPARE(loading.count(), 2);
        QVERIFY(m_opened.isEmpty());
    }

    void failedLookupEndsTheProgressWithNoBooklets()
    {
        view().showCatalogSet(falcon());
        QVERIFY(view().isLoadingInstructions());
        m_lookups.fail(0);
        QTRY_VERIFY(!view().isLoadingInstructions());
        QVERIFY(view().instructions().isEmpty());
        QVERIFY(block().bookletButtons().isEmpty());
        QVERIFY(!block().loadingLabel()->isVisible());
        QVERIFY(block().viewOnLegoButton()->isVisible());
    }

    void lateAnswerForTheSetShownBeforeIsIgnored()
    {
        view().showCatalogSet(falcon());
        view().showCatalogSet(castle());
        QCOMPARE(m_lookups.calls.size(), 2);
        m_lookups.answer(0, {booklet(1, 1, u"https://example.invalid/falcon.pdf"_s)});
        QTRY_VERIFY(m_lookups.calls.at(0)->delivered);
        QVERIFY(view().isLoadingInstructions());
        QVERIFY(view().instructions().isEmpty());
        m_lookups.answer(1, {booklet(1, 1, u"https://example.invalid/castle.pdf"_s)});
        QTRY_VERIFY(!view().isLoadingInstructions());
        QCOMPARE(view().instructions().size(), 1);
        QCOMPARE(view().instructions().constFirst().pdfURL, QUrl(u"https://example.invalid/castle.pdf"_s));
        QCOMPARE(block().bookletButtons().constFirst()->title(), u"Building Instructions"_s);
    }

    void everyVisitAsksAnewAndForgetsTheBookletsBefore()
    {
        view().showCatalogSet(falcon());
        m_lookups.answer(0, {booklet(1, 1, u"https://example.invalid/falcon.pdf"_s)});
        QTRY_COMPARE(view().instructions().size(), 1);
        view().showCatalogSet(falcon());
        QCOMPARE(m_lookups.calls.size(), 2);
        QVERIFY(view().instructions().isEmpty());
        QVERIFY(view().isLoadingInstructions());
    }

    void viewOnLegoOpensTheSetsBuildingInstructionsPage()
    {
        view().showCatalogSet(falcon());
        QCOMPARE(block().viewOnLegoButton()->text(), u"View on LEGO.com"_s);
        QTest::mouseClick(block().viewOnLegoButton(), Qt::LeftButton);
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"https://www.lego.com/en-au/service/building-instructions/75192-1"_s)});
    }

    void viewOnLegoFollowsTheLegoHostOfTheEndpoints()
    {
        qputenv("TESSALOOM_ENDPOINTS", "lego=http://127.0.0.1:8123/mirror");
        const QUrl url = CatalogSetInstructionsView::viewOnLegoUrl(u"10305-1"_s);
        qputenv("TESSALOOM_ENDPOINTS", "");
        QCOMPARE(url, QUrl(u"http://127.0.0.1:8123/mirror/en-au/service/building-instructions/10305-1"_s));
    }

    void clickingABookletOpensItsPdf()
    {
        view().showCatalogSet(falcon());
        LegoInstructionsService::Instruction additional = booklet(3, 3, u"https://example.invalid/extra.pdf"_s);
        additional.isAdditional = true;
        m_lookups.answer(0, {booklet(1, 2, u"https://example.invalid/one.pdf"_s),
                             booklet(2, 2, u"https://example.invalid/two.pdf"_s), additional});
        QTRY_COMPARE(block().bookletButtons().size(), 3);
        QCOMPARE(block().bookletButtons().at(2)->title(), u"Additional Info"_s);
        QTest::mouseClick(block().bookletButtons().at(1), Qt::LeftButton);
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"https://example.invalid/two.pdf"_s)});
    }

    void spaceOnAFocusedBookletOpensItsPdf()
    {
        view().showCatalogSet(falcon());
        m_lookups.answer(0, {booklet(1, 1, u"https://example.invalid/one.pdf"_s)});
        QTRY_COMPARE(block().bookletButtons().size(), 1);
        InstructionBookletButton *button = block().bookletButtons().constFirst();
        QVERIFY(button->focusPolicy() & Qt::TabFocus);
        // Tab reaches the booklet before the link to LEGO's page.
        QCOMPARE(button->nextInFocusChain(), static_cast<QWidget *>(block().viewOnLegoButton()));
        view().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"https://example.invalid/one.pdf"_s)});
    }

    void bookletCoversComeThroughTheImageCache()
    {
        LoopbackHttpServer server;
        QVERIFY(server.listen());
        server.serveBytes(u"/covers/one.png"_s, TestPictures::png(QSize(96, 128)));
        QTemporaryDir caches;
        ImageCacheService pictures(caches.path());
        view().setImageCache(&pictures);
        view().showCatalogSet(falcon());
        m_lookups.answer(0, {booklet(1, 1, u"https://example.invalid/one.pdf"_s,
                                     server.url(u"/covers/one.png"_s).toString())});
        QTRY_COMPARE(block().bookletButtons().size(), 1);
        CachedAsyncImage *cover = block().bookletButtons().constFirst()->cover();
        QTRY_COMPARE(cover->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(cover->image().size(), QSize(96, 128));
        QCOMPARE(server.requestCount(u"/covers/one.png"_s), 1);
    }

    void nothingIsWrittenToTheStore()
    {
        view().showCatalogSet(falcon());
        m_lookups.answer(0, {booklet(1, 1, u"https://example.invalid/one.pdf"_s)});
        QTRY_COMPARE(view().instructions().size(), 1);
        ManagedObjectContext &context = m_store->container().viewContext();
        QCOMPARE(context.count(FetchRequest<CachedInstructionURL>(Predicate())), 0);
        QCOMPARE(context.count(FetchRequest<CatalogSet>(Predicate())), 0);
    }
};

QTEST_MAIN(CatalogSetInstructionsTest)
#include "CatalogSetInstructionsTest.moc"
