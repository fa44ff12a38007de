// SPDX-License-Identifier: GPL-3.0-or-later
// The provider registry: which sources are in use, which provider a sync takes, and what
// each credential function reads. The credentials come from an in-memory store of the
// test's own, given to the registry through its CredentialSource, so a test can also make a
// read fail and see every account that was asked for. Sources whose adapters the library
// does not carry are stood in for by a small provider of the test's own under their id,
// built by the same factories and with the same credential functions as the real ones.
#include "BrickEconomyAdapter.h"
#include "EnglishTexts.h"
#include "Services/KeychainService.h"
#include "Services/PricingProviderRegistry.h"
#include "TaskOutcome.h"

#include <QHash>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

using CredentialSource = PricingProviderRegistry::CredentialSource;
using KeychainKey = KeychainService::KeychainKey;

namespace {

// Credentials held in memory under both key forms, with a record of every read. Nothing in
// the registry can write to it: a source offers reads only.
class InMemoryCredentialStore
{
public:
    QHash<QString, QString> current;
    // Legacy entries by their account, as the secret service holds them.
    QHash<QString, QString> legacy;
    QSet<QString> failingKeys;
    QSet<QString> failingLegacyKeys;
    QStringList reads;

    CredentialSource source()
    {
        return {
            [this](QString key) { return load(std::move(key)); },
            [this](KeychainKey key) { return loadLegacy(key); },
        };
    }

private:
    QCoro::Task<std::optional<QString>> load(QString key)
    {
        reads.append(key);
        if (failingKeys.contains(key))
            throw KeychainService::KeychainError(KeychainService::KeychainError::Kind::loadFailed, -25291);
        if (!current.contains(key))
            co_return std::nullopt;
        co_return current.value(key);
    }

    QCoro::Task<std::optional<QString>> loadLegacy(KeychainKey key)
    {
        const QString account = KeychainService::rawValue(key);
        reads.append(account);
        if (failingLegacyKeys.contains(account))
            throw KeychainService::KeychainError(KeychainService::KeychainError::Kind::loadFailed, -25291);
        if (!legacy.contains(account))
            co_return std::nullopt;
        co_return legacy.value(account);
    }
};

// A source of the test's own: its id, capabilities and credential fields are given, and it
// answers validateCredentials the way every adapter does (PricingProvider::checkCredentials).
class StandInProvider : public PricingProvider
{
public:
    StandInProvider(const QString &id, PricingCapability capabilities, const QStringList &fields,
                    CredentialLoader loadCredential)
        : PricingProvider(std::move(loadCredential))
    {
        m_info.id = id;
        m_info.displayName = id;
        m_info.capabilities = capabilities;
        m_info.nativeCurrency = u"USD"_s;
        for (const QString &field : fields)
            m_info.credentialKeys.append({field, field, true});
    }

    const PricingProviderInfo &info() const override { return m_info; }

    QCoro::Task<QList<PriceResult>> fetchPrices(QString setNumber) override
    {
        for (const PricingProviderInfo::CredentialField &field : m_info.credentialKeys)
            co_await requireCredential(field.key);
        co_return QList<PriceResult>{makeResult(setNumber, PricingCondition::used, PricingGuideType::sold)};
    }

