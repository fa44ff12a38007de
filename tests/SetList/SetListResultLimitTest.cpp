// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CatalogSetSearch.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/SetListView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLabel>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;

namespace {
// More sets of one year and theme than the list's limit, as "2019" finds in the full catalog.
constexpr int packCount = 1107;
} // namespace

// A catalog list that the result limit cuts says so, counts every match, and shows them
// all on request until the search or the selection changes. Over a generated catalog of
// 1,110 sets.
class SetListResultLimitTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<SetListViewModel> m_model;
    std::unique_ptr<SetListView> m_view;

    SetListViewModel &model() { return *m_model; }
    QLabel *notice() { return m_view->limitNotice(); }

    void search(const QString &text)
    {
        model().setSearchText(text);
        model().runCatalogSearch();
        QTRY_VERIFY(!model().isCatalogSearchRunning());
    }

    void selectCatalog(const SidebarItem &item)
    {
        model().sidebarSelectionChanged(item);
        m_view->setSidebarSelection(item);
        QTRY_VERIFY(!model().isCatalogSearchRunning());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n5,Castle,\n");
        QByteArray sets;
        for (int index = 1; index <= packCount; ++index)
            sets += "7" + QByteArray::number(10000 + index) + "-1,Pack " + QByteArray::number(index) + ",2019,1,10,\n";
        sets += "6080-1,King's Castle,1984,5,674,\n"
                "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                "375-2,Castle,1978,5,767,\n";
        fixture.addRows(u"sets"_s, sets);
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        QSettings().clear();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_model = std::make_unique<SetListViewModel>(m_store->container());
        m_view = std::make_unique<SetListView>(*m_model);
        selectCatalog(SidebarItem(SidebarItem::Kind::catalogAll));
    }

    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void theCatalogCountsEveryMatchOfASearchWithoutReadingThem()
    {
        QCOMPARE(m_catalog->searchSetCount(u"2019"_s), packCount);
        QCOMPARE(m_catalog->searchSetCount(u"castle"_s), 3);
        QCOMPARE(m_catalog->searchSetCount(1, QString()), packCount);
        QCOMPARE(m_catalog->searchSetCount(5, u"lion"_s), 1);
        QCOMPARE(m_catalog->searchSetCount(QString()), packCount + 3);
    }

    void aListCutByTheLimitKnowsHowManySetsMatchInAll()
    {
        search(u"2019"_s);
        QCOMPARE(model().catalogResults().size(), CatalogSetSearch::resultLimit);
        QCOMPARE(model().catalogTotalCount(), packCount);
        QVERIFY(model().isCatalogListCut());
    }

    void aListWithinTheLimitIsNotCut()
    {
        search(u"castle"_s);
        QCOMPARE(model().catalogResults().size(), 3);
        QCOMPARE(model().catalogTotalCount(), 3);
        QVERIFY(!model().isCatalogListCut());
        QVERIFY(notice()->isHidden());
    }

    void theNoticeSaysHowManySetsTheListShowsOfHowMany()
    {
        search(u"2019"_s);
        QVERIFY(!notice()->isHidden());
        QCOMPARE(notice()->text(),
                 u"1,000 of 1,107 sets — refine the search or <a href=\"showAll\">show all</a>"_s);
    }

    void theNoticeWritesItsNumbersInTheUsersFormat()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        search(u"2019"_s);
        QVERIFY(notice()->text().startsWith(u"1.000 of 1.107 sets"_s));
    }

    void showAllListsEveryMatchAndTheNoticeGoes()
    {
        search(u"2019"_s);
        Q_EMIT notice()->linkActivated(u"showAll"_s);
        QTRY_COMPARE(model().catalogResults().size(), packCount);
        QTRY_VERIFY(!model().isCatalogSearchRunning());
        QVERIFY(model().isCatalogLimitLifted());
        QVERIFY(!model().isCatalogListCut());
        QVERIFY(notice()->isHidden());
    }

    void theLimitStaysLiftedWhenTheSortChanges()
    {
        search(u"2019"_s);
        model().showAllCatalogResults();
        QTRY_COMPARE(model().catalogResults().size(), packCount);
        model().setCatalogSortAscending(!model().catalogSortAscending());
        QTRY_VERIFY(!model().isCatalogSearchRunning());
        QCOMPARE(model().catalogResults().size(), packCount);
    }

    void theLimitComesBackWhenTheSearchChanges()
    {
        search(u"2019"_s);
        model().showAllCatalogResults();
        QTRY_COMPARE(model().catalogResults().size(), packCount);
        search(u"pack 2019"_s);
        QVERIFY(!model().isCatalogLimitLifted());
        QCOMPARE(model().catalogResults().size(), CatalogSetSearch::resultLimit);
        QCOMPARE(model().catalogTotalCount(), packCount);
        QVERIFY(!notice()->isHidden());
    }

    void theLimitComesBackWhenTheSelectionChanges()
    {
        model().showAllCatalogResults();
        QTRY_COMPARE(model().catalogResults().size(), packCount + 3);
        selectCatalog(SidebarItem::catalogTheme(1, u"Star Wars"_s));
        QVERIFY(!model().isCatalogLimitLifted());
        QCOMPARE(model().catalogResults().size(), CatalogSetSearch::resultLimit);
        QCOMPARE(model().catalogTotalCount(), packCount);
        QVERIFY(notice()->text().startsWith(u"1,000 of 1,107 sets"_s));
    }

    void theCollectionsListsShowNoNotice()
    {
        search(u"2019"_s);
        QVERIFY(!notice()->isHidden());
        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
        QVERIFY(notice()->isHidden());
    }
};

QTEST_MAIN(SetListResultLimitTest)
#include "SetListResultLimitTest.moc"
