// SPDX-License-Identifier: GPL-3.0-or-later
#include <RebrickableKit/CSVFieldRules.h>
#include <RebrickableKit/CSVRowParsers.h>
#include <RebrickableKit/PartRelationship.h>

#include <QTest>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

class CSVRowParsersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void integersAreStrictDecimals_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("parses");
        QTest::addColumn<qint64>("value");
        QTest::newRow("plain") << u"42"_s << true << qint64(42);
        QTest::newRow("plus sign") << u"+12"_s << true << qint64(12);
        QTest::newRow("minus sign") << u"-3"_s << true << qint64(-3);
        QTest::newRow("leading zeros") << u"007"_s << true << qint64(7);
        QTest::newRow("largest") << u"9223372036854775807"_s << true << std::numeric_limits<qint64>::max();
        QTest::newRow("smallest") << u"-9223372036854775808"_s << true << std::numeric_limits<qint64>::min();
        QTest::newRow("one past largest") << u"9223372036854775808"_s << false << qint64(0);
        QTest::newRow("one past smallest") << u"-9223372036854775809"_s << false << qint64(0);
        QTest::newRow("far too large") << u"99999999999999999999999"_s << false << qint64(0);
        QTest::newRow("empty") << QString() << false << qint64(0);
        QTest::newRow("lone plus") << u"+"_s << false << qint64(0);
        QTest::newRow("lone minus") << u"-"_s << false << qint64(0);
        QTest::newRow("two signs") << u"+-1"_s << false << qint64(0);
        QTest::newRow("decimal point") << u"1999.0"_s << false << qint64(0);
        QTest::newRow("inner blank") << u"1 2"_s << false << qint64(0);
        QTest::newRow("leading blank") << u" 12"_s << false << qint64(0);
        QTest::newRow("trailing blank") << u"12 "_s << false << qint64(0);
        QTest::newRow("letter") << u"x"_s << false << qint64(0);
        QTest::newRow("hex") << u"0x1F"_s << false << qint64(0);
        QTest::newRow("arabic-indic digits") << u"\u0661\u0662"_s << false << qint64(0);
        QTest::newRow("fullwidth digits") << u"\uFF11\uFF12"_s << false << qint64(0);
    }

    void integersAreStrictDecimals()
    {
        QFETCH(QString, text);
        QFETCH(bool, parses);
        QFETCH(qint64, value);
        const auto fromText = CSVFieldRules::integer(QStringView(text));
        const QByteArray utf8 = text.toUtf8();
        const auto fromBytes = CSVFieldRules::integer(std::string_view(utf8.constData(), size_t(utf8.size())));
        QCOMPARE(fromText.has_value(), parses);
        QCOMPARE(fromBytes, fromText);
        if (parses)
            QCOMPARE(*fromText, value);
    }

    void booleansAreTrueOnlyForTrueAndT_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("value");
        QTest::newRow("True") << u"True"_s << true;
        QTest::newRow("t") << u"t"_s << true;
        QTest::newRow("f") << u"f"_s << false;
        QTest::newRow("False") << u"False"_s << false;
        QTest::newRow("TRUE") << u"TRUE"_s << false;
        QTest::newRow("true") << u"true"_s << false;
        QTest::newRow("T") << u"T"_s << false;
        QTest::newRow("1") << u"1"_s << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("True with a blank") << u"True "_s << false;
    }

    void booleansAreTrueOnlyForTrueAndT()
    {
        QFETCH(QString, text);
        QFETCH(bool, value);
        QCOMPARE(CSVFieldRules::boolean(QStringView(text)), value);
        const QByteArray utf8 = text.toUtf8();
        QCOMPARE(CSVFieldRules::boolean(std::string_view(utf8.constData(), size_t(utf8.size()))), value);
    }

    void isTransOfFalseLikeTextsIsFalseAndNeverRefusesTheColor()
    {
        for (const QString &text : {u"f"_s, u"False"_s, u"TRUE"_s, QString()}) {
            const auto color = CSVRowParsers::parseColor({u"4"_s, u"Red"_s, u"C91A09"_s, text});
            QVERIFY(color);
            QCOMPARE(color->isTransparent, false);
        }
    }

    void aThemeWithAnUnparsableParentHasNoParent()
    {
        QCOMPARE(CSVRowParsers::parseTheme({u"5"_s, u"Model"_s, u"x"_s}), (Theme{5, u"Model"_s, std::nullopt}));
        QCOMPARE(CSVRowParsers::parseTheme({u"5"_s, u"Model"_s, QString()}), (Theme{5, u"Model"_s, std::nullopt}));
        QCOMPARE(CSVRowParsers::parseTheme({u"5"_s, u"Model"_s, u"1"_s}), (Theme{5, u"Model"_s, 1}));
    }

    void aThemeWithoutAnIdIsRefused()
    {
        QVERIFY(!CSVRowParsers::parseTheme({u"x"_s, u"Model"_s, u"1"_s}));
        QVERIFY(!CSVRowParsers::parseTheme({u"5"_s, u"Model"_s}));
    }

    void aSetWithAYearOf1999Point0IsRefused()
    {
        QVERIFY(!CSVRowParsers::parseSet({u"1-1"_s, u"A"_s, u"1999.0"_s, u"1"_s, u"10"_s, QString()}));
    }

    void aSetKeepsAllItsFieldsAndAnEmptyImageIsAbsent()
    {
        QCOMPARE(CSVRowParsers::parseSet({u"75192-1"_s, u"Falcon"_s, u"2017"_s, u"171"_s, u"7541"_s, QString()}),
                 (RebrickableSet{u"75192-1"_s, u"Falcon"_s, 2017, 171, 7541, std::nullopt}));
        QCOMPARE(CSVRowParsers::parseSet({u"1-1"_s, u"A"_s, u"+12"_s, u"-3"_s, u"0"_s, u"http://x"_s, u"extra"_s}),
                 (RebrickableSet{u"1-1"_s, u"A"_s, 12, -3, 0, u"http://x"_s}));
    }

    void eachParserNeedsItsLeastNumberOfFields()
    {
        QVERIFY(!CSVRowParsers::parseColor({u"1"_s, u"a"_s, u"b"_s}));
        QVERIFY(!CSVRowParsers::parsePartCategory({u"1"_s}));
        QVERIFY(!CSVRowParsers::parsePart({u"p"_s, u"n"_s, u"1"_s}));
        QVERIFY(!CSVRowParsers::parseElement({u"e"_s, u"p"_s}));
        QVERIFY(!CSVRowParsers::parseMinifig({u"f"_s, u"n"_s, u"1"_s}));
        QVERIFY(!CSVRowParsers::parseSet({u"s"_s, u"n"_s, u"1"_s, u"1"_s, u"1"_s}));
        QVERIFY(!CSVRowParsers::parseInventory({u"1"_s, u"1"_s}));
        QVERIFY(!CSVRowParsers::parseInventoryPart({u"1"_s, u"p"_s, u"1"_s, u"1"_s, u"t"_s}));
        QVERIFY(!CSVRowParsers::parseInventorySet({u"1"_s, u"s"_s}));
        QVERIFY(!CSVRowParsers::parseInventoryMinifig({u"1"_s, u"f"_s}));
    }

    void plainTextColumnsAcceptTheEmptyText()
    {
        QCOMPARE(CSVRowParsers::parsePart({QString(), QString(), u"1"_s, QString()}),
                 (Part{QString(), QString(), 1, QString()}));
        QCOMPARE(CSVRowParsers::parseInventory({u"1"_s, u"2"_s, QString()}), (Inventory{1, 2, QString()}));
    }

    void anElementRowOfThreeFieldsHasNoDesign()
    {
        QCOMPARE(CSVRowParsers::parseElement({u"300121"_s, u"3001"_s, u"21"_s}),
                 (Element{u"300121"_s, u"3001"_s, 21, std::nullopt}));
        QCOMPARE(CSVRowParsers::parseElement({u"300121"_s, u"3001"_s, u"21"_s, QString()}),
                 (Element{u"300121"_s, u"3001"_s, 21, std::nullopt}));
        QCOMPARE(CSVRowParsers::parseElement({u"300121"_s, u"3001"_s, u"21"_s, u"3001"_s}),
                 (Element{u"300121"_s, u"3001"_s, 21, u"3001"_s}));
    }

    void inventoryPartsReadEveryColumn()
    {
        QCOMPARE(CSVRowParsers::parseInventoryPart({u"1"_s, u"3001"_s, u"4"_s, u"2"_s, u"True"_s, u"u"_s}),
                 (InventoryPart{1, u"3001"_s, 4, 2, true, u"u"_s}));
        QCOMPARE(CSVRowParsers::parseInventoryPart({u"1"_s, u"3001"_s, u"4"_s, u"2"_s, u"False"_s, QString()}),
                 (InventoryPart{1, u"3001"_s, 4, 2, false, std::nullopt}));
        QVERIFY(!CSVRowParsers::parseInventoryPart({u"1"_s, u"3001"_s, u"4"_s, u"two"_s, u"False"_s, QString()}));
    }

    void containedSetsAndMinifigsShareOneMapping()
    {
        const QStringList row{u"7"_s, u"fig-000001"_s, u"3"_s};
        QCOMPARE(CSVRowParsers::parseInventorySet(row), (InventorySet{7, u"fig-000001"_s, 3}));
        QCOMPARE(CSVRowParsers::parseInventoryMinifig(row), (InventoryMinifig{7, u"fig-000001"_s, 3}));
        QVERIFY(!CSVRowParsers::parseInventoryMinifig({u"7"_s, u"fig"_s, u"x"_s}));
    }

    void minifigsNeedANumberOfParts()
    {
        QCOMPARE(CSVRowParsers::parseMinifig({u"fig-1"_s, u"Pilot"_s, u"4"_s, u"img"_s}),
                 (Minifig{u"fig-1"_s, u"Pilot"_s, 4, u"img"_s}));
        QVERIFY(!CSVRowParsers::parseMinifig({u"fig-1"_s, u"Pilot"_s, QString(), u"img"_s}));
    }

    void relationTypesAreTheSixExactLetters()
    {
        using Type = PartRelationship::RelationType;
        const QList<std::pair<QString, Type>> letters{{u"P"_s, Type::print}, {u"R"_s, Type::pair},
                                                      {u"B"_s, Type::subPart}, {u"M"_s, Type::mold},
                                                      {u"T"_s, Type::pattern}, {u"A"_s, Type::alternate}};
        for (const auto &[letter, type] : letters) {
            QCOMPARE(PartRelationship::relationType(letter), type);
            QCOMPARE(PartRelationship::rawValue(type), letter);
        }
        QCOMPARE(PartRelationship::relationType(u"p"), std::nullopt);
        QCOMPARE(PartRelationship::relationType(u"PP"), std::nullopt);
        QCOMPARE(PartRelationship::relationType(u""), std::nullopt);
        QCOMPARE(PartRelationship::relationType(u"X"), std::nullopt);
    }

    void recordsWithEqualFieldsAreEqualAndHashAlike()
    {
        const RebrickableSet a{u"1-1"_s, u"A"_s, 1, 2, 3, std::nullopt};
        RebrickableSet b = a;
        QCOMPARE(a, b);
        QCOMPARE(qHash(a), qHash(b));
        b.imgURL = QString();
        QVERIFY(a != b); // absent and empty are different things
        QSet<Theme> themes{{1, u"a"_s, std::nullopt}, {1, u"a"_s, std::nullopt}, {1, u"a"_s, 0}};
        QCOMPARE(themes.size(), 2);
    }
};

QTEST_GUILESS_MAIN(CSVRowParsersTest)
#include "CSVRowParsersTest.moc"
