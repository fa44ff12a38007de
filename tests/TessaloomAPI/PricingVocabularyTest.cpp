// SPDX-License-Identifier: GPL-3.0-or-later
// The words every price source shares: capability flags, the error sentences the price
// screens show, and how a price becomes money.
#include "EnglishTexts.h"
#include "HTTPError.h"
#include "NetworkTransportError.h"
#include "PriceAmount.h"
#include "PricingCapability.h"
#include "PricingProviderError.h"
#include "PricingProviderInfo.h"
#include "TestEnvironment.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(PricingCapability)

class PricingVocabularyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(EnglishTexts::install());
    }

    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void capabilityFlagsHaveTheirBitValues_data()
    {
        QTest::addColumn<PricingCapability>("flag");
        QTest::addColumn<int>("rawValue");
        QTest::newRow("newCondition") << PricingCapability::newCondition << 1;
        QTest::newRow("usedCondition") << PricingCapability::usedCondition << 2;
        QTest::newRow("soldPrices") << PricingCapability::soldPrices << 4;
        QTest::newRow("stockPrices") << PricingCapability::stockPrices << 8;
        QTest::newRow("priceRange") << PricingCapability::priceRange << 16;
        QTest::newRow("averagePrice") << PricingCapability::averagePrice << 32;
        QTest::newRow("salesQuantity") << PricingCapability::salesQuantity << 64;
        QTest::newRow("bulkFetch") << PricingCapability::bulkFetch << 128;
        QTest::newRow("allSingleSet") << PricingCapability::allSingleSet << 127;
    }

    void capabilityFlagsHaveTheirBitValues()
    {
        QFETCH(PricingCapability, flag);
        QFETCH(int, rawValue);
        QCOMPARE(flag.rawValue, rawValue);
    }

    // BrickLink's adapter declares allSingleSet: everything for one set at a time.
    void allSingleSetHoldsEveryFlagButBulkFetch()
    {
        const PricingCapability brickLink = PricingCapability::allSingleSet;
        for (const PricingCapability flag :
             {PricingCapability::newCondition, PricingCapability::usedCondition, PricingCapability::soldPrices,
              PricingCapability::stockPrices, PricingCapability::priceRange, PricingCapability::averagePrice,
              PricingCapability::salesQuantity})
            QVERIFY2(brickLink.contains(flag), qPrintable(QString::number(flag.rawValue)));
        QVERIFY(!brickLink.contains(PricingCapability::bulkFetch));
    }

    void capabilitiesOfTheServicesAddUpToTheirRawValues_data()
    {
        QTest::addColumn<PricingCapability>("capabilities");
        QTest::addColumn<int>("rawValue");
        QTest::newRow("brickeconomy") << (PricingCapability::newCondition | PricingCapability::usedCondition
                                          | PricingCapability::soldPrices | PricingCapability::priceRange
                                          | PricingCapability::averagePrice)
                                      << 55;
        QTest::newRow("rapidapi") << (PricingCapability::newCondition | PricingCapability::usedCondition
                                      | PricingCapability::soldPrices | PricingCapability::averagePrice
                                      | PricingCapability::salesQuantity | PricingCapability::bulkFetch)
                                  << 231;
        QTest::newRow("ebay") << (PricingCapability::newCondition | PricingCapability::usedCondition
                                  | PricingCapability::stockPrices | PricingCapability::priceRange
                                  | PricingCapability::averagePrice)
                              << 59;
        QTest::newRow("brickowl") << PricingCapability::stockPrices << 8;
    }

    void capabilitiesOfTheServicesAddUpToTheirRawValues()
    {
        QFETCH(PricingCapability, capabilities);
        QFETCH(int, rawValue);
        QCOMPARE(capabilities, PricingCapability{rawValue});
    }

    void capabilitiesWithoutBulkFetchDoNotContainIt()
    {
        const PricingCapability eBay{59};
        QVERIFY(eBay.contains(PricingCapability::stockPrices));
        QVERIFY(!eBay.contains(PricingCapability::soldPrices));
        QVERIFY(!eBay.contains(PricingCapability::soldPrices | PricingCapability::stockPrices));
        QVERIFY(PricingCapability{}.isEmpty());
    }

    void credentialFieldsAreSecretUnlessSaidOtherwise()
    {
        const PricingProviderInfo::CredentialField field{u"api_token"_s, u"API Token"_s};
        QVERIFY(field.isSecret);
    }

    void missingCredentialsNamesTheProviderAndTheSettings()
    {
        const auto error = PricingProviderError::missingCredentials(u"BrickEconomy"_s);
        QCOMPARE(error.kind(), PricingProviderError::Kind::missingCredentials);
        QCOMPARE(error.providerName(), u"BrickEconomy"_s);
        QCOMPARE(error.description(), u"Missing credentials for BrickEconomy. Please configure them in Settings."_s);
        QCOMPARE(QString::fromUtf8(error.what()), error.description());
    }

    void invalidURLHasItsSentence()
    {
        QCOMPARE(PricingProviderError::invalidURL().description(), u"Failed to build API request URL."_s);
    }

    void httpErrorSentenceIsTheStatusInDecimal()
    {
        const auto error = HTTPError::httpError(429, "slow down");
        QCOMPARE(error.description(), u"HTTP error 429"_s);
        QCOMPARE(error.statusCode(), 429);
        QCOMPARE(error.data(), QByteArray("slow down"));
    }

    void decodingErrorSentenceCarriesTheUnderlyingDescription()
    {
        const JSONDecodingError underlying(JSONDecodingError::Kind::keyNotFound, u"minPrice"_s);
        QCOMPARE(underlying.description(), u"A required value is missing. (minPrice)"_s);
        QCOMPARE(HTTPError::decodingError(underlying).description(),
                 u"Failed to decode response: A required value is missing. (minPrice)"_s);
    }

    void invalidResponseHasItsSentence()
    {
        QCOMPARE(HTTPError::invalidResponse().description(), u"Invalid server response"_s);
    }

    void transportSentenceNeverCarriesTheQueryOfTheAddress()
    {
        const NetworkTransportError error(NetworkTransportError::Kind::failed, QNetworkReply::ContentNotFoundError,
                                          u"Error transferring https://api.example.test/v1/set?key=SECRET - server replied: Not Found"_s);
        QVERIFY2(!error.description().contains(u"SECRET"_s), qPrintable(error.description()));
        QVERIFY(error.description().contains(u"https://api.example.test/v1/set"_s));
    }

    void priceTextWithAPointReadsRightInARegionThatWritesAComma()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(QLocale().decimalPoint(), u","_s);
        const std::optional<Decimal> amount = PriceAmount::fromText(u"1234.56");
        QVERIFY(amount);
        QCOMPARE(amount->toString(), u"1234.56"_s);
        QCOMPARE(*amount, Decimal(123456).dividedBy(100));
    }

    void priceTextWithACommaIsNoFigure()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QVERIFY(!PriceAmount::fromText(u"1234,56").has_value());
    }

    void unparsablePriceTextIsNoFigureRatherThanAnError()
    {
        QVERIFY(!PriceAmount::fromText(u"N/A").has_value());
        QVERIFY(!PriceAmount::fromText(u"").has_value());
    }

    void priceNumberKeepsItsShortestDecimalForm()
    {
        QCOMPARE(PriceAmount::fromNumber(99.99)->toString(), u"99.99"_s);
        QCOMPARE(PriceAmount::fromNumber(0.1)->toString(), u"0.1"_s);
        QVERIFY(!PriceAmount::fromNumber(std::numeric_limits<double>::infinity()).has_value());
    }
};

QTEST_GUILESS_MAIN(PricingVocabularyTest)
#include "PricingVocabularyTest.moc"
