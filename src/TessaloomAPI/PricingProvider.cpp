// SPDX-License-Identifier: GPL-3.0-or-later
#include "PricingProvider.h"

#include "PricingProviderError.h"

#include <QDateTime>

PricingProvider::PricingProvider(CredentialLoader loadCredential)
    : m_loadCredential(std::move(loadCredential))
{
}

PricingProvider::~PricingProvider() = default;

QCoro::Task<QList<PriceResult>> PricingProvider::fetchBulkPrices(QStringList setNumbers)
{
    QList<PriceResult> results;
    for (const QString &setNumber : std::as_const(setNumbers)) {
        try {
            results.append(co_await fetchPrices(setNumber));
        } catch (...) {
            // Passed over in silence: the caller asked for as many sets as can be had.
        }
    }
    co_return results;
}

QCoro::Task<QString> PricingProvider::requireCredential(QString key)
{
    const std::optional<QString> value = co_await m_loadCredential(key);
    if (!value || value->isEmpty())
        throw PricingProviderError::missingCredentials(info().displayName);
    co_return *value;
}

QCoro::Task<std::optional<QString>> PricingProvider::checkCredentials(QString sentence)
{
    try {
        for (const PricingProviderInfo::CredentialField &field : info().credentialKeys)
            co_await requireCredential(field.key);
    } catch (...) {
        co_return sentence;
    }
    co_return std::nullopt;
}

PriceResult PricingProvider::makeResult(const QString &setNumber, PricingCondition condition,
                                        PricingGuideType guideType) const
{
    PriceResult result;
    result.setNumber = setNumber;
    result.condition = condition;
    result.guideType = guideType;
    result.currency = info().nativeCurrency;
    result.providerName = info().id;
    result.fetchDate = QDateTime::currentDateTimeUtc();
    return result;
}
