// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PricingProviderInfo.h"
#include "Services/KeychainService.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

class PendingCredentialSave;

// The state behind the API keys and cache tabs of the settings: the credentials as the
// fields show them, and the image cache figure. Credentials come from the secret store
// when the tab appears, legacy accounts included, and go back to it debounced: each key
// waits half a second after its last keystroke and then saves the last value alone.
// Values are never logged and never written anywhere but the secret store. Main thread.
class SettingsViewModel : public QObject
{
    Q_OBJECT

public:
    // The three calls of the secret store this model makes. Any may throw
    // KeychainService::KeychainError.
    struct CredentialStore
    {
        std::function<QCoro::Task<std::optional<QString>>(QString key)> load;
        std::function<QCoro::Task<std::optional<QString>>(KeychainService::KeychainKey key)> loadLegacy;
        std::function<QCoro::Task<>(QString value, QString key)> save;

        // All three through `service`, which must outlive every pending save.
        static CredentialStore from(KeychainService &service);
    };

    // The pause after the last keystroke in a field before its value is saved.
    static constexpr std::chrono::milliseconds saveDelay{500};

    // Over KeychainService::shared().
    explicit SettingsViewModel(QObject *parent = nullptr);
    explicit SettingsViewModel(CredentialStore store, QObject *parent = nullptr);
    ~SettingsViewModel() override;

    // "pricing." + provider id + "." + field key.
    static QString credentialKey(const QString &providerID, const QString &fieldKey);
    // The account an earlier version kept `credentialKey` under, if it had one.
    static std::optional<KeychainService::KeychainKey> legacyKey(const QString &credentialKey);

    const QHash<QString, QString> &providerCredentials() const { return m_providerCredentials; }
    QString imageCacheSize() const { return m_imageCacheSize; }
    void setImageCacheSize(const QString &text);
    QString preferredCurrency() const { return m_preferredCurrency; }
    bool defaultToGridView() const { return m_defaultToGridView; }
    bool isSaving() const { return m_isSaving; }
    std::optional<QString> saveMessage() const { return m_saveMessage; }
    bool isTestingAPI() const { return m_isTestingAPI; }
    std::optional<QString> apiTestResult() const { return m_apiTestResult; }

    // Reads every credential field of `providers`, in order, then the Brickset key. A key
    // the user has typed into in the meantime keeps what was typed.
    QCoro::Task<> loadCredentials(QList<PricingProviderInfo> providers);
    // The value the field of `forKey` shows, or the empty text.
    QString credential(const QString &forKey) const;
    // A keystroke in the field of `forKey`: shown at once, saved after the pause unless
    // another keystroke in the same field comes first. An emptied field saves the empty text.
    void setCredential(const QString &value, const QString &forKey);
    // The save waiting or running for `forKey`; null once it has ended.
    PendingCredentialSave *saveTask(const QString &forKey) const;

Q_SIGNALS:
    void providerCredentialsChanged(const QString &key);
    void imageCacheSizeChanged(const QString &text);
    // loadCredentials() has read every key.
    void credentialsLoaded();

private:
    QCoro::Task<> loadCredential(QString key);
    void storeLoaded(const QString &key, const QString &value);

    QHash<QString, QString> m_providerCredentials;
    QString m_imageCacheSize;
    QString m_preferredCurrency;
    bool m_defaultToGridView = true;
    bool m_isSaving = false;
    std::optional<QString> m_saveMessage;
    bool m_isTestingAPI = false;
    std::optional<QString> m_apiTestResult;
    CredentialStore m_keychain;
    QHash<QString, QPointer<PendingCredentialSave>> m_saveTasks;
    // Keys the user typed into: a load that answers later must not undo the typing.
    QSet<QString> m_editedKeys;
};
