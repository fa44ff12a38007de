// SPDX-License-Identifier: GPL-3.0-or-later
// The API keys tab over the real credential store: a KeychainService of the test's own
// against gnome-keyring in a private D-Bus session, and, in a second run of the same
// executable, with no session bus at all (see tests/Pricing/run-with-secret-service.sh).
// Each test checks what fits its run: with a secret service, what reaches the store;
// without one, that the failure is logged and the tab goes on working.
#include "LogCapture.h"
#include "SecretStoreDirectly.h"
#include "Services/KeychainService.h"
#include "TestEnvironment.h"
#include "ViewModels/PendingCredentialSave.h"
#include "ViewModels/SettingsViewModel.h"
#include "Views/APIKeysSettingsTab.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace SecretStoreDirectly;

namespace {

const QString tokenKey = u"pricing.brickeconomy.api_token"_s;
const QString consumerKey = u"pricing.bricklink.consumer_key"_s;
const QStringList usedAccounts{tokenKey, consumerKey, u"pricing.brickset.api_key"_s, u"bricklink_consumer_key"_s,
                               u"brickset_api_key"_s};

PricingProviderInfo brickEconomy()
{
    return {u"brickeconomy"_s, u"BrickEconomy"_s, PricingCapability{55}, u"USD"_s,
            {{u"api_token"_s, u"API Token"_s, true}}};
}

PricingProviderInfo brickLinkConsumerKeyOnly()
{
    return {u"bricklink"_s, u"BrickLink"_s, PricingCapability::allSingleSet, u"USD"_s,
            {{u"consumer_key"_s, u"Consumer Key"_s, true}}};
}

bool secretServiceAnswers()
{
    const QKeychain::Error error = deleteDirectly(usedAccounts.constFirst());
    return error == QKeychain::NoError || error == QKeychain::EntryNotFound;
}

// The real store, with each save counted as it reaches it.
SettingsViewModel::CredentialStore countingStore(KeychainService &service, int &saves)
{
    SettingsViewModel::CredentialStore store = SettingsViewModel::CredentialStore::from(service);
    store.save = [&service, &saves](QString value, QString key) {
        ++saves;
        return service.save(std::move(value), std::move(key));
    };
    return store;
}

void waitPastThePause()
{
    QTest::qWait(int(SettingsViewModel::saveDelay.count()) + 500);
}

} // namespace

class SettingsKeychainTest : public QObject
{
    Q_OBJECT