    QCoro::Task<std::optional<QString>> validateCredentials() override
    {
        return checkCredentials(u"Credentials of "_s + m_info.id + u" missing."_s);
    }

private:
    PricingProviderInfo m_info;
};

const QStringList brickLinkFields = {u"consumer_key"_s, u"consumer_secret"_s, u"token_value"_s, u"token_secret"_s};

// The sources in their order of preference, each with the credential function and the
// capabilities it has in the program: BrickLink fetches all sets in one call.
PricingProviderRegistry::ProviderFactory brickLinkStandIn()
{
    return [](const CredentialSource &source) -> std::unique_ptr<PricingProvider> {
        return std::make_unique<StandInProvider>(
            u"bricklink"_s, PricingCapability::allSingleSet | PricingCapability::bulkFetch, brickLinkFields,
            PricingProviderRegistry::brickLinkCredentialLoader(source));
    };
}

PricingProviderRegistry::ProviderFactory brickEconomy()
{
    return PricingProviderRegistry::defaultProviderFactories().constFirst();
}

PricingProviderRegistry::ProviderFactory currentKeyStandIn(const QString &id, const QStringList &fields,
                                                           PricingCapability capabilities = PricingCapability::usedCondition)
{
    return [id, fields, capabilities](const CredentialSource &source) -> std::unique_ptr<PricingProvider> {
        return std::make_unique<StandInProvider>(id, capabilities, fields,
                                                 PricingProviderRegistry::currentKeyCredentialLoader(source, id));
    };
}

QList<PricingProviderRegistry::ProviderFactory> allSources()
{
    return {
        brickLinkStandIn(),
        brickEconomy(),
        currentKeyStandIn(u"rapidapi"_s, {u"api_key"_s}),
        currentKeyStandIn(u"ebay"_s, {u"client_id"_s, u"client_secret"_s}),
        currentKeyStandIn(u"brickowl"_s, {u"api_key"_s}),
    };
}

void storeEveryCredential(InMemoryCredentialStore &store)
{
    for (const QString &field : brickLinkFields)
        store.current.insert(u"pricing.bricklink."_s + field, u"bl-"_s + field);
    store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
    store.current.insert(u"pricing.rapidapi.api_key"_s, u"ra-key"_s);
    store.current.insert(u"pricing.ebay.client_id"_s, u"eb-id"_s);
    store.current.insert(u"pricing.ebay.client_secret"_s, u"eb-secret"_s);
    store.current.insert(u"pricing.brickowl.api_key"_s, u"bo-key"_s);
}

QStringList idsOf(const QList<PricingProviderInfo> &infos)
{
    QStringList ids;
    for (const PricingProviderInfo &info : infos)
        ids.append(info.id);
    return ids;
}

QStringList idsOf(const QList<PricingProvider *> &providers)
{
    QStringList ids;
    for (const PricingProvider *provider : providers)
        ids.append(provider->info().id);
    return ids;
}

std::optional<QString> read(const PricingProvider::CredentialLoader &loader, const QString &field)
{
    const TaskOutcome<std::optional<QString>> outcome = waitForOutcome(loader(field));
    if (outcome.failure)
        qFatal("a credential function failed: %s", qPrintable(outcome.failureText()));
    return *outcome.value;
}

// What validateCredentials() answers: nothing when every credential is there.
std::optional<QString> validation(PricingProvider &provider)
{
    const TaskOutcome<std::optional<QString>> outcome = waitForOutcome(provider.validateCredentials());
    if (outcome.failure)
        qFatal("validateCredentials failed: %s", qPrintable(outcome.failureText()));
    return *outcome.value;
}

PricingProvider *activeProvider(PricingProviderRegistry &registry, bool preferBulk)
{
    const TaskOutcome<PricingProvider *> outcome = waitForOutcome(registry.activeProvider(preferBulk));
    if (outcome.failure)
        qFatal("activeProvider failed: %s", qPrintable(outcome.failureText()));
    return *outcome.value;
}

} // namespace

class PricingProviderRegistryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(EnglishTexts::install()); }

    // Registration and the gate

    void providersKeepTheOrderTheyWereRegisteredIn()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(), allSources());
        QCOMPARE(idsOf(registry.providers()),
                 QStringList({u"bricklink"_s, u"brickeconomy"_s, u"rapidapi"_s, u"ebay"_s, u"brickowl"_s}));
        QVERIFY(store.reads.isEmpty());
    }

    void programRegistryHoldsTheBrickEconomyAdapter()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        QCOMPARE(idsOf(registry.providers()), QStringList{u"brickeconomy"_s});
        QVERIFY(dynamic_cast<BrickEconomyAdapter *>(registry.providers().constFirst()));
    }

    void sharedRegistryIsOneInstanceWithTheProgramsAdapters()
    {
        PricingProviderRegistry &shared = PricingProviderRegistry::shared();
        QCOMPARE(&PricingProviderRegistry::shared(), &shared);
        QCOMPARE(idsOf(shared.providers()), QStringList{u"brickeconomy"_s});
    }

    void gateEnablesOnlyBrickEconomyAmongKnownSources_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("bricklink") << u"bricklink"_s << false;
        QTest::newRow("brickset") << u"brickset"_s << false;
        QTest::newRow("brickeconomy") << u"brickeconomy"_s << true;
        QTest::newRow("rapidapi") << u"rapidapi"_s << false;
        QTest::newRow("ebay") << u"ebay"_s << false;
        QTest::newRow("brickowl") << u"brickowl"_s << false;
        QTest::newRow("an id the table does not name") << u"loopback"_s << true;
        QTest::newRow("ids are matched exactly") << u"BrickEconomy"_s << true;
    }

    void gateEnablesOnlyBrickEconomyAmongKnownSources()
    {
        QFETCH(QString, id);
        QFETCH(bool, enabled);
        QCOMPARE(PricingProviderRegistry::isEnabled(id), enabled);
    }

    void enabledProviderInfosYieldsExactlyBrickEconomy()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(), allSources());
        const QList<PricingProviderInfo> infos = registry.enabledProviderInfos();
        QCOMPARE(idsOf(infos), QStringList{u"brickeconomy"_s});
        QCOMPARE(infos.constFirst(), registry.providers().at(1)->info());
        QVERIFY(store.reads.isEmpty());
    }

    void enabledProviderInfosOfTheProgramsRegistryYieldsExactlyBrickEconomy()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        QCOMPARE(idsOf(registry.enabledProviderInfos()), QStringList{u"brickeconomy"_s});
    }

    void enabledProviderInfosIncludesSourcesTheTableDoesNotNameInRegistryOrder()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(),
                                         {currentKeyStandIn(u"loopback"_s, {u"api_key"_s}), brickLinkStandIn(),
                                          brickEconomy()});
        QCOMPARE(idsOf(registry.enabledProviderInfos()), QStringList({u"loopback"_s, u"brickeconomy"_s}));
    }

    // The active provider

    void brickEconomyTokenStoredMakesBrickEconomyActiveWhenBulkIsPreferred()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        PricingProvider *const active = activeProvider(registry, true);
        QVERIFY(active);
        QCOMPARE(active, registry.providers().constFirst());
        QVERIFY(dynamic_cast<BrickEconomyAdapter *>(active));
    }

    void brickEconomyIsActiveWhenBulkIsPreferredEvenWithEverySourcesCredentialsStored()
    {
        InMemoryCredentialStore store;
        storeEveryCredential(store);
        PricingProviderRegistry registry(store.source(), allSources());
        PricingProvider *const active = activeProvider(registry, true);
        QVERIFY(active);
        QCOMPARE(active->info().id, u"brickeconomy"_s);
        // BrickLink, the one bulk source, is switched off, so it is never asked at all.
        for (const QString &field : brickLinkFields)
            QVERIFY(!store.reads.contains(u"pricing.bricklink."_s + field));
    }

    void brickLinkKeysWithoutBrickEconomyTokenGiveNoActiveProvider()
    {
        InMemoryCredentialStore store;
        for (const QString &field : brickLinkFields)
            store.current.insert(u"pricing.bricklink."_s + field, u"bl-"_s + field);
        PricingProviderRegistry registry(store.source(), allSources());
        // BrickLink's credentials are complete: it is the gate that leaves it out.
        PricingProvider *const brickLink = registry.providers().constFirst();
        QCOMPARE(validation(*brickLink), std::nullopt);

        QCOMPARE(activeProvider(registry, true), nullptr);
        QCOMPARE(activeProvider(registry, false), nullptr);
    }

    void brickEconomyTokenStoredMakesBrickEconomyActiveForASingleSet()
    {
        InMemoryCredentialStore store;
        storeEveryCredential(store);
        PricingProviderRegistry registry(store.source(), allSources());
        PricingProvider *const active = activeProvider(registry, false);
        QVERIFY(active);
        QCOMPARE(active->info().id, u"brickeconomy"_s);
    }

    void emptyBrickEconomyTokenGivesNoActiveProvider()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickeconomy.api_token"_s, QString());
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        QCOMPARE(activeProvider(registry, true), nullptr);
        QCOMPARE(activeProvider(registry, false), nullptr);
    }

    void unreadableBrickEconomyTokenGivesNoActiveProvider()
    {
        InMemoryCredentialStore store;
        store.failingKeys.insert(u"pricing.brickeconomy.api_token"_s);
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        const TaskOutcome<PricingProvider *> outcome = waitForOutcome(registry.activeProvider(false));
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(*outcome.value, nullptr);
    }

    void preferringBulkTakesAnEnabledBulkSourceBeforeAnEarlierOne()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
        store.current.insert(u"pricing.loopback.api_key"_s, u"lb-key"_s);
        PricingProviderRegistry registry(
            store.source(),
            {brickEconomy(), currentKeyStandIn(u"loopback"_s, {u"api_key"_s}, PricingCapability::bulkFetch)});
        QCOMPARE(activeProvider(registry, true)->info().id, u"loopback"_s);
        QCOMPARE(activeProvider(registry, false)->info().id, u"brickeconomy"_s);
    }

    void preferringBulkFallsBackToListOrderWhenNoBulkSourceHasCredentials()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
        PricingProviderRegistry registry(
            store.source(),
            {currentKeyStandIn(u"loopback"_s, {u"api_key"_s}, PricingCapability::bulkFetch), brickEconomy()});
        QCOMPARE(activeProvider(registry, true)->info().id, u"brickeconomy"_s);
    }

    void earlierEnabledSourceWinsWhenSeveralHaveCredentials()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
        store.current.insert(u"pricing.loopback.api_key"_s, u"lb-key"_s);
        PricingProviderRegistry registry(store.source(),
                                         {currentKeyStandIn(u"loopback"_s, {u"api_key"_s}), brickEconomy()});
        QCOMPARE(activeProvider(registry, false)->info().id, u"loopback"_s);
    }

    // The BrickLink credential function

    void brickLinkKeyFoundOnlyUnderLegacyNameIsReturnedAndStaysThere_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<KeychainKey>("legacyKey");
        QTest::newRow("consumer_key") << u"consumer_key"_s << KeychainKey::brickLinkConsumerKey;
        QTest::newRow("consumer_secret") << u"consumer_secret"_s << KeychainKey::brickLinkConsumerSecret;
        QTest::newRow("token_value") << u"token_value"_s << KeychainKey::brickLinkTokenValue;
        QTest::newRow("token_secret") << u"token_secret"_s << KeychainKey::brickLinkTokenSecret;
    }

    void brickLinkKeyFoundOnlyUnderLegacyNameIsReturnedAndStaysThere()
    {
        QFETCH(QString, field);
        QFETCH(KeychainKey, legacyKey);
        InMemoryCredentialStore store;
        store.legacy.insert(KeychainService::rawValue(legacyKey), u"legacy-"_s + field);
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());

        QCOMPARE(read(loader, field), std::optional<QString>(u"legacy-"_s + field));
        QCOMPARE(store.reads, QStringList({u"pricing.bricklink."_s + field, KeychainService::rawValue(legacyKey)}));
        QCOMPARE(store.legacy.value(KeychainService::rawValue(legacyKey)), u"legacy-"_s + field);
        QVERIFY(store.current.isEmpty());
        // Read again, it is still found under the legacy name only.
        QCOMPARE(read(loader, field), std::optional<QString>(u"legacy-"_s + field));
        QCOMPARE(store.reads.size(), 4);
    }

    void emptyBrickLinkConsumerKeyFallsThroughToLegacyKey()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.bricklink.consumer_key"_s, QString());
        store.legacy.insert(KeychainService::rawValue(KeychainKey::brickLinkConsumerKey), u"legacy-consumer-key"_s);
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"consumer_key"_s), std::optional<QString>(u"legacy-consumer-key"_s));
        QCOMPARE(store.current.value(u"pricing.bricklink.consumer_key"_s), QString());
    }

    void emptyBrickLinkKeyWithoutLegacyEntryGivesAbsent()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.bricklink.token_secret"_s, QString());
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"token_secret"_s), std::nullopt);
    }

    void brickLinkCurrentKeyIsPreferredOverLegacyKey()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.bricklink.token_value"_s, u"current-token"_s);
        store.legacy.insert(KeychainService::rawValue(KeychainKey::brickLinkTokenValue), u"legacy-token"_s);
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"token_value"_s), std::optional<QString>(u"current-token"_s));
        QCOMPARE(store.reads, QStringList{u"pricing.bricklink.token_value"_s});
    }

    void unreadableBrickLinkKeyFallsBackToLegacyKey()
    {
        InMemoryCredentialStore store;
        store.failingKeys.insert(u"pricing.bricklink.consumer_secret"_s);
        store.legacy.insert(KeychainService::rawValue(KeychainKey::brickLinkConsumerSecret), u"legacy-secret"_s);
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"consumer_secret"_s), std::optional<QString>(u"legacy-secret"_s));
    }

    void unreadableBrickLinkLegacyKeyGivesAbsent()
    {
        InMemoryCredentialStore store;
        store.failingKeys.insert(u"pricing.bricklink.consumer_secret"_s);
        store.failingLegacyKeys.insert(KeychainService::rawValue(KeychainKey::brickLinkConsumerSecret));
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"consumer_secret"_s), std::nullopt);
    }

    void brickLinkFieldWithoutLegacyKeyReadsNoLegacyEntry()
    {
        InMemoryCredentialStore store;
        store.legacy.insert(KeychainService::rawValue(KeychainKey::brickLinkConsumerKey), u"legacy-consumer-key"_s);
        const auto loader = PricingProviderRegistry::brickLinkCredentialLoader(store.source());
        QCOMPARE(read(loader, u"api_key"_s), std::nullopt);
        QCOMPARE(store.reads, QStringList{u"pricing.bricklink.api_key"_s});
    }

    // The Brickset credential function

    void bricksetApiKeyFoundOnlyUnderLegacyNameIsReturnedAndStaysThere()
    {
        InMemoryCredentialStore store;
        store.legacy.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"legacy-brickset"_s);
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(store.source());
        QCOMPARE(read(loader, u"api_key"_s), std::optional<QString>(u"legacy-brickset"_s));
        QCOMPARE(store.reads, QStringList({u"pricing.brickset.api_key"_s, u"brickset_api_key"_s}));
        QCOMPARE(store.legacy.value(KeychainService::rawValue(KeychainKey::bricksetAPIKey)), u"legacy-brickset"_s);
        QVERIFY(store.current.isEmpty());
    }

    void emptyBricksetApiKeyFallsThroughToLegacyKey()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickset.api_key"_s, QString());
        store.legacy.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"legacy-brickset"_s);
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(store.source());
        QCOMPARE(read(loader, u"api_key"_s), std::optional<QString>(u"legacy-brickset"_s));
    }

    void bricksetCurrentKeyIsPreferredOverLegacyKey()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.brickset.api_key"_s, u"current-brickset"_s);
        store.legacy.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"legacy-brickset"_s);
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(store.source());
        QCOMPARE(read(loader, u"api_key"_s), std::optional<QString>(u"current-brickset"_s));
        QCOMPARE(store.reads, QStringList{u"pricing.brickset.api_key"_s});
    }

    void bricksetFieldsOtherThanApiKeyHaveNoLegacyFallback()
    {
        InMemoryCredentialStore store;
        store.legacy.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"legacy-brickset"_s);
        store.current.insert(u"pricing.brickset.username"_s, QString());
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(store.source());
        QCOMPARE(read(loader, u"username"_s), std::nullopt);
        QCOMPARE(read(loader, u"password"_s), std::nullopt);
        QCOMPARE(store.reads, QStringList({u"pricing.brickset.username"_s, u"pricing.brickset.password"_s}));
    }

    void unreadableBricksetLegacyKeyGivesAbsent()
    {
        InMemoryCredentialStore store;
        store.failingLegacyKeys.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey));
        const auto loader = PricingProviderRegistry::bricksetCredentialLoader(store.source());
        QCOMPARE(read(loader, u"api_key"_s), std::nullopt);
    }

    // The credential function of every other source

    void emptyEBayClientIdIsReturnedEmptyAndTheAdapterTreatsItAsMissing()
    {
        InMemoryCredentialStore store;
        store.current.insert(u"pricing.ebay.client_id"_s, QString());
        store.current.insert(u"pricing.ebay.client_secret"_s, u"eb-secret"_s);
        const auto loader = PricingProviderRegistry::currentKeyCredentialLoader(store.source(), u"ebay"_s);
        QCOMPARE(read(loader, u"client_id"_s), std::optional<QString>(QString()));

        StandInProvider eBay(u"ebay"_s, PricingCapability::usedCondition, {u"client_id"_s, u"client_secret"_s},
                             loader);
        QCOMPARE(validation(eBay), std::optional<QString>(u"Credentials of ebay missing."_s));
    }

    void currentKeyFunctionReadsTheProvidersOwnKeyAndNoLegacyEntry_data()
    {
        QTest::addColumn<QString>("providerId");
        QTest::addColumn<QString>("field");
        QTest::newRow("brickeconomy") << u"brickeconomy"_s << u"api_token"_s;
        QTest::newRow("rapidapi") << u"rapidapi"_s << u"api_key"_s;
        QTest::newRow("ebay") << u"ebay"_s << u"client_secret"_s;
        QTest::newRow("brickowl") << u"brickowl"_s << u"api_key"_s;
    }

    void currentKeyFunctionReadsTheProvidersOwnKeyAndNoLegacyEntry()
    {
        QFETCH(QString, providerId);
        QFETCH(QString, field);
        const QString key = u"pricing."_s + providerId + u'.' + field;
        InMemoryCredentialStore store;
        store.legacy.insert(KeychainService::rawValue(KeychainKey::bricksetAPIKey), u"legacy-brickset"_s);
        store.legacy.insert(KeychainService::rawValue(KeychainKey::brickLinkConsumerKey), u"legacy-consumer-key"_s);
        const auto loader = PricingProviderRegistry::currentKeyCredentialLoader(store.source(), providerId);

        QCOMPARE(read(loader, field), std::nullopt);
        store.current.insert(key, u"stored"_s);
        QCOMPARE(read(loader, field), std::optional<QString>(u"stored"_s));
        QCOMPARE(store.reads, QStringList({key, key}));
    }

    void unreadableCurrentKeyGivesAbsent()
    {
        InMemoryCredentialStore store;
        store.failingKeys.insert(u"pricing.brickeconomy.api_token"_s);
        const auto loader = PricingProviderRegistry::currentKeyCredentialLoader(store.source(), u"brickeconomy"_s);
        QCOMPARE(read(loader, u"api_token"_s), std::nullopt);
    }

    void brickEconomyAdapterOfTheRegistryReadsItsTokenThroughTheStore()
    {
        InMemoryCredentialStore store;
        PricingProviderRegistry registry(store.source(), PricingProviderRegistry::defaultProviderFactories());
        PricingProvider *const adapter = registry.providers().constFirst();
        QCOMPARE(validation(*adapter), std::optional<QString>(u"BrickEconomy API token not configured."_s));
        store.current.insert(u"pricing.brickeconomy.api_token"_s, u"be-token"_s);
        QCOMPARE(validation(*adapter), std::nullopt);
        QCOMPARE(store.reads, QStringList({u"pricing.brickeconomy.api_token"_s, u"pricing.brickeconomy.api_token"_s}));
    }
};

QTEST_GUILESS_MAIN(PricingProviderRegistryTest)
#include "PricingProviderRegistryTest.moc"
