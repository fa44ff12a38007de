// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class RebrickableBuildDbToolTest : public QObject
{
    Q_OBJECT

private:
    struct Run {
        int exitCode = -1;
        QString output;
        QString errors;
    };

    QTemporaryDir m_output;

    static Run run(const QStringList &arguments)
    {
        QProcess process;
        process.start(QStringLiteral(REBRICKABLE_BUILD_DB), arguments);
        if (!process.waitForFinished(120000))
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    // The small catalog without its one refused relationship row: every row is stored.
    static void writeCleanCatalog(DumpDirectory &dumps)
    {
        dumps.writeSmallCatalog();
        dumps.writeRows(u"part_relationships"_s, {"P,3001pr0001,3001", "M,3039,3039b"});
    }

    // inventory_parts.csv of thirty rows whose fifth line holds a stray quote, which
    // swallows the rest of the file into one field.
    static QByteArray inventoryPartsWithAStrayQuote()
    {
        QByteArray bytes = DumpDirectory::header(u"inventory_parts"_s) + '\n';
        for (int row = 1; row <= 30; ++row)
            bytes += QByteArray::number(row) + (row == 4 ? ",30\"04" : ",3004") + ",4,1,False,\n";
        return bytes;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
    }

    void buildsTheCatalogAndPrintsItsPhasesSizeAndDuration()
    {
        DumpDirectory dumps;
        writeCleanCatalog(dumps);
        const QString database = m_output.filePath(u"built.sqlite"_s);
        const Run result = run({dumps.path(), database});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.output.contains(u"Importing themes (0%)"_s));
        QVERIFY(result.output.contains(u"Importing inventory_parts (25%)"_s));
        QVERIFY(result.output.contains(u"Creating indexes and full-text search"_s));
        QVERIFY(result.output.contains(u"Vacuuming"_s));
        QVERIFY(result.output.contains(u"Built "_s));
        QVERIFY(result.output.contains(QString::number(QFileInfo(database).size()) + u" bytes) in "_s));
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sets"_s), u"4"_s);
        QVERIFY(!QFileInfo::exists(database + u".building"_s));
    }

    void withoutTwoArgumentsItShowsItsUsage()
    {
        const Run result = run({u"only-one"_s});
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.errors.contains(u"CSV_DIR"_s));
    }

    void aMissingDirectoryIsNamedAndFails()
    {
        const QString missing = m_output.filePath(u"no-such-dumps"_s);
        const Run result = run({missing, m_output.filePath(u"x.sqlite"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"CSV directory not found: "_s + missing));
        QVERIFY(!QFileInfo::exists(m_output.filePath(u"x.sqlite"_s)));
    }

    void missingDumpsAreNamedAndFail()
    {
        DumpDirectory dumps;
        QFile::remove(dumps.filePath(u"elements.csv"_s));
        QFile::remove(dumps.filePath(u"sets.csv"_s));
        const Run result = run({dumps.path(), m_output.filePath(u"y.sqlite"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"elements.csv, sets.csv"_s));
        QVERIFY(!QFileInfo::exists(m_output.filePath(u"y.sqlite"_s)));
    }

    void anOutputInAMissingFolderFails()
    {
        DumpDirectory dumps;
        const Run result = run({dumps.path(), m_output.filePath(u"missing/folder/z.sqlite"_s)});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"Output directory does not exist"_s));
    }

    void anOutputThatIsAFolderIsNotWritable()
    {
        DumpDirectory dumps;
        const QString folder = m_output.filePath(u"a-folder"_s);
        QVERIFY(QDir().mkpath(folder));
        const Run result = run({dumps.path(), folder});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"Output is not writable: "_s));
    }

    void aFailedBuildLeavesTheEarlierCatalogAndNoPartialFile()
    {
        DumpDirectory good;
        writeCleanCatalog(good);
        const QString database = m_output.filePath(u"kept.sqlite"_s);
        QCOMPARE(run({good.path(), database}).exitCode, 0);

        DumpDirectory bad;
        bad.write(u"parts"_s, "part_num,name,part_cat_id,part_material\n3001,Br\xFF" "ck,11,Plastic\n");
        const Run result = run({bad.path(), database});
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.errors.contains(u"CSV file is not valid UTF-8: "_s));
        QVERIFY(!QFileInfo::exists(database + u".building"_s));
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sets"_s), u"4"_s);
    }

    void printsTheRowsReadStoredAndRefusedOfEachTable()
    {
        DumpDirectory dumps;
        writeCleanCatalog(dumps);
        const Run result = run({dumps.path(), m_output.filePath(u"counts.sqlite"_s)});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.output.contains(u"Rows per table:"_s));
        QVERIFY(result.output.contains(QRegularExpression(u"\\n  themes +4 +4 +0\\n"_s)));
        QVERIFY(result.output.contains(QRegularExpression(u"\\n  inventory_parts +5 +5 +0\\n"_s)));
        QVERIFY(result.output.contains(QRegularExpression(u"\\n  inventory_minifigs +3 +3 +0\\n"_s)));
    }

    void aRefusedRowFailsWithItsOwnExitStatusAndLeavesTheOutputAsItWas()
    {
        DumpDirectory good;
        writeCleanCatalog(good);
        const QString database = m_output.filePath(u"strict.sqlite"_s);
        QCOMPARE(run({good.path(), database}).exitCode, 0);

        DumpDirectory dumps;
        dumps.writeSmallCatalog(); // its relationship row of letter X is refused
        const Run result = run({dumps.path(), database});
        QCOMPARE(result.exitCode, 3);
        QVERIFY(result.output.contains(QRegularExpression(u"\\n  part_relationships +3 +2 +1  1 row refused by the row rules\\n"_s)));
        QVERIFY(result.errors.contains(u"rebrickable-build-db: Rows were refused"_s));
        QVERIFY(result.errors.contains(u"--lenient"_s));
        QVERIFY(!QFileInfo::exists(database + u".building"_s));
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM part_relationships"_s), u"2"_s);
    }

    void aStrayQuoteFailsTheBuildAndLenientlyStoresTheSameRowsAsBefore()
    {
        DumpDirectory dumps;
        writeCleanCatalog(dumps);
        dumps.write(u"inventory_parts"_s, inventoryPartsWithAStrayQuote());
        const QString database = m_output.filePath(u"quote.sqlite"_s);

        const Run strict = run({dumps.path(), database});
        QCOMPARE(strict.exitCode, 3);
        QVERIFY(strict.output.contains(u"the file ends inside quotes"_s));
        QVERIFY(strict.errors.contains(u"Table inventory_parts: 4 rows read, 3 stored, 1 refused"_s));
        QVERIFY(!QFileInfo::exists(database));

        const Run lenient = run({u"--lenient"_s, dumps.path(), database});
        QCOMPARE(lenient.exitCode, 0);
        QVERIFY(lenient.output.contains(QRegularExpression(u"\\n  inventory_parts +4 +3 +1  "_s)));
        QCOMPARE(CatalogTableDump::rows(database, u"inventory_parts"_s),
                 (QStringList{u"1,'3004',4,1,0,NULL"_s, u"2,'3004',4,1,0,NULL"_s, u"3,'3004',4,1,0,NULL"_s}));
    }

    void aSetsFileCutToFiveColumnsFailsTheBuildUnlessLenient()
    {
        DumpDirectory dumps;
        writeCleanCatalog(dumps);
        dumps.write(u"sets"_s, "set_num,name,year,theme_id,num_parts\n1-1,One,2001,1,10\n");
        const QString database = m_output.filePath(u"five.sqlite"_s);

        const Run strict = run({dumps.path(), database});
        QCOMPARE(strict.exitCode, 3);
        QVERIFY(strict.output.contains(u"header lacks img_url"_s));
        QVERIFY(!QFileInfo::exists(database));

        const Run lenient = run({u"--lenient"_s, dumps.path(), database});
        QCOMPARE(lenient.exitCode, 0);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sets"_s), u"0"_s);
    }

    void theUsageNamesTheLenientFlagAndTheExitStatuses()
    {
        const Run result = run({u"--help"_s});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.output.contains(u"--lenient"_s));
        QVERIFY(result.output.contains(u"3 built but rows were refused"_s));
    }
};

QTEST_GUILESS_MAIN(RebrickableBuildDbToolTest)
#include "RebrickableBuildDbToolTest.moc"
