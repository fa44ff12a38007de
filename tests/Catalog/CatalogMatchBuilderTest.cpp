// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogMatchBuilder.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Match = CatalogMatchBuilder::Match;

Q_DECLARE_METATYPE(CatalogMatchBuilder::Match)

class CatalogMatchBuilderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buildsMatchTextAndYears_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<Match>("match");
        QTest::newRow("word") << u"falcon"_s << Match{u"{set_num name}: falcon*"_s, {}};
        QTest::newRow("words") << u"star  wars"_s << Match{u"{set_num name}: star* AND {set_num name}: wars*"_s, {}};
        QTest::newRow("number") << u"75192"_s << Match{u"{set_num}: 75192*"_s, {}};
        QTest::newRow("year") << u"2019"_s << Match{std::nullopt, {2019}};
        QTest::newRow("first year") << u"1949"_s << Match{std::nullopt, {1949}};
        QTest::newRow("before first year") << u"1948"_s << Match{u"{set_num}: 1948*"_s, {}};
        QTest::newRow("last year") << u"2100"_s << Match{std::nullopt, {2100}};
        QTest::newRow("after last year") << u"2101"_s << Match{u"{set_num}: 2101*"_s, {}};
        QTest::newRow("old set number") << u"7965"_s << Match{u"{set_num}: 7965*"_s, {}};
        QTest::newRow("word and year") << u"falcon 2019"_s << Match{u"{set_num name}: falcon*"_s, {2019}};
        QTest::newRow("two years") << u"2019 2020"_s << Match{std::nullopt, {2019, 2020}};
        QTest::newRow("only removed characters") << u"()"_s << Match{std::nullopt, {}};
        QTest::newRow("removed inside a word") << u"fal\"con*"_s << Match{u"{set_num name}: falcon*"_s, {}};
        QTest::newRow("all nine removed") << u"a\"*(){}:^~b"_s << Match{u"{set_num name}: ab*"_s, {}};
        QTest::newRow("hyphen kept") << u"75192-1"_s << Match{u"{set_num name}: 75192-1*"_s, {}};
        QTest::newRow("case kept") << u"FALCON"_s << Match{u"{set_num name}: FALCON*"_s, {}};
        QTest::newRow("non-ASCII digits are numbers but no year")
            << u"\u0662\u0660\u0661\u0669"_s << Match{u"{set_num}: \u0662\u0660\u0661\u0669*"_s, {}};
    }

    void buildsMatchTextAndYears()
    {
        QFETCH(QString, query);
        QFETCH(Match, match);
        QCOMPARE(CatalogMatchBuilder::build(query), match);
    }
};

QTEST_GUILESS_MAIN(CatalogMatchBuilderTest)
#include "CatalogMatchBuilderTest.moc"
