// SPDX-License-Identifier: GPL-3.0-or-later
// Rebrickable's set list CSV: which texts are such a file, how its rows become entries or
// skipped rows with their line numbers, and the exact file the writer makes.
#include "CSVCodec.h"
#include "RebrickableSetListFormat.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Texts built in place ("header + rows") become a QString here before the reader's view.
bool recognised(const QString &text)
{
    return RebrickableSetListFormat::recognises(text);
}

ImportedSetList readText(const QString &text)
{
    return RebrickableSetListFormat::read(text);
}

const QString header = u"Set Number,Quantity,Includes Spares,Inventory Ver"_s;

ImportedSetListEntry entry(const QString &setNumber, qint64 quantity, qsizetype lineNumber)
{
    return ImportedSetListEntry{setNumber, quantity, lineNumber};
}

// The numbers and quantities of `list`, in order, without their lines.
QList<QPair<QString, qint64>> counts(const ImportedSetList &list)
{
    QList<QPair<QString, qint64>> result;
    for (const ImportedSetListEntry &each : list.entries)
        result.append({each.setNumber, each.quantity});
    return result;
}

} // namespace

class RebrickableSetListFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theColumnNamesAreRebrickablesFour()
    {
        QCOMPARE(RebrickableSetListFormat::columnNames(),
                 (QStringList{u"Set Number"_s, u"Quantity"_s, u"Includes Spares"_s, u"Inventory Ver"_s}));
    }

    void theExactHeaderIsRecognised()
    {
        QVERIFY(recognised(header + u"\n75192-1,1,True,1\n"_s));
        QVERIFY(recognised(header));
    }

    void theHeaderInAnotherCaseIsRecognised()
    {
        QVERIFY(recognised(u"set number,QUANTITY,includes spares,INVENTORY VER\n"_s));
    }

    void theColumnsInAnotherOrderAreRecognised()
    {
        QVERIFY(recognised(u"Inventory Ver,Quantity,Set Number,Includes Spares\n"_s));
    }

    void extraColumnsAreAllowed()
    {
        QVERIFY(recognised(
            u"Name,Set Number,Quantity,Includes Spares,Inventory Ver,Notes\n"_s));
    }

    void spacesAroundTheNamesAreAllowed()
    {
        QVERIFY(recognised(u" Set Number ,\tQuantity, Includes Spares ,Inventory Ver \n"_s));
        QVERIFY(recognised(u"\"Set Number\",\" Quantity\",Includes Spares,Inventory Ver"_s));
    }

    void aByteOrderMarkBeforeTheHeaderIsAllowed()
    {
        QVERIFY(recognised(QChar(0xFEFF) + header + u"\n"_s));
    }

    void blankLinesBeforeTheHeaderAreAllowed()
    {
        QVERIFY(recognised(u"\n\r\n\n"_s + header + u"\n75192-1,1,True,1\n"_s));
    }

    void theCollectionCSVIsNotRecognised()
    {
        QVERIFY(!recognised(CSVCodec::headerLine() + u"\n"_s));
    }

    void aHeaderMissingOneOfTheFourColumnsIsNotRecognised()
    {
        QVERIFY(!recognised(u"Set Number,Quantity,Includes Spares\n"_s));
        QVERIFY(!recognised(u"Set Number,Quantity,Inventory Ver\n"_s));
        QVERIFY(!recognised(u"Set Number,Includes Spares,Inventory Ver\n"_s));
        QVERIFY(!recognised(u"Quantity,Includes Spares,Inventory Ver\n"_s));
        QVERIFY(!recognised(u"SetNumber,Quantity,Includes Spares,Inventory Ver\n"_s));
    }

    void emptyOrBlankTextIsNotRecognised()
    {
        QVERIFY(!recognised(u""_s));
        QVERIFY(!recognised(u"\n\r\n"_s));
        QVERIFY(!recognised(QString(QChar(0xFEFF))));
    }

    void theHeaderMustBeTheFirstNonBlankLine()
    {
        QVERIFY(!recognised(u"My sets\n"_s + header + u"\n"_s));
    }

    void rowsBecomeEntriesWithTheirQuantitiesAndLines()
    {
        const ImportedSetList list = readText(
            header + u"\n75192-1,1,True,1\n10294-1,3,False,2\n  6020-1 , 12 ,True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 2), entry(u"10294-1"_s, 3, 3),
                                                              entry(u"6020-1"_s, 12, 4)}));
        QVERIFY(list.skipped.isEmpty());
        QVERIFY(!list.unreadable);
    }

    void columnsAreFoundByNameWhateverTheirOrderAndCase()
    {
        const ImportedSetList list = readText(
            u"inventory ver,QUANTITY,Notes,includes spares,set number\n1,4,x,True,21330-1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"21330-1"_s, 4, 2)}));
    }

    void quotedFieldsMayHoldCommasAndQuotes()
    {
        const ImportedSetList list = readText(
            header + u"\n\"Custom, \"\"big\"\" one\",\" 7 \",True,1\n\"40\"\"1-1\",\"2\",True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"Custom, \"big\" one"_s, 7, 2),
                                                              entry(u"40\"1-1"_s, 2, 3)}));
        QVERIFY(list.skipped.isEmpty());
    }

    void aByteOrderMarkIsNotPartOfTheFirstColumn()
    {
        const ImportedSetList list = readText(QChar(0xFEFF) + header + u"\n75192-1,2,True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 2, 2)}));
    }

    void anEmptySetNumberIsSkippedWithItsLine()
    {
        const ImportedSetList list =
            readText(header + u"\n75192-1,1,True,1\n,2,True,1\n   ,abc,True,1\n"_s);
        QCOMPARE(list.entries.size(), 1);
        // Checked before the quantity: the last row reports the number, not the quantity.
        QCOMPARE(list.skipped, (QStringList{u"Line 3: missing set number"_s, u"Line 4: missing set number"_s}));
    }

    void invalidQuantitiesAreSkippedWithTheirLines()
    {
        const ImportedSetList list = readText(header + u"\n"_s
                                                                    + u"a-1,0,True,1\n"_s
                                                                    + u"b-1,-1,True,1\n"_s
                                                                    + u"c-1,2.5,True,1\n"_s
                                                                    + u"d-1,abc,True,1\n"_s
                                                                    + u"e-1,,True,1\n"_s
                                                                    + u"f-1,99999999999999999999999,True,1\n"_s
                                                                    + u"g-1,+3,True,1\n"_s
                                                                    + u"h-1,1 2,True,1\n"_s
                                                                    + u"i-1,5,True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"i-1"_s, 5, 10)}));
        QStringList expected;
        for (int line = 2; line <= 9; ++line)
            expected.append(u"Line "_s + QString::number(line) + u": invalid quantity"_s);
        QCOMPARE(list.skipped, expected);
    }

    void aRowShorterThanTheHeaderLacksTheLaterFields()
    {
        const ImportedSetList list = readText(header + u"\n75192-1,4\n10294-1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 4, 2)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 3: invalid quantity"_s}));

        const ImportedSetList reordered =
            readText(u"Quantity,Includes Spares,Inventory Ver,Set Number\n3,True,1\n"_s);
        QVERIFY(reordered.entries.isEmpty());
        QCOMPARE(reordered.skipped, (QStringList{u"Line 2: missing set number"_s}));
    }

    void blankLinesDoNotCountAsLines()
    {
        const ImportedSetList list =
            readText(u"\n\n"_s + header + u"\n\n75192-1,1,True,1\n\n\n,1,True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 2)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 3: missing set number"_s}));
    }

    void carriageReturnLineFeedFilesReadAlike()
    {
        const ImportedSetList list = readText(
            header + u"\r\n75192-1,2,True,1\r\n,1,True,1\r\n10294-1,1,True,1\r\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 2, 2), entry(u"10294-1"_s, 1, 4)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 3: missing set number"_s}));
    }

    void aRepeatedSetNumberIsKeptAsSeparateEntries()
    {
        const ImportedSetList list =
            readText(header + u"\n75192-1,1,True,1\n75192-1,2,False,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 2), entry(u"75192-1"_s, 2, 3)}));
    }

    void theMaximumQuantityIsAcceptedAndOneMoreIsSkipped()
    {
        const QString maximum = QString::number(ImportedSetList::maximumQuantity);
        const QString oneMore = QString::number(ImportedSetList::maximumQuantity + 1);
        const ImportedSetList list = readText(header + u"\n75192-1,"_s + maximum
                                                                    + u",True,1\n10294-1,"_s + oneMore + u",True,1\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, ImportedSetList::maximumQuantity, 2)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 3: invalid quantity"_s}));
    }

    void aFileThatIsNotRecognisedReadsAsNothing()
    {
        const ImportedSetList list = readText(u"id,set_number\n1,75192-1\n"_s);
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.skipped.isEmpty());
        QVERIFY(!list.unreadable);
        QVERIFY(readText(u""_s).entries.isEmpty());
    }

    void theWriterWritesTheHeaderAndOneLinePerCount()
    {
        const QString text = RebrickableSetListFormat::write({{u"75192-1"_s, 1}, {u"10294-1"_s, 3}});
        QCOMPARE(text, u"Set Number,Quantity,Includes Spares,Inventory Ver\n"
                       u"75192-1,1,True,1\n"
                       u"10294-1,3,True,1\n"_s);
    }

    void theWriterWritesOnlyTheHeaderForNoCounts()
    {
        QCOMPARE(RebrickableSetListFormat::write({}), u"Set Number,Quantity,Includes Spares,Inventory Ver\n"_s);
    }

    void theWriterQuotesASetNumberThatNeedsIt()
    {
        const QString text = RebrickableSetListFormat::write({{u"My \"MOC\", v2"_s, 2}});
        QCOMPARE(text, u"Set Number,Quantity,Includes Spares,Inventory Ver\n"
                       u"\"My \"\"MOC\"\", v2\",2,True,1\n"_s);
    }

    void whatIsWrittenReadsBackAsTheSameCounts()
    {
        const QList<QPair<QString, qint64>> written{{u"75192-1"_s, 1},
                                                    {u"My \"MOC\", v2"_s, 2},
                                                    {u"75192-1"_s, ImportedSetList::maximumQuantity},
                                                    {u"6020"_s, 7}};
        const QString text = RebrickableSetListFormat::write(written);
        QVERIFY(recognised(text));
        const ImportedSetList list = readText(text);
        QCOMPARE(counts(list), written);
        QVERIFY(list.skipped.isEmpty());
        QCOMPARE(list.entries.last().lineNumber, 5);
    }
};

QTEST_GUILESS_MAIN(RebrickableSetListFormatTest)
#include "RebrickableSetListFormatTest.moc"
