// SPDX-License-Identifier: GPL-3.0-or-later
// The registry's credential functions over the real credential store: a KeychainService of
// the test's own against the secret service of a private D-Bus session, and, in a second run
// of the same executable, with no session bus at all, where every read fails and the
// functions must answer absent instead of failing. Each test checks the behaviour that fits
// the run: with a secret service, what the functions find; without one, that the same reads
// answer absent and fail nothing. run-with-secret-service.sh sets the run up; see
// Keychain.cmake.
#include "BrickEconomyAdapter.h"
#include "EnglishTexts.h"
#include "SecretStoreDirectly.h"
#include "Services/KeychainService.h"
#include "Services/PricingProviderRegistry.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include <QSignalSpy>
#include <QTest>

#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;
using namespace SecretStoreDirectly;
using KeychainKey = KeychainService::KeychainKey;
using CredentialSource = PricingProviderRegistry::CredentialSource;

namespace {


// Every account a test here uses, cleared before each test.
const QStringList usedAccounts{
    u"pricing.bricklink.consumer_key"_s, u"pricing.bricklink.token_secret"_s, u"pricing.brickset.api_key"_s,
    u"pricing.brickeconomy.api_token"_s, u"pricing.ebay.client_id"_s,         u"bricklink_consumer_key"_s,
    u"bricklink_token_secret"_s,         u"brickset_api_key"_s,
};

// True once the secret service answers a delete, with or without an item to delete.
bool secretServiceAnswers()
{
    const QKeychain::Error error = deleteDirectly(usedAccounts.constFirst());
    return error == QKeychain::NoError || error == QKeychain::EntryNotFound;
}

std::optional<QString> read(const PricingProvider::CredentialLoader &loader, const QString &field)
{
    const TaskOutcome<std::optional<QString>> outcome = waitForOutcome(loader(field));
    if (outcome.failure)
        qFatal("a credential function failed: %s", qPrintable(outcome.failureText()));
    return *outcome.value;
}

} // namespace

class PricingProviderRegistryKeychainTest : public QObject
{
    Q_OBJECT

    bool m_hasSecretService = false;

    bool hasSecretService() const { return m_hasSecretService; }

    void save(KeychainService &service, const QString &value, const QString &key)
    {
        const TaskOutcome<bool> outcome = waitForOutcome(saveTask(service, value, key));
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
    }

    static QCoro::Task<bool> saveTask(KeychainService &service, QString value, QString key)
    {
        co_await service.save(std::move(value), std::move(key));
        co_return true;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QByteArray setting = qgetenv("TESSALOOM_TEST_SECRET_SERVICE");
        if (setting != "present" && setting != "absent")
            QFAIL("Run through tests/Pricing/run-with-secret-service.sh (present or absent).");
        m_hasSecretService = setting == "present";
        QVERIFY(EnglishTexts::install());
        // gnome-keyring may take the secret service's bus name a moment after the run
        // started it; until then every call fails, so the first test waits for it here.
        if (hasSecretService())
            QTRY_VERIFY_WITH_TIMEOUT(secretServiceAnswers(), 10000);
    }

    void init()
    {
        if (!hasSecretService())
            return;
        for (const QString &account : usedAccounts) {
            const QKeychain::Error error = deleteDirectly(account);
            QVERIFY2(error == QKeychain::NoError || error == QKeychain::EntryNotFound,
                     qPrintable(u"QtKeychain error %1 clearing %2"_s.arg(int(error)).arg(account)));
        }
    }

    void legacyBrickLinkEntryIsReturnedAndStaysStoredUnderItsName()
    {
        KeychainService service;
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(CredentialSource::from(service));
        if (!hasSecretService()) {
            QCOMPARE(read(loader, u"consumer_key"_s), std::nullopt);
            return;
        }
        QCOMPARE(writeDirectly(u"bricklink_consumer_key"_s, "legacy-consumer-key"), QKeychain::NoError);

        QCOMPARE(read(loader, u"consumer_key"_s), std::optional<QString>(u"legacy-consumer-key"_s));
        QCOMPARE(readDirectly(u"bricklink_consumer_key"_s), std::optional<QByteArray>("legacy-consumer-key"));
        QCOMPARE(readDirectly(u"pricing.bricklink.consumer_key"_s), std::nullopt);
    }

