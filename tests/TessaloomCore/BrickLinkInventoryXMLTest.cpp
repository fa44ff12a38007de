// SPDX-License-Identifier: GPL-3.0-or-later
// BrickLink's inventory XML: which texts are such a file, how its items become entries or
// skipped rows with the lines of their <ITEM> tags, and that hostile files (malformed,
// declaring entities, nested very deep) end quickly in a plain answer.
#include "BrickLinkInventoryXML.h"
#include "CSVCodec.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Texts built in place ("header + rows") become a QString here before the reader's view.
bool recognised(const QString &text)
{
    return BrickLinkInventoryXML::recognises(text);
}

ImportedSetList readText(const QString &text)
{
    return BrickLinkInventoryXML::read(text);
}

ImportedSetListEntry entry(const QString &setNumber, qint64 quantity, qsizetype lineNumber)
{
    return ImportedSetListEntry{setNumber, quantity, lineNumber};
}

// An inventory of `items`, one <ITEM> a line from line 2 on, the closing tag on the last.
QString inventory(const QStringList &items)
{
    QString text = u"<INVENTORY>\n"_s;
    for (const QString &item : items)
        text += u"<ITEM>"_s + item + u"</ITEM>\n"_s;
    return text + u"</INVENTORY>\n"_s;
}

} // namespace

class BrickLinkInventoryXMLTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anInventoryIsRecognised()
    {
        QVERIFY(recognised(u"<INVENTORY></INVENTORY>"_s));
        QVERIFY(recognised(u"<INVENTORY/>"_s));
    }

    void anXMLDeclarationBeforeTheInventoryIsAllowed()
    {
        QVERIFY(recognised(u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<INVENTORY/>"_s));
    }

    void commentsBeforeTheInventoryAreAllowed()
    {
        QVERIFY(recognised(
            u"<?xml version=\"1.0\"?>\n<!-- wanted list -->\n<!-- second --><INVENTORY/>"_s));
    }

    void aByteOrderMarkAndWhiteSpaceBeforeTheInventoryAreAllowed()
    {
        QVERIFY(recognised(QChar(0xFEFF) + u"<INVENTORY/>"_s));
        QVERIFY(recognised(u"\n\r\n \t<INVENTORY>\n</INVENTORY>"_s));
        QVERIFY(recognised(QChar(0xFEFF) + u"<?xml version=\"1.0\"?>\n  <INVENTORY/>"_s));
    }

    void theRootNameMayBeInAnyCase()
    {
        QVERIFY(recognised(u"<inventory></inventory>"_s));
        QVERIFY(recognised(u"<Inventory/>"_s));
    }

    void otherRootsAreNotRecognised()
    {
        QVERIFY(!recognised(u"<WANTEDLIST><ITEM/></WANTEDLIST>"_s));
        QVERIFY(!recognised(u"<INVENTORYX/>"_s));
        QVERIFY(!recognised(u"<html><body/></html>"_s));
    }

    void textThatIsNotAnInventoryIsNotRecognised()
    {
        QVERIFY(!recognised(u""_s));
        QVERIFY(!recognised(u"   \n"_s));
        QVERIFY(!recognised(QString(QChar(0xFEFF))));
        QVERIFY(!recognised(u"INVENTORY"_s));
        QVERIFY(!recognised(CSVCodec::headerLine() + u"\n"_s));
        QVERIFY(!recognised(u"Set Number,Quantity,Includes Spares,Inventory Ver\n"_s));
    }

    void aDocumentTypeIsNotRecognised()
    {
        QVERIFY(!recognised(u"<!DOCTYPE INVENTORY []><INVENTORY/>"_s));
    }

    void setItemsBecomeEntriesWithTheLinesOfTheirItemTags()
    {
        const ImportedSetList list = readText(
            u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            u"<INVENTORY>\n"
            u"  <ITEM>\n"
            u"    <ITEMTYPE>S</ITEMTYPE>\n"
            u"    <ITEMID>75192-1</ITEMID>\n"
            u"    <MINQTY>2</MINQTY>\n"
            u"  </ITEM>\n"
            u"  <ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>10294-1</ITEMID><MINQTY>1</MINQTY></ITEM>\n"
            u"</INVENTORY>\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 2, 3), entry(u"10294-1"_s, 1, 8)}));
        QVERIFY(list.skipped.isEmpty());
        QVERIFY(!list.unreadable);
    }

    void valuesAreTrimmed()
    {
        const ImportedSetList list = readText(
            inventory({u"<ITEMTYPE>\n  S\n</ITEMTYPE><ITEMID>\n  75192-1 \n</ITEMID><MINQTY>  3\n</MINQTY>"_s}));
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 3, 2)}));
    }

    void elementNamesMayBeInAnyCase()
    {
        const ImportedSetList list = readText(
            u"<inventory>\n<item><itemtype>S</itemtype><ItemId>75192-1</ItemId><MinQty>4</MinQty></item>\n</inventory>"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 4, 2)}));
    }

    void itemsOfOtherTypesAreSkippedWithTheirTypeAndLine()
    {
        const ImportedSetList list = readText(inventory({
            u"<ITEMTYPE>P</ITEMTYPE><ITEMID>3001</ITEMID><MINQTY>10</MINQTY>"_s,
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID>"_s,
            u"<ITEMTYPE>M</ITEMTYPE><ITEMID>sw0001a</ITEMID>"_s,
            u"<ITEMTYPE>s</ITEMTYPE><ITEMID>6020-1</ITEMID>"_s,
        }));
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 3)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 2: item type P skipped"_s, u"Line 4: item type M skipped"_s,
                                            u"Line 5: item type s skipped"_s}));
    }

    void anItemWithoutAType()
    {
        const ImportedSetList list = readText(inventory({u"<ITEMID>75192-1</ITEMID>"_s}));
        QVERIFY(list.entries.isEmpty());
        QCOMPARE(list.skipped, (QStringList{u"Line 2: item type  skipped"_s}));
    }

    void minimumQuantityIsPreferredToQuantity()
    {
        const ImportedSetList list = readText(inventory({
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>a-1</ITEMID><QTY>5</QTY><MINQTY>2</MINQTY>"_s,
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>b-1</ITEMID><QTY>5</QTY>"_s,
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>c-1</ITEMID>"_s,
        }));
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"a-1"_s, 2, 2), entry(u"b-1"_s, 5, 3),
                                                              entry(u"c-1"_s, 1, 4)}));
    }

    void anInvalidMinimumQuantityIsNotReplacedByQuantity()
    {
        const ImportedSetList list = readText(
            inventory({u"<ITEMTYPE>S</ITEMTYPE><ITEMID>a-1</ITEMID><MINQTY>-1</MINQTY><QTY>5</QTY>"_s}));
        QVERIFY(list.entries.isEmpty());
        QCOMPARE(list.skipped, (QStringList{u"Line 2: invalid quantity"_s}));
    }

    void invalidQuantitiesAreSkippedWithTheirLines()
    {
        const QStringList quantities{u"<MINQTY>0</MINQTY>"_s,   u"<MINQTY>-1</MINQTY>"_s,  u"<MINQTY>2.5</MINQTY>"_s,
                                     u"<MINQTY>abc</MINQTY>"_s, u"<MINQTY></MINQTY>"_s,    u"<MINQTY/>"_s,
                                     u"<QTY>1001</QTY>"_s,      u"<QTY>99999999999999999999</QTY>"_s};
        QStringList items;
        QStringList expected;
        for (const QString &quantity : quantities) {
            items.append(u"<ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID>"_s + quantity);
            expected.append(u"Line "_s + QString::number(items.size() + 1) + u": invalid quantity"_s);
        }
        items.append(u"<ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID><QTY>1000</QTY>"_s);
        const ImportedSetList list = readText(inventory(items));
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1000, 10)}));
        QCOMPARE(list.skipped, expected);
    }

    void aSetItemWithoutItemIDIsSkipped()
    {
        const ImportedSetList list = readText(inventory({
            u"<ITEMTYPE>S</ITEMTYPE><MINQTY>1</MINQTY>"_s,
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>  </ITEMID><MINQTY>abc</MINQTY>"_s,
        }));
        QVERIFY(list.entries.isEmpty());
        QCOMPARE(list.skipped, (QStringList{u"Line 2: missing set number"_s, u"Line 3: missing set number"_s}));
    }

    void unknownElementsAreIgnoredAtAnyDepth()
    {
        const ImportedSetList list = readText(
            u"<INVENTORY>\n"
            u"<HEADER><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>hidden-1</ITEMID></ITEM></HEADER>\n"
            u"<ITEM><COLOR>0</COLOR><ITEMTYPE>S</ITEMTYPE><NOTES><ITEMID>inner-1</ITEMID></NOTES>"
            u"<ITEMID>75192-1</ITEMID><REMARKS>a<b>c</b></REMARKS><MINQTY>2</MINQTY></ITEM>\n"
            u"</INVENTORY>"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 2, 3)}));
        QVERIFY(list.skipped.isEmpty());
    }

    void predefinedEntitiesCharacterReferencesAndCDATAAreRead()
    {
        const ImportedSetList list = readText(inventory({
            u"<ITEMTYPE>S</ITEMTYPE><ITEMID>A&amp;B&#45;1</ITEMID><MINQTY><![CDATA[3]]></MINQTY>"_s,
        }));
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"A&B-1"_s, 3, 2)}));
    }

    void carriageReturnLineFeedLinesAreCountedOnce()
    {
        const ImportedSetList list = readText(
            u"<?xml version=\"1.0\"?>\r\n<INVENTORY>\r\n\r\n<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID></ITEM>\r\n</INVENTORY>\r\n"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 4)}));
    }

    void anEncodingDeclarationDoesNotChangeTextAlreadyDecoded()
    {
        const ImportedSetList list = readText(
            u"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE>"
            u"<ITEMID>Caf\u00e9-1</ITEMID></ITEM></INVENTORY>"_s);
        QCOMPARE(list.unreadable, std::nullopt);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"Caf\u00e9-1"_s, 1, 2)}));
    }

    void itemsOnOneLineShareItsNumber()
    {
        const ImportedSetList list = readText(
            u"<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>a-1</ITEMID></ITEM>"
            u"<ITEM><ITEMTYPE>P</ITEMTYPE></ITEM><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>b-1</ITEMID></ITEM></INVENTORY>"_s);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"a-1"_s, 1, 1), entry(u"b-1"_s, 1, 1)}));
        QCOMPARE(list.skipped, (QStringList{u"Line 1: item type P skipped"_s}));
    }

    void malformedXMLIsUnreadableAndGivesNothingElse()
    {
        const ImportedSetList list = readText(
            u"<INVENTORY>\n<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID></ITEM>\n"
            u"<ITEM><ITEMTYPE>P</ITEMTYPE></ITEM>\n<ITEM><ITEMID>x</ITEMTYPE></ITEM>\n</INVENTORY>"_s);
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.skipped.isEmpty());
        QVERIFY(list.unreadable);
        QVERIFY2(list.unreadable->endsWith(u" (line 4)"_s), qPrintable(*list.unreadable));
        QVERIFY(list.unreadable->size() > u" (line 4)"_s.size());
    }

    void aTruncatedFileIsUnreadable()
    {
        const ImportedSetList list =
            readText(u"<INVENTORY>\n<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID></ITEM>\n"_s);
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.unreadable);
    }

    void anotherRootIsUnreadable()
    {
        const ImportedSetList list =
            readText(u"<WANTED>\n<ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID></ITEM>\n</WANTED>"_s);
        QVERIFY(list.entries.isEmpty());
        QCOMPARE(list.unreadable, u"The file's first element is not INVENTORY. (line 1)"_s);
    }

    void emptyTextIsUnreadable()
    {
        QVERIFY(readText(u""_s).unreadable);
    }

    void entityDeclarationsEndTheReadingQuicklyWithoutExpansion()
    {
        // Ten levels of ten references each: a billion copies of "lol" if it were expanded.
        QString text = u"<?xml version=\"1.0\"?>\n<!DOCTYPE INVENTORY [\n<!ENTITY lol0 \"lol\">\n"_s;
        for (int level = 1; level <= 10; ++level) {
            text += u"<!ENTITY lol"_s + QString::number(level) + u" \""_s;
            for (int copy = 0; copy < 10; ++copy)
                text += u"&lol"_s + QString::number(level - 1) + u';';
            text += u"\">\n"_s;
        }
        text += u"]>\n<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>&lol10;</ITEMID></ITEM></INVENTORY>\n"_s;

        QElapsedTimer timer;
        timer.start();
        const ImportedSetList list = readText(text);
        QVERIFY(timer.elapsed() < 1000);
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.skipped.isEmpty());
        QCOMPARE(list.unreadable, u"The file declares a document type, which is not read. (line 14)"_s);
        QVERIFY(!recognised(text));
    }

    void parameterEntitiesInADocumentTypeEndTheReadingQuickly()
    {
        QString text = u"<!DOCTYPE INVENTORY [\n<!ENTITY % p0 \"<!ENTITY x 'lol'>\">\n"_s;
        for (int level = 1; level <= 10; ++level) {
            text += u"<!ENTITY % p"_s + QString::number(level) + u" \""_s;
            for (int copy = 0; copy < 10; ++copy)
                text += u"%p"_s + QString::number(level - 1) + u';';
            text += u"\">\n"_s;
        }
        text += u"%p10;\n]>\n<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>&x;</ITEMID></ITEM></INVENTORY>\n"_s;

        QElapsedTimer timer;
        timer.start();
        const ImportedSetList list = readText(text);
        QVERIFY(timer.elapsed() < 1000);
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.unreadable);
    }

    void anUndeclaredEntityIsUnreadable()
    {
        const ImportedSetList list = readText(
            inventory({u"<ITEMTYPE>S</ITEMTYPE><ITEMID>&xxe;</ITEMID>"_s}));
        QVERIFY(list.entries.isEmpty());
        QVERIFY(list.unreadable);
    }

    void aHundredThousandNestedElementsDoNotCrash()
    {
        constexpr int depth = 100'000;
        QString text = u"<INVENTORY><ITEM><ITEMTYPE>S</ITEMTYPE><ITEMID>75192-1</ITEMID>"_s;
        text.reserve(text.size() + depth * 8);
        for (int level = 0; level < depth; ++level)
            text += u"<a>"_s;
        text += u"<ITEMID>x</ITEMID>"_s;
        for (int level = 0; level < depth; ++level)
            text += u"</a>"_s;
        text += u"</ITEM></INVENTORY>"_s;

        QElapsedTimer timer;
        timer.start();
        const ImportedSetList list = readText(text);
        QVERIFY(timer.elapsed() < 5000);
        QCOMPARE(list.entries, (QList<ImportedSetListEntry>{entry(u"75192-1"_s, 1, 1)}));

        // Left open, the same depth is a truncated file.
        QString open = u"<INVENTORY>"_s;
        for (int level = 0; level < depth; ++level)
            open += u"<a>"_s;
        QVERIFY(readText(open).unreadable);
    }
};

QTEST_GUILESS_MAIN(BrickLinkInventoryXMLTest)
#include "BrickLinkInventoryXMLTest.moc"