    bool m_hasSecretService = false;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QByteArray setting = qgetenv("TESSALOOM_TEST_SECRET_SERVICE");
        if (setting != "present" && setting != "absent")
            QFAIL("Run through tests/Pricing/run-with-secret-service.sh (present or absent).");
        m_hasSecretService = setting == "present";
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        if (m_hasSecretService)
            QTRY_VERIFY_WITH_TIMEOUT(secretServiceAnswers(), 10000);
    }

    void init()
    {
        if (!m_hasSecretService)
            return;
        for (const QString &account : usedAccounts) {
            const QKeychain::Error error = deleteDirectly(account);
            QVERIFY(error == QKeychain::NoError || error == QKeychain::EntryNotFound);
        }
    }

    void typingSavesOnceAfterThePause()
    {
        KeychainService service;
        int saves = 0;
        APIKeysSettingsTab tab({brickEconomy()}, countingStore(service, saves));
        tab.show();
        QTRY_VERIFY_WITH_TIMEOUT(tab.hasLoaded(), 10000);
        QTest::keyClicks(tab.field(tokenKey), u"typed-token"_s);
        QCOMPARE(saves, 0);
        QTRY_COMPARE(saves, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!tab.viewModel().saveTask(tokenKey), 10000);
        waitPastThePause();
        QCOMPARE(saves, 1);
        if (m_hasSecretService)
            QCOMPARE(readDirectly(tokenKey), std::optional<QByteArray>("typed-token"));
        else
            QCOMPARE(tab.field(tokenKey)->text(), u"typed-token"_s); // refused, still shown
    }

    void aLegacyValueIsShownAndNotCopied()
    {
        if (m_hasSecretService)
            QCOMPARE(writeDirectly(u"bricklink_consumer_key"_s, "legacy-consumer-key"), QKeychain::NoError);
        KeychainService service;
        int saves = 0;
        APIKeysSettingsTab tab({brickLinkConsumerKeyOnly()}, countingStore(service, saves));
        tab.show();
        QTRY_VERIFY_WITH_TIMEOUT(tab.hasLoaded(), 10000);
        waitPastThePause();
        QCOMPARE(saves, 0);
        if (!m_hasSecretService) {
            QCOMPARE(tab.field(consumerKey)->text(), QString());
            return;
        }
        QCOMPARE(tab.field(consumerKey)->text(), u"legacy-consumer-key"_s);
        QCOMPARE(readDirectly(consumerKey), std::nullopt);
        QCOMPARE(readDirectly(u"bricklink_consumer_key"_s), std::optional<QByteArray>("legacy-consumer-key"));
    }

    void anEmptiedFieldStoresTheEmptyText()
    {
        if (m_hasSecretService)
            QCOMPARE(writeDirectly(tokenKey, "old-token"), QKeychain::NoError);
        KeychainService service;
        int saves = 0;
        APIKeysSettingsTab tab({brickEconomy()}, countingStore(service, saves));
        tab.show();
        QTRY_VERIFY_WITH_TIMEOUT(tab.hasLoaded(), 10000);
        QLineEdit *field = tab.field(tokenKey);
        QCOMPARE(field->text(), m_hasSecretService ? u"old-token"_s : QString());
        if (!m_hasSecretService)
            QTest::keyClicks(field, u"x"_s);
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Backspace);
        QCOMPARE(field->text(), QString());
        QTRY_COMPARE(saves, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!tab.viewModel().saveTask(tokenKey), 10000);
        if (m_hasSecretService)
            QCOMPARE(readDirectly(tokenKey), std::optional<QByteArray>(QByteArray()));
    }

    void quittingWithinThePauseStillReachesTheStore()
    {
        KeychainService service;
        int saves = 0;
        {
            APIKeysSettingsTab tab({brickEconomy()}, countingStore(service, saves));
            tab.show();
            QTRY_VERIFY_WITH_TIMEOUT(tab.hasLoaded(), 10000);
            QTest::keyClicks(tab.field(tokenKey), u"typed-at-quit"_s);
        }
        QCOMPARE(saves, 0);
        // What the application runs when it is about to quit.
        QVERIFY(PendingCredentialSave::finishAll());
        QCOMPARE(saves, 1);
        if (m_hasSecretService)
            QCOMPARE(readDirectly(tokenKey), std::optional<QByteArray>("typed-at-quit"));
    }

    void withoutASecretServiceTheFailureIsLoggedAndTheTabKeepsWorking()
    {
        LogCapture log;
        KeychainService service;
        int saves = 0;
        APIKeysSettingsTab tab({brickEconomy()}, countingStore(service, saves));
        tab.show();
        QTRY_VERIFY_WITH_TIMEOUT(tab.hasLoaded(), 10000);
        const qsizetype failure = log.indexOfMessageStartingWith(
            u"Failed to load credential pricing.brickeconomy.api_token: Failed to load from Keychain (status: "_s);
        QCOMPARE(failure >= 0, !m_hasSecretService);
        // Either way the field takes typing, and the model follows it.
        QLineEdit *field = tab.field(tokenKey);
        QVERIFY(field->isEnabled());
        QTest::keyClicks(field, u"still-typing"_s);
        QCOMPARE(tab.viewModel().credential(tokenKey), u"still-typing"_s);
        QTRY_COMPARE(saves, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!tab.viewModel().saveTask(tokenKey), 10000);
        QVERIFY(tab.isVisible());
    }
};

QTEST_MAIN(SettingsKeychainTest)
#include "SettingsKeychainTest.moc"
