// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"
#include "Views/TessaloomApp.h"

#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

class DefaultsRegistrationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init() { QSettings().clear(); }

    void firstLaunchInALocaleWhoseCurrencyIsNotOfferedStoresUSD()
    {
        QSettings settings;
        TessaloomApp::registerDefaults(settings, QLocale(QLocale::Russian, QLocale::Russia));
        QCOMPARE(settings.value(u"preferredCurrency"_s).toString(), u"USD"_s);
        QCOMPARE(settings.value(u"hasRegisteredDefaults"_s).toBool(), true);
    }

    void firstLaunchTakesTheLocaleCurrencyWhenOffered_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("currency");
        QTest::newRow("Germany") << QLocale(QLocale::German, QLocale::Germany) << u"EUR"_s;
        QTest::newRow("United Kingdom") << QLocale(QLocale::English, QLocale::UnitedKingdom) << u"GBP"_s;
        QTest::newRow("Japan") << QLocale(QLocale::Japanese, QLocale::Japan) << u"JPY"_s;
        QTest::newRow("Switzerland") << QLocale(QLocale::German, QLocale::Switzerland) << u"CHF"_s;
        QTest::newRow("Norway") << QLocale(QLocale::NorwegianBokmal, QLocale::Norway) << u"NOK"_s;
        QTest::newRow("Canada") << QLocale(QLocale::French, QLocale::Canada) << u"CAD"_s;
    }

    void firstLaunchTakesTheLocaleCurrencyWhenOffered()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, currency);
        QSettings settings;
        TessaloomApp::registerDefaults(settings, locale);
        QCOMPARE(settings.value(u"preferredCurrency"_s).toString(), currency);
    }

    void localeWithoutACurrencyStoresUSD()
    {
        QSettings settings;
        TessaloomApp::registerDefaults(settings, QLocale::c());
        QCOMPARE(settings.value(u"preferredCurrency"_s).toString(), u"USD"_s);
    }

    void secondLaunchInAnotherLocaleKeepsTheStoredCurrency()
    {
        QSettings settings;
        TessaloomApp::registerDefaults(settings, QLocale(QLocale::German, QLocale::Germany));
        TessaloomApp::registerDefaults(settings, QLocale(QLocale::Japanese, QLocale::Japan));
        QCOMPARE(settings.value(u"preferredCurrency"_s).toString(), u"EUR"_s);
    }

    void registrationRunsOnlyOnceEvenAfterTheUserChangesTheCurrency()
    {
        QSettings settings;
        TessaloomApp::registerDefaults(settings, QLocale(QLocale::German, QLocale::Germany));
        settings.setValue(u"preferredCurrency"_s, u"SEK"_s);
        TessaloomApp::registerDefaults(settings, QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(settings.value(u"preferredCurrency"_s).toString(), u"SEK"_s);
    }

    void registrationSurvivesAReopenOfTheSettings()
    {
        {
            QSettings settings;
            TessaloomApp::registerDefaults(settings, QLocale(QLocale::Danish, QLocale::Denmark));
        }
        QSettings reopened;
        TessaloomApp::registerDefaults(reopened, QLocale(QLocale::Swedish, QLocale::Sweden));
        QCOMPARE(reopened.value(u"preferredCurrency"_s).toString(), u"DKK"_s);
    }
};

QTEST_GUILESS_MAIN(DefaultsRegistrationTest)
#include "DefaultsRegistrationTest.moc"
