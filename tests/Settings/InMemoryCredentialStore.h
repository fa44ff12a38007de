// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SettingsViewModel.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

// A credential store in memory for the settings' tests: what is stored under current and
// legacy accounts, every read and save in order with the time it came, and failures on
// demand, the same KeychainError the real store throws.
class InMemoryCredentialStore
{
public:
    struct Save
    {
        QString key;
        QString value;
        qint64 atMs = 0; // since the store was made
    };

    QHash<QString, QString> current;
    QHash<QString, QString> legacy; // by the legacy account, such as "bricklink_consumer_key"
    QList<Save> saves;
    QStringList reads; // accounts in the order read, legacy ones by their account
    bool failLoads = false;
    bool failSaves = false;

    InMemoryCredentialStore() { m_clock.start(); }
    qint64 elapsedMs() const { return m_clock.elapsed(); }

    SettingsViewModel::CredentialStore store()
    {
        return {
            [this](QString key) { return load(this, std::move(key)); },
            [this](KeychainService::KeychainKey key) { return loadLegacy(this, key); },
            [this](QString value, QString key) { return save(this, std::move(value), std::move(key)); },
        };
    }

private:
    using KeychainError = KeychainService::KeychainError;

    static QCoro::Task<std::optional<QString>> load(InMemoryCredentialStore *self, QString key)
    {
        self->reads << key;
        if (self->failLoads)
            throw KeychainError(KeychainError::Kind::loadFailed, -25293);
        if (!self->current.contains(key))
            co_return std::nullopt;
        co_return self->current.value(key);
    }

    static QCoro::Task<std::optional<QString>> loadLegacy(InMemoryCredentialStore *self, KeychainService::KeychainKey key)
    {
        const QString account = KeychainService::rawValue(key);
        self->reads << account;
        if (self->failLoads)
            throw KeychainError(KeychainError::Kind::loadFailed, -25293);
        if (!self->legacy.contains(account))
            co_return std::nullopt;
        co_return self->legacy.value(account);
    }

    static QCoro::Task<> save(InMemoryCredentialStore *self, QString value, QString key)
    {
        self->saves.append({key, value, self->m_clock.elapsed()});
        if (self->failSaves)
            throw KeychainError(KeychainError::Kind::saveFailed, -25291);
        self->current.insert(key, value);
        co_return;
    }

    QElapsedTimer m_clock;
};
