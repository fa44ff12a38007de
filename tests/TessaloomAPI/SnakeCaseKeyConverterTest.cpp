// SPDX-License-Identifier: GPL-3.0-or-later
// How answer keys are converted from snake case before any field is looked up, and what
// that means for fields read from the converted answer.
#include "EnglishTexts.h"
#include "HTTPClient.h"
#include "JSONDecoder.h"
#include "SnakeCaseKeyConverter.h"
#include "TestEnvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct MinimumPrice
{
    Decimal minPrice;
    static MinimumPrice decode(const JSONValue &value) { return {value.decode<Decimal>(u"minPrice"_s)}; }
};

// A field declared with the answer's own snake-case key.
struct SnakeKeyedPrice
{
    Decimal price;
    static SnakeKeyedPrice decode(const JSONValue &value) { return {value.decode<Decimal>(u"qty_avg_price"_s)}; }
};

struct OptionalSnakeKeyedToken
{
    std::optional<QString> accessToken;
    static OptionalSnakeKeyedToken decode(const JSONValue &value)
    {
        return {value.decodeIfPresent<QString>(u"access_token"_s)};
    }
};

} // namespace

class SnakeCaseKeyConverterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(EnglishTexts::install());
    }

    void keysConvertPieceByPiece_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("converted");
        QTest::newRow("two pieces") << u"min_price"_s << u"minPrice"_s;
        QTest::newRow("three pieces") << u"qty_avg_price"_s << u"qtyAvgPrice"_s;
        QTest::newRow("one piece keeps its case") << u"LEGOCom"_s << u"LEGOCom"_s;
        QTest::newRow("one piece in capitals") << u"ID"_s << u"ID"_s;
        QTest::newRow("camel case already") << u"minPrice"_s << u"minPrice"_s;
        QTest::newRow("capitals lowered then capitalised") << u"MIN_PRICE"_s << u"minPrice"_s;
        QTest::newRow("mixed case pieces") << u"Set_NUMBER_x"_s << u"setNumberX"_s;
        QTest::newRow("leading underscore stays") << u"_private_key"_s << u"_privateKey"_s;
        QTest::newRow("trailing underscores stay") << u"last_value__"_s << u"lastValue__"_s;
        QTest::newRow("one piece between underscores") << u"__value_"_s << u"__value_"_s;
        QTest::newRow("double underscore inside") << u"a__b"_s << u"aB"_s;
        QTest::newRow("digit piece") << u"price_2_years"_s << u"price2Years"_s;
        QTest::newRow("only underscores") << u"___"_s << u"___"_s;
        QTest::newRow("empty") << QString() << QString();
    }

    void keysConvertPieceByPiece()
    {
        QFETCH(QString, key);
        QFETCH(QString, converted);
        QCOMPARE(SnakeCaseKeyConverter::convert(key), converted);
    }

    void keysAreConvertedAtEveryDepthAndInsideArrays()
    {
        const QJsonDocument document = QJsonDocument::fromJson(
            R"({"price_guide": {"new_sealed": [{"min_price": 1}, {"max_price": 2}]}})");
        const QJsonValue converted = SnakeCaseKeyConverter::convertKeys(document.object());
        const QJsonArray items = converted[u"priceGuide"_s][u"newSealed"_s].toArray();
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(0).toObject().keys(), QStringList{u"minPrice"_s});
        QCOMPARE(items.at(1).toObject().keys(), QStringList{u"maxPrice"_s});
    }

    void valuesAreNeverConverted()
    {
        const JSONValue root = JSONDecoder::parse(R"({"set_name": "min_price"})");
        QCOMPARE(root.decode<QString>(u"setName"_s), u"min_price"_s);
    }

    void snakeCaseKeyIsFoundUnderItsCamelCaseFieldKey()
    {
        const auto decoded = HTTPClient::decodeBody<MinimumPrice>(R"({"min_price": 12.5})");
        QCOMPARE(decoded.minPrice, Decimal::fromString(u"12.5").value());
    }

    // The answer holds the very key the field declares, yet the field is never found: the
    // key was converted to "qtyAvgPrice" before the lookup. Meant; adapters whose fields are
    // keyed so cannot read them, and must not be "fixed" here.
    void requiredFieldDeclaredWithAnUnderscoreFailsEvenWhenTheAnswerHasIt()
    {
        try {
            HTTPClient::decodeBody<SnakeKeyedPrice>(R"({"qty_avg_price": 12.5})");
            QFAIL("decoded a field whose key the conversion removed");
        } catch (const HTTPError &error) {
            QCOMPARE(error.kind(), HTTPError::Kind::decodingError);
            QVERIFY(error.underlyingError());
            QCOMPARE(error.underlyingError()->kind(), JSONDecodingError::Kind::keyNotFound);
            QCOMPARE(error.underlyingError()->detail(), u"qty_avg_price"_s);
        }
    }

    void optionalFieldDeclaredWithAnUnderscoreStaysAbsentEvenWhenTheAnswerHasIt()
    {
        const auto decoded = HTTPClient::decodeBody<OptionalSnakeKeyedToken>(R"({"access_token": "abc"})");
        QVERIFY(!decoded.accessToken.has_value());
    }

    void requiredNullFieldIsValueNotFoundAndOptionalNullIsAbsent()
    {
        const JSONValue root = JSONDecoder::parse(R"({"min_price": null})");
        QVERIFY(!root.decodeIfPresent<Decimal>(u"minPrice"_s).has_value());
        try {
            root.decode<Decimal>(u"minPrice"_s);
            QFAIL("a null decoded as a number");
        } catch (const JSONDecodingError &error) {
            QCOMPARE(error.kind(), JSONDecodingError::Kind::valueNotFound);
        }
    }

    void wholeNumberFieldRefusesAFraction()
    {
        const JSONValue root = JSONDecoder::parse(R"({"quantity": 2.5, "count": 7})");
        QCOMPARE(root.decode<qint64>(u"count"_s), 7);
        try {
            root.decode<qint64>(u"quantity"_s);
            QFAIL("2.5 decoded as a whole number");
        } catch (const JSONDecodingError &error) {
            QCOMPARE(error.kind(), JSONDecodingError::Kind::typeMismatch);
            QCOMPARE(error.detail(), u"quantity: expected a whole number"_s);
        }
    }
};

QTEST_GUILESS_MAIN(SnakeCaseKeyConverterTest)
#include "SnakeCaseKeyConverterTest.moc"
