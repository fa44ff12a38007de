// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SettingsViewModel.h"

#include "Logging.h"
#include "ViewModels/PendingCredentialSave.h"

#include <utility>

using namespace Qt::StringLiterals;
using KeychainKey = KeychainService::KeychainKey;

namespace {

// Read after the providers' fields: Brickset is no provider, yet its key is shown.
const QString bricksetKey = u"pricing.brickset.api_key"_s;

QString describe(const std::exception &error)
{
    if (const auto *keychain = dynamic_cast<const KeychainService::KeychainError *>(&error))
        return keychain->errorDescription();
    return QString::fromUtf8(error.what());
}

// The line names the key and the store's error, never a value.
void logLoadFailure(const QString &key, const std::exception &error)
{
    qCCritical(lcPricing).noquote() << u"Failed to load credential %1: %2"_s.arg(key, describe(error));
}

} // namespace

SettingsViewModel::CredentialStore SettingsViewModel::CredentialStore::from(KeychainService &service)
{
    return {
        [&service](QString key) { return service.load(std::move(key)); },
        [&service](KeychainKey key) { return service.load(key); },
        [&service](QString value, QString key) { return service.save(std::move(value), std::move(key)); },
    };
}

SettingsViewModel::SettingsViewModel(QObject *parent)
    : SettingsViewModel(CredentialStore::from(KeychainService::shared()), parent)
{
}

SettingsViewModel::SettingsViewModel(CredentialStore store, QObject *parent)
    : QObject(parent)
    , m_imageCacheSize(u"Calculating..."_s)
    , m_preferredCurrency(u"USD"_s)
    , m_keychain(std::move(store))
{
}

// Pending saves are left running: they belong to nobody (see PendingCredentialSave).
SettingsViewModel::~SettingsViewModel() = default;

QString SettingsViewModel::credentialKey(const QString &providerID, const QString &fieldKey)
{
    return u"pricing."_s + providerID + u'.' + fieldKey;
}

std::optional<KeychainKey> SettingsViewModel::legacyKey(const QString &credentialKey)
{
    static const QHash<QString, KeychainKey> legacy{
        {u"pricing.bricklink.consumer_key"_s, KeychainKey::brickLinkConsumerKey},
        {u"pricing.bricklink.consumer_secret"_s, KeychainKey::brickLinkConsumerSecret},
        {u"pricing.bricklink.token_value"_s, KeychainKey::brickLinkTokenValue},
        {u"pricing.bricklink.token_secret"_s, KeychainKey::brickLinkTokenSecret},
        {bricksetKey, KeychainKey::bricksetAPIKey},
    };
    const auto found = legacy.constFind(credentialKey);
    if (found == legacy.cend())
        return std::nullopt;
    return *found;
}

void SettingsViewModel::setImageCacheSize(const QString &text)
{
    if (m_imageCacheSize == text)
        return;
    m_imageCacheSize = text;
    Q_EMIT imageCacheSizeChanged(text);
}

QCoro::Task<> SettingsViewModel::loadCredentials(QList<PricingProviderInfo> providers)
{
    QPointer<SettingsViewModel> self(this);
    QStringList keys;
    for (const PricingProviderInfo &info : std::as_const(providers)) {
        for (const PricingProviderInfo::CredentialField &field : info.credentialKeys)
            keys << credentialKey(info.id, field.key);
    }
    keys << bricksetKey;
    for (const QString &key : std::as_const(keys)) {
        co_await loadCredential(key);
        if (!self)
            co_return;
    }
    Q_EMIT credentialsLoaded();
}

QCoro::Task<> SettingsViewModel::loadCredential(QString key)
{
    // The store functions outlive this model; only the model's own state needs the guard.
    QPointer<SettingsViewModel> self(this);
    const CredentialStore store = m_keychain;
    std::optional<QString> value;
    try {
        value = co_await store.load(key);
    } catch (const std::exception &error) {
        logLoadFailure(key, error);
        co_return; // the legacy entry is not tried after a failed read
    }
    if (!self)
        co_return;
    if (value && !value->isEmpty()) {
        storeLoaded(key, *value);
        co_return;
    }
    const std::optional<KeychainKey> legacy = legacyKey(key);
    if (!legacy)
        co_return;
    try {
        value = co_await store.loadLegacy(*legacy);
    } catch (const std::exception &error) {
        logLoadFailure(key, error);
        co_return;
    }
    // Shown only: the value stays under its legacy account until the user saves the field.
    if (self && value && !value->isEmpty())
        storeLoaded(key, *value);
}

void SettingsViewModel::storeLoaded(const QString &key, const QString &value)
{
    if (m_editedKeys.contains(key))
        return;
    m_providerCredentials.insert(key, value);
    Q_EMIT providerCredentialsChanged(key);
}

QString SettingsViewModel::credential(const QString &forKey) const
{
    return m_providerCredentials.value(forKey);
}

PendingCredentialSave *SettingsViewModel::saveTask(const QString &forKey) const
{
    return m_saveTasks.value(forKey);
}

void SettingsViewModel::setCredential(const QString &value, const QString &forKey)
{
    m_editedKeys.insert(forKey);
    m_providerCredentials.insert(forKey, value);
    Q_EMIT providerCredentialsChanged(forKey);
    if (const QPointer<PendingCredentialSave> previous = m_saveTasks.value(forKey))
        previous->cancel();
    m_saveTasks.insert(forKey, PendingCredentialSave::start(m_keychain.save, value, forKey, saveDelay));
}
