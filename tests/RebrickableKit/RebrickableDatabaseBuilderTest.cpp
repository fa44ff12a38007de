// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CancellationError.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/CSVFileError.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>
#include <RebrickableKit/SQLiteError.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

using Builder = RebrickableDatabaseBuilder;
using Phase = RebrickableDatabaseBuilder::BuildPhase;

class RebrickableDatabaseBuilderTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_output;

    QString output(const QString &name) const { return m_output.filePath(name); }

    static QString value(const QString &database, const QString &sql) { return CatalogTableDump::value(database, sql); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
    }

    void theBuildSendsItsPhasesInOrder()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        QList<Phase> phases;
        Builder::build(dumps.path(), output(u"phases.sqlite"_s), [&phases](const Phase &phase) { phases.append(phase); });

        QCOMPARE(phases.size(), 16);
        const double total = 1128000;
        const QList<std::pair<QString, double>> expected{
            {u"themes"_s, 0},          {u"colors"_s, 700},           {u"part_categories"_s, 900},
            {u"parts"_s, 1000},        {u"part_relationships"_s, 51000}, {u"elements"_s, 81000},
            {u"minifigs"_s, 201000},   {u"sets"_s, 216000},          {u"inventories"_s, 238000},
            {u"inventory_parts"_s, 283000}, {u"inventory_sets"_s, 1083000}, {u"inventory_minifigs"_s, 1088000}};
        for (int index = 0; index < expected.size(); ++index)
            QCOMPARE(phases.at(index), Phase::importing(expected.at(index).first, expected.at(index).second / total));
        QCOMPARE(phases.at(12), Phase::importing(QString(), 1.0));
        QCOMPARE(phases.at(13), Phase::creatingIndexes());
        QCOMPARE(phases.at(14), Phase::vacuuming());
        QCOMPARE(phases.at(15).kind, Phase::Kind::complete);
        QCOMPARE(phases.at(15).fileSize, QFileInfo(output(u"phases.sqlite"_s)).size());
        QVERIFY(phases.at(15).duration > 0);
    }

    void anImportingFractionIsNeverOneBeforeTheLastImportingMessage()
    {
        DumpDirectory dumps;
        QList<Phase> importing;
        Builder::build(dumps.path(), output(u"fractions.sqlite"_s), [&importing](const Phase &phase) {
            if (phase.kind == Phase::Kind::importing)
                importing.append(phase);
        });
        for (int index = 0; index + 1 < importing.size(); ++index) {
            QVERIFY(importing.at(index).progress < 1.0);
            QVERIFY(!importing.at(index).tableName.isEmpty());
        }
        QCOMPARE(importing.last(), Phase::importing(QString(), 1.0));
    }

    void theDatabaseHasTheSchemaIndexesFullTextAndVersion()
    {
        DumpDirectory dumps;
        const QString database = output(u"format.sqlite"_s);
        Builder::build(dumps.path(), database);
        QCOMPARE(value(database, u"PRAGMA user_version"_s), u"2"_s);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND name LIKE 'idx_%'"_s), u"16"_s);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM sqlite_master WHERE name = 'sets_fts'"_s), u"1"_s);
        QCOMPARE(value(database, u"SELECT sql FROM sqlite_master WHERE name = 'sets'"_s),
                 u"CREATE TABLE sets (set_num TEXT PRIMARY KEY, name TEXT NOT NULL, year INTEGER NOT NULL, theme_id INTEGER NOT NULL, num_parts INTEGER NOT NULL, img_url TEXT)"_s);
        QCOMPARE(value(database, u"SELECT sql FROM sqlite_master WHERE name = 'idx_sets_year_name'"_s),
                 u"CREATE INDEX idx_sets_year_name ON sets(year DESC, name ASC)"_s);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM sqlite_master WHERE type = 'trigger'"_s), u"0"_s);
        // The builder leaves the journal mode a new database has; readers choose their own.
        QCOMPARE(value(database, u"PRAGMA journal_mode"_s), u"delete"_s);
    }

    void aSetListedTwiceKeepsItsFirstRowAndTheBuildEndsNormally()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"sets"_s, {"1-1,First,2001,1,10,", "1-1,Second,2002,2,20,", "2-1,Other,2003,3,30,"});
        const QString database = output(u"twice.sqlite"_s);
        bool completed = false;
        Builder::build(dumps.path(), database, [&completed](const Phase &phase) {
            completed = completed || phase.kind == Phase::Kind::complete;
        });
        QVERIFY(completed);
        QCOMPARE(CatalogTableDump::rows(database, u"sets"_s),
                 (QStringList{u"'1-1','First',2001,1,10,NULL"_s, u"'2-1','Other',2003,3,30,NULL"_s}));
    }

    void aSetsFileOfOnlyAHeaderGivesAnEmptyTableAndANormalCompletion()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        dumps.write(u"sets"_s, "set_num,name,year,theme_id,num_parts,img_url");
        const QString database = output(u"headeronly.sqlite"_s);
        std::optional<Phase> last;
        Builder::build(dumps.path(), database, [&last](const Phase &phase) { last = phase; });
        QVERIFY(last && last->kind == Phase::Kind::complete);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM sets"_s), u"0"_s);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM themes"_s), u"4"_s);
    }

    void buildingOverAnExistingFileReplacesIt()
    {
        const QString database = output(u"replaced.sqlite"_s);
        {
            QFile old(database);
            QVERIFY(old.open(QIODevice::WriteOnly));
            old.write(QByteArray(100000, 'x'));
        }
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        Builder::build(dumps.path(), database);
        QCOMPARE(value(database, u"SELECT COUNT(*) FROM sets"_s), u"4"_s);

        DumpDirectory fewer;
        fewer.writeRows(u"sets"_s, {"9-1,Only,1999,1,1,"});
        Builder::build(fewer.path(), database);
        QCOMPARE(CatalogTableDump::rows(database, u"sets"_s), QStringList{u"'9-1','Only',1999,1,1,NULL"_s});
    }

    void withoutProgressTheBuildStoresTheSame()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        Builder::build(dumps.path(), output(u"with.sqlite"_s), [](const Phase &) { });
        Builder::build(dumps.path(), output(u"without.sqlite"_s));
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
            QCOMPARE(CatalogTableDump::rows(output(u"without.sqlite"_s), table.tableName),
                     CatalogTableDump::rows(output(u"with.sqlite"_s), table.tableName));
    }

    void withoutProgressAStopRequestStillEndsTheBuild()
    {
        DumpDirectory dumps;
        std::stop_source stop;
        stop.request_stop();
        QVERIFY_THROWS_EXCEPTION(CancellationError, Builder::build(dumps.path(), output(u"stopped.sqlite"_s), {}, stop.get_token()));
    }

    void aStopRequestedDuringATableEndsTheBuildBeforeTheNextTable()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        const QString database = output(u"stopmid.sqlite"_s);
        std::stop_source stop;
        QStringList started;
        try {
            Builder::build(dumps.path(), database, [&](const Phase &phase) {
                started.append(phase.tableName);
                if (phase.tableName == u"sets"_s)
                    stop.request_stop(); // looked at again only before the next table
            }, stop.get_token());
            QFAIL("the build went on after a stop request");
        } catch (const CancellationError &error) {
            QCOMPARE(error.description(), u"The operation was cancelled."_s);
        }
        QCOMPARE(started.last(), u"sets"_s);
        // The table under way was finished; the file is left for the caller to remove.
        QVERIFY(QFileInfo::exists(database));
    }

    void aStopRequestedAfterTheLastTableEndsTheBuildBeforeTheIndexes()
    {
        DumpDirectory dumps;
        std::stop_source stop;
        QList<Phase::Kind> kinds;
        QVERIFY_THROWS_EXCEPTION(CancellationError, Builder::build(dumps.path(), output(u"stopend.sqlite"_s), [&](const Phase &phase) {
            kinds.append(phase.kind);
            if (phase.kind == Phase::Kind::importing && phase.tableName.isEmpty())
                stop.request_stop();
        }, stop.get_token()));
        QCOMPARE(kinds.last(), Phase::Kind::importing);
        QVERIFY(!kinds.contains(Phase::Kind::creatingIndexes));
    }

    void aStopRequestedDuringTheIndexesIsNotLookedAt()
    {
        DumpDirectory dumps;
        std::stop_source stop;
        std::optional<Phase> last;
        Builder::build(dumps.path(), output(u"stoplate.sqlite"_s), [&](const Phase &phase) {
            last = phase;
            if (phase.kind == Phase::Kind::creatingIndexes)
                stop.request_stop();
        }, stop.get_token());
        QVERIFY(last && last->kind == Phase::Kind::complete);
    }

    void partImageAddressesLoseTheirPrefixOthersStayWholeAndEmptyIsNull()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"inventory_parts"_s,
                        {"1,3001,4,1,False,https://cdn.rebrickable.com/media/parts/elements/300121.jpg",
                         "1,3002,4,1,False,https://example.com/media/parts/elements/300221.jpg",
                         "1,3003,4,1,True,",
                         "1,3004,4,1,t,https://cdn.rebrickable.com/media/parts/",
                         "1,3005,4,1,False,http://cdn.rebrickable.com/media/parts/x.png"});
        const QString database = output(u"urls.sqlite"_s);
        Builder::build(dumps.path(), database);
        QCOMPARE(CatalogTableDump::rows(database, u"inventory_parts"_s),
                 (QStringList{u"1,'3001',4,1,0,'elements/300121.jpg'"_s,
                              u"1,'3002',4,1,0,'https://example.com/media/parts/elements/300221.jpg'"_s,
                              u"1,'3003',4,1,1,NULL"_s, u"1,'3004',4,1,1,''"_s,
                              u"1,'3005',4,1,0,'http://cdn.rebrickable.com/media/parts/x.png'"_s}));
    }

    void otherImageAddressesAreStoredWhole()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        const QString database = output(u"otherurls.sqlite"_s);
        Builder::build(dumps.path(), database);
        QCOMPARE(value(database, u"SELECT img_url FROM sets WHERE set_num = '75192-1'"_s),
                 u"https://cdn.rebrickable.com/media/sets/75192-1.jpg"_s);
        QCOMPARE(value(database, u"SELECT img_url FROM minifigs WHERE fig_num = 'fig-000001'"_s),
                 u"https://cdn.rebrickable.com/media/sets/fig-000001.jpg"_s);
    }

    void refusedRowsArePassedOverAndTheBuildGoesOn()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"themes"_s, {"1,Technic,", "x,Bad id,", "", "2,Sub,x", "3,Short"});
        dumps.writeRows(u"part_relationships"_s, {"P,a,b", "p,c,d", "Q,e,f", "PP,g,h", "A,i"});
        dumps.writeRows(u"elements"_s, {"1,3001,4", "2,3001,x,9", "3,3002,5,", "4,3003,6,d", "1,dup,7,"});
        const QString database = output(u"refused.sqlite"_s);
        Builder::build(dumps.path(), database);
        QCOMPARE(CatalogTableDump::rows(database, u"themes"_s), (QStringList{u"1,'Technic',NULL"_s, u"2,'Sub',NULL"_s}));
        QCOMPARE(CatalogTableDump::rows(database, u"part_relationships"_s), QStringList{u"'P','a','b'"_s});
        QCOMPARE(CatalogTableDump::rows(database, u"elements"_s),
                 (QStringList{u"'1','3001',4,NULL"_s, u"'3','3002',5,NULL"_s, u"'4','3003',6,'d'"_s}));
    }

    void textsAreStoredUpToAnEmbeddedNul()
    {
        DumpDirectory dumps;
        dumps.write(u"parts"_s, QByteArray("part_num,name,part_cat_id,part_material\n3001,Brick\0hidden,11,Plastic\n", 70));
        const QString database = output(u"nul.sqlite"_s);
        Builder::build(dumps.path(), database);
        QCOMPARE(CatalogTableDump::rows(database, u"parts"_s), QStringList{u"'3001','Brick',11,'Plastic'"_s});
    }

    void aMissingDumpEndsTheBuildWithAFileError()
    {
        DumpDirectory dumps;
        QFile::remove(dumps.filePath(u"minifigs.csv"_s));
        const QString database = output(u"missing.sqlite"_s);
        try {
            Builder::build(dumps.path(), database);
            QFAIL("a build without minifigs.csv completed");
        } catch (const CSVFileError &error) {
            QCOMPARE(error.kind(), CSVFileError::Kind::fileNotFound);
            QCOMPARE(error.description(), u"CSV file not found: "_s + dumps.filePath(u"minifigs.csv"_s));
        }
        QVERIFY(QFileInfo::exists(database)); // no clean-up: that is the caller's task
    }

    void aDumpThatIsNotUtf8EndsTheBuild()
    {
        DumpDirectory dumps;
        dumps.write(u"colors"_s, "id,name,rgb,is_trans\n1,Bl\xE4u,0000FF,False\n");
        try {
            Builder::build(dumps.path(), output(u"latin1.sqlite"_s));
            QFAIL("a Latin-1 dump was accepted");
        } catch (const CSVFileError &error) {
            QCOMPARE(error.kind(), CSVFileError::Kind::invalidUTF8);
        }
    }

    void anOutputThatCannotBeOpenedEndsTheBuildWithAnSQLiteError()
    {
        DumpDirectory dumps;
        try {
            Builder::build(dumps.path(), output(u"no/such/folder/catalog.sqlite"_s));
            QFAIL("a build into a missing folder completed");
        } catch (const SQLiteError &error) {
            QCOMPARE(error.kind(), SQLiteError::Kind::openFailed);
        }
    }

    void streamedRowsEqualThoseOfParsingWholeFilesIntoRecords()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        // Quotes, line breaks inside quotes, CR and CRLF endings, a blank line, short rows
        // and extra columns, all in one file.
        dumps.write(u"parts"_s,
                    "part_num,name,part_cat_id,part_material\r\n"
                    "a1,\"Name, with comma\",1,Plastic\r\n"
                    "a2,\"Multi\nline \"\"quoted\"\"\",2,Rubber\r"
                    "\r\n"
                    "a3,ab\"cd\"ef,3,Metal,extra,columns\n"
                    "a4,short,4\n"
                    "a5,\"\",+5,\n"
                    "a6,last without break,-6,Cloth");
        const QString streamed = output(u"streamed.sqlite"_s);
        const QString byRecords = output(u"records.sqlite"_s);
        Builder::build(dumps.path(), streamed);
        CatalogTableDump::buildByRecords(dumps.path(), byRecords);
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
            QCOMPARE(CatalogTableDump::rows(streamed, table.tableName), CatalogTableDump::rows(byRecords, table.tableName));
        QCOMPARE(CatalogTableDump::rows(streamed, u"parts"_s).size(), 5); // the blank and the short row are refused
    }

    void rowsCrossingReadPiecesAreStoredWhole()
    {
        // Rows of multi-byte names and quoted line breaks, many megabytes of them, so that
        // the 1 MiB pieces of the streaming read end inside quotes, between CR and LF and
        // inside characters.
        DumpDirectory dumps;
        QByteArray sets = DumpDirectory::header(u"sets"_s) + "\r\n";
        int number = 0;
        while (sets.size() < 3 * 1024 * 1024 + 5000) {
            ++number;
            const QByteArray padding(number % 7, 'x');
            sets += QByteArray::number(number) + "-1,\"Pl\xC3\xA4tte \xE2\x80\x93 \xF0\x9F\xA7\xB1 " + padding
                + "\r\nzweite Zeile, \"\"zitiert\"\"\"," + QByteArray::number(1950 + number % 70) + ",1,"
                + QByteArray::number(number) + "," + (number % 3 ? "\r\n" : "\n");
        }
        dumps.write(u"sets"_s, sets);
        const QString streamed = output(u"pieces-streamed.sqlite"_s);
        const QString byRecords = output(u"pieces-records.sqlite"_s);
        Builder::build(dumps.path(), streamed);
        CatalogTableDump::buildByRecords(dumps.path(), byRecords);
        const QStringList rows = CatalogTableDump::rows(streamed, u"sets"_s);
        QCOMPARE(rows.size(), number);
        QCOMPARE(rows, CatalogTableDump::rows(byRecords, u"sets"_s));
    }
};

QTEST_GUILESS_MAIN(RebrickableDatabaseBuilderTest)
#include "RebrickableDatabaseBuilderTest.moc"
