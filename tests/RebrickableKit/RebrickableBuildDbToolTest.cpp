// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
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

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
    }

    void buildsTheCatalogAndPrintsItsPhasesSizeAndDuration()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
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
        good.writeSmallCatalog();
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
};

QTEST_GUILESS_MAIN(RebrickableBuildDbToolTest)
#include "RebrickableBuildDbToolTest.moc"
