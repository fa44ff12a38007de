// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/PricingProviderRegistry.h"

#include "BrickEconomyAdapter.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

using CredentialSource = PricingProviderRegistry::CredentialSource;
using KeychainKey = KeychainService::KeychainKey;

// Accounts written by earlier versions for the BrickLink fields. Only read, never copied to
// the current key nor deleted: a legacy entry stays in use until the user saves a new value.
std::optional<KeychainKey> brickLinkLegacyKey(const QString &field)
{
    if (field == u"consumer_key")
        return KeychainKey::brickLinkConsumerKey;
    if (field == u"consumer_secret")
        return KeychainKey::brickLinkConsumerSecret;
    if (field == u"token_value")
        return KeychainKey::brickLinkTokenValue;
    if (field == u"token_secret")
        return KeychainKey::brickLinkTokenSecret;
    return std::nullopt;
}

std::optional<KeychainKey> bricksetLegacyKey(const QString &field)
{
    if (field == u"api_key")
        return KeychainKey::bricksetAPIKey;
    return std::nullopt;
}

// Adapters treat a failing credential function as a failed fetch; a store that cannot be
// read is, for them, a store without the value, so the error stops here.
QCoro::Task<std::optional<QString>> readCurrent(CredentialSource source, QString key)
{
    try {
        co_return co_await source.load(std::move(key));
    } catch (const KeychainService::KeychainError &) {
        co_return std::nullopt;
    }
}

QCoro::Task<std::optional<QString>> readLegacy(CredentialSource source, KeychainKey key)
{
    try {
        co_return co_await source.loadLegacy(key);
    } catch (const KeychainService::KeychainError &) {
        co_return std::nullopt;
    }
}

// The current key first; an empty value there counts as none (a cleared field must not hide
// a legacy entry that still holds the credential). The legacy value is returned as stored.
QCoro::Task<std::optional<QString>> readWithLegacyFallback(CredentialSource source, QString key,
                                                           std::optional<KeychainKey> legacyKey)
{
    const std::optional<QString> value = co_await readCurrent(source, std::move(key));
    if (value && !value->isEmpty())
        co_return value;
    if (!legacyKey)
        co_return std::nullopt;
    co_return co_await readLegacy(std::move(source), *legacyKey);
}

} // namespace

PricingProviderRegistry::CredentialSource PricingProviderRegistry::CredentialSource::from(KeychainService &service)
{
    return {
        [&service](QString key) { return service.load(std::move(key)); },
        [&service](KeychainKey key) { return service.load(key); },
    };
}

PricingProviderRegistry &PricingProviderRegistry::shared()
{
    // Never destroyed, like the credential store it reads: an adapter task still waiting at
    // exit must not resume into a dead object.
    static PricingProviderRegistry *const instance =
        new PricingProviderRegistry(CredentialSource::from(KeychainService::shared()), defaultProviderFactories());
    return *instance;
}

PricingProviderRegistry::PricingProviderRegistry(CredentialSource source, const QList<ProviderFactory> &factories)
{
    m_providers.reserve(factories.size());
    for (const ProviderFactory &factory : factories)
        m_providers.push_back(factory(source));
}

PricingProviderRegistry::~PricingProviderRegistry() = default;

QList<PricingProviderRegistry::ProviderFactory> PricingProviderRegistry::defaultProviderFactories()
{
    // The order of preference is BrickLink, BrickEconomy, RapidAPI, eBay Browse, BrickOwl:
    // when more than one source qualifies, the earlier wins. BrickEconomy's is the adapter
    // the library has; each of the others takes its place in this order when it is added,
    // BrickLink's with brickLinkCredentialLoader and the rest with
    // currentKeyCredentialLoader under their own id. Brickset is no price source of this
    // list: its adapter is built apart, with bricksetCredentialLoader.
    return {
        [](const CredentialSource &source) -> std::unique_ptr<PricingProvider> {
            return std::make_unique<BrickEconomyAdapter>(currentKeyCredentialLoader(source, u"brickeconomy"_s));
        },
    };
}

QList<PricingProvider *> PricingProviderRegistry::providers() const
{
    QList<PricingProvider *> list;
    list.reserve(qsizetype(m_providers.size()));
    for (const std::unique_ptr<PricingProvider> &provider : m_providers)
        list.append(provider.get());
    return list;
}

QList<PricingProviderInfo> PricingProviderRegistry::enabledProviderInfos() const
{
    QList<PricingProviderInfo> infos;
    for (const std::unique_ptr<PricingProvider> &provider : m_providers) {
        if (isEnabled(provider->info().id))
            infos.append(provider->info());
    }
    return infos;
}

QCoro::Task<PricingProvider *> PricingProviderRegistry::activeProvider(bool preferBulk)
{
    // The registry and its adapters live to the end of the program, so the pointers stay
    // valid across each wait.
    if (preferBulk) {
        for (const std::unique_ptr<PricingProvider> &provider : m_providers) {
            const PricingProviderInfo &info = provider->info();
            if (!info.capabilities.contains(PricingCapability::bulkFetch) || !isEnabled(info.id))
                continue;
            if (!(co_await provider->validateCredentials()))
                co_return provider.get();
        }
    }
    for (const std::unique_ptr<PricingProvider> &provider : m_providers) {
        if (!isEnabled(provider->info().id))
            continue;
        if (!(co_await provider->validateCredentials()))
            co_return provider.get();
    }
    co_return nullptr;
}

bool PricingProviderRegistry::isEnabled(const QString &id)
{
    // BrickEconomy is the only source in use, on purpose: the other adapters are complete
    // and built, and switched off here. This table is the one place where a source is
    // brought into use; there is no user setting for it. An id it does not name is enabled.
    static const QHash<QString, bool> enabledById = {
        {u"bricklink"_s, false},
        {u"brickset"_s, false},
        {u"brickeconomy"_s, true},
        {u"rapidapi"_s, false},
        {u"ebay"_s, false},
        {u"brickowl"_s, false},
    };
    return enabledById.value(id, true);
}

PricingProvider::CredentialLoader PricingProviderRegistry::brickLinkCredentialLoader(CredentialSource source)
{
    return [source = std::move(source)](QString field) {
        const std::optional<KeychainKey> legacyKey = brickLinkLegacyKey(field);
        return readWithLegacyFallback(source, u"pricing.bricklink."_s + field, legacyKey);
    };
}

PricingProvider::CredentialLoader PricingProviderRegistry::bricksetCredentialLoader(CredentialSource source)
{
    return [source = std::move(source)](QString field) {
        const std::optional<KeychainKey> legacyKey = bricksetLegacyKey(field);
        return readWithLegacyFallback(source, u"pricing.brickset."_s + field, legacyKey);
    };
}

PricingProvider::CredentialLoader PricingProviderRegistry::currentKeyCredentialLoader(CredentialSource source,
                                                                                      QString providerId)
{
    return [source = std::move(source), providerId = std::move(providerId)](QString field) {
        return readCurrent(source, u"pricing."_s + providerId + u'.' + field);
    };
}
