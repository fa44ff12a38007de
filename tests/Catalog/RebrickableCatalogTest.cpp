// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFuture>
#include <QTemporaryDir>
#include <QTest>
#include <QtConcurrent/QtConcurrentRun>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

QStringList numbers(const QList<CatalogSetResult> &results)
{
    QStringList list;
    for (const CatalogSetResult &result : results)
        list << result.setNum;
    return list;
}

// A copy of the catalog without its full-text table, as an older file would be.
QString copyWithoutFullText(const QString &source, const QString &target)
{
    QFile::remove(target);
    QFile::copy(source, target);
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(target).constData(), &db);
    sqlite3_exec(db, "DROP TABLE sets_fts", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return target;
}

} // namespace

// Holds the lock of the connection that searches use, as a long search would.
class RebrickableCatalogTestAccess
{
public:
    static QMutex &searchLock(const RebrickableCatalog &catalog) { return catalog.m_searches.lock; }
};

class RebrickableCatalogTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::shared_ptr<RebrickableCatalog> m_catalogWithoutFullText;
    QString m_databasePath;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n2,Ultimate Collector Series,1\n3,Episode IV,1\n4,Deep,3\n"
                                     "5,Castle,\n6,Empty Theme,\n7,Orphan child,999\n8,Empty parent,\n9,Leaf,8\n");
        fixture.addRows(u"sets"_s,
                        "75192-1,Millennium Falcon,2017,2,7541,https://cdn.rebrickable.com/media/sets/75192-1.jpg\n"
                        "75257-1,Millennium Falcon,2019,3,1351,https://cdn.rebrickable.com/media/sets/75257-1.jpg\n"
                        "7965-1,Millennium Falcon,2011,3,1254,\n"
                        "2101-1,Technic Set,1980,5,10,\n"
                        "1999-1,Castle 1999 Edition,2005,5,100,\n"
                        "9999-1,Year Ninety-Nine,1999,5,1,\n"
                        "10305-1,Lion Knights' Castle,2019,5,4514,\n"
                        "9000-1,Deep Thing,2019,4,5,\n"
                        "6000-1,Box () Special,2000,5,3,\n"
                        "7000-1,Orphan Set,2001,7,1,\n"
                        "8000-1,Leaf Set,1950,9,1,\n"
                        "5000-1,Old Castle,1950,5,1,\n"
                        "21-1,Small Set,1960,5,2,\n");
        fixture.addRows(u"inventories"_s, "1,1,75192-1\n2,2,75192-1\n3,1,7965-1\n");
        fixture.addRows(u"inventory_parts"_s,
                        "1,3001,0,4,False,https://cdn.rebrickable.com/media/parts/ldraw/0/3001.png\n"
                        "2,3002,0,2,False,https://cdn.rebrickable.com/media/parts/ldraw/0/3002.png\n"
                        "2,3003,1,1,True,\n"
                        "2,3004,1,1,False,https://img.example.org/elsewhere.png\n");
        fixture.addRows(u"colors"_s, "0,Black,05131D,False\n47,Trans-Clear,FCFCFC,True\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n");
        fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n");
        QVERIFY(m_directory.isValid());
        m_databasePath = fixture.build(m_directory.path() + u"/catalog"_s);
        m_catalog = RebrickableCatalog::openFile(m_databasePath);
        QVERIFY(m_catalog);
        m_catalogWithoutFullText =
            RebrickableCatalog::openFile(copyWithoutFullText(m_databasePath, m_directory.path() + u"/nofts.sqlite"_s));
        QVERIFY(m_catalogWithoutFullText);
    }

    void openedFileReportsSchemaVersionAndFullText()
    {
        QCOMPARE(m_catalog->schemaVersion(), 2);
        QVERIFY(m_catalog->hasFTS());
        QVERIFY(!m_catalogWithoutFullText->hasFTS());
    }

    void yearAloneListsThatYearByYearAndName()
    {
        QCOMPARE(numbers(m_catalog->searchSets(u"2019"_s, 1000)), (QStringList{u"9000-1"_s, u"10305-1"_s, u"75257-1"_s}));
        QCOMPARE(numbers(m_catalog->searchSets(u"1950"_s, 1000)), (QStringList{u"8000-1"_s, u"5000-1"_s}));
    }

    void fourDigitsOutsideTheYearRangeAreASetNumberPrefix()
    {
        QCOMPARE(numbers(m_catalog->searchSets(u"2101"_s, 1000)), QStringList{u"2101-1"_s});
        QCOMPARE(numbers(m_catalog->searchSets(u"7965"_s, 1000)), QStringList{u"7965-1"_s});
    }

    void wordAndYearMatchTheTextWithinThatYear()
    {
        QCOMPARE(numbers(m_catalog->searchSets(u"falcon 2019"_s, 1000)), QStringList{u"75257-1"_s});
    }

    void wordsArePrefixMatchesAndAllMustMatch()
    {
        QCOMPARE(numbers(m_catalog->searchSets(u"mill fal"_s, 1000)).size(), 3);
        QVERIFY(m_catalog->searchSets(u"millennium castle"_s, 1000).isEmpty());
    }

    void queryOfOnlyRemovedCharactersFallsBackWithItsTokensUntouched()
    {
        QCOMPARE(numbers(m_catalog->searchSets(u"()"_s, 1000)), QStringList{u"6000-1"_s});
    }

    void hyphenatedSetNumberGivesAnEmptyListNotTheFallback()
    {
        QVERIFY(m_catalog->searchSets(u"75192-1"_s, 1000).isEmpty());
    }

    void emptyQueryListsTheNewestSetsFirst()
    {
        const QList<CatalogSetResult> results = m_catalog->searchSets(u"  "_s, 3);
        QCOMPARE(numbers(results), (QStringList{u"9000-1"_s, u"10305-1"_s, u"75257-1"_s}));
    }

    void fallbackTreats1999AsTextAnd2019AsAlsoAYear()
    {
        QCOMPARE(numbers(m_catalogWithoutFullText->searchSets(u"1999"_s, 1000)), QStringList{u"1999-1"_s});
        QCOMPARE(numbers(m_catalogWithoutFullText->searchSets(u"2019"_s, 1000)),
                 (QStringList{u"9000-1"_s, u"10305-1"_s, u"75257-1"_s}));
    }

    void fallbackPercentAndUnderscoreActAsWildcards()
    {
        QCOMPARE(m_catalogWithoutFullText->searchSets(u"_"_s, 1000).size(), 13);
        QCOMPARE(numbers(m_catalogWithoutFullText->searchSets(u"Lion%Castle"_s, 1000)), QStringList{u"10305-1"_s});
    }

    void themeWithoutSubThemesSearchesThatThemeAlone()
    {
        const QList<CatalogSetResult> results = m_catalog->searchSets(5, QString(), 1000);
        QCOMPARE(results.size(), 7);
        for (const CatalogSetResult &result : results)
            QCOMPARE(result.themeID, 5);
        QCOMPARE(m_catalog->themeWithDescendants(5), QList<int>{5});
    }

    void unknownThemeIsItsOwnOnlyThemeAndGivesNoRows()
    {
        QCOMPARE(m_catalog->themeWithDescendants(12345), QList<int>{12345});
        QVERIFY(m_catalog->searchSets(12345, QString(), 1000).isEmpty());
        QVERIFY(m_catalog->searchSets(12345, u"falcon"_s, 1000).isEmpty());
    }

    void themeSearchReachesEveryDescendant()
    {
        QCOMPARE(m_catalog->themeWithDescendants(1), (QList<int>{1, 2, 3, 4}));
        QCOMPARE(numbers(m_catalog->searchSets(1, u"2019"_s, 1000)), (QStringList{u"9000-1"_s, u"75257-1"_s}));
        QCOMPARE(numbers(m_catalog->searchSets(3, u"falcon"_s, 1000)).size(), 2);
        QCOMPARE(numbers(m_catalog->searchSets(1, u"falcon 2017"_s, 1000)), QStringList{u"75192-1"_s});
        QCOMPARE(numbers(m_catalogWithoutFullText->searchSets(1, u"deep"_s, 1000)), QStringList{u"9000-1"_s});
    }

    void onlyTheHighestInventoryVersionCounts()
    {
        const QList<CatalogInventoryPartResult> parts = m_catalog->inventoryParts(u"75192-1"_s);
        QStringList partNumbers;
        for (const auto &part : parts)
            partNumbers << part.partNum;
        QCOMPARE(partNumbers, (QStringList{u"3002"_s, u"3003"_s, u"3004"_s}));
    }

    void partImagesAreRestoredAndEmptyOnesStayAbsent()
    {
        const QList<CatalogInventoryPartResult> parts = m_catalog->inventoryParts(u"75192-1"_s);
        QCOMPARE(parts[0].imgURL, u"https://cdn.rebrickable.com/media/parts/ldraw/0/3002.png"_s);
        QCOMPARE(parts[1].imgURL, std::nullopt);
        QVERIFY(parts[1].isSpare);
        QCOMPARE(parts[2].imgURL, u"https://img.example.org/elsewhere.png"_s);
        QCOMPARE(parts[0].quantity, 2);
    }

    void lookUpsReadTheirRows()
    {
        const auto set = m_catalog->set(u"75192-1"_s);
        QVERIFY(set);
        QCOMPARE(set->name, u"Millennium Falcon"_s);
        QCOMPARE(set->numParts, 7541);
        QCOMPARE(set->imgURL, u"https://cdn.rebrickable.com/media/sets/75192-1.jpg"_s);
        QCOMPARE(m_catalog->set(u"7965-1"_s)->imgURL, std::nullopt);
        QCOMPARE(m_catalog->set(u"nope"_s), std::nullopt);
        QCOMPARE(m_catalog->color(47), (CatalogColorResult{47, u"Trans-Clear"_s, u"FCFCFC"_s, true}));
        QCOMPARE(m_catalog->part(u"3001"_s), (CatalogPartResult{u"3001"_s, u"Brick 2 x 4"_s, 11}));
        QCOMPARE(m_catalog->partCategoryName(11), u"Bricks"_s);
        QCOMPARE(m_catalog->partCategoryName(12), std::nullopt);
        QCOMPARE(m_catalog->theme(1)->parentID, std::nullopt);
        QCOMPARE(m_catalog->theme(4)->parentID, 3);
        QCOMPARE(m_catalog->setCount(), 13);
    }

    void manyPartsAndColoursAreLookedUpAtOnceAndUnknownKeysLeftOut()
    {
        const QHash<QString, CatalogPartResult> parts = m_catalog->parts({u"3001"_s, u"no-such-part"_s});
        QCOMPARE(parts.size(), 1);
        QCOMPARE(parts.value(u"3001"_s), (CatalogPartResult{u"3001"_s, u"Brick 2 x 4"_s, 11}));
        const QHash<int, CatalogColorResult> colors = m_catalog->colors({0, 47, 999});
        QCOMPARE(colors.size(), 2);
        QCOMPARE(colors.value(47), (CatalogColorResult{47, u"Trans-Clear"_s, u"FCFCFC"_s, true}));
        QVERIFY(m_catalog->parts({}).isEmpty());
    }

    void lookUpByManyKeysReachesKeysBeyondTheFirstSlice()
    {
        // More keys than one statement takes: the known ones sit in the second and third slice.
        QList<int> ids;
        for (int id = 1000; id < 2200; ++id)
            ids << id;
        ids.insert(700, 0);
        ids.insert(1100, 47);
        const QHash<int, CatalogColorResult> colors = m_catalog->colors(ids);
        QCOMPARE(colors.keys().size(), 2);
        QVERIFY(colors.contains(0));
        QVERIFY(colors.contains(47));
    }

    void lookUpsAnswerWhileASearchHoldsItsConnection()
    {
        QMutexLocker searchInProgress(&RebrickableCatalogTestAccess::searchLock(*m_catalog));
        const std::shared_ptr<RebrickableCatalog> catalog = m_catalog;
        // On a worker, so that a look-up that did wait fails the test instead of hanging it.
        QFuture<QStringList> lookUps = QtConcurrent::run([catalog] {
            return QStringList{catalog->theme(2).value_or(CatalogThemeResult{}).name,
                               catalog->set(u"21-1"_s).value_or(CatalogSetResult{}).name,
                               catalog->color(0).value_or(CatalogColorResult{}).name,
                               catalog->part(u"3001"_s).value_or(CatalogPartResult{}).name,
                               catalog->partCategoryName(11).value_or(QString()),
                               catalog->themePath(4),
                               QString::number(catalog->setCount()),
                               QString::number(catalog->flatThemes().size()),
                               QString::number(catalog->themeTree().size())};
        });
        QTRY_VERIFY_WITH_TIMEOUT(lookUps.isFinished(), 5000);
        const QStringList answers = lookUps.result();
        QCOMPARE(answers.mid(0, 7), (QStringList{u"Ultimate Collector Series"_s, u"Small Set"_s, u"Black"_s,
                                                 u"Brick 2 x 4"_s, u"Bricks"_s,
                                                 u"Star Wars > Episode IV > Deep"_s, u"13"_s}));
        QVERIFY(answers.at(7).toInt() > 0);
        QVERIFY(answers.at(8).toInt() > 0);
    }

    void searchWaitsForItsConnectionAndThenAnswers()
    {
        QMutexLocker searchInProgress(&RebrickableCatalogTestAccess::searchLock(*m_catalog));
        const std::shared_ptr<RebrickableCatalog> catalog = m_catalog;
        QFuture<QList<CatalogSetResult>> search =
            QtConcurrent::run([catalog] { return catalog->searchSets(u"falcon"_s, 10); });
        QTest::qWait(100);
        QVERIFY(!search.isFinished());
        searchInProgress.unlock();
        QTRY_VERIFY_WITH_TIMEOUT(search.isFinished(), 5000);
        QCOMPARE(search.result().size(), 3);
    }

    void themePathJoinsAncestorsOutermostFirst()
    {
        QCOMPARE(m_catalog->themePath(4), u"Star Wars > Episode IV > Deep"_s);
        QCOMPARE(m_catalog->themePath(7), u"Orphan child"_s);
        QCOMPARE(m_catalog->themePath(999), QString());
    }

    void themeTreeKeepsOnlyThemesThatLeadToSets()
    {
        const QList<ThemeNode> tree = m_catalog->themeTree();
        QStringList roots;
        for (const ThemeNode &node : tree)
            roots << node.name;
        QCOMPARE(roots, (QStringList{u"Castle"_s, u"Empty parent"_s, u"Star Wars"_s}));
        QCOMPARE(tree[1].children.size(), 1);
        QCOMPARE(tree[1].children[0].name, u"Leaf"_s);
        const ThemeNode &starWars = tree[2];
        QCOMPARE(starWars.children.size(), 2);
        QCOMPARE(starWars.children[0].name, u"Episode IV"_s);
        QCOMPARE(starWars.children[0].children[0].name, u"Deep"_s);
        QCOMPARE(starWars.children[1].name, u"Ultimate Collector Series"_s);
    }

    void flatThemesListThemesWithOwnSetsByPath()
    {
        const QList<FlatThemeResult> flat = m_catalog->flatThemes();
        QStringList paths;
        for (const FlatThemeResult &theme : flat)
            paths << theme.path;
        QCOMPARE(paths, (QStringList{u"Castle"_s, u"Empty parent > Leaf"_s, u"Orphan child"_s, u"Star Wars > Episode IV"_s,
                                     u"Star Wars > Episode IV > Deep"_s, u"Star Wars > Ultimate Collector Series"_s}));
        const FlatThemeResult &castle = flat[0];
        QCOMPARE(castle.setCount, 7);
        QCOMPARE(castle.minYear, 1950);
        QCOMPARE(castle.maxYear, 2019);
        // Sub-themes' sets are not added in.
        QCOMPARE(flat[3].setCount, 2);
    }

    void bareSetNumberIsPromotedToTheFront()
    {
        QCOMPARE(numbers(m_catalog->searchSetsPromotingExactHit(u"21"_s, 1000)).first(), u"21-1"_s);
        // A hit beyond the limit is inserted in front of the results, not swapped in.
        QCOMPARE(numbers(m_catalog->searchSetsPromotingExactHit(u"21"_s, 1)), (QStringList{u"21-1"_s, u"2101-1"_s}));
        QCOMPARE(numbers(m_catalog->searchSetsPromotingExactHit(u" 21 "_s, 1000)).count(u"21-1"_s), 1);
    }

    void yearsAndSeveralWordsAreNotPromoted()
    {
        QCOMPARE(numbers(m_catalog->searchSetsPromotingExactHit(u"2019"_s, 1000)),
                 numbers(m_catalog->searchSets(u"2019"_s, 1000)));
        QList<CatalogSetResult> results;
        m_catalog->promoteExactHit(u"21 castle"_s, results);
        QVERIFY(results.isEmpty());
        m_catalog->promoteExactHit(u"   "_s, results);
        QVERIFY(results.isEmpty());
    }

    void openTriesTheUserFileFirstAndLogs()
    {
        const QString userFile = RebrickableCatalog::defaultDatabasePath();
        QDir().mkpath(QFileInfo(userFile).path());
        QVERIFY(QFile::copy(m_databasePath, userFile));
        QTest::ignoreMessage(QtInfoMsg, qPrintable(u"Rebrickable catalog loaded from: "_s + userFile));
        const auto catalog = RebrickableCatalog::open();
        QVERIFY(catalog);
        QCOMPARE(catalog->path(), userFile);
        QFile::remove(userFile);
    }

    void openReportsWhenNoCandidateExists()
    {
        QFile::remove(RebrickableCatalog::defaultDatabasePath());
        if (QFileInfo::exists(RebrickableCatalog::bundledDatabasePath()))
            QSKIP("a bundled catalog sits beside this test binary");
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(u"^Rebrickable catalog database not found\\. Searched: "_s));
        QCOMPARE(RebrickableCatalog::open(), nullptr);
    }

    void fileThatIsNoDatabaseOpensWithSchemaVersionZero()
    {
        const QString path = m_directory.path() + u"/garbage.sqlite"_s;
        QFile garbage(path);
        QVERIFY(garbage.open(QIODevice::WriteOnly));
        garbage.write(QByteArray(4096, 'x'));
        garbage.close();
        const auto catalog = RebrickableCatalog::openFile(path);
        QVERIFY(catalog);
        QCOMPARE(catalog->schemaVersion(), 0);
        QVERIFY(!catalog->hasFTS());
        QVERIFY(catalog->searchSets(u"falcon"_s, 10).isEmpty());
        QCOMPARE(catalog->setCount(), 0);
    }

    void catalogOfSchemaVersionOneStillOpens()
    {
        const QString path = m_directory.path() + u"/old.sqlite"_s;
        QVERIFY(QFile::copy(m_databasePath, path));
        sqlite3 *db = nullptr;
        sqlite3_open(QFile::encodeName(path).constData(), &db);
        sqlite3_exec(db, "PRAGMA user_version = 1", nullptr, nullptr, nullptr);
        sqlite3_close(db);
        const auto catalog = RebrickableCatalog::openFile(path);
        QVERIFY(catalog);
        QCOMPARE(catalog->schemaVersion(), 1);
    }

    void missingFileFailsToOpen()
    {
        QString error;
        QCOMPARE(RebrickableCatalog::openFile(m_directory.path() + u"/absent/none.sqlite"_s, &error), nullptr);
        QCOMPARE(error, u"Failed to open database"_s);
    }

    void replacingTheSharedInstanceKeepsTheOldOneWorkingForItsHolders()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        const std::shared_ptr<RebrickableCatalog> held = RebrickableCatalog::shared();
        RebrickableCatalog::replaceShared(m_catalogWithoutFullText);
        QCOMPARE(RebrickableCatalog::shared(), m_catalogWithoutFullText);
        QCOMPARE(held->setCount(), 13);
        RebrickableCatalog::replaceShared(nullptr);
        QCOMPARE(RebrickableCatalog::shared(), nullptr); // absent stays remembered
    }
};

QTEST_GUILESS_MAIN(RebrickableCatalogTest)
#include "RebrickableCatalogTest.moc"
