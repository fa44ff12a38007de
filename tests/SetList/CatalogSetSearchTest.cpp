// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/RebrickableCatalog.h"
#include "ViewModels/CatalogSetSearch.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList numbers(const QList<CatalogSetResult> &results)
{
    QStringList list;
    for (const CatalogSetResult &result : results)
        list << result.setNum;
    return list;
}

const QList<SortDescriptor> yearAscending{{u"year"_s, true}, {u"name"_s, true}};

} // namespace

class CatalogSetSearchTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;

    static CatalogSetSearch::Outcome search(const CatalogSetSearch::Request &request)
    {
        const std::atomic_bool notCancelled(false);
        return CatalogSetSearch::run(request, notCancelled);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n2,Ultimate Collector Series,1\n5,Castle,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,2,7541,\n"
                                   "75257-1,Millennium Falcon,2019,1,1351,\n"
                                   "7965-1,Millennium Falcon,2011,1,1254,\n"
                                   "10305-1,Lion Knights' Castle,2019,5,4514,\n"
                                   "1999-1,Castle 1999 Edition,2005,5,100,\n"
                                   "9999-1,Year Ninety-Nine,1999,5,1,\n"
                                   "4000-1,Ghost Theme Set,2001,77,10,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init() { RebrickableCatalog::replaceShared(m_catalog); }
    void cleanupTestCase() { RebrickableCatalog::replaceShared(nullptr); }

    void resultsComeInTheRequestedOrder()
    {
        CatalogSetSearch::Request request{u"falcon"_s, std::nullopt, yearAscending, {}};
        QCOMPARE(numbers(search(request).results), (QStringList{u"7965-1"_s, u"75192-1"_s, u"75257-1"_s}));
        request.sortOrder = {{u"numParts"_s, false}};
        QCOMPARE(numbers(search(request).results), (QStringList{u"75192-1"_s, u"75257-1"_s, u"7965-1"_s}));
    }

    void aThemeLimitsTheSearchToItAndItsDescendants()
    {
        const CatalogSetSearch::Request request{QString(), 1, yearAscending, {}};
        QCOMPARE(numbers(search(request).results), (QStringList{u"7965-1"_s, u"75192-1"_s, u"75257-1"_s}));
    }

    void aTypedSetNumberMissedByTheTextSearchIsAddedAndThenSorted()
    {
        // "1999" reads as a year to the text search, which misses the set numbered 1999-1.
        QVERIFY(!numbers(m_catalog->searchSets(u"1999"_s, 1000)).contains(u"1999-1"_s));
        const CatalogSetSearch::Request request{u"1999"_s, std::nullopt, yearAscending, {}};
        QCOMPARE(numbers(search(request).results), (QStringList{u"9999-1"_s, u"1999-1"_s}));
    }

    void themeNamesAreLookedUpOnlyForThemesTheCallerDoesNotKnow()
    {
        const CatalogSetSearch::Request request{u"falcon"_s, std::nullopt, yearAscending, QSet<int>{1}};
        const CatalogSetSearch::Outcome outcome = search(request);
        QCOMPARE(outcome.themeNames.keys(), QList<int>{2});
        QCOMPARE(outcome.themeNames.value(2), std::optional<QString>(u"Ultimate Collector Series"_s));
    }

    void aThemeTheCatalogDoesNotNameMapsToNothing()
    {
        const CatalogSetSearch::Request request{u"ghost"_s, std::nullopt, yearAscending, {}};
        const CatalogSetSearch::Outcome outcome = search(request);
        QCOMPARE(numbers(outcome.results), QStringList{u"4000-1"_s});
        QVERIFY(outcome.themeNames.contains(77));
        QCOMPARE(outcome.themeNames.value(77), std::nullopt);
    }

    void aCancelledSearchStopsBeforeLookingUpThemeNames()
    {
        const std::atomic_bool cancelled(true);
        const CatalogSetSearch::Request request{u"falcon"_s, std::nullopt, yearAscending, {}};
        QVERIFY(CatalogSetSearch::run(request, cancelled).themeNames.isEmpty());
    }

    void withoutACatalogTheOutcomeIsEmpty()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const CatalogSetSearch::Outcome outcome = search({u"falcon"_s, std::nullopt, yearAscending, {}});
        QVERIFY(outcome.results.isEmpty());
        QVERIFY(outcome.themeNames.isEmpty());
    }
};

QTEST_GUILESS_MAIN(CatalogSetSearchTest)
#include "CatalogSetSearchTest.moc"
