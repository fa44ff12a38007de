// SPDX-License-Identifier: GPL-3.0-or-later
#include "../ImageCache/TestPictures.h"
#include "CatalogFixture.h"
#include "HeldCalls.h"
#include "LoopbackHttpServer.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Views/CachedAsyncImage.h"
#include "Views/CatalogSetDetailView.h"
#include "Views/SetImagePreviewWindow.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// The catalog set's detail screen offscreen, over a real store and a tiny real catalog,
// adding through the real sync service: what it shows of the collection and the wishlist,
// and what its actions write.
class CatalogSetDetailViewTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<QTemporaryDir> m_storeFolder;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogSyncService> m_sync;
    HeldCalls m_lookups;
    std::unique_ptr<CatalogSetDetailView> m_view;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    CatalogSetDetailView &view() { return *m_view; }

    static CatalogSetResult falcon()
    {
        return {u"75192-1"_s, u"Millennium Falcon"_s, 2017, 171, 7541, u"http://127.0.0.1:9/media/sets/75192-1.jpg"_s};
    }
    static CatalogSetResult castle() { return {u"10305-1"_s, u"Lion Knights' Castle"_s, 2022, 5, 4514, std::nullopt}; }
    static CatalogSetResult orphan() { return {u"9999-1"_s, u"Mystery Box"_s, 2020, 777, 10, std::nullopt}; }
    static CatalogSetResult missing() { return {u"4242-1"_s, u"Not in the Catalog"_s, 2020, 5, 10, std::nullopt}; }

    std::unique_ptr<CatalogSetDetailView> makeView(const CatalogSetResult &set)
    {
        auto view = std::make_unique<CatalogSetDetailView>(m_store->container(), m_lookups.instructionsFetcher());
        view->setSyncOperation([this](QString number) { return m_sync->syncSet(std::move(number)); });
        view->setUrlOpener([](const QUrl &) { QFAIL("no page is opened in these tests"); });
        view->resize(520, 900);
        view->showCatalogSet(set);
        return view;
    }

    void show(QWidget &widget)
    {
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
    }

    ObjectID syncedSet(const QString &number)
    {
        const TaskOutcome<ObjectID> outcome = waitForOutcome(m_sync->syncSet(number));
        if (!outcome.value)
            qFatal("syncing %s failed: %s", qUtf8Printable(number), qUtf8Printable(outcome.failureText()));
        return *outcome.value;
    }

    BrickSet saveCopy(const ObjectID &catalogSet, const QDateTime &added, bool trashed = false)
    {
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = added;
        copy.catalogSet = catalogSet;
        copy.setAcquisitionType(AcquisitionType::unknown);
        copy.isTrashed = trashed;
        if (trashed)
            copy.trashedDate = added;
        copy = context().insert(copy);
        context().save();
        return copy;
    }

    WishlistItem saveWish(const QString &number)
    {
        WishlistItem item;
        item.setNumber = number;
        item.setName = number;
        item.dateAdded = QDateTime::currentDateTimeUtc();
        item = context().insert(item);
        context().save();
        return item;
    }

    QList<BrickSet> copiesOf(const QString &number)
    {
        return context().fetch(FetchRequest<BrickSet>(BrickSetQueries::setNumber(number)));
    }

    QList<WishlistItem> wishesFor(const QString &number)
    {
        return context().fetch(FetchRequest<WishlistItem>(Predicate::equal(u"setNumber"_s, number)));
    }

    // The Falcon with its picture served over 127.0.0.1 and fetched through an image cache
    // of its own, shown in the view.
    struct ServedPicture
    {
        LoopbackHttpServer server;
        QTemporaryDir caches;
        std::unique_ptr<ImageCacheService> pictures;
    };
    bool showFalconWithPicture(ServedPicture &served, const QByteArray &picture)
    {
        if (!served.server.listen())
            return false;
        served.server.serveBytes(u"/media/sets/75192-1.jpg"_s, picture);
        served.pictures = std::make_unique<ImageCacheService>(served.caches.path());
        CatalogSetResult set = falcon();
        set.imgURL = served.server.url(u"/media/sets/75192-1.jpg"_s).toString();
        view().setImageCache(served.pictures.get());
        view().showCatalogSet(set);
        return true;
    }

    // The call made last, of booklet lookups and held syncs together.
    int lastCall() const { return int(m_lookups.calls.size()) - 1; }

    // Shown as owned: the check mark line and its button, no add button, no progress.
    static bool showsInCollection(const CatalogSetDetailView &view)
    {
        return view.inCollectionRow()->isVisible() && view.viewInCollectionButton()->isVisible()
            && !view.addToCollectionButton()->isVisible() && !view.addingRow()->isVisible();
    }

    static bool offersAdd(const CatalogSetDetailView &view)
    {
        return view.addToCollectionButton()->isVisible() && !view.inCollectionRow()->isVisible()
            && !view.addingRow()->isVisible() && view.addToCollectionAction()->isEnabled();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "158,Star Wars,\n171,Ultimate Collector Series,158\n5,Castle,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,171,7541,https://cdn.rebrickable.com/media/sets/75192-1.jpg\n"
                                   "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                                   "9999-1,Mystery Box,2020,777,10,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        m_storeFolder = std::make_unique<QTemporaryDir>();
        m_store = PersistenceController::open(m_storeFolder->filePath(u"Tessaloom.sqlite"_s));
        m_sync = std::make_unique<CatalogSyncService>(*m_store);
        m_lookups.calls.clear();
        m_view = makeView(falcon());
        show(*m_view);
    }

    void cleanup()
    {
        m_view.reset();
        m_sync.reset();
        m_store.reset();
        m_storeFolder.reset();
    }

    void setIsShownByNameNumberThemeYearAndPieces()
    {
        QCOMPARE(view().nameLabel()->text(), u"Millennium Falcon"_s);
        QCOMPARE(view().setNumberLabel()->text(), u"75192-1"_s);
        QTRY_COMPARE(view().themeLabel()->text(), u"Star Wars > Ultimate Collector Series"_s);
        QCOMPARE(view().themePath(), u"Star Wars > Ultimate Collector Series"_s);
        QCOMPARE(view().yearLabel()->text(), u"2017"_s);
        QCOMPARE(view().piecesLabel()->text(), u"7,541 pieces"_s);
        QCOMPARE(view().picture()->accessibleName(), u"Picture of Millennium Falcon"_s);
    }

    void setNotOwnedOffersAddToCollection()
    {
        QVERIFY(!view().isOwned());
        QVERIFY(offersAdd(view()));
        QCOMPARE(view().addToCollectionButton()->text(), u"Add to Collection"_s);
        QVERIFY(!view().viewInCollectionAction()->isEnabled());
        QCOMPARE(view().wishlistButton()->text(), u"Add to Wishlist"_s);
    }

    void ownedSetShowsInCollectionWithItsButton()
    {
        saveCopy(syncedSet(u"75192-1"_s), QDateTime::currentDateTimeUtc());
        QVERIFY(showsInCollection(view()));
        QCOMPARE(view().existingOwnedSets().size(), 1);
        QCOMPARE(view().inCollectionLabel()->text(), u"In Collection"_s);
        QCOMPARE(view().viewInCollectionButton()->text(), u"View in Collection"_s);
        QVERIFY(!view().addToCollectionAction()->isEnabled());
        QVERIFY(view().viewInCollectionAction()->isEnabled());
    }

    void setOnTheWishlistOffersRemoval()
    {
        saveWish(u"75192-1"_s);
        QCOMPARE(view().wishlistEntries().size(), 1);
        QCOMPARE(view().wishlistButton()->text(), u"Remove from Wishlist"_s);
        QVERIFY(offersAdd(view()));
    }

    void setOnTheWishlistAndInTheCollectionShowsBothStates()
    {
        saveWish(u"75192-1"_s);
        saveCopy(syncedSet(u"75192-1"_s), QDateTime::currentDateTimeUtc());
        QVERIFY(showsInCollection(view()));
        QCOMPARE(view().wishlistButton()->text(), u"Remove from Wishlist"_s);
    }

    void addingShowsItsProgressInPlaceOfTheButton()
    {
        view().setSyncOperation(m_lookups.heldSync([this](QString number) { return m_sync->syncSet(std::move(number)); }));
        QTest::mouseClick(view().addToCollectionButton(), Qt::LeftButton);
        const int syncCall = lastCall();
        QVERIFY(view().isAdding());
        QVERIFY(view().addingRow()->isVisible());
        QCOMPARE(view().addingLabel()->text(), u"Adding Set…"_s);
        QVERIFY(!view().addToCollectionButton()->isVisible());
        QVERIFY(!view().addToCollectionAction()->isEnabled());
        m_lookups.release(syncCall);
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(showsInCollection(view()));
    }

    void failedSyncClearsTheProgressAndMakesNoCopy()
    {
        view().setSyncOperation(m_lookups.heldSync([this](QString number) { return m_sync->syncSet(std::move(number)); }));
        QSignalSpy added(&view(), &CatalogSetDetailView::copyAdded);
        view().addToCollection();
        const int syncCall = lastCall();
        QVERIFY(view().isAdding());
        m_lookups.fail(syncCall);
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(offersAdd(view()));
        QVERIFY(!view().addedSet());
        QCOMPARE(context().count(FetchRequest<BrickSet>(Predicate())), 0);
        QCOMPARE(added.count(), 0);
    }

    void setTheCatalogLacksIsNotAddedAndNothingIsShown()
    {
        m_view = makeView(missing());
        show(*m_view);
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(offersAdd(view()));
        QCOMPARE(context().count(FetchRequest<BrickSet>(Predicate())), 0);
        QCOMPARE(context().count(FetchRequest<CatalogSet>(Predicate())), 0);
    }

    void syncAnsweringWithNoCatalogSetMakesNoCopy()
    {
        const WishlistItem wish = saveWish(u"75192-1"_s);
        view().setSyncOperation([wish](QString) -> QCoro::Task<ObjectID> { co_return wish.objectID; });
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(!view().addedSet());
        QCOMPARE(context().count(FetchRequest<BrickSet>(Predicate())), 0);
    }

    void addMakesExactlyOneCopyWithOnlyTheFieldsOfANewCopy()
    {
        QSignalSpy added(&view(), &CatalogSetDetailView::copyAdded);
        const QDateTime before = QDateTime::currentDateTimeUtc();
        QTest::mouseClick(view().addToCollectionButton(), Qt::LeftButton);
        QTRY_VERIFY(!view().isAdding());
        const QList<BrickSet> copies = context().fetch(FetchRequest<BrickSet>(Predicate()));
        QCOMPARE(copies.size(), 1);
        const BrickSet copy = copies.constFirst();
        BrickSet expected;
        expected.objectID = copy.objectID;
        expected.id = copy.id;
        expected.dateAdded = copy.dateAdded;
        expected.catalogSet = context().fetchObjectIDs(FetchRequest<CatalogSet>(Predicate())).value(0);
        expected.acquisitionType = u"unknown"_s;
        QCOMPARE(copy, expected);
        QVERIFY(!copy.id.isNull());
        QVERIFY(*copy.dateAdded >= before.addMSecs(-1) && *copy.dateAdded <= QDateTime::currentDateTimeUtc());
        QCOMPARE(context().existingObject<CatalogSet>(*copy.catalogSet)->setNumber, u"75192-1"_s);
        QVERIFY(view().addedSet());
        QCOMPARE(*view().addedSet(), copy);
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.at(0).at(0).value<ObjectID>(), copy.objectID);
        QVERIFY(showsInCollection(view()));
    }

    void trashedCopyDoesNotCountSoAddingMakesASecondCopy()
    {
        const ObjectID set = syncedSet(u"75192-1"_s);
        saveCopy(set, QDateTime::currentDateTimeUtc().addDays(-3), true);
        QVERIFY(view().existingOwnedSets().isEmpty());
        QVERIFY(offersAdd(view()));
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QCOMPARE(copiesOf(u"75192-1"_s).size(), 2);
        QCOMPARE(view().existingOwnedSets().size(), 1);
        QVERIFY(showsInCollection(view()));
    }

    void addFromOneScreenShowsTheOtherScreenOfTheSetAsOwned()
    {
        std::unique_ptr<CatalogSetDetailView> other = makeView(falcon());
        show(*other);
        QVERIFY(offersAdd(*other));
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(showsInCollection(*other));
        QVERIFY(!other->addToCollectionAction()->isEnabled());
        QVERIFY(!other->addedSet());
        QCOMPARE(other->existingOwnedSets().size(), 1);
        QCOMPARE(copiesOf(u"75192-1"_s).size(), 1);
    }

    void addClickedOnTwoScreensWhileBothShowTheSetUnownedMakesTwoCopies()
    {
        const auto slowSync = m_lookups.heldSync([this](QString number) { return m_sync->syncSet(std::move(number)); });
        std::unique_ptr<CatalogSetDetailView> other = makeView(falcon());
        show(*other);
        view().setSyncOperation(slowSync);
        other->setSyncOperation(slowSync);
        QTest::mouseClick(view().addToCollectionButton(), Qt::LeftButton);
        const int firstSync = lastCall();
        QVERIFY(offersAdd(*other));
        QTest::mouseClick(other->addToCollectionButton(), Qt::LeftButton);
        const int secondSync = lastCall();
        // The syncs end one after the other, as two clicks a moment apart would have them.
        m_lookups.release(firstSync);
        QTRY_VERIFY(!view().isAdding());
        QVERIFY(showsInCollection(*other));
        m_lookups.release(secondSync);
        QTRY_VERIFY(!other->isAdding());
        QCOMPARE(copiesOf(u"75192-1"_s).size(), 2);
        QVERIFY(view().addedSet() && other->addedSet());
        QVERIFY(view().addedSet()->objectID != other->addedSet()->objectID);
        QCOMPARE(context().count(FetchRequest<CatalogSet>(Predicate())), 1);
    }

    void deletingTheLastCopyKeepsTheSetAndANewAddFindsItsPriceGuides()
    {
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        const ObjectID set = *view().addedSet()->catalogSet;
        CachedPriceGuide guide;
        guide.catalogSet = set;
        guide.conditionType = u"new"_s;
        guide.guideType = u"sold"_s;
        guide.avgPrice = Decimal::fromString(u"849.99"_s);
        guide.providerName = u"brickeconomy"_s;
        guide = context().insert(guide);
        context().save();

        context().deleteObject(view().addedSet()->objectID);
        context().save();
        QVERIFY(context().existingObject<CatalogSet>(set));
        QVERIFY(!view().addedSet());
        QVERIFY(offersAdd(view()));

        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QCOMPARE(*view().addedSet()->catalogSet, set);
        QCOMPARE(context().count(FetchRequest<CatalogSet>(Predicate())), 1);
        const QList<CachedPriceGuide> guides = context().related<CachedPriceGuide>(set, u"cachedPriceGuides"_s);
        QCOMPARE(guides.size(), 1);
        QCOMPARE(guides.constFirst().objectID, guide.objectID);
    }

    void viewInCollectionGivesTheCopyMadeOnThisScreen()
    {
        const auto slowSync = m_lookups.heldSync([this](QString number) { return m_sync->syncSet(std::move(number)); });
        std::unique_ptr<CatalogSetDetailView> other = makeView(falcon());
        show(*other);
        view().setSyncOperation(slowSync);
        other->setSyncOperation(slowSync);
        view().addToCollection();
        const int firstSync = lastCall();
        other->addToCollection();
        const int secondSync = lastCall();
        m_lookups.release(firstSync);
        QTRY_VERIFY(!view().isAdding());
        m_lookups.release(secondSync);
        QTRY_VERIFY(!other->isAdding());
        // The other screen's own copy comes second in the store, yet it is the one shown.
        QCOMPARE(other->existingOwnedSets().constFirst().objectID, view().addedSet()->objectID);
        QSignalSpy requested(other.get(), &CatalogSetDetailView::viewInCollectionRequested);
        QTest::mouseClick(other->viewInCollectionButton(), Qt::LeftButton);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).value<ObjectID>(), other->addedSet()->objectID);
    }

    void viewInCollectionGivesTheFirstCopyOtherwise()
    {
        const ObjectID set = syncedSet(u"75192-1"_s);
        const BrickSet older = saveCopy(set, QDateTime::currentDateTimeUtc().addDays(-10));
        saveCopy(set, QDateTime::currentDateTimeUtc().addDays(-1));
        QSignalSpy requested(&view(), &CatalogSetDetailView::viewInCollectionRequested);
        QTest::mouseClick(view().viewInCollectionButton(), Qt::LeftButton);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).value<ObjectID>(), older.objectID);
    }

    void removingTheWishlistEntryAsksToCloseTheScreen()
    {
        const WishlistItem wish = saveWish(u"75192-1"_s);
        QSignalSpy dismissed(&view(), &CatalogSetDetailView::dismissRequested);
        QSignalSpy removed(&view(), &CatalogSetDetailView::wishlistEntryRemoved);
        QTest::mouseClick(view().wishlistButton(), Qt::LeftButton);
        QCOMPARE(dismissed.count(), 1);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(removed.at(0).at(0).value<ObjectID>(), wish.objectID);
        QVERIFY(wishesFor(u"75192-1"_s).isEmpty());
        QCOMPARE(view().wishlistButton()->text(), u"Add to Wishlist"_s);
    }

    void addingAWishlistEntryLeavesTheScreenOpen()
    {
        QSignalSpy dismissed(&view(), &CatalogSetDetailView::dismissRequested);
        QSignalSpy added(&view(), &CatalogSetDetailView::wishlistEntryAdded);
        const QDateTime before = QDateTime::currentDateTimeUtc();
        QTest::mouseClick(view().wishlistButton(), Qt::LeftButton);
        QCOMPARE(dismissed.count(), 0);
        QCOMPARE(added.count(), 1);
        const QList<WishlistItem> wishes = wishesFor(u"75192-1"_s);
        QCOMPARE(wishes.size(), 1);
        const WishlistItem &wish = wishes.constFirst();
        QCOMPARE(wish.objectID, added.at(0).at(0).value<ObjectID>());
        QCOMPARE(wish.setName, u"Millennium Falcon"_s);
        QCOMPARE(wish.year, qint16(2017));
        QCOMPARE(wish.pieceCount, 7541);
        QCOMPARE(wish.imageURL, falcon().imgURL);
        QCOMPARE(wish.themeName, u"Ultimate Collector Series"_s);
        QVERIFY(wish.dateAdded && *wish.dateAdded >= before.addMSecs(-1));
        QVERIFY(!wish.notes);
        QCOMPARE(view().wishlistButton()->text(), u"Remove from Wishlist"_s);
        // The wishlist and the collection are apart: adding to one leaves the other.
        QVERIFY(offersAdd(view()));
    }

    void wishlistEntryHasNoThemeNameWhenTheCatalogLacksTheTheme()
    {
        m_view = makeView(orphan());
        view().toggleWishlist();
        const QList<WishlistItem> wishes = wishesFor(u"9999-1"_s);
        QCOMPARE(wishes.size(), 1);
        QVERIFY(!wishes.constFirst().themeName);
        QVERIFY(!wishes.constFirst().imageURL);
    }

    void wishlistEntryHasNoThemeNameWithoutACatalog()
    {
        RebrickableCatalog::replaceShared(nullptr);
        view().toggleWishlist();
        const QList<WishlistItem> wishes = wishesFor(u"75192-1"_s);
        QCOMPARE(wishes.size(), 1);
        QVERIFY(!wishes.constFirst().themeName);
        QCOMPARE(wishes.constFirst().setName, u"Millennium Falcon"_s);
    }

    void twoEntriesForOneNumberLeaveOneAfterARemoval()
    {
        const WishlistItem first = saveWish(u"75192-1"_s);
        const WishlistItem second = saveWish(u"75192-1"_s);
        QCOMPARE(view().wishlistEntries().size(), 2);
        view().toggleWishlist();
        const QList<WishlistItem> left = wishesFor(u"75192-1"_s);
        QCOMPARE(left.size(), 1);
        QCOMPARE(left.constFirst().objectID, second.objectID);
        QVERIFY(left.constFirst().objectID != first.objectID);
        QCOMPARE(view().wishlistButton()->text(), u"Remove from Wishlist"_s);
    }

    void addingToTheCollectionLeavesTheWishlistEntry()
    {
        saveWish(u"75192-1"_s);
        view().addToCollection();
        QTRY_VERIFY(!view().isAdding());
        QCOMPARE(wishesFor(u"75192-1"_s).size(), 1);
        QCOMPARE(view().wishlistButton()->text(), u"Remove from Wishlist"_s);
    }

    void anAddStillRunningWhenAnotherSetIsShownEndsInTheStoreOnly()
    {
        view().setSyncOperation(m_lookups.heldSync([this](QString number) { return m_sync->syncSet(std::move(number)); }));
        QSignalSpy added(&view(), &CatalogSetDetailView::copyAdded);
        view().addToCollection();
        const int syncCall = lastCall();
        view().showCatalogSet(castle());
        QVERIFY(!view().isAdding());
        m_lookups.release(syncCall);
        QTRY_COMPARE(added.count(), 1);
        QCOMPARE(copiesOf(u"75192-1"_s).size(), 1);
        QVERIFY(!view().addedSet());
        QVERIFY(offersAdd(view()));
    }

    void pictureComesThroughTheImageCacheAndAClickOpensThePreview()
    {
        ServedPicture served;
        QVERIFY(showFalconWithPicture(served, TestPictures::png(QSize(320, 240))));
        QTRY_COMPARE(view().picture()->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(view().picture()->image().size(), QSize(320, 240));

        QVERIFY(!view().showImagePreview());
        QTest::mouseClick(view().picture(), Qt::LeftButton);
        QVERIFY(view().showImagePreview());
        SetImagePreviewWindow *preview = view().imagePreviewWindow();
        QVERIFY(preview && preview->isVisible() && preview->isWindow());
        QCOMPARE(preview->windowTitle(), u"Millennium Falcon"_s);
        QTRY_COMPARE(preview->picture()->phase(), CachedAsyncImage::Phase::success);
        QTest::keyClick(preview, Qt::Key_Escape);
        QVERIFY(!preview->isVisible());
        QVERIFY(!view().showImagePreview());
        QCOMPARE(served.server.requestCount(u"/media/sets/75192-1.jpg"_s), 1);
    }

    // The detail opens with the set's picture at the top, across the column: a large
    // stand-in while none is known, the set's own picture scaled into it once it is.
    void pictureSitsAtTheTopAcrossTheColumnAndFillsItOnceKnown()
    {
        auto placement = [this] {
            QWidget *picture = view().picture();
            return QRect(picture->mapTo(&view(), QPoint(0, 0)), picture->size());
        };
        CatalogSetResult unknown = falcon();
        unknown.imgURL.reset();
        view().showCatalogSet(unknown);
        const QRect standIn = placement();
        QVERIFY2(standIn.top() <= 24, qPrintable(u"top %1"_s.arg(standIn.top())));
        QVERIFY(standIn.width() >= view().width() - 60);
        QVERIFY(standIn.height() >= 240);

        const QColor brick(0, 90, 170);
        ServedPicture served;
        QVERIFY(showFalconWithPicture(served, TestPictures::png(QSize(1200, 900), brick)));
        QTRY_COMPARE(view().picture()->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(placement(), standIn);
        // Scaled to the stand-in's height: the middle of the area is the picture's colour.
        const QImage shown = view().picture()->grab().toImage();
        QCOMPARE(shown.pixelColor(shown.width() / 2, shown.height() / 2), brick);
        QCOMPARE(shown.pixelColor(shown.width() / 2, 2), brick);
    }

    void spaceOnTheFocusedPictureOpensThePreview()
    {
        view().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view()));
        view().picture()->setFocus(Qt::TabFocusReason);
        QTest::keyClick(view().picture(), Qt::Key_Space);
        QVERIFY(view().showImagePreview());
        view().closeImagePreview();
        QVERIFY(!view().showImagePreview());
    }

    void everyActionHasAWindowShortcutNamedInItsToolTip()
    {
        const QList<std::pair<QAction *, QKeySequence>> expected{
            {view().addToCollectionAction(), QKeySequence(u"Ctrl+Shift+A"_s)},
            {view().viewInCollectionAction(), QKeySequence(u"Ctrl+Shift+C"_s)},
            {view().wishlistAction(), QKeySequence(u"Ctrl+Shift+W"_s)},
            {view().imagePreviewAction(), QKeySequence(u"Ctrl+Shift+Y"_s)},
        };
        for (const auto &[action, shortcut] : expected) {
            QCOMPARE(action->shortcut(), shortcut);
            QCOMPARE(action->shortcutContext(), Qt::WindowShortcut);
        }
        QVERIFY(view().addToCollectionButton()->toolTip().contains(u"Ctrl+Shift+A"_s));
        QVERIFY(view().viewInCollectionButton()->toolTip().contains(u"Ctrl+Shift+C"_s));
        QVERIFY(view().wishlistButton()->toolTip().contains(u"Ctrl+Shift+W"_s));
        QVERIFY(view().picture()->parentWidget()->toolTip().contains(u"Ctrl+Shift+Y"_s));
        for (QWidget *button : {static_cast<QWidget *>(view().addToCollectionButton()),
                                static_cast<QWidget *>(view().wishlistButton()), static_cast<QWidget *>(view().picture())})
            QVERIFY(button->focusPolicy() & Qt::TabFocus);
    }

    void shortcutsAddTheSetToggleTheWishlistAndGoToTheCopy()
    {
        view().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view()));
        QTest::keyClick(&view(), Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(wishesFor(u"75192-1"_s).size(), 1);
        QTest::keyClick(&view(), Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(view().addedSet());
        QSignalSpy requested(&view(), &CatalogSetDetailView::viewInCollectionRequested);
        QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(requested.count(), 1);
        QTest::keyClick(&view(), Qt::Key_Y, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(view().showImagePreview());
        view().closeImagePreview();
    }
};

QTEST_MAIN(CatalogSetDetailViewTest)
#include "CatalogSetDetailViewTest.moc"
