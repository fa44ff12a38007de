// SPDX-License-Identifier: GPL-3.0-or-later
// Dumps that are damaged, foreign or huge: the build either completes as it should or
// ends with its error; it never crashes or hangs.
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CSVFileError.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

using Builder = RebrickableDatabaseBuilder;

class CatalogBuildBadInputTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_output;

    QString output(const QString &name) const { return m_output.filePath(name); }

    // Builds and says how it ended: "complete" or the error's kind.
    static QString outcome(const DumpDirectory &dumps, const QString &database)
    {
        try {
            bool complete = false;
            Builder::build(dumps.path(), database, [&complete](const Builder::BuildPhase &phase) {
                complete = phase.kind == Builder::BuildPhase::Kind::complete;
            });
            return complete ? u"complete"_s : u"no completion"_s;
        } catch (const CSVFileError &error) {
            return error.kind() == CSVFileError::Kind::invalidUTF8 ? u"invalidUTF8"_s : u"file error"_s;
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
    }

    void aFileCutShortInsideAQuoteKeepsTheRowsBeforeIt()
    {
        DumpDirectory dumps;
        dumps.write(u"sets"_s, DumpDirectory::header(u"sets"_s) + "\n1-1,One,2001,1,1,\n2-1,\"Two, cut");
        const QString database = output(u"cutquote.sqlite"_s);
        QCOMPARE(outcome(dumps, database), u"complete"_s);
        // The last row holds too few fields once its quote swallowed the rest.
        QCOMPARE(CatalogTableDump::rows(database, u"sets"_s), QStringList{u"'1-1','One',2001,1,1,NULL"_s});
    }

    void aFileCutShortInsideACharacterIsNotUtf8()
    {
        DumpDirectory dumps;
        dumps.write(u"themes"_s, "id,name,parent_id\n1,Pl\xC3");
        QCOMPARE(outcome(dumps, output(u"cutchar.sqlite"_s)), u"invalidUTF8"_s);
    }

    void aFileCutShortMidRowStoresTheCompleteRows()
    {
        DumpDirectory dumps;
        dumps.write(u"inventory_parts"_s, DumpDirectory::header(u"inventory_parts"_s) + "\n1,3001,4,2,False,\n1,3002,4");
        const QString database = output(u"cutrow.sqlite"_s);
        QCOMPARE(outcome(dumps, database), u"complete"_s);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM inventory_parts"_s), u"1"_s);
    }

    void randomBytesEndTheBuildAsNotUtf8()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 20; ++round) {
            DumpDirectory dumps;
            QByteArray bytes(64 * 1024, Qt::Uninitialized);
            random.fillRange(reinterpret_cast<quint32 *>(bytes.data()), bytes.size() / 4);
            dumps.write(u"parts"_s, bytes);
            QCOMPARE(outcome(dumps, output(u"random.sqlite"_s)), u"invalidUTF8"_s);
        }
    }

    void randomTextOfTheDumpAlphabetCompletes()
    {
        static const char alphabet[] = {'1', '-', ',', '"', '\n', '\r', 'a', ' ', 'T', '+'};
        QRandomGenerator random(11);
        for (int round = 0; round < 20; ++round) {
            DumpDirectory dumps;
            for (const QString &name : {u"themes"_s, u"sets"_s, u"inventory_parts"_s, u"elements"_s}) {
                QByteArray bytes;
                for (int index = 0; index < 20000; ++index)
                    bytes.append(alphabet[random.bounded(int(sizeof alphabet))]);
                dumps.write(name, bytes);
            }
            QCOMPARE(outcome(dumps, output(u"alphabet.sqlite"_s)), u"complete"_s);
        }
    }

    void invalidUtf8AnywhereEndsTheBuild()
    {
        for (const QByteArray &bad : {QByteArray("\xFF"), QByteArray("\xC0\xAF"), QByteArray("\xED\xA0\x80"),
                                      QByteArray("\xF4\x90\x80\x80")}) {
            DumpDirectory dumps;
            dumps.write(u"minifigs"_s, DumpDirectory::header(u"minifigs"_s) + "\nfig-1,Name " + bad + ",4,\n");
            QCOMPARE(outcome(dumps, output(u"invalid.sqlite"_s)), u"invalidUTF8"_s);
        }
    }

    void aTenMegabyteSingleLineIsOnlyAHeader()
    {
        DumpDirectory dumps;
        dumps.write(u"sets"_s, QByteArray(10 * 1024 * 1024, 'x'));
        const QString database = output(u"oneline.sqlite"_s);
        QCOMPARE(outcome(dumps, database), u"complete"_s);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM sets"_s), u"0"_s);
    }

    void aTenMegabyteFieldIsStoredWhole()
    {
        DumpDirectory dumps;
        const QByteArray name(10 * 1024 * 1024, 'n');
        dumps.write(u"sets"_s, DumpDirectory::header(u"sets"_s) + "\n1-1,\"" + name + "\",2001,1,1,\n");
        const QString database = output(u"bigfield.sqlite"_s);
        QCOMPARE(outcome(dumps, database), u"complete"_s);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT length(name) FROM sets"_s), QString::number(name.size()));
    }

    void headersAloneGiveAnEmptyCatalog()
    {
        DumpDirectory dumps;
        const QString database = output(u"headers.sqlite"_s);
        QCOMPARE(outcome(dumps, database), u"complete"_s);
        QCOMPARE(CatalogTableDump::value(database, u"SELECT COUNT(*) FROM inventory_parts"_s), u"0"_s);
        QCOMPARE(CatalogTableDump::value(database, u"PRAGMA user_version"_s), u"2"_s);
    }

    void emptyFilesGiveAnEmptyCatalog()
    {
        DumpDirectory dumps;
        for (const QString &name : {u"themes"_s, u"colors"_s, u"sets"_s, u"inventory_parts"_s})
            dumps.write(name, QByteArray());
        QCOMPARE(outcome(dumps, output(u"empty.sqlite"_s)), u"complete"_s);
    }

    void aDirectoryInPlaceOfADumpEndsTheBuildWithAFileError()
    {
        DumpDirectory dumps;
        QFile::remove(dumps.filePath(u"colors.csv"_s));
        QVERIFY(QDir(dumps.path()).mkdir(u"colors.csv"_s));
        QCOMPARE(outcome(dumps, output(u"folder.sqlite"_s)), u"file error"_s);
    }
};

QTEST_GUILESS_MAIN(CatalogBuildBadInputTest)
#include "CatalogBuildBadInputTest.moc"
