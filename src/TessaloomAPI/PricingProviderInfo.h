// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PricingCapability.h"

#include <QList>
#include <QString>

// The static description of a price source, fixed by its adapter when it is constructed.
struct PricingProviderInfo
{
    // One credential the user supplies for the source, as the settings screen asks for it.
    struct CredentialField
    {
        QString key;         // the credential's key in the secret store, such as "api_token"
        QString displayName; // the label in the settings screen
        bool isSecret = true; // shown masked; every field of every source is secret

        friend bool operator==(const CredentialField &, const CredentialField &) = default;
    };

    QString id; // stable: part of credential keys and of every stored price guide ("bricklink")
    QString displayName;
    PricingCapability capabilities;
    QString nativeCurrency; // ISO code
    QList<CredentialField> credentialKeys;

    friend bool operator==(const PricingProviderInfo &, const PricingProviderInfo &) = default;
};
