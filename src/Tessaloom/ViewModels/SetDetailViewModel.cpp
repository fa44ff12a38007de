// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetDetailViewModel.h"

#include "Logging.h"
#include "Services/SyncError.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreChanges.h"
#include "Services/CatalogSyncService.h"
#include "ViewModels/MoneyText.h"

#include <QLocale>

#include <exception>

using namespace Qt::StringLiterals;

namespace {

// The entities whose commits change what the detail of a copy shows.
constexpr std::array<EntityType, 4> shownEntities{
    EntityType::BrickSet,
    EntityType::CatalogSet,
    EntityType::CachedPriceGuide,
    EntityType::CachedInstructionURL,
};

} // namespace

QString SetDetailViewModel::rawValue(DetailTab tab)
{
    switch (tab) {
    case DetailTab::overview:
        return u"Overview"_s;
    case DetailTab::inventory:
        return u"Inventory"_s;
    case DetailTab::parts:
        return u"Parts"_s;
    }
    return {};
}

QString SetDetailViewModel::displayName(DetailTab tab)
{
    switch (tab) {
    case DetailTab::overview:
        //% "Overview"
        return qtTrId("detail.tab.overview");
    case DetailTab::inventory:
        //% "Inventory"
        return qtTrId("detail.tab.inventory");
    case DetailTab::parts:
        //% "Parts"
        return qtTrId("detail.tab.parts");
    }
    return {};
}

QString SetDetailViewModel::iconName(DetailTab tab)
{
    switch (tab) {
    case DetailTab::overview:
        return u"info.circle"_s;
    case DetailTab::inventory:
        return u"archivebox"_s;
    case DetailTab::parts:
        return u"square.grid.3x3"_s;
    }
    return {};
}

