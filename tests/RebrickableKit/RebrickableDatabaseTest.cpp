// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <RebrickableKit/DatabaseError.h>
#include <RebrickableKit/RebrickableDatabase.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

class RebrickableDatabaseTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_output;
    QString m_path;
    std::unique_ptr<RebrickableDatabase> m_database;

    static QStringList setNumbers(const QList<RebrickableSet> &sets)
    {
        QStringList numbers;
        for (const RebrickableSet &set : sets)
            numbers.append(set.setNum);
        return numbers;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        m_path = m_output.filePath(u"catalog.sqlite"_s);
        RebrickableDatabaseBuilder::build(dumps.path(), m_path);
        m_database = std::make_unique<RebrickableDatabase>(m_path);
    }

    void aSetIsFoundByItsNumber()
    {
        QCOMPARE(m_database->set(u"75192-1"_s),
                 (RebrickableSet{u"75192-1"_s, u"Millennium Falcon"_s, 2017, 171, 7541,
                                 u"https://cdn.rebrickable.com/media/sets/75192-1.jpg"_s}));
        QCOMPARE(m_database->set(u"10179-1"_s)->imgURL, std::nullopt);
    }

    void anUnknownSetNumberGivesNothingAndNoError() { QCOMPARE(m_database->set(u"99999-9"_s), std::nullopt); }

    void searchingSetsByNameMatchesAnywhereNewestFirstUpToTheLimit()
    {
        QCOMPARE(setNumbers(m_database->searchSets(u"falcon"_s, 10)), (QStringList{u"75192-1"_s, u"10179-1"_s}));
        QCOMPARE(setNumbers(m_database->searchSets(u"falcon"_s, 1)), QStringList{u"75192-1"_s});
    }

    void aPercentSignInASearchActsAsAWildcard()
    {
        QCOMPARE(setNumbers(m_database->searchSets(u"Millennium%UCS"_s, 10)), QStringList{u"10179-1"_s});
        QCOMPARE(m_database->searchSets(u"%"_s, 100).size(), 4);
        QCOMPARE(m_database->searchMinifigs(u"100%"_s, 10).size(), 1);
    }

    void setsOfAThemeComeNewestFirstAndSetsOfAYearByName()
    {
        QCOMPARE(setNumbers(m_database->setsOfTheme(171)), (QStringList{u"75192-1"_s, u"10179-1"_s}));
        QCOMPARE(setNumbers(m_database->setsOfYear(2018)), QStringList{u"42083-1"_s});
        QVERIFY(m_database->setsOfYear(1900).isEmpty());
    }

    void partsAreFoundByNumberAndByName()
    {
        QCOMPARE(m_database->part(u"3001"_s), (Part{u"3001"_s, u"Brick 2 x 4"_s, 11, u"Plastic"_s}));
        QCOMPARE(m_database->part(u"nope"_s), std::nullopt);
        QCOMPARE(m_database->searchParts(u"Brick 2 x 4"_s, 10).size(), 2);
        QCOMPARE(m_database->searchParts(u"Brick"_s, 1).size(), 1);
    }

    void colorsComeInNameOrder()
    {
        const QList<Color> colors = m_database->colors();
        QCOMPARE(colors.size(), 4);
        QCOMPARE(colors.first().name, u"Black"_s);
        QCOMPARE(m_database->color(47), (Color{47, u"Trans-Clear"_s, u"FCFCFC"_s, true}));
        QCOMPARE(m_database->color(-1)->name, u"[Unknown]"_s);
        QCOMPARE(m_database->color(12345), std::nullopt);
    }

    void themesAndTheirPaths()
    {
        QCOMPARE(m_database->themes().size(), 4);
        QCOMPARE(m_database->theme(171), (Theme{171, u"Ultimate Collector Series"_s, 158}));
        QCOMPARE(m_database->theme(1), (Theme{1, u"Technic"_s, std::nullopt}));
        QCOMPARE(m_database->themePath(171), u"Star Wars > Ultimate Collector Series"_s);
        QCOMPARE(m_database->themePath(1), u"Technic"_s);
        QCOMPARE(m_database->themePath(999), QString());
    }

    void partCategoriesAndMinifigs()
    {
        QCOMPARE(m_database->partCategory(3), (PartCategory{3, u"Bricks Sloped, Inverted"_s}));
        QCOMPARE(m_database->minifig(u"fig-000002"_s),
                 (Minifig{u"fig-000002"_s, u"Luke Skywalker 100% Pilot"_s, 5, std::nullopt}));
        QCOMPARE(m_database->searchMinifigs(u"solo"_s, 10).size(), 1);
    }

    void theInventoryOfASetIsItsHighestVersion()
    {
        QCOMPARE(m_database->inventory(u"75192-1"_s), (Inventory{2, 2, u"75192-1"_s}));
        QCOMPARE(m_database->inventory(u"none"_s), std::nullopt);
    }

    void inventoryPartsAreThoseOfTheHighestVersionWithoutImages()
    {
        const QList<InventoryPart> parts = m_database->inventoryParts(u"75192-1"_s);
        QCOMPARE(parts, (QList<InventoryPart>{{2, u"3001"_s, 4, 12, false, std::nullopt},
                                              {2, u"3039"_s, 0, 2, true, std::nullopt},
                                              {2, u"973c01"_s, 4, 1, false, std::nullopt}}));
    }

    void containedMinifigsAndSetsAreThoseOfTheHighestVersion()
    {
        QCOMPARE(m_database->inventoryMinifigs(u"75192-1"_s),
                 (QList<InventoryMinifig>{{2, u"fig-000001"_s, 1}, {2, u"fig-000002"_s, 2}}));
        QCOMPARE(m_database->inventorySets(u"75192-1"_s), (QList<InventorySet>{{2, u"42083-1"_s, 1}}));
        QVERIFY(m_database->inventorySets(u"10179-1"_s).isEmpty());
    }

    void relationshipsAreFoundFromEitherSide()
    {
        const QList<PartRelationship> child = m_database->relationships(u"3001pr0001"_s);
        const QList<PartRelationship> parent = m_database->relationships(u"3001"_s);
        QCOMPARE(child, parent);
        QCOMPARE(child, (QList<PartRelationship>{{PartRelationship::RelationType::print, u"3001pr0001"_s, u"3001"_s}}));
    }

    void elementsOfAPart()
    {
        QCOMPARE(m_database->elements(u"3001"_s),
                 (QList<Element>{{u"300121"_s, u"3001"_s, 4, u"3001"_s}, {u"300126"_s, u"3001"_s, 0, std::nullopt}}));
    }

    void countsAndYears()
    {
        QCOMPARE(m_database->setCount(), 4);
        QCOMPARE(m_database->partCount(), 4);
        QCOMPARE(m_database->years(), (QList<qint64>{2018, 2017, 2007, 1987}));
    }

    void anUnknownRelationLetterReadsAsAlternate()
    {
        const QString path = m_output.filePath(u"oddletter.sqlite"_s);
        QVERIFY(QFile::copy(m_path, path));
        {
            SQLiteConnection connection(path, SQLiteConnection::OpenMode::readWrite);
            connection.execute(u"INSERT INTO part_relationships VALUES ('Z', 'odd', 'even')"_s);
        }
        RebrickableDatabase database(path);
        QCOMPARE(database.relationships(u"odd"_s),
                 (QList<PartRelationship>{{PartRelationship::RelationType::alternate, u"odd"_s, u"even"_s}}));
    }

    void aReadOnlyFileDropsTheJournalPragmaAndStillAnswers()
    {
        const QString path = m_output.filePath(u"readonly.sqlite"_s);
        QVERIFY(QFile::copy(m_path, path));
        QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther));
        RebrickableDatabase database(path);
        QCOMPARE(database.setCount(), 4);
        QCOMPARE(database.set(u"42083-1"_s)->name, u"Bugatti Chiron"_s);
    }

    void openingAMissingFileThrows()
    {
        QVERIFY_THROWS_EXCEPTION(SQLiteError, RebrickableDatabase(m_output.filePath(u"missing.sqlite"_s)));
    }

    void aQueryOnAFileWithoutTheTablesThrowsPrepareFailed()
    {
        const QString path = m_output.filePath(u"bare.sqlite"_s);
        { SQLiteConnection create(path, SQLiteConnection::OpenMode::create); create.execute(u"CREATE TABLE x (y)"_s); }
        RebrickableDatabase database(path);
        try {
            database.setCount();
            QFAIL("a query on a file without tables succeeded");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::prepareFailed);
        }
    }

    void withoutABundledCatalogTheDefaultOpeningSaysWhatToRun()
    {
        if (QFileInfo::exists(RebrickableDatabase::bundledDatabasePath()))
            QSKIP("a catalog has been built into the source tree");
        try {
            RebrickableDatabase database;
            QFAIL("opened a catalog that isn't there");
        } catch (const DatabaseError &error) {
            QCOMPARE(error.kind(), DatabaseError::Kind::notFound);
            QCOMPARE(error.description(),
                     u"Bundled rebrickable.sqlite not found. Run `rebrickable-fetch` then `rebrickable-build-db` first."_s);
        }
    }
};

QTEST_GUILESS_MAIN(RebrickableDatabaseTest)
#include "RebrickableDatabaseTest.moc"
