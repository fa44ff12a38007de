// SPDX-License-Identifier: GPL-3.0-or-later
// What a catalog build reports about each table: rows read, stored and refused, the
// header against the expected columns, and the signs of a broken quote. The rows stored
// stay those of a build without the accounting.
#include "CatalogTableDump.h"
#include "DumpDirectory.h"
#include "TestEnvironment.h"

#include <RebrickableKit/BuildReport.h>
#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

using Builder = RebrickableDatabaseBuilder;

namespace {

// Warnings of the catalog build's log category, caught while a build runs.
QStringList &caughtWarnings()
{
    static QStringList warnings;
    return warnings;
}

void catchWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg && QByteArrayView(context.category) == "com.tessaloom.app.catalogDB")
        caughtWarnings().append(message);
}

// inventory_parts.csv with a number of plain rows, the fifth line (fourth row) replaced.
QByteArray inventoryPartsWithLineFive(const QByteArray &lineFive)
{
    QByteArray bytes = DumpDirectory::header(u"inventory_parts"_s) + '\n';
    for (int row = 1; row <= 30; ++row) {
        if (row == 4)
            bytes += lineFive + '\n';
        else
            bytes += QByteArray::number(row) + ",300" + QByteArray::number(row % 10) + ",4," + QByteArray::number(row)
                + ",False,https://cdn.rebrickable.com/media/parts/elements/" + QByteArray::number(row) + ".jpg\n";
    }
    return bytes;
}

} // namespace

class CatalogBuildReportTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_output;

    QString output(const QString &name) const { return m_output.filePath(name); }

    // Builds with the accounting, the warnings of the build caught.
    BuildReport build(const DumpDirectory &dumps, const QString &name)
    {
        caughtWarnings().clear();
        const QtMessageHandler previous = qInstallMessageHandler(catchWarning);
        const BuildReport report = Builder::build(dumps.path(), output(name));
        qInstallMessageHandler(previous);
        return report;
    }

    // Every table of two databases holds the same rows.
    static bool sameRows(const QString &first, const QString &second)
    {
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
            if (CatalogTableDump::rows(first, table.tableName) != CatalogTableDump::rows(second, table.tableName))
                return false;
        return true;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_output.isValid());
    }

    void aCleanCatalogHasEveryRowStoredAndLogsNoWarning()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        dumps.writeRows(u"part_relationships"_s, {"P,3001pr0001,3001", "M,3039,3039b"});
        const BuildReport report = build(dumps, u"clean.sqlite"_s);

        QCOMPARE(report.tables.size(), CatalogSchema::importTables().size());
        for (qsizetype index = 0; index < report.tables.size(); ++index) {
            const TableImportReport &table = report.tables.at(index);
            QCOMPARE(table.tableName, CatalogSchema::importTables().at(index).tableName);
            QCOMPARE(table.rowsStored, table.rowsRead);
            QCOMPARE(table.rowsRefused(), 0);
            QVERIFY(table.headerMatches());
            QVERIFY(table.isClean());
        }
        QVERIFY(report.isClean());
        QCOMPARE(report.table(u"sets"_s)->rowsRead, 4);
        QCOMPARE(report.table(u"inventory_parts"_s)->rowsStored, 5);
        QVERIFY(caughtWarnings().isEmpty());
    }

    void aRowWithABadNumberIsCountedAsRefusedAndLoggedInOneLine()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"themes"_s, {"1,Technic,", "x,Bad id,", "2,Space,"});
        const BuildReport report = build(dumps, u"badnumber.sqlite"_s);

        const TableImportReport themes = *report.table(u"themes"_s);
        QCOMPARE(themes.rowsRead, 3);
        QCOMPARE(themes.rowsStored, 2);
        QCOMPARE(themes.rowsRefusedByRules, 1);
        QCOMPARE(themes.rowsNotStored, 0);
        QVERIFY(!report.isClean());
        QCOMPARE(caughtWarnings(),
                 QStringList{u"Table themes: 3 rows read, 2 stored, 1 refused; 1 row refused by the row rules"_s});
    }

    void aRepeatedKeyIsCountedAsNotStoredAndLogged()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"sets"_s, {"1-1,First,2001,1,10,", "1-1,Second,2002,2,20,", "2-1,Other,2003,3,30,"});
        const BuildReport report = build(dumps, u"repeated.sqlite"_s);

        const TableImportReport sets = *report.table(u"sets"_s);
        QCOMPARE(sets.rowsRead, 3);
        QCOMPARE(sets.rowsStored, 2);
        QCOMPARE(sets.rowsNotStored, 1);
        QCOMPARE(sets.rowsRefused(), 1);
        QCOMPARE(caughtWarnings(), QStringList{u"Table sets: 3 rows read, 2 stored, 1 refused; 1 row not stored "
                                               "by SQLite (such as a repeated key)"_s});
        QCOMPARE(CatalogTableDump::value(output(u"repeated.sqlite"_s), u"SELECT name FROM sets WHERE set_num = '1-1'"_s),
                 u"First"_s);
    }

    void aRepeatedElementIgnoredByItsInsertIsCountedAsNotStored()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"elements"_s, {"1,3001,4,", "1,3002,5,", "2,3003,6,"});
        const BuildReport report = build(dumps, u"elements.sqlite"_s);

        const TableImportReport elements = *report.table(u"elements"_s);
        QCOMPARE(elements.rowsStored, 2);
        QCOMPARE(elements.rowsNotStored, 1);
        QCOMPARE(caughtWarnings().size(), 1);
        QVERIFY(caughtWarnings().first().startsWith(u"Table elements: 3 rows read, 2 stored, 1 refused"_s));
    }

    void aStrayQuoteInLineFiveIsReportedAndTheSameRowsAreStored()
    {
        DumpDirectory dumps;
        dumps.write(u"inventory_parts"_s, inventoryPartsWithLineFive("4,30\"04,4,4,False,"));
        const BuildReport report = build(dumps, u"strayquote.sqlite"_s);
        Builder::buildWithoutRowAccounting(dumps.path(), output(u"strayquote-uncounted.sqlite"_s));

        // The quote swallowed the rest of the file into one field: one row of two fields.
        const TableImportReport parts = *report.table(u"inventory_parts"_s);
        QCOMPARE(parts.rowsRead, 4);
        QCOMPARE(parts.rowsStored, 3);
        QCOMPARE(parts.rowsRefusedByRules, 1);
        QCOMPARE(parts.rowsWithOtherFieldCount, 1);
        QCOMPARE(parts.rowsSpanningLines, 1);
        QVERIFY(parts.endsInsideQuotes);
        QVERIFY(!parts.isClean());
        QCOMPARE(caughtWarnings(),
                 QStringList{u"Table inventory_parts: 4 rows read, 3 stored, 1 refused; 1 row refused by the row rules; "
                             "1 row with another number of fields than the header; 1 row spanning several lines; "
                             "the file ends inside quotes (a stray quote?)"_s});
        QCOMPARE(CatalogTableDump::rows(output(u"strayquote.sqlite"_s), u"inventory_parts"_s).size(), 3);
        QVERIFY(sameRows(output(u"strayquote.sqlite"_s), output(u"strayquote-uncounted.sqlite"_s)));
    }

    void aStrayQuoteInTheLastColumnIsReportedThoughItsRowIsStored()
    {
        DumpDirectory dumps;
        dumps.write(u"inventory_parts"_s, inventoryPartsWithLineFive("4,3004,4,4,False,https://cdn\"x"));
        const BuildReport report = build(dumps, u"lastcolumn.sqlite"_s);

        // Six fields, the last one holding the rest of the file: stored, yet not clean.
        const TableImportReport parts = *report.table(u"inventory_parts"_s);
        QCOMPARE(parts.rowsRead, 4);
        QCOMPARE(parts.rowsStored, 4);
        QCOMPARE(parts.rowsRefused(), 0);
        QCOMPARE(parts.rowsWithOtherFieldCount, 0);
        QCOMPARE(parts.rowsSpanningLines, 1);
        QVERIFY(parts.endsInsideQuotes);
        QVERIFY(!report.isClean());
        QCOMPARE(caughtWarnings().size(), 1);
        QVERIFY(caughtWarnings().first().startsWith(u"Table inventory_parts: 4 rows read, 4 stored, 0 refused; "_s));
    }

    void twoStrayQuotesAreReportedByTheRowSpanningLines()
    {
        // The second quote closes what the first opened: the file ends outside quotes and
        // the merged row has as many fields as the header.
        DumpDirectory dumps;
        dumps.writeRows(u"inventory_parts"_s, {"1,3001,4,1,False,", "2,30\"02,4,2,False,", "3,3003,4,3,False,",
                                               "4,30\"04,4,4,False,", "5,3005,4,5,False,"});
        const TableImportReport parts = *build(dumps, u"twoquotes.sqlite"_s).table(u"inventory_parts"_s);
        QCOMPARE(parts.rowsRead, 3);
        QCOMPARE(parts.rowsWithOtherFieldCount, 0);
        QCOMPARE(parts.rowsSpanningLines, 1);
        QVERIFY(!parts.endsInsideQuotes);
        QVERIFY(!parts.isClean());
    }

    void aSetsFileCutToFiveColumnsReportsTheMissingColumn()
    {
        DumpDirectory dumps;
        dumps.write(u"sets"_s, "set_num,name,year,theme_id,num_parts\n1-1,One,2001,1,10\n2-1,Two,2002,1,20\n");
        const BuildReport report = build(dumps, u"fivecolumns.sqlite"_s);

        const TableImportReport sets = *report.table(u"sets"_s);
        QCOMPARE(sets.missingColumns, QStringList{u"img_url"_s});
        QVERIFY(!sets.headerMatches());
        QCOMPARE(sets.rowsRead, 2);
        QCOMPARE(sets.rowsStored, 0);
        QCOMPARE(sets.rowsRefusedByRules, 2);
        QCOMPARE(sets.rowsWithOtherFieldCount, 0); // the rows agree with their own header
        QCOMPARE(caughtWarnings(), QStringList{u"Table sets: 2 rows read, 0 stored, 2 refused; 2 rows refused by the "
                                               "row rules; header lacks img_url"_s});
    }

    void aRenamedColumnIsReportedThoughEveryRowIsStored()
    {
        DumpDirectory dumps;
        dumps.write(u"parts"_s, "part_num,title,part_cat_id,part_material\n3001,Brick 2 x 4,11,Plastic\n");
        const BuildReport report = build(dumps, u"renamed.sqlite"_s);

        const TableImportReport parts = *report.table(u"parts"_s);
        QCOMPARE(parts.rowsStored, 1);
        QCOMPARE(parts.missingColumns, QStringList{u"name"_s});
        QVERIFY(!report.isClean());
        QCOMPARE(caughtWarnings(), QStringList{u"Table parts: 1 row read, 1 stored, 0 refused; header lacks name"_s});
    }

    void colorsWithFourExtraTrailingColumnsMatchTheHeader()
    {
        DumpDirectory dumps;
        dumps.write(u"colors"_s, "id,name,rgb,is_trans,num_parts,num_sets,y1,y2\n"
                                 "0,Black,05131D,False,1,1,1957,2026\n4,Red,C91A09,False,1,1,1957,2026\n");
        const BuildReport report = build(dumps, u"colors.sqlite"_s);

        const TableImportReport colors = *report.table(u"colors"_s);
        QVERIFY(colors.headerMatches());
        QCOMPARE(colors.rowsStored, 2);
        QVERIFY(colors.isClean());
        QVERIFY(caughtWarnings().isEmpty());
    }

    void aByteOrderMarkBeforeTheHeaderIsNoDifference()
    {
        DumpDirectory dumps;
        dumps.write(u"themes"_s, "\xEF\xBB\xBFid,name,parent_id\n1,Technic,\n");
        QVERIFY(build(dumps, u"bom.sqlite"_s).table(u"themes"_s)->isClean());
    }

    void aFileWithoutAHeaderLacksEveryColumn()
    {
        DumpDirectory dumps;
        dumps.write(u"inventories"_s, QByteArray());
        const TableImportReport inventories = *build(dumps, u"noheader.sqlite"_s).table(u"inventories"_s);
        QCOMPARE(inventories.missingColumns, (QStringList{u"id"_s, u"version"_s, u"set_num"_s}));
        QCOMPARE(inventories.rowsRead, 0);
        QCOMPARE(caughtWarnings().size(), 1);
    }

    void elementsWithoutTheirLastColumnAreWellShaped()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"elements"_s, {"300121,3001,4,3001", "303921,3039,4"});
        QVERIFY(build(dumps, u"shortelements.sqlite"_s).table(u"elements"_s)->isClean());
    }

    void rowsWithAnotherFieldCountAreReportedAndStillStored()
    {
        DumpDirectory dumps;
        dumps.writeRows(u"parts"_s, {"3001,Brick,11,Plastic", "3002,Brick,11,Plastic,extra", "3003,Brick,11,Plastic"});
        const TableImportReport parts = *build(dumps, u"otherfieldcount.sqlite"_s).table(u"parts"_s);
        QCOMPARE(parts.rowsStored, 3);
        QCOMPARE(parts.rowsWithOtherFieldCount, 1);
        QVERIFY(!parts.isClean());
    }

    void aQuotedLineBreakCountsAsARowSpanningLines()
    {
        DumpDirectory dumps;
        dumps.write(u"minifigs"_s, DumpDirectory::header(u"minifigs"_s) + "\r\nfig-1,\"Two\r\nlines\",4,\r\nfig-2,One,5,\r\n");
        const TableImportReport minifigs = *build(dumps, u"linebreak.sqlite"_s).table(u"minifigs"_s);
        QCOMPARE(minifigs.rowsRead, 2);
        QCOMPARE(minifigs.rowsStored, 2);
        QCOMPARE(minifigs.rowsSpanningLines, 1);
        QVERIFY(!minifigs.endsInsideQuotes);
    }

    void aBuildWithoutRowAccountingStoresTheSameRows()
    {
        DumpDirectory dumps;
        dumps.writeSmallCatalog();
        build(dumps, u"counted.sqlite"_s);
        Builder::buildWithoutRowAccounting(dumps.path(), output(u"uncounted.sqlite"_s));
        QVERIFY(sameRows(output(u"counted.sqlite"_s), output(u"uncounted.sqlite"_s)));
    }
};

QTEST_GUILESS_MAIN(CatalogBuildReportTest)
#include "CatalogBuildReportTest.moc"