SetDetailViewModel::SetDetailViewModel(const BrickSet &brickSet, ManagedObjectContext &viewContext, QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
    , m_catalogSync([](QString setNumber) { return CatalogSyncService::shared().syncSet(std::move(setNumber)); })
    , m_brickSet(brickSet)
{
    connect(&m_viewContext.container(), &PersistentContainer::objectsDidChange, this,
            &SetDetailViewModel::objectsChanged);
    reload();
}

SetDetailViewModel::~SetDetailViewModel() = default;

void SetDetailViewModel::setCatalogSyncStep(CatalogSyncStep step)
{
    m_catalogSync = std::move(step);
}

void SetDetailViewModel::setPriceSyncStep(PriceSyncStep step)
{
    m_priceSync = std::move(step);
}

void SetDetailViewModel::setSelectedTab(DetailTab tab)
{
    if (tab == m_selectedTab)
        return;
    m_selectedTab = tab;
    Q_EMIT selectedTabChanged(tab);
}

void SetDetailViewModel::increaseRefreshToken()
{
    ++m_refreshToken;
    Q_EMIT refreshTokenChanged(m_refreshToken);
}

void SetDetailViewModel::reload()
{
    try {
        // A copy deleted meanwhile keeps showing what it was until the column moves on.
        if (const std::optional<BrickSet> copy = m_viewContext.existingObject<BrickSet>(m_brickSet.objectID))
            m_brickSet = *copy;
        m_catalogSet = m_brickSet.catalogSet ? m_viewContext.existingObject<CatalogSet>(*m_brickSet.catalogSet)
                                             : std::nullopt;
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the copy of the detail failed:" << error.description();
    }
}

void SetDetailViewModel::objectsChanged(const StoreChanges &changes)
{
    if (!changes.touchesAny(shownEntities))
        return;
    reload();
    Q_EMIT contentChanged();
}

QString SetDetailViewModel::title() const
{
    if (m_catalogSet && m_catalogSet->name && !m_catalogSet->name->isEmpty())
        return *m_catalogSet->name;
    if (m_catalogSet && m_catalogSet->setNumber && !m_catalogSet->setNumber->isEmpty())
        return *m_catalogSet->setNumber;
    // The same fixed text as the set lists and the trash give a copy without a set.
    return u"Unknown Set"_s;
}

QList<CachedPriceGuide> SetDetailViewModel::guides() const
{
    if (!m_catalogSet)
        return {};
    try {
        return m_viewContext.related<CachedPriceGuide>(m_catalogSet->objectID, u"cachedPriceGuides"_s);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the price guides of a set failed:" << error.description();
        return {};
    }
}

std::optional<SetDetailViewModel::MarketValue> SetDetailViewModel::marketValue() const
{
    const std::optional<CachedPriceGuide> guide = CatalogSetAccessors::preferredPriceGuide(guides());
    if (!guide || !guide->avgPrice)
        return std::nullopt;
    return MarketValue{*guide->avgPrice, guide->currency.value_or(QString())};
}

std::optional<Decimal> SetDetailViewModel::growthPercent() const
{
    const std::optional<CachedPriceGuide> guide = CatalogSetAccessors::latestNewPriceGuide(guides());
    if (!guide)
        return std::nullopt;
    const QList<PriceGrowthRate> rates = guide->growthRates();
    if (rates.isEmpty())
        return std::nullopt;
    return rates.constFirst().percent;
}

QString SetDetailViewModel::growthText(const Decimal &percent, const QLocale &locale)
{
    // printf's "%+.1f%%": one decimal, a sign always, zero (and what rounds to zero)
    // counting as positive. Rounded in decimal, so 2.25 reads "+2.3%".
    QString digits = MoneyText::rounded(percent, 1);
    const bool negative = digits.startsWith(u'-');
    if (negative)
        digits.remove(0, 1);
    digits.replace(u'.', locale.decimalPoint());
    return (negative ? locale.negativeSign() : locale.positiveSign()) + digits + u'%';
}

QList<CatalogSetAccessors::ProviderGuides> SetDetailViewModel::priceGuidesByProvider() const
{
    return CatalogSetAccessors::priceGuidesByProvider(guides());
}

SetDetailViewModel::InventorySummary SetDetailViewModel::inventorySummary() const
{
    InventorySummary summary;
    if (!m_catalogSet)
        return summary;
    try {
        const Predicate ofSet = BrickSetQueries::catalogSet(m_catalogSet->objectID) && BrickSetQueries::notTrashed();
        summary.inStock = m_viewContext.count(FetchRequest<BrickSet>(ofSet && Predicate::equal(u"isDisposed"_s, false)));
        summary.disposed = m_viewContext.count(FetchRequest<BrickSet>(ofSet && Predicate::equal(u"isDisposed"_s, true)));
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Counting the copies of a set failed:" << error.description();
    }
    return summary;
}

QList<CachedInstructionURL> SetDetailViewModel::sortedInstructions() const
{
    if (!m_catalogSet)
        return {};
    try {
        return CatalogSetAccessors::sortedInstructions(m_viewContext, m_catalogSet->objectID);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the booklets of a set failed:" << error.description();
        return {};
    }
}

bool SetDetailViewModel::hasStoredInstructionRows() const
{
    if (!m_catalogSet)
        return false;
    try {
        return !m_viewContext.related<CachedInstructionURL>(m_catalogSet->objectID, u"cachedInstructions"_s).isEmpty();
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the booklets of a set failed:" << error.description();
        return false;
    }
}

void SetDetailViewModel::toggleFavorite()
{
    m_brickSet.isFavorite = !m_brickSet.isFavorite;
    try {
        m_viewContext.update(m_brickSet);
        m_viewContext.save();
    } catch (const StoreError &error) {
        // Dropped: the change stays pending for the next save.
        qCWarning(lcPersistence) << "Saving the favourite flag failed:" << error.description();
    }
    Q_EMIT contentChanged();
}

QCoro::Task<> SetDetailViewModel::refresh()
{
    // Both checks and the flag happen before the first suspension, so a second call made
    // while the first is on its way returns here.
    if (m_isSyncing || !m_catalogSet)
        co_return;
    const QString setNumber = m_catalogSet->setNumber.value_or(QString());
    if (setNumber.isEmpty())
        co_return;
    m_isSyncing = true;
    m_syncError.reset();
    Q_EMIT syncErrorChanged();
    Q_EMIT syncingChanged(true);
    co_await runRefresh(QPointer<SetDetailViewModel>(this), m_catalogSync, m_priceSync, setNumber);
}

QCoro::Task<> SetDetailViewModel::runRefresh(QPointer<SetDetailViewModel> self, CatalogSyncStep catalogSync,
                                             PriceSyncStep priceSync, QString setNumber)
{
    std::optional<ObjectID> catalogSet;
    std::optional<QString> error;
    try {
        catalogSet = co_await catalogSync(setNumber);
        if (priceSync)
            co_await priceSync(setNumber, *catalogSet);
    } catch (const SyncError &failure) {
        error = failure.description();
    } catch (const StoreError &failure) {
        error = failure.description();
    } catch (const std::exception &failure) {
        error = QString::fromUtf8(failure.what());
    }
    // The screen may have closed while the services worked; what they stored stays.
    if (self)
        self->finishRefresh(catalogSet, error);
}

void SetDetailViewModel::finishRefresh(const std::optional<ObjectID> &catalogSet, const std::optional<QString> &error)
{
    if (error) {
        m_syncError = error;
        m_isSyncing = false;
        Q_EMIT syncErrorChanged();
        Q_EMIT syncingChanged(false);
        return;
    }
    try {
        m_viewContext.refresh(*catalogSet, true);
        if (m_viewContext.existingObject<CatalogSet>(*catalogSet) && m_brickSet.catalogSet != catalogSet) {
            m_brickSet.catalogSet = catalogSet;
            m_viewContext.update(m_brickSet);
            m_viewContext.save();
        }
    } catch (const StoreError &failure) {
        m_syncError = failure.description();
        Q_EMIT syncErrorChanged();
    }
    reload();
    increaseRefreshToken();
    m_isSyncing = false;
    Q_EMIT syncingChanged(false);
    Q_EMIT contentChanged();
}
