// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

// The errors every price source raises itself, beside HTTPError. The sentence is what the
// price screens show.
class PricingProviderError : public std::exception
{
public:
    enum class Kind {
        missingCredentials, // a credential of the source is absent or empty
        invalidURL,         // the request address could not be built
    };

    // `providerName` is the source's displayName ("BrickEconomy"), as the user knows it.
    static PricingProviderError missingCredentials(QString providerName);
    static PricingProviderError invalidURL();

    Kind kind() const { return m_kind; }
    const QString &providerName() const { return m_providerName; }
    // "Missing credentials for BrickEconomy. Please configure them in Settings." or
    // "Failed to build API request URL."
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }

private:
    PricingProviderError(Kind kind, QString providerName);

    Kind m_kind;
    QString m_providerName;
    QByteArray m_what;
};
