// SPDX-License-Identifier: GPL-3.0-or-later
#include <RebrickableKit/CSVParser.h>
#include <RebrickableKit/CSVRowParsers.h>

#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

using Rows = QList<QStringList>;

class CSVParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyTextGivesNoRows() { QCOMPARE(CSVParser::parse(QString()), Rows()); }

    void aHeaderAloneGivesNoRows()
    {
        QCOMPARE(CSVParser::parse(u"id,name"_s), Rows());
        QCOMPARE(CSVParser::parse(u"id,name\n"_s), Rows());
        QCOMPARE(CSVParser::parse(u"id,name\r\n"_s), Rows());
    }

    void theFirstRowIsDroppedWhateverItHolds()
    {
        QCOMPARE(CSVParser::parse(u"1,2\n3,4\n"_s), (Rows{{u"3"_s, u"4"_s}}));
    }

    void aTextWithoutALastLineBreakStillGivesItsLastRow()
    {
        QCOMPARE(CSVParser::parse(u"id,name\n1,a\n2,b"_s), (Rows{{u"1"_s, u"a"_s}, {u"2"_s, u"b"_s}}));
    }

    void aLineBreakAtTheEndAddsNoPhantomRow()
    {
        QCOMPARE(CSVParser::parse(u"id,name\n1,a\n"_s), (Rows{{u"1"_s, u"a"_s}}));
    }

    void carriageReturnLineFeedEndsARow()
    {
        QCOMPARE(CSVParser::parse(u"id,name\r\n1,2\r\n"_s), (Rows{{u"1"_s, u"2"_s}}));
    }

    void aLoneCarriageReturnEndsARowToo()
    {
        QCOMPARE(CSVParser::parse(u"id,name\r1,2\r"_s), (Rows{{u"1"_s, u"2"_s}}));
    }

    void carriageReturnsAndLineFeedsMixFreely()
    {
        QCOMPARE(CSVParser::parse(u"h\r\na\rb\nc\r\r\nd"_s),
                 (Rows{{u"a"_s}, {u"b"_s}, {u"c"_s}, {QString()}, {u"d"_s}}));
    }

    void aBlankLineGivesAOneFieldRow()
    {
        QCOMPARE(CSVParser::parse(u"id,name\n\n1,a\n"_s), (Rows{{QString()}, {u"1"_s, u"a"_s}}));
    }

    void everyRowParserRefusesABlankLine()
    {
        const QStringList blank{QString()};
        QVERIFY(!CSVRowParsers::parseTheme(blank));
        QVERIFY(!CSVRowParsers::parseColor(blank));
        QVERIFY(!CSVRowParsers::parsePartCategory(blank));
        QVERIFY(!CSVRowParsers::parsePart(blank));
        QVERIFY(!CSVRowParsers::parseElement(blank));
        QVERIFY(!CSVRowParsers::parseMinifig(blank));
        QVERIFY(!CSVRowParsers::parseSet(blank));
        QVERIFY(!CSVRowParsers::parseInventory(blank));
        QVERIFY(!CSVRowParsers::parseInventoryPart(blank));
        QVERIFY(!CSVRowParsers::parseInventorySet(blank));
        QVERIFY(!CSVRowParsers::parseInventoryMinifig(blank));
    }

    void aTextEndingInACommaGivesAnEmptyLastFieldThatPartCategoriesAccept()
    {
        const Rows rows = CSVParser::parse(u"id,name\n1,"_s);
        QCOMPARE(rows, (Rows{{u"1"_s, QString()}}));
        QCOMPARE(CSVRowParsers::parsePartCategory(rows.first()), (PartCategory{1, QString()}));
    }

    void anUnterminatedQuoteSwallowsTheRestIntoOneFieldOfALastRow()
    {
        QCOMPARE(CSVParser::parse(u"h\n1,\"abc\n2,def\n"_s), (Rows{{u"1"_s, u"abc\n2,def\n"_s}}));
    }

    void quotedFieldsFollowTheQuoteRules_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << u"abc"_s << u"abc"_s;
        QTest::newRow("comma inside quotes") << u"\"a,b\""_s << u"a,b"_s;
        QTest::newRow("doubled quote") << u"\"a\"\"b\""_s << u"a\"b"_s;
        QTest::newRow("empty quotes") << u"\"\""_s << QString();
        QTest::newRow("quotes inside a field") << u"ab\"cd\"ef"_s << u"abcdef"_s;
        QTest::newRow("text after the closing quote") << u"\"ab\"cd"_s << u"abcd"_s;
        QTest::newRow("leading doubled quote") << u"\"\"\"x\""_s << u"\"x"_s;
        QTest::newRow("line break inside quotes") << u"\"a\nb\""_s << u"a\nb"_s;
        QTest::newRow("CRLF inside quotes") << u"\"a\r\nb\""_s << u"a\r\nb"_s;
        QTest::newRow("blanks kept") << u"  a b  "_s << u"  a b  "_s;
        QTest::newRow("blanks around quotes kept") << u" \"a\" "_s << u" a "_s;
        QTest::newRow("non-ASCII") << u"Pl\u00e4tte \u2013 \U0001F9F1"_s << u"Pl\u00e4tte \u2013 \U0001F9F1"_s;
    }

    void quotedFieldsFollowTheQuoteRules()
    {
        QFETCH(QString, field);
        QFETCH(QString, expected);
        const Rows rows = CSVParser::parse(u"h\n"_s + field + u",end\n"_s);
        QCOMPARE(rows, (Rows{{expected, u"end"_s}}));
    }

    void aQuoteAsTheVeryLastByteEndsTheScan()
    {
        QCOMPARE(CSVParser::parse(u"h\n1,\"a\""_s), (Rows{{u"1"_s, u"a"_s}}));
    }

    void realColorRowsWithExtraColumnsAndQuotedNamesParse()
    {
        const Rows rows = CSVParser::parse(
            u"id,name,rgb,is_trans,num_parts,num_sets,y1,y2\n"
            "-1,[Unknown],0033B2,False,17,2,2000,2000\n"
            "1050,\"Trans-Clear, Opal\",FCFCFC,True,5,1,2019,2020\n"_s);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(CSVRowParsers::parseColor(rows.at(0)), (Color{-1, u"[Unknown]"_s, u"0033B2"_s, false}));
        QCOMPARE(CSVRowParsers::parseColor(rows.at(1)), (Color{1050, u"Trans-Clear, Opal"_s, u"FCFCFC"_s, true}));
    }

    void aFieldOfInvalidUtf8BecomesEmpty()
    {
        const QByteArray text = "h\nok,\xC3\x28,\xED\xA0\x80,\xC0\xAF,caf\xC3\xA9\n";
        QCOMPARE(CSVParser::parse(QByteArrayView(text)),
                 (Rows{{u"ok"_s, QString(), QString(), QString(), u"caf\u00e9"_s}}));
    }

    void aByteOrderMarkStaysInTheDroppedHeader()
    {
        QCOMPARE(CSVParser::parse(QByteArrayView("\xEF\xBB\xBFid,name\n1,a\n")), (Rows{{u"1"_s, u"a"_s}}));
    }

    void anEmbeddedNulStaysInTheField()
    {
        const QByteArray text("h\na\0b,c\n", 8);
        QCOMPARE(CSVParser::parse(QByteArrayView(text)), (Rows{{QString(u"a\0b"_s), u"c"_s}}));
    }
};

QTEST_GUILESS_MAIN(CSVParserTest)
#include "CSVParserTest.moc"
