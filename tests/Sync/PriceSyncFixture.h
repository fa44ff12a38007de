// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the price sync tests share: a source of prices of the test's own that answers from
// a table and counts what it is asked, a registry holding it, and helpers that put sets,
// copies and guides into a real store file.

#include "HTTPError.h"
#include "PriceResult.h"
#include "PricingProvider.h"
#include "Services/PricingProviderRegistry.h"
#include "Store/BrickSet.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogSet.h"
#include "Store/ManagedObjectContext.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>

// A price source answering from `results` (one used sold figure per set when a number is
// not in the table), failing with HTTP 500 for `failingSets`, and recording every call.
// With `bulk`, it has bulkFetch and a bulk call of its own.
class TablePriceProvider : public PricingProvider
{
public:
    TablePriceProvider(const QString &id, bool bulk)
        : PricingProvider([](QString) -> QCoro::Task<std::optional<QString>> { co_return QStringLiteral("key"); })
    {
        m_info.id = id;
        m_info.displayName = id;
        m_info.capabilities = PricingCapability::allSingleSet;
        if (bulk)
            m_info.capabilities |= PricingCapability::bulkFetch;
        m_info.nativeCurrency = QStringLiteral("USD");
    }

    QHash<QString, QList<PriceResult>> results;
    QSet<QString> failingSets;
    bool hasCredentials = true;
    bool bulkFails = false;
    QList<PriceResult> extraBulkResults; // appended to every bulk answer
    QStringList singleRequests;
    QList<QStringList> bulkRequests;
    std::function<void(const QString &setNumber)> onFetch; // called as each single fetch starts

    const PricingProviderInfo &info() const override { return m_info; }

    // The figure this source gives for `setNumber` unless the table says otherwise.
    PriceResult defaultResult(const QString &setNumber) const
    {
        PriceResult result = makeResult(setNumber, PricingCondition::used, PricingGuideType::sold);
        result.avgPrice = Decimal::fromString(QStringLiteral("42.5"));
        return result;
    }

    QList<PriceResult> answerFor(const QString &setNumber) const
    {
        return results.contains(setNumber) ? results.value(setNumber) : QList<PriceResult>{defaultResult(setNumber)};
    }

    QCoro::Task<QList<PriceResult>> fetchPrices(QString setNumber) override
    {
        singleRequests.append(setNumber);
        if (onFetch)
            onFetch(setNumber);
        if (failingSets.contains(setNumber))
            throw HTTPError::httpError(500, QByteArray());
        co_return answerFor(setNumber);
    }

    QCoro::Task<QList<PriceResult>> fetchBulkPrices(QStringList setNumbers) override
    {
        bulkRequests.append(setNumbers);
        if (bulkFails)
            throw HTTPError::httpError(503, QByteArray());
        QList<PriceResult> all;
        for (const QString &number : setNumbers)
            all += answerFor(number);
        co_return all + extraBulkResults;
    }

    QCoro::Task<std::optional<QString>> validateCredentials() override
    {
        if (hasCredentials)
            co_return std::nullopt;
        co_return QStringLiteral("No credentials.");
    }

private:
    PricingProviderInfo m_info;
};

// A registry over providers of the test's own, in the order given; no credential store.
inline std::unique_ptr<PricingProviderRegistry> registryOf(const QList<std::pair<QString, bool>> &providers)
{
    PricingProviderRegistry::CredentialSource source{
        [](QString) -> QCoro::Task<std::optional<QString>> { co_return std::nullopt; },
        [](KeychainService::KeychainKey) -> QCoro::Task<std::optional<QString>> { co_return std::nullopt; },
    };
    QList<PricingProviderRegistry::ProviderFactory> factories;
    for (const auto &[id, bulk] : providers) {
        factories.append([id, bulk](const PricingProviderRegistry::CredentialSource &) -> std::unique_ptr<PricingProvider> {
            return std::make_unique<TablePriceProvider>(id, bulk);
        });
    }
    return std::make_unique<PricingProviderRegistry>(source, factories);
}

inline TablePriceProvider &tableProvider(PricingProviderRegistry &registry, qsizetype index)
{
    return *static_cast<TablePriceProvider *>(registry.providers().at(index));
}

// Writing the store's objects from the view context, saved at once.
struct PriceStore
{
    ManagedObjectContext &context;

    CatalogSet addSet(const QString &setNumber)
    {
        CatalogSet set;
        set.setNumber = setNumber;
        set = context.insert(set);
        context.save();
        return set;
    }

    BrickSet addCopy(const CatalogSet &set, bool trashed = false)
    {
        BrickSet copy;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc();
        copy.isTrashed = trashed;
        if (trashed)
            copy.trashedDate = QDateTime::currentDateTimeUtc();
        copy.catalogSet = set.objectID;
        copy = context.insert(copy);
        context.save();
        return copy;
    }

    CatalogSet addOwnedSet(const QString &setNumber)
    {
        const CatalogSet set = addSet(setNumber);
        addCopy(set);
        return set;
    }

    CachedPriceGuide addGuide(const CatalogSet &set, std::optional<QString> providerName,
                              std::optional<QDateTime> fetchDate, const QString &avgPrice = QStringLiteral("10"))
    {
        CachedPriceGuide guide;
        guide.conditionType = QStringLiteral("new");
        guide.guideType = QStringLiteral("sold");
        guide.avgPrice = Decimal::fromString(avgPrice);
        guide.currency = QStringLiteral("USD");
        guide.providerName = std::move(providerName);
        guide.lastFetchDate = std::move(fetchDate);
        guide.catalogSet = set.objectID;
        guide = context.insert(guide);
        context.save();
        return guide;
    }

    QList<CachedPriceGuide> guidesOf(const ObjectID &set)
    {
        return context.fetch(
            FetchRequest<CachedPriceGuide>(Predicate::equal(QStringLiteral("catalogSet"), QVariant::fromValue(set))));
    }

    CatalogSet reread(const ObjectID &set)
    {
        context.refresh(set, false);
        return context.existingObject<CatalogSet>(set).value_or(CatalogSet{});
    }
};

inline QDateTime daysAgo(double days)
{
    return QDateTime::currentDateTimeUtc().addMSecs(-qint64(days * 86'400'000));
}
