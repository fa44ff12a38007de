// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/KeychainService.h"
#include "PricingProvider.h"
#include "PricingProviderInfo.h"

#include <QCoroTask>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

// The program's one point of contact with the price sources: it builds every adapter once,
// hands each a credential function that reads through KeychainService, decides which
// sources are in use, and answers which provider a price sync should take. Nothing else
// joins the adapters to the credential store.
//
// Everything the registry holds is set in its constructor and never changes afterwards, so
// there is nothing for an observer to follow.
class PricingProviderRegistry
{
public:
    // The two reads of the credential store that credential functions make. Either may
    // throw KeychainService::KeychainError; the credential functions turn that into absent.
    struct CredentialSource
    {
        std::function<QCoro::Task<std::optional<QString>>(QString key)> load;
        std::function<QCoro::Task<std::optional<QString>>(KeychainService::KeychainKey key)> loadLegacy;

        // Both reads from `service`, which must outlive every adapter given a function.
        static CredentialSource from(KeychainService &service);
    };

    // Builds one adapter of the list from the store its credential function reads.
    using ProviderFactory = std::function<std::unique_ptr<PricingProvider>(const CredentialSource &source)>;

    // The process-wide registry over KeychainService::shared(), made on first use; it lives
    // to the end of the program.
    static PricingProviderRegistry &shared();

    // A registry over `source` with the adapters `factories` make, in that order: the order
    // of preference. Everything but tests uses shared(), built from defaultProviderFactories().
    PricingProviderRegistry(CredentialSource source, const QList<ProviderFactory> &factories);
    ~PricingProviderRegistry();
    PricingProviderRegistry(const PricingProviderRegistry &) = delete;
    PricingProviderRegistry &operator=(const PricingProviderRegistry &) = delete;

    // The adapters of the program, in order of preference.
    static QList<ProviderFactory> defaultProviderFactories();

    // Every provider, enabled or not, in registration order. The registry owns them.
    QList<PricingProvider *> providers() const;

    // The info of each enabled provider, in registry order. The settings screen builds its
    // credential groups from it.
    QList<PricingProviderInfo> enabledProviderInfos() const;

    // The provider a price sync should use, or nullptr when none is enabled with its
    // credentials stored. With `preferBulk`, enabled providers that fetch all sets in one
    // call are tried first; then every enabled provider in list order. The first whose
    // validateCredentials() answers nothing wins; its sentence otherwise is dropped here.
    QCoro::Task<PricingProvider *> activeProvider(bool preferBulk);

    // Whether the provider with `id` is in use: one fixed table, no user setting.
    static bool isEnabled(const QString &id);

    // The credential functions, one per kind of source. None ever fails: a store error
    // counts as no value.
    //
    // BrickLink: "pricing.bricklink.<field>"; when that is absent, empty or unreadable, the
    // field's legacy key (consumer_key, consumer_secret, token_value, token_secret).
    static PricingProvider::CredentialLoader brickLinkCredentialLoader(CredentialSource source);
    // Brickset: "pricing.brickset.<field>"; for api_key only, the legacy key after it.
    static PricingProvider::CredentialLoader bricksetCredentialLoader(CredentialSource source);
    // Every other source: "pricing.<providerId>.<field>" as stored, an empty text included.
    static PricingProvider::CredentialLoader currentKeyCredentialLoader(CredentialSource source, QString providerId);

private:
    std::vector<std::unique_ptr<PricingProvider>> m_providers;
};
