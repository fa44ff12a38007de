// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"
#include "ViewModels/ThemeFilter.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::optional<int>)

namespace {

FlatThemeResult theme(int id, const QString &path, int minYear, int maxYear)
{
    const QString name = path.section(u" > "_s, -1);
    return FlatThemeResult{id, name, path, 1, minYear, maxYear};
}

// Every test runs over the same short list, in this order.
const QList<FlatThemeResult> &themes()
{
    static const QList<FlatThemeResult> list{
        theme(1, u"Castle"_s, 1978, 2023),
        theme(2, u"Castle > Black Falcons"_s, 1984, 1990),
        theme(3, u"Space"_s, 1978, 1999),
        theme(4, u"Star Wars > Ultimate Collector Series"_s, 2000, 2024),
        theme(5, u"Town > City Centre"_s, 1991, 1995),
        theme(6, u"Technic > 1990s"_s, 1990, 1990),
        theme(7, u"Ninjago > Legacy"_s, 2019, 2021),
    };
    return list;
}

QList<int> ids(const QList<FlatThemeResult> &results)
{
    QList<int> list;
    for (const FlatThemeResult &result : results)
        list << result.id;
    return list;
}

} // namespace

class ThemeFilterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void searchTextSplitsIntoYearAndTokens_data()
    {
        QTest::addColumn<QString>("searchText");
        QTest::addColumn<std::optional<int>>("year");
        QTest::addColumn<QStringList>("tokens");

        QTest::newRow("empty") << QString() << std::optional<int>() << QStringList();
        QTest::newRow("only spaces") << u"   "_s << std::optional<int>() << QStringList();
        QTest::newRow("one word is lowercased") << u"Castle"_s << std::optional<int>() << QStringList{u"castle"_s};
        QTest::newRow("repeated spaces make no empty tokens")
            << u"  star   wars "_s << std::optional<int>() << QStringList{u"star"_s, u"wars"_s};
        QTest::newRow("year of the 1900s") << u"1990"_s << std::optional<int>(1990) << QStringList();
        QTest::newRow("year of the 2000s") << u"2019"_s << std::optional<int>(2019) << QStringList();
        QTest::newRow("three digits are a token") << u"199"_s << std::optional<int>() << QStringList{u"199"_s};
        QTest::newRow("five digits are a token") << u"19901"_s << std::optional<int>() << QStringList{u"19901"_s};
        QTest::newRow("four digits not starting 19 or 20 are a token")
            << u"2101"_s << std::optional<int>() << QStringList{u"2101"_s};
        QTest::newRow("1899 is a token") << u"1899"_s << std::optional<int>() << QStringList{u"1899"_s};
        QTest::newRow("a year-like piece with a letter is a token")
            << u"199x"_s << std::optional<int>() << QStringList{u"199x"_s};
        QTest::newRow("a sign inside is a token") << u"19-1"_s << std::optional<int>() << QStringList{u"19-1"_s};
        QTest::newRow("a tab does not split and keeps the piece text")
            << u"199\t"_s << std::optional<int>() << QStringList{u"199\t"_s};
        QTest::newRow("tab between words stays inside the token")
            << u"star\twars"_s << std::optional<int>() << QStringList{u"star\twars"_s};
        QTest::newRow("non-ASCII digits are no year")
            << u"19\u0669\u0660"_s << std::optional<int>() << QStringList{u"19\u0669\u0660"_s};
        QTest::newRow("year and words") << u"Castle 1984 falcons"_s << std::optional<int>(1984)
                                        << QStringList{u"castle"_s, u"falcons"_s};
        QTest::newRow("the last year counts and the first is lost")
            << u"1990 castle 2019"_s << std::optional<int>(2019) << QStringList{u"castle"_s};
    }

    void searchTextSplitsIntoYearAndTokens()
    {
        QFETCH(QString, searchText);
        QFETCH(std::optional<int>, year);
        QFETCH(QStringList, tokens);

        const ThemeFilter::Query query = ThemeFilter::parse(searchText);
        QCOMPARE(query.year, year);
        QCOMPARE(query.tokens, tokens);
    }

    void filterKeepsMatchingThemesInOrder_data()
    {
        QTest::addColumn<QString>("searchText");
        QTest::addColumn<QList<int>>("expected");

        QTest::newRow("empty text shows everything") << QString() << QList<int>{1, 2, 3, 4, 5, 6, 7};
        QTest::newRow("blank text shows everything") << u"  "_s << QList<int>{1, 2, 3, 4, 5, 6, 7};
        QTest::newRow("token matches anywhere in the path, ignoring case")
            << u"CASTLE"_s << QList<int>{1, 2};
        QTest::newRow("token matches inside a word") << u"alco"_s << QList<int>{2};
        QTest::newRow("token matches a parent's name") << u"star"_s << QList<int>{4};
        QTest::newRow("path separator is part of the text") << u">"_s << QList<int>{2, 4, 5, 6, 7};
        QTest::newRow("every token must match") << u"castle black"_s << QList<int>{2};
        QTest::newRow("tokens in any order") << u"series ultimate"_s << QList<int>{4};
        QTest::newRow("a token that matches nothing leaves nothing") << u"castle space"_s << QList<int>();
        QTest::newRow("year keeps the themes active that year") << u"1990"_s << QList<int>{1, 2, 3, 6};
        QTest::newRow("year equal to the first year") << u"1991"_s << QList<int>{1, 3, 5};
        QTest::newRow("year equal to the last year") << u"1995"_s << QList<int>{1, 3, 5};
        QTest::newRow("year after every theme") << u"2099"_s << QList<int>();
        QTest::newRow("three digits are text: themes naming 199") << u"199"_s << QList<int>{6};
        QTest::newRow("year and token together") << u"castle 1990"_s << QList<int>{1, 2};
        QTest::newRow("two years: only the last filters") << u"2019 1985"_s << QList<int>{1, 2, 3};
        QTest::newRow("two years, other order") << u"1985 2019"_s << QList<int>{1, 4, 7};
    }

    void filterKeepsMatchingThemesInOrder()
    {
        QFETCH(QString, searchText);
        QFETCH(QList<int>, expected);

        QCOMPARE(ids(ThemeFilter::filter(themes(), searchText)), expected);
    }

    void searchFor1990KeepsThemesWhoseYearsSpan1990()
    {
        const QList<FlatThemeResult> kept = ThemeFilter::filter(themes(), u"1990"_s);
        QVERIFY(!kept.isEmpty());
        for (const FlatThemeResult &result : kept) {
            QVERIFY(result.minYear <= 1990);
            QVERIFY(result.maxYear >= 1990);
        }
        QCOMPARE(ids(kept), (QList<int>{1, 2, 3, 6}));
    }

    void searchFor199IsATextTokenNotAYear()
    {
        // "Space" (1978–1999) spans the 1990s, but only a path containing "199" passes.
        QCOMPARE(ids(ThemeFilter::filter(themes(), u"199"_s)), QList<int>{6});
    }

    void withTwoYearPiecesOnlyTheLastFiltersAndTheFirstIsLost()
    {
        // 1985 alone keeps Castle, Black Falcons and Space; 2019 alone keeps Castle, the
        // Collector Series and Ninjago; both years at once would keep Castle only.
        QCOMPARE(ids(ThemeFilter::filter(themes(), u"1985 2019"_s)), (QList<int>{1, 4, 7}));
        QCOMPARE(ids(ThemeFilter::filter(themes(), u"2019 1985"_s)), (QList<int>{1, 2, 3}));
        // The first year is not kept as text either: no path contains "1985".
        QCOMPARE(ThemeFilter::parse(u"1985 2019"_s).tokens, QStringList());
    }

    void emptyListStaysEmpty()
    {
        QVERIFY(ThemeFilter::filter({}, u"castle 1990"_s).isEmpty());
        QVERIFY(ThemeFilter::filter({}, QString()).isEmpty());
    }

    void pathIsLowercasedBeforeMatching()
    {
        const FlatThemeResult mixed = theme(9, u"ÉDITION Spéciale"_s, 2000, 2001);
        QVERIFY(ThemeFilter::matches(mixed, ThemeFilter::parse(u"édition"_s)));
        QVERIFY(ThemeFilter::matches(mixed, ThemeFilter::parse(u"SPÉCIALE"_s)));
        // No accent folding: "e" does not find "é".
        QVERIFY(!ThemeFilter::matches(mixed, ThemeFilter::parse(u"edition"_s)));
    }
};

QTEST_GUILESS_MAIN(ThemeFilterTest)
#include "ThemeFilterTest.moc"
