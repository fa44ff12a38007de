// SPDX-License-Identifier: GPL-3.0-or-later
#include "Decimal.h"

#include <QLocale>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
Decimal decimal(const QString &text)
{
    const std::optional<Decimal> value = Decimal::fromString(text);
    if (!value)
        qFatal("not a decimal: %s", qPrintable(text));
    return *value;
}
} // namespace

class DecimalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thirtyEightDigitValuesSurviveATextRoundTrip_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("integer") << u"12345678901234567890123456789012345678"_s;
        QTest::newRow("fraction") << u"1234567890123456789.0123456789012345678"_s;
        QTest::newRow("negative tiny") << u"-0.00000000000000000000000000000000000012345678901234567890123456789012345678"_s;
        QTest::newRow("all nines") << u"99999999999999999999999999999999999999"_s;
        QTest::newRow("price") << u"1234.56"_s;
        QTest::newRow("zero") << u"0"_s;
    }

    void thirtyEightDigitValuesSurviveATextRoundTrip()
    {
        QFETCH(QString, text);
        QCOMPARE(decimal(text).toString(), text);
    }

    void pointOnePlusPointTwoIsPointThree()
    {
        QCOMPARE(decimal(u"0.1"_s) + decimal(u"0.2"_s), decimal(u"0.3"_s));
        QCOMPARE((decimal(u"0.1"_s) + decimal(u"0.2"_s)).toString(), u"0.3"_s);
    }

    void textIsReadWithAPointWhateverTheLocale()
    {
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const std::optional<Decimal> price = Decimal::fromString(u"1234.56");
        const std::optional<Decimal> commaPrice = Decimal::fromString(u"1234,56");
        const QString written = price ? price->toString() : QString();
        QLocale::setDefault(previous);
        QVERIFY(price);
        QCOMPARE(written, u"1234.56"_s);
        QVERIFY(!commaPrice);
    }

    void medianOfTenTwentyThirtyHundredIsTwentyFive()
    {
        QList<Decimal> values{decimal(u"100"_s), decimal(u"10"_s), decimal(u"30"_s), decimal(u"20"_s)};
        std::sort(values.begin(), values.end());
        const Decimal median = (values[1] + values[2]).dividedBy(2);
        QCOMPARE(median, Decimal(25));
        QCOMPARE(median.toString(), u"25"_s);
    }

    void divisionKeepsThirtyEightSignificantDigits()
    {
        QCOMPARE(Decimal(1).dividedBy(3).toString(), u"0.33333333333333333333333333333333333333"_s);
        QCOMPARE(Decimal(2).dividedBy(3).toString(), u"0.66666666666666666666666666666666666667"_s);
        QCOMPARE(decimal(u"-7.5"_s).dividedBy(2).toString(), u"-3.75"_s);
        QCOMPARE(Decimal(5).dividedBy(0), Decimal());
    }

    void doubleEntersThroughItsShortestText()
    {
        QCOMPARE(Decimal::fromDouble(99.99)->toString(), u"99.99"_s);
        QCOMPARE(Decimal::fromDouble(0.1)->toString(), u"0.1"_s);
        QCOMPARE(Decimal::fromDouble(1e-5)->toString(), u"0.00001"_s);
        QCOMPARE(Decimal::fromDouble(-2.5e3)->toString(), u"-2500"_s);
        QVERIFY(!Decimal::fromDouble(qQNaN()));
        QVERIFY(!Decimal::fromDouble(qInf()));
    }

    void toDoubleServesSorting()
    {
        QCOMPARE(decimal(u"99.99"_s).toDouble(), 99.99);
        QCOMPARE(decimal(u"-0.5"_s).toDouble(), -0.5);
    }

    void parsingRejectsWhatIsNotAPlainNumber_data()
    {
        QTest::addColumn<QString>("text");
        for (const QString &text : {u""_s, u"-"_s, u"."_s, u"1.2.3"_s, u"1,000"_s, u" 1"_s, u"1 "_s,
                                    u"abc"_s, u"1e"_s, u"1e+"_s, u"$5"_s, u"1e99999"_s, u"NaN"_s})
            QTest::newRow(qPrintable(u"«"_s + text + u"»"_s)) << text;
    }

    void parsingRejectsWhatIsNotAPlainNumber()
    {
        QFETCH(QString, text);
        QVERIFY(!Decimal::fromString(text));
    }

    void parsingAcceptsSignsFractionsAndExponents_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("written");
        QTest::newRow("plus sign") << u"+5"_s << u"5"_s;
        QTest::newRow("trailing zeros") << u"1.500"_s << u"1.5"_s;
        QTest::newRow("leading zeros") << u"007.50"_s << u"7.5"_s;
        QTest::newRow("bare fraction") << u".25"_s << u"0.25"_s;
        QTest::newRow("trailing point") << u"5."_s << u"5"_s;
        QTest::newRow("exponent") << u"1.5e3"_s << u"1500"_s;
        QTest::newRow("negative exponent") << u"15E-3"_s << u"0.015"_s;
        QTest::newRow("negative zero") << u"-0.00"_s << u"0"_s;
    }

    void parsingAcceptsSignsFractionsAndExponents()
    {
        QFETCH(QString, text);
        QFETCH(QString, written);
        QCOMPARE(decimal(text).toString(), written);
    }

    void moreThanThirtyEightDigitsRoundHalfToEven()
    {
        QCOMPARE(decimal(u"123456789012345678901234567890123456785"_s).toString(),
                 u"123456789012345678901234567890123456780"_s);
        QCOMPARE(decimal(u"123456789012345678901234567890123456775"_s).toString(),
                 u"123456789012345678901234567890123456780"_s);
        QCOMPARE(decimal(u"1.000000000000000000000000000000000000051"_s).toString(),
                 u"1.0000000000000000000000000000000000001"_s);
    }

    void equalValuesCompareEqualWhateverTheirSpelling()
    {
        QCOMPARE(decimal(u"1.50"_s), decimal(u"1.5"_s));
        QCOMPARE(decimal(u"100"_s), decimal(u"1e2"_s));
        QVERIFY(decimal(u"0"_s) == Decimal());
    }

    void orderingFollowsValue()
    {
        QVERIFY(decimal(u"1.5"_s) < decimal(u"2"_s));
        QVERIFY(decimal(u"-3"_s) < decimal(u"-2.5"_s));
        QVERIFY(decimal(u"-0.1"_s) < Decimal());
        QVERIFY(decimal(u"1000"_s) > decimal(u"999.999"_s));
        QVERIFY(decimal(u"0.0000001"_s) > decimal(u"0.00000009"_s));
        QVERIFY(decimal(u"12345678901234567890123456789012345678"_s)
                > decimal(u"12345678901234567890123456789012345677"_s));
    }

    void additionAndSubtractionAreExact()
    {
        QCOMPARE((decimal(u"19.99"_s) + decimal(u"0.01"_s)).toString(), u"20"_s);
        QCOMPARE((decimal(u"10"_s) - decimal(u"10.25"_s)).toString(), u"-0.25"_s);
        Decimal total;
        for (int i = 0; i < 1000; ++i)
            total += decimal(u"0.01"_s);
        QCOMPARE(total, Decimal(10));
        QCOMPARE((decimal(u"1e30"_s) + decimal(u"0.5"_s)).toString(),
                 u"1000000000000000000000000000000.5"_s);
    }

    void sumsBeyondThirtyEightDigitsRound()
    {
        const Decimal big = decimal(u"99999999999999999999999999999999999999"_s);
        QCOMPARE((big + Decimal(1)).toString(), u"100000000000000000000000000000000000000"_s);
        QCOMPARE((decimal(u"1e40"_s) + decimal(u"0.4"_s)), decimal(u"1e40"_s));
    }

    void negationAndZero()
    {
        QVERIFY(Decimal().isZero());
        QVERIFY((-decimal(u"2"_s)).isNegative());
        QCOMPARE((-Decimal()).toString(), u"0"_s);
        QCOMPARE(Decimal(qint64(std::numeric_limits<qint64>::min())).toString(), u"-9223372036854775808"_s);
    }
};

QTEST_GUILESS_MAIN(DecimalTest)
#include "DecimalTest.moc"
