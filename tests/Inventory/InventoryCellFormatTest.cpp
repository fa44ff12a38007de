// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/InventoryCellFormat.h"
#include "ViewModels/InventoryRow.h"

#include <QTest>

using namespace Qt::StringLiterals;

// How the inventory sheet writes amounts, dates and the disposal cell in a fixed locale.
class InventoryCellFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void absentAmountPrintsNotAvailable()
    {
        const InventoryCellFormat format(QLocale(u"en_US"_s));
        QCOMPARE(format.price(std::nullopt, u"USD"_s), u"N/A"_s);
        QCOMPARE(format.price(std::nullopt), u"N/A"_s);
    }

    void amountIsInItsCurrencyInTheLocalesCurrencyStyle()
    {
        const InventoryCellFormat format(QLocale(u"en_US"_s));
        QCOMPARE(format.price(Decimal::fromString(u"849.99"_s), u"USD"_s), u"$849.99"_s);
        QCOMPARE(format.price(Decimal::fromString(u"1234.5"_s), u"EUR"_s), u"€1,234.50"_s);
        QCOMPARE(format.price(Decimal::fromString(u"7000"_s), u"JPY"_s), u"¥7,000"_s);
        QCOMPARE(format.price(Decimal::fromString(u"12"_s), u"CHF"_s), u"CHF12.00"_s);
    }

    void amountWithoutCurrencyIsInTheLocalesOwnCurrency()
    {
        QCOMPARE(InventoryCellFormat(QLocale(u"en_US"_s)).price(Decimal::fromString(u"5"_s)), u"$5.00"_s);
        QCOMPARE(InventoryCellFormat(QLocale(u"en_US"_s)).localeCurrency(), u"USD"_s);
        const InventoryCellFormat german(QLocale(u"de_DE"_s));
        QCOMPARE(german.localeCurrency(), u"EUR"_s);
        QCOMPARE(german.price(Decimal::fromString(u"1234.5"_s)), u"1.234,50\u00a0€"_s);
    }

    void dateIsTheLocalesShortDateWithoutTime()
    {
        QCOMPARE(InventoryCellFormat(QLocale(u"en_US"_s)).date(QDate(2024, 3, 31)), u"3/31/24"_s);
        QCOMPARE(InventoryCellFormat(QLocale(u"de_DE"_s)).date(QDate(2024, 3, 31)), u"31.03.24"_s);
        QCOMPARE(InventoryCellFormat(QLocale(u"en_US"_s)).date(QDate()), QString());
    }

    void disposalCellIsEmptyForACopyInStock()
    {
        InventoryRow row;
        row.disposalPrice = Decimal(10);
        row.disposalWord = u"Sold"_s;
        QCOMPARE(InventoryCellFormat(QLocale(u"en_US"_s)).disposalCell(row), QString());
    }

    void disposalCellPrefersThePriceToTheWord()
    {
        InventoryRow row;
        row.isDisposed = true;
        row.disposalWord = u"Sold"_s;
        const InventoryCellFormat format(QLocale(u"en_US"_s));
        QCOMPARE(format.disposalCell(row), u"Sold"_s);
        row.disposalPrice = Decimal(300);
        row.disposalCurrency = u"GBP"_s;
        QCOMPARE(format.disposalCell(row), u"£300.00"_s);
    }
};

QTEST_GUILESS_MAIN(InventoryCellFormatTest)
#include "InventoryCellFormatTest.moc"
