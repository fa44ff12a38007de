// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryEditorFields.h"

#include <QTest>

using namespace Qt::StringLiterals;

// The copy editor's fields without any widget: how a price text reads, how a copy fills
// the form, and what the form writes back into a copy.
class InventoryEditorFieldsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPriceTextReadsAsItsLeadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("price"); // "" for no price
        QTest::newRow("decimal point") << u"12.34"_s << u"12.34"_s;
        QTest::newRow("whole number") << u"100"_s << u"100"_s;
        QTest::newRow("trailing point") << u"5."_s << u"5"_s;
        QTest::newRow("leading point") << u".5"_s << u"0.5"_s;
        QTest::newRow("leading blanks") << u"  7.25"_s << u"7.25"_s;
        QTest::newRow("followed by a currency") << u"12.50 EUR"_s << u"12.5"_s;
        QTest::newRow("comma is not a decimal point") << u"1,5"_s << u"1"_s;
        QTest::newRow("second point ends the number") << u"1.2.3"_s << u"1.2"_s;
        QTest::newRow("negative") << u"-3.5"_s << u"-3.5"_s;
        QTest::newRow("exponent") << u"1e2"_s << u"100"_s;
        QTest::newRow("exponent without digits") << u"2e"_s << u"2"_s;
        QTest::newRow("many digits stay exact") << u"12345678901234567890.12"_s << u"12345678901234567890.12"_s;
        QTest::newRow("letters") << u"abc"_s << QString();
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("point alone") << u"."_s << QString();
        QTest::newRow("currency first") << u"$12"_s << QString();
    }

    void aPriceTextReadsAsItsLeadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(QString, price);
        const std::optional<Decimal> read = InventoryEditorFields::readPrice(text);
        QCOMPARE(read.has_value(), !price.isEmpty());
        if (read)
            QCOMPARE(read->toString(), price);
    }

    void anEmptyCopyFillsTheFormWithTheFallbacks()
    {
        const InventoryEditorFields fields = InventoryEditorFields::fromCopy(BrickSet{}, u"EUR"_s);
        QCOMPARE(fields.acquisitionType, AcquisitionType::unknown);
        QCOMPARE(fields.overallCondition, OverallCondition::used);
        QCOMPARE(fields.completeness, SetCompleteness::unknown);
        QCOMPARE(fields.boxCondition, BoxCondition::good);
        QCOMPARE(fields.instructionsCondition, InstructionsCondition::good);
        QCOMPARE(fields.builtStatus, BuiltStatus::built);
        QCOMPARE(fields.stickerStatus, StickerStatus::noStickers);
        QCOMPARE(fields.disposalType, DisposalType::sold);
        QCOMPARE(fields.priceCurrency, u"EUR"_s);
        QCOMPARE(fields.disposalCurrency, u"EUR"_s);
        QCOMPARE(fields.pricePaidText, QString());
        QVERIFY(!fields.acquisitionDate);
        QVERIFY(!fields.isDisposed);
    }

    void foreignStoredValuesReadAsTheFallbacks()
    {
        BrickSet copy;
        copy.acquisitionType = u"Purchased"_s;
        copy.builtStatus = u"partially built"_s;
        copy.stickerStatus = u"partially_applied"_s;
        const InventoryEditorFields fields = InventoryEditorFields::fromCopy(copy, u"USD"_s);
        QCOMPARE(fields.acquisitionType, AcquisitionType::unknown);
        QCOMPARE(fields.builtStatus, BuiltStatus::built);
        QCOMPARE(fields.stickerStatus, StickerStatus::partiallyApplied);
    }

    void theWatchedValuesAreEighteenInTheFormsOrder()
    {
        InventoryEditorFields fields;
        fields.pricePaidText = u"9.99"_s;
        fields.isDisposed = true;
        fields.notes = u"boxed"_s;
        const QStringList values = fields.watchedValues();
        QCOMPARE(values.size(), 18);
        QCOMPARE(values.at(0), u"unknown"_s);
        QCOMPARE(values.at(1), u"9.99"_s);
        QCOMPARE(values.at(5), u"used"_s);
        QCOMPARE(values.at(10), u"no_stickers"_s);
        QCOMPARE(values.at(11), u"true"_s);
        QCOMPARE(values.at(17), u"boxed"_s);
    }

    void writingEmptyTextsLeavesThemAbsent()
    {
        BrickSet copy;
        copy.acquisitionSource = u"market"_s;
        copy.notes = u"old"_s;
        InventoryEditorFields fields;
        fields.priceCurrency = QString();
        fields.writeTo(copy);
        QVERIFY(!copy.acquisitionSource);
        QVERIFY(!copy.notes);
        QVERIFY(!copy.priceCurrency);
        QVERIFY(!copy.pricePaid);
    }

    void writingANotDisposedCopyClearsTheFiveDisposalAttributes()
    {
        BrickSet copy;
        copy.isDisposed = true;
        copy.disposalType = u"traded"_s;
        copy.disposalDate = QDateTime(QDate(2025, 5, 1), QTime(12, 0), Qt::UTC);
        copy.disposalPrice = Decimal::fromString(u"40"_s);
        copy.disposalCurrency = u"GBP"_s;
        copy.disposalNotes = u"to a friend"_s;
        InventoryEditorFields fields = InventoryEditorFields::fromCopy(copy, u"USD"_s);
        fields.isDisposed = false;
        fields.writeTo(copy);
        QVERIFY(!copy.isDisposed);
        QVERIFY(!copy.disposalType);
        QVERIFY(!copy.disposalDate);
        QVERIFY(!copy.disposalPrice);
        QVERIFY(!copy.disposalCurrency);
        QVERIFY(!copy.disposalNotes);
        QCOMPARE(fields.disposalPriceText, u"40"_s); // the form keeps them
    }
};

QTEST_GUILESS_MAIN(InventoryEditorFieldsTest)
#include "InventoryEditorFieldsTest.moc"
