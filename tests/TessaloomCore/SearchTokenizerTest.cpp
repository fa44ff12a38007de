// SPDX-License-Identifier: GPL-3.0-or-later
#include "SearchTokenizer.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Token = SearchTokenizer::Token;

Q_DECLARE_METATYPE(QList<SearchTokenizer::Token>)

class SearchTokenizerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tokenizesAsDocumented_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<Token>>("tokens");
        QTest::newRow("empty") << QString() << QList<Token>{};
        QTest::newRow("only blanks") << u"   \t "_s << QList<Token>{};
        QTest::newRow("two words") << u"star wars"_s << QList<Token>{{u"star"_s, {}}, {u"wars"_s, {}}};
        QTest::newRow("word and year with two blanks")
            << u"Falcon  2019"_s << QList<Token>{{u"Falcon"_s, {}}, {u"2019"_s, 2019}};
        QTest::newRow("year alone") << u"2024"_s << QList<Token>{{u"2024"_s, 2024}};
        QTest::newRow("1999 is no year") << u"1999"_s << QList<Token>{{u"1999"_s, {}}};
        QTest::newRow("five digits") << u"20245"_s << QList<Token>{{u"20245"_s, {}}};
        QTest::newRow("letter inside") << u"2a24"_s << QList<Token>{{u"2a24"_s, {}}};
        QTest::newRow("leading plus") << u"+2024"_s << QList<Token>{{u"+2024"_s, {}}};
        QTest::newRow("hyphenated set number") << u"75192-1"_s << QList<Token>{{u"75192-1"_s, {}}};
    }

    void tokenizesAsDocumented()
    {
        QFETCH(QString, text);
        QFETCH(QList<Token>, tokens);
        QCOMPARE(SearchTokenizer::tokenize(text), tokens);
    }

    void splitsAtEveryKindOfWhitespaceOnly()
    {
        const QString text = u"a\tb\nc\u00A0d\u2003e,f-g/h"_s;
        const QList<Token> tokens = SearchTokenizer::tokenize(text);
        QStringList texts;
        for (const Token &token : tokens)
            texts << token.text;
        QCOMPARE(texts, (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e,f-g/h"_s}));
    }

    void keepsCaseOrderAndDuplicates()
    {
        const QList<Token> tokens = SearchTokenizer::tokenize(u"X-Wing x-wing X-Wing"_s);
        QCOMPARE(tokens.size(), 3);
        QCOMPARE(tokens[0].text, u"X-Wing"_s);
        QCOMPARE(tokens[1].text, u"x-wing"_s);
        QCOMPARE(tokens[2].text, u"X-Wing"_s);
    }

    void singleLetterIsAToken()
    {
        QCOMPARE(SearchTokenizer::tokenize(u"a"_s), (QList<Token>{{u"a"_s, {}}}));
    }

    void fourNonAsciiDigitsGetNoYear()
    {
        // Arabic-Indic digits two, zero, two, four.
        const QString token = u"\u0662\u0660\u0662\u0664"_s;
        const QList<Token> tokens = SearchTokenizer::tokenize(token);
        QCOMPARE(tokens.size(), 1);
        QCOMPARE(tokens[0].year, std::nullopt);
        // Fullwidth digits are not ASCII either.
        QCOMPARE(SearchTokenizer::tokenize(u"\uFF12\uFF10\uFF12\uFF14"_s).value(0).year, std::nullopt);
    }

    void yearRangeIsTwoThousandToTwoThousandNineHundredNinetyNine()
    {
        QCOMPARE(SearchTokenizer::tokenize(u"2000"_s).value(0).year, 2000);
        QCOMPARE(SearchTokenizer::tokenize(u"2999"_s).value(0).year, 2999);
        QCOMPARE(SearchTokenizer::tokenize(u"3000"_s).value(0).year, std::nullopt);
        QCOMPARE(SearchTokenizer::tokenize(u"0200"_s).value(0).year, std::nullopt);
    }
};

QTEST_GUILESS_MAIN(SearchTokenizerTest)
#include "SearchTokenizerTest.moc"
