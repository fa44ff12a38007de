// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListViewModel.h"

#include <QAbstractItemModelTester>
#include <QSemaphore>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {

QStringList numbers(const QList<CatalogSetResult> &results)
{
    QStringList list;
    for (const CatalogSetResult &result : results)
        list << result.setNum;
    return list;
}

// Holds the only thread of the global pool, so that searches queue behind it until
// release(): the test decides when a search runs and in which order searches land.
class PoolHold
{
public:
    PoolHold()
        : m_previousMaximum(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        m_holder = QtConcurrent::run([this] {
            m_started.release();
            m_release.acquire();
        });
        m_started.acquire();
    }
    ~PoolHold()
    {
        release();
        QThreadPool::globalInstance()->setMaxThreadCount(m_previousMaximum);
    }
    void release()
    {
        if (m_released)
            return;
        m_released = true;
        m_release.release();
        m_holder.waitForFinished();
    }

private:
    int m_previousMaximum;
    QSemaphore m_started;
    QSemaphore m_release;
    QFuture<void> m_holder;
    bool m_released = false;
};

} // namespace

class SetListCatalogSearchTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<SetListViewModel> m_model;

    SetListViewModel &model() { return *m_model; }

    void waitForSearch()
    {
        QTRY_VERIFY(!m_model->isCatalogSearchRunning());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n2,Ultimate Collector Series,1\n5,Castle,\n8,Bulk,\n");
        QByteArray sets = "75192-1,Millennium Falcon,2017,2,7541,https://cdn.rebrickable.com/media/sets/75192-1.jpg\n"
                          "75257-1,Millennium Falcon,2019,1,1351,\n"
                          "7965-1,Millennium Falcon,2011,1,1254,\n"
                          "10305-1,Lion Knights' Castle,2019,5,4514,\n"
                          "1999-1,Castle 1999 Edition,2005,5,100,\n"
                          "9999-1,Year Ninety-Nine,1999,5,1,\n"
                          "4000-1,Ghost Theme Set,2001,77,10,\n";
        for (int index = 1; index <= 250; ++index)
            sets += QByteArray("9") + QByteArray::number(index) + "0-1,Brick Pack " + QByteArray::number(index) + ",2020,8,5,\n";
        for (int index = 1; index <= 150; ++index)
            sets += QByteArray("8") + QByteArray::number(index) + "0-1,Tile Pack " + QByteArray::number(index) + ",2021,8,5,\n";
        fixture.addRows(u"sets"_s, sets);
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_model = std::make_unique<SetListViewModel>(m_store->container());
    }

    void cleanup()
    {
        m_model.reset();
        m_store.reset();
        // Searches still queued finish against the catalog they hold, unseen.
        QThreadPool::globalInstance()->waitForDone();
    }

    void choosingTheWholeCatalogSearchesAtOnceWithAnEmptyText()
    {
        QSignalSpy started(&model(), &SetListViewModel::catalogSearchStarted);
        model().sidebarSelectionChanged(u"catalog_all"_s);
        QCOMPARE(started.count(), 1);
        QVERIFY(model().isCatalogList());
        waitForSearch();
        QCOMPARE(model().catalogResults().size(), 407);
        // Year ascending by default.
        QCOMPARE(model().catalogResults().first().setNum, u"9999-1"_s);
    }

    void typingFiresOneSearchAfterThePause()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        waitForSearch();
        QSignalSpy started(&model(), &SetListViewModel::catalogSearchStarted);
        model().setSearchText(u"f"_s);
        model().setSearchText(u"fa"_s);
        model().setSearchText(u"fal"_s);
        model().setSearchText(u"falcon"_s);
        QCOMPARE(started.count(), 0);
        QTRY_COMPARE(started.count(), 1);
        waitForSearch();
        QCOMPARE(numbers(model().catalogResults()), (QStringList{u"7965-1"_s, u"75192-1"_s, u"75257-1"_s}));
        QVERIFY(!started.wait(400));
        QCOMPARE(started.count(), 1);
    }

    void emptyingTheTextSearchesAtOnce()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        QSignalSpy started(&model(), &SetListViewModel::catalogSearchStarted);
        model().setSearchText(QString());
        QCOMPARE(started.count(), 1);
        waitForSearch();
        QCOMPARE(model().catalogResults().size(), 407);
    }

    void staleSearchResultThatLandsLateIsDropped()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        waitForSearch();
        QSignalSpy changed(&model(), &SetListViewModel::catalogResultsChanged);
        QList<QStringList> published;
        connect(&model(), &SetListViewModel::catalogResultsChanged, this,
                [&] { published << numbers(model().catalogResults()); });
        {
            PoolHold hold;
            model().setSearchText(u"falcon"_s);
            model().runCatalogSearch(); // queued behind the hold
            model().setSearchText(u"castle"_s);
            model().runCatalogSearch(); // the newer one, queued after it
            hold.release();             // the falcon search lands first, and late
        }
        QTRY_VERIFY(!published.isEmpty() && published.last().contains(u"10305-1"_s));
        waitForSearch();
        for (const QStringList &list : std::as_const(published))
            QVERIFY2(!list.contains(u"75192-1"_s), qPrintable(list.join(u' ')));
        QCOMPARE(numbers(model().catalogResults()), (QStringList{u"1999-1"_s, u"10305-1"_s}));
    }

    void typedExactSetNumberMissedByTheTextSearchStillAppears()
    {
        // "1999" reads as a year to the text search, which misses the set numbered 1999-1.
        QVERIFY(!numbers(m_catalog->searchSets(u"1999"_s, 1000)).contains(u"1999-1"_s));
        model().sidebarSelectionChanged(u"catalog_all"_s);
        waitForSearch();
        model().setSearchText(u"1999"_s);
        // The year sort still applies after the promotion: 1999 comes before 2005.
        QTRY_COMPARE(numbers(model().catalogResults()), (QStringList{u"9999-1"_s, u"1999-1"_s}));
    }

    void withMoreThanTwoHundredStaleResultsANewSearchEmptiesTheListAtOnce()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"brick"_s);
        QTRY_COMPARE(model().catalogResults().size(), 250);
        {
            PoolHold hold;
            model().setSearchText(u"castle"_s);
            model().runCatalogSearch();
            QVERIFY(model().catalogResults().isEmpty());
            QCOMPARE(model().catalogModel()->rowCount(), 0);
        }
        QTRY_COMPARE(model().catalogResults().size(), 2);
    }

    void withFewerThanTwoHundredStaleResultsTheOldRowsStayUntilTheNewArrive()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"tile"_s);
        QTRY_COMPARE(model().catalogResults().size(), 150);
        {
            PoolHold hold;
            model().setSearchText(u"castle"_s);
            model().runCatalogSearch();
            QCOMPARE(model().catalogResults().size(), 150);
        }
        QTRY_COMPARE(model().catalogResults().size(), 2);
    }

    void catalogThemeLimitsTheSearchToItAndItsDescendants()
    {
        model().sidebarSelectionChanged(u"catalog_theme_1"_s);
        QCOMPARE(model().currentCatalogThemeID(), std::optional<int>(1));
        waitForSearch();
        QCOMPARE(numbers(model().catalogResults()), (QStringList{u"7965-1"_s, u"75192-1"_s, u"75257-1"_s}));
        model().setSearchText(u"7965"_s);
        QTRY_COMPARE(numbers(model().catalogResults()), QStringList{u"7965-1"_s});
    }

    void changingTheThemeOrTheSortSearchesAtOnce()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        QSignalSpy started(&model(), &SetListViewModel::catalogSearchStarted);
        model().setCatalogSortAscending(false);
        QCOMPARE(started.count(), 1);
        QTRY_COMPARE(numbers(model().catalogResults()), (QStringList{u"75257-1"_s, u"75192-1"_s, u"7965-1"_s}));
        model().setCurrentCatalogThemeID(2);
        QCOMPARE(started.count(), 2);
        QTRY_COMPARE(numbers(model().catalogResults()), QStringList{u"75192-1"_s});
    }

    void clickingACatalogHeaderStoresTheSortAndResorts()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        model().catalogModel()->sort(CatalogSetListModel::PiecesColumn, Qt::DescendingOrder);
        QCOMPARE(model().catalogSortColumn(), SetListViewModel::SortColumn::pieces);
        QVERIFY(!model().catalogSortAscending());
        QCOMPARE(QSettings().value(u"catalogSortColumn"_s).toString(), u"pieces"_s);
        QCOMPARE(QSettings().value(u"catalogSortAscending"_s).toBool(), false);
        QTRY_COMPARE(numbers(model().catalogResults()), (QStringList{u"75192-1"_s, u"75257-1"_s, u"7965-1"_s}));
        QCOMPARE(CatalogSetListModel::columnOfSortOrder(model().catalogSortOrder()),
                 int(CatalogSetListModel::PiecesColumn));
    }

    void themeNamesAreCachedWithAPlaceholderForAnUnknownTheme()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"ghost"_s);
        QTRY_COMPARE(numbers(model().catalogResults()), QStringList{u"4000-1"_s});
        const QString placeholder = model().themeNameCache().value(77);
        QVERIFY(!placeholder.isEmpty());
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        QCOMPARE(model().themeNameCache().value(1), u"Star Wars"_s);
        QCOMPARE(model().themeNameCache().value(2), u"Ultimate Collector Series"_s);
        const int row = model().catalogModel()->rowOf(u"75192-1"_s);
        QCOMPARE(model().catalogModel()->index(row, CatalogSetListModel::ThemeColumn).data().toString(),
                 u"Ultimate Collector Series"_s);
    }

    void catalogSearchLeavingOneSetSelectsIt()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        waitForSearch();
        QSignalSpy selected(&model(), &SetListViewModel::catalogSetSelectedBySearch);
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        QCOMPARE(selected.count(), 0);
        model().setSearchText(u"10305"_s);
        QTRY_COMPARE(selected.count(), 1);
        QCOMPARE(selected.first().first().value<CatalogSetResult>().setNum, u"10305-1"_s);
    }

    void withoutACatalogTheSearchEmptiesTheResults()
    {
        model().sidebarSelectionChanged(u"catalog_all"_s);
        QTRY_COMPARE(model().catalogResults().size(), 407);
        RebrickableCatalog::replaceShared(nullptr);
        model().setSearchText(u"falcon"_s);
        QTRY_VERIFY(model().catalogResults().isEmpty());
    }

    void sidebarSwitchesClearTheThemeTheResultsAndTheSearch()
    {
        model().sidebarSelectionChanged(u"catalog_theme_5"_s);
        model().setSearchText(u"castle"_s);
        QTRY_COMPARE(model().catalogResults().size(), 2);
        model().sidebarSelectionChanged(u"catalog_all_themes"_s);
        QVERIFY(model().catalogResults().isEmpty());
        model().sidebarSelectionChanged(u"catalog_all"_s);
        QVERIFY(model().searchText().isEmpty());
        QCOMPARE(model().currentCatalogThemeID(), std::nullopt);
        waitForSearch();
        QCOMPARE(model().catalogResults().size(), 407);
        model().sidebarSelectionChanged(u"favorites"_s);
        QVERIFY(model().catalogResults().isEmpty());
        QVERIFY(!model().isCatalogList());
    }

    void ownedSetsAreMarkedInTheCatalogResults()
    {
        auto &context = m_store->container().viewContext();
        CatalogSet falcon;
        falcon.setNumber = u"75192-1"_s;
        falcon = context.insert(falcon);
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.catalogSet = falcon.objectID;
        context.insert(copy);
        context.save();
        model().sidebarSelectionChanged(u"catalog_all"_s);
        model().setSearchText(u"falcon"_s);
        QTRY_COMPARE(model().catalogResults().size(), 3);
        CatalogSetListModel &results = *model().catalogModel();
        QVERIFY(results.index(results.rowOf(u"75192-1"_s), 0).data(CatalogSetListModel::IsOwnedRole).toBool());
        QVERIFY(!results.index(results.rowOf(u"7965-1"_s), 0).data(CatalogSetListModel::IsOwnedRole).toBool());
    }

    void catalogResultsModelPassesTheModelTesterThroughSearches()
    {
        QAbstractItemModelTester tester(model().catalogModel(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model().sidebarSelectionChanged(u"catalog_all"_s);
        QTRY_COMPARE(model().catalogModel()->rowCount(), 407);
        model().setSearchText(u"castle"_s);
        QTRY_COMPARE(model().catalogModel()->rowCount(), 2);
        QCOMPARE(model().catalogModel()->columnCount(), int(CatalogSetListModel::ColumnCount));
        model().sidebarSelectionChanged(u"all_sets"_s);
        QCOMPARE(model().catalogModel()->rowCount(), 0);
    }
};

QTEST_MAIN(SetListCatalogSearchTest)
#include "SetListCatalogSearchTest.moc"
