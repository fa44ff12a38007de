// SPDX-License-Identifier: GPL-3.0-or-later
#include <RebrickableKit/CSVParser.h>
#include <RebrickableKit/CSVTokenizer.h>

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

namespace {

using ByteRows = QList<QList<QByteArray>>;

// Feeds the text in the pieces given by the cut positions and collects every row.
ByteRows tokenize(QByteArrayView text, const QList<qsizetype> &cuts)
{
    ByteRows rows;
    CSVTokenizer tokenizer([&rows](std::span<const std::string_view> fields) {
        QList<QByteArray> row;
        for (const std::string_view field : fields)
            row.append(QByteArray(field.data(), qsizetype(field.size())));
        rows.append(row);
    });
    qsizetype start = 0;
    for (const qsizetype cut : cuts) {
        tokenizer.feed(text.sliced(start, cut - start));
        start = cut;
    }
    tokenizer.feed(text.sliced(start));
    tokenizer.finish();
    return rows;
}

// What the tokenizer tells of a text's shape: for each row whether it spans lines, and
// last whether the text ended inside quotes.
QList<bool> shape(QByteArrayView text, const QList<qsizetype> &cuts)
{
    QList<bool> shape;
    const CSVTokenizer *source = nullptr;
    CSVTokenizer tokenizer([&](std::span<const std::string_view>) { shape.append(source->rowSpansLines()); });
    source = &tokenizer;
    qsizetype start = 0;
    for (const qsizetype cut : cuts) {
        tokenizer.feed(text.sliced(start, cut - start));
        start = cut;
    }
    tokenizer.feed(text.sliced(start));
    tokenizer.finish();
    shape.append(tokenizer.endedInsideQuotes());
    return shape;
}

// The rows of the whole-text parser, as bytes, header included for comparison.
ByteRows wholeText(QByteArrayView text)
{
    return tokenize(text, {});
}

QList<QStringList> decoded(const ByteRows &rows)
{
    QList<QStringList> result;
    for (qsizetype index = 1; index < rows.size(); ++index) {
        QStringList row;
        for (const QByteArray &field : rows.at(index))
            row.append(QUtf8StringView(field).isValidUtf8() ? QString::fromUtf8(field) : QString());
        result.append(row);
    }
    return result;
}

const QList<QByteArray> awkwardTexts = {
    "h1,h2\r\n1,\"a,b\"\r\n2,\"x\"\"y\"\r\n",
    "h\r1\r\r2\r",
    "h\n\"multi\nline\r\nfield\",z\n\"\"\"x\",\"\"\n",
    "h\nab\"cd\"ef,\"ab\"cd\n,\n,,\n",
    "h\n\"unterminated,1\n2\n",
    "h\n1,\"closed\"",
    "h\nPl\xC3\xA4tte,\xE2\x80\x93,\xF0\x9F\xA7\xB1\r\n\xC3\xA9\"\xC3\xA9\"\xC3\xA9\n",
    "h\n1,",
    "\r\n\r\n\n",
    "\"",
    "\"\"",
    "a\"\"\"\"b,\"\"\"\"\r",
};

} // namespace

class CSVTokenizerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSingleCutAnywhereGivesTheRowsOfTheWholeText()
    {
        for (const QByteArray &text : awkwardTexts) {
            const ByteRows expected = wholeText(text);
            for (qsizetype cut = 0; cut <= text.size(); ++cut)
                QVERIFY2(tokenize(text, {cut}) == expected, QByteArray(text.toPercentEncoding() + " cut at " + QByteArray::number(cut)).constData());
        }
    }

    void everyPairOfCutsGivesTheRowsOfTheWholeText()
    {
        for (const QByteArray &text : awkwardTexts) {
            const ByteRows expected = wholeText(text);
            for (qsizetype first = 0; first <= text.size(); ++first)
                for (qsizetype second = first; second <= text.size(); ++second)
                    QVERIFY2(tokenize(text, {first, second}) == expected, text.toPercentEncoding().constData());
        }
    }

    void feedingOneByteAtATimeGivesTheRowsOfTheWholeText()
    {
        for (const QByteArray &text : awkwardTexts) {
            QList<qsizetype> cuts;
            for (qsizetype cut = 1; cut < text.size(); ++cut)
                cuts.append(cut);
            QCOMPARE(tokenize(text, cuts), wholeText(text));
        }
    }

    void theTokenizerAgreesWithTheParserAfterTheHeader()
    {
        for (const QByteArray &text : awkwardTexts)
            QCOMPARE(decoded(wholeText(text)), CSVParser::parse(QByteArrayView(text)));
    }

    void randomTextsCutAtRandomPlacesGiveTheSameRows()
    {
        // A small alphabet of the bytes that matter, so that every rule is hit often.
        static const char alphabet[] = {'a', ',', '"', '\n', '\r', '\xC3', '\xA9', ' '};
        QRandomGenerator random(20260402);
        for (int round = 0; round < 3000; ++round) {
            QByteArray text;
            const int length = random.bounded(0, 40);
            for (int index = 0; index < length; ++index)
                text.append(alphabet[random.bounded(int(sizeof alphabet))]);
            QList<qsizetype> cuts;
            qsizetype position = 0;
            while (position < text.size()) {
                position += random.bounded(1, 6);
                if (position < text.size())
                    cuts.append(position);
            }
            QVERIFY2(tokenize(text, cuts) == wholeText(text), text.toPercentEncoding().constData());
        }
    }

    void aRowSpansLinesExactlyWhenALineBreakIsInsideItsQuotes()
    {
        QCOMPARE(shape("h\n1,\"a\nb\"\n2,\"c\"\r\n3,\"d\re\",\"f\"\n4,g", {}),
                 (QList<bool>{false, true, false, true, false, false}));
    }

    void theTextEndsInsideQuotesExactlyWhenItsLastQuoteIsLeftOpen()
    {
        QCOMPARE(shape("h\n1,\"open", {}).last(), true);
        QCOMPARE(shape("h\n1,\"closed\"", {}).last(), false);
        QCOMPARE(shape("h\n1,\"a\"\"", {}).last(), true); // a doubled quote leaves it open
        QCOMPARE(shape("h\n1,\"x\"\"\"", {}).last(), false);
        QCOMPARE(shape("\"", {}).last(), true);
        QCOMPARE(shape("", {}).last(), false);
    }

    void aStrayQuoteMakesOneRowThatSpansTheRestOfTheText()
    {
        const QList<bool> found = shape("h\n1,a\n2,b\"c\n3,d\n4,e\n", {});
        QCOMPARE(found, (QList<bool>{false, false, true, true}));
    }

    void theShapeIsTheSameWhereverTheTextIsCut()
    {
        for (const QByteArray &text : awkwardTexts) {
            const QList<bool> expected = shape(text, {});
            QList<qsizetype> everyByte;
            for (qsizetype cut = 1; cut < text.size(); ++cut) {
                QVERIFY2(shape(text, {cut}) == expected, text.toPercentEncoding().constData());
                everyByte.append(cut);
            }
            QCOMPARE(shape(text, everyByte), expected);
        }
    }

    void aTenMegabyteLineFedInSmallPiecesIsOneField()
    {
        const QByteArray line(10 * 1024 * 1024, 'x');
        const QByteArray text = "h\n" + line;
        QList<qsizetype> cuts;
        for (qsizetype cut = 4096; cut < text.size(); cut += 4096)
            cuts.append(cut);
        const ByteRows rows = tokenize(text, cuts);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(1).size(), 1);
        QCOMPARE(rows.at(1).at(0).size(), line.size());
    }
};

QTEST_GUILESS_MAIN(CSVTokenizerTest)
#include "CSVTokenizerTest.moc"
