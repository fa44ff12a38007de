// SPDX-License-Identifier: GPL-3.0-or-later
// The API keys tab offscreen over a credential store in memory: its sections with the
// sources in use, masked fields with their toggles, the capability line of each source,
// and keystrokes that reach the store after the pause, even when the window closed.
#include "InMemoryCredentialStore.h"
#include "Services/PricingProviderRegistry.h"
#include "TestEnvironment.h"
#include "Views/APIKeysSettingsTab.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using CapabilityLabel = APIKeysSettingsTab::CapabilityLabel;

Q_DECLARE_METATYPE(PricingCapability)

namespace {

const QString tokenKey = u"pricing.brickeconomy.api_token"_s;

// A source with BrickOwl's flags: current asking prices, nothing else.
PricingProviderInfo brickOwlLike()
{
    return {u"brickowl"_s, u"BrickOwl"_s, PricingCapability::stockPrices, u"GBP"_s,
            {{u"api_key"_s, u"API Key"_s, true}}};
}

QStringList keysOf(const QList<CapabilityLabel> &labels)
{
    QStringList keys;
    for (const CapabilityLabel &label : labels)
        keys << label.textKey;
    return keys;
}

} // namespace

class APIKeysSettingsTabTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
    }

    void withTheProviderGateTheTabShowsTheDescriptionAndExactlyOneProviderSection()
    {
        InMemoryCredentialStore memory;
        APIKeysSettingsTab tab(PricingProviderRegistry::shared().enabledProviderInfos(), memory.store());
        tab.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tab));
        QVERIFY(tab.descriptionSection()->isVisible());
        QVERIFY(!tab.descriptionSection()->findChild<QLabel *>()->text().isEmpty());
        QCOMPARE(tab.providerSections().size(), 1);
        QCOMPARE(tab.findChildren<QGroupBox *>().size(), 2);
        QGroupBox *section = tab.providerSections().first();
        QCOMPARE(section->title(), u"BrickEconomy"_s);
        QCOMPARE(section->findChildren<QLineEdit *>().size(), 1);
        QLineEdit *field = tab.field(tokenKey);
        QVERIFY(field);
        QCOMPARE(field->placeholderText(), u"API Token"_s);
        QVERIFY(!tab.field(u"pricing.brickset.api_key"_s)); // read, but no field for it
    }

    void aProviderWithBrickOwlsFlagsShowsTheListingsLabelAndAnEmptyConditionLabel()
    {
        const QList<CapabilityLabel> row = APIKeysSettingsTab::capabilityRow(PricingCapability::stockPrices);
        QCOMPARE(row.size(), 2);
        QCOMPARE(row.at(0).textKey, u"settings.apiKeys.listingsOnly"_s);
        QCOMPARE(row.at(0).text, u"Listings only"_s);
        QCOMPARE(row.at(0).symbol, u"tag"_s);
        QCOMPARE(row.at(1).text, QString());
        QCOMPARE(row.at(1).symbol, QString());

        InMemoryCredentialStore memory;
        APIKeysSettingsTab tab({brickOwlLike()}, memory.store());
        tab.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tab));
        QWidget *line = tab.providerSections().first()->findChild<QWidget *>(u"capabilityLine"_s);
        QVERIFY(line);
        QWidget *listings = line->findChild<QWidget *>(u"capability.settings.apiKeys.listingsOnly"_s);
        QVERIFY(listings && listings->isVisible());
        QCOMPARE(listings->findChild<QLabel *>(u"capabilityText"_s)->text(), u"Listings only"_s);
        QWidget *condition = line->findChild<QWidget *>(u"capability.condition.none"_s);
        QVERIFY(condition);
        QCOMPARE(condition->findChild<QLabel *>(u"capabilityText"_s)->text(), QString());
        QVERIFY(!line->findChild<QWidget *>(u"capability.settings.apiKeys.soldData"_s));
    }

    void capabilityRowFollowsTheFlags_data()
    {
        QTest::addColumn<PricingCapability>("capabilities");
        QTest::addColumn<QStringList>("keys");
        QTest::newRow("BrickLink") << PricingCapability::allSingleSet
                                   << QStringList{u"settings.apiKeys.soldData"_s, u"settings.apiKeys.newAndUsed"_s};
        QTest::newRow("BrickEconomy") << PricingCapability{55}
                                      << QStringList{u"settings.apiKeys.soldData"_s, u"settings.apiKeys.newAndUsed"_s};
        QTest::newRow("RapidAPI") << PricingCapability{231}
                                  << QStringList{u"settings.apiKeys.soldData"_s, u"settings.apiKeys.bulk"_s,
                                                 u"settings.apiKeys.newAndUsed"_s};
        QTest::newRow("eBay") << PricingCapability{59}
                              << QStringList{u"settings.apiKeys.listingsOnly"_s, u"settings.apiKeys.newAndUsed"_s};
        QTest::newRow("sold and listings") << (PricingCapability::soldPrices | PricingCapability::stockPrices)
                                           << QStringList{u"settings.apiKeys.soldData"_s, QString()};
        QTest::newRow("new only") << PricingCapability::newCondition << QStringList{u"settings.apiKeys.newOnly"_s};
        QTest::newRow("used only") << PricingCapability::usedCondition << QStringList{u"settings.apiKeys.usedOnly"_s};
    }

    void capabilityRowFollowsTheFlags()
    {
        QFETCH(PricingCapability, capabilities);
        QFETCH(QStringList, keys);
        QCOMPARE(keysOf(APIKeysSettingsTab::capabilityRow(capabilities)), keys);
    }

    void aSourceWithoutCapabilitiesShowsTheBricksetText()
    {
        InMemoryCredentialStore memory;
        PricingProviderInfo info = brickOwlLike();
        info.capabilities = {};
        APIKeysSettingsTab tab({info}, memory.store());
        auto *line = tab.providerSections().first()->findChild<QLabel *>(u"capabilityLine"_s);
        QVERIFY(line);
        QCOMPARE(line->text(), qtTrId("settings.apiKeys.bricksetDescription"));
    }

    void secretFieldsAreMaskedAndTheirToggleShowsThem()
    {
        InMemoryCredentialStore memory;
        APIKeysSettingsTab tab(PricingProviderRegistry::shared().enabledProviderInfos(), memory.store());
        QLineEdit *field = tab.field(tokenKey);
        QToolButton *toggle = tab.showToggle(tokenKey);
        QVERIFY(toggle);
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        toggle->click();
        QCOMPARE(field->echoMode(), QLineEdit::Normal);
        toggle->click();
        QCOMPARE(field->echoMode(), QLineEdit::Password);
    }

    void theFieldsShowTheStoredValuesWhenTheTabFirstAppears()
    {
        InMemoryCredentialStore memory;
        memory.current.insert(tokenKey, u"stored-token"_s);
        APIKeysSettingsTab tab(PricingProviderRegistry::shared().enabledProviderInfos(), memory.store());
        QVERIFY(memory.reads.isEmpty()); // nothing read before the tab appears
        QSignalSpy loaded(&tab, &APIKeysSettingsTab::credentialsLoaded);
        tab.show();
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(tab.field(tokenKey)->text(), u"stored-token"_s);
        // The Brickset key last, falling back to its old account since it is not stored.
        QCOMPARE(memory.reads, QStringList({tokenKey, u"pricing.brickset.api_key"_s, u"brickset_api_key"_s}));
        tab.hide();
        tab.show();
        QTest::qWait(50);
        QCOMPARE(memory.reads.size(), 3); // once per tab
    }

    void typingInAFieldSavesTheLastValueAfterThePause()
    {
        InMemoryCredentialStore memory;
        APIKeysSettingsTab tab(PricingProviderRegistry::shared().enabledProviderInfos(), memory.store());
        tab.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tab));
        QTest::keyClicks(tab.field(tokenKey), u"abc"_s);
        QCOMPARE(tab.viewModel().credential(tokenKey), u"abc"_s);
        QTRY_COMPARE(memory.saves.size(), 1);
        QCOMPARE(memory.saves.first().value, u"abc"_s);
        QCOMPARE(memory.saves.first().key, tokenKey);
    }

    void closingTheWindowWithinThePauseDoesNotLoseTheSave()
    {
        InMemoryCredentialStore memory;
        QPointer<QDialog> window = new QDialog();
        window->setAttribute(Qt::WA_DeleteOnClose);
        auto *tab = new APIKeysSettingsTab(PricingProviderRegistry::shared().enabledProviderInfos(), memory.store());
        (new QVBoxLayout(window))->addWidget(tab);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QTest::keyClicks(tab->field(tokenKey), u"typed-then-closed"_s);
        window->close();
        QTRY_VERIFY(!window); // the window and its view model are gone
        QVERIFY(memory.saves.isEmpty());
        QTRY_COMPARE(memory.saves.size(), 1);
        QCOMPARE(memory.current.value(tokenKey), u"typed-then-closed"_s);
    }
};

QTEST_MAIN(APIKeysSettingsTabTest)
#include "APIKeysSettingsTabTest.moc"