    void savedEmptyBrickLinkKeyFallsThroughToLegacyEntry()
    {
        KeychainService service;
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(CredentialSource::from(service));
        if (!hasSecretService()) {
            QCOMPARE(read(loader, u"token_secret"_s), std::nullopt);
            return;
        }
        QCOMPARE(writeDirectly(u"bricklink_token_secret"_s, "legacy-token-secret"), QKeychain::NoError);
        save(service, QString(), u"pricing.bricklink.token_secret"_s);
        QCOMPARE(read(loader, u"token_secret"_s), std::optional<QString>(u"legacy-token-secret"_s));
    }

    void legacyBricksetEntryIsReturnedAndStaysStoredUnderItsName()
    {
        KeychainService service;
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(CredentialSource::from(service));
        if (!hasSecretService()) {
            QCOMPARE(read(loader, u"api_key"_s), std::nullopt);
            return;
        }
        QCOMPARE(writeDirectly(u"brickset_api_key"_s, "legacy-brickset"), QKeychain::NoError);
        QCOMPARE(read(loader, u"api_key"_s), std::optional<QString>(u"legacy-brickset"_s));
        QCOMPARE(readDirectly(u"brickset_api_key"_s), std::optional<QByteArray>("legacy-brickset"));
        QCOMPARE(readDirectly(u"pricing.brickset.api_key"_s), std::nullopt);
    }

    void savedEmptyEBayClientIdIsReturnedEmpty()
    {
        KeychainService service;
        const auto loader = PricingProviderRegistry::currentKeyCredentialLoader(CredentialSource::from(service), u"ebay"_s);
        if (!hasSecretService()) {
            QCOMPARE(read(loader, u"client_id"_s), std::nullopt);
            return;
        }
        save(service, QString(), u"pricing.ebay.client_id"_s);
        QCOMPARE(read(loader, u"client_id"_s), std::optional<QString>(QString()));
    }

    void savedBrickEconomyTokenMakesBrickEconomyTheActiveProvider()
    {
        KeychainService service;
        PricingProviderRegistry registry(CredentialSource::from(service),
                                         PricingProviderRegistry::defaultProviderFactories());
        QCOMPARE(waitForOutcome(registry.activeProvider(true)).value, std::optional<PricingProvider *>(nullptr));
        if (!hasSecretService())
            return;
        save(service, u"be-token"_s, u"pricing.brickeconomy.api_token"_s);
        PricingProvider *const active = *waitForOutcome(registry.activeProvider(true)).value;
        QVERIFY(dynamic_cast<BrickEconomyAdapter *>(active));
    }

    // Missing items with a secret service, failed reads without one: absent either way.
    void credentialsNotFoundOrUnreadableAreAbsentAndNoProviderIsActive()
    {
        KeychainService service;
        const CredentialSource source = CredentialSource::from(service);
        QCOMPARE(read(PricingProviderRegistry::brickLinkCredentialLoader(source), u"consumer_key"_s), std::nullopt);
        QCOMPARE(read(PricingProviderRegistry::bricksetCredentialLoader(source), u"api_key"_s), std::nullopt);
        QCOMPARE(read(PricingProviderRegistry::currentKeyCredentialLoader(source, u"brickeconomy"_s), u"api_token"_s),
                 std::nullopt);

        PricingProviderRegistry registry(source, PricingProviderRegistry::defaultProviderFactories());
        const TaskOutcome<PricingProvider *> outcome = waitForOutcome(registry.activeProvider(true));
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(*outcome.value, nullptr);
    }
};

QTEST_GUILESS_MAIN(PricingProviderRegistryKeychainTest)
#include "PricingProviderRegistryKeychainTest.moc"
