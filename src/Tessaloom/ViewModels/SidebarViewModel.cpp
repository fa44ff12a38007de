// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SidebarViewModel.h"

#include "Logging.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/CopyMatchCounter.h"
#include "Store/StoreObserver.h"
#include "ViewModels/SidebarVisibilitySettings.h"

#include <QFutureWatcher>
#include <QSettings>
#include <QtConcurrent>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;

namespace {

const QList<Kind> badgeKinds{Kind::allSets,          Kind::favorites, Kind::wishlist, Kind::unknownAcquisition,
                             Kind::unknownCondition, Kind::retired,   Kind::trash};

// What each badge counts. The wishlist's badge counts WishlistItem, every other one copies.
Predicate badgePredicate(Kind kind, const QDateTime &retiredCutoff)
{
    switch (kind) {
    case Kind::allSets:
        return BrickSetQueries::notTrashed();
    case Kind::favorites:
        return BrickSetQueries::notTrashed() && BrickSetQueries::favorite();
    case Kind::unknownAcquisition:
        return BrickSetQueries::notTrashed() && BrickSetQueries::acquisitionUnknownOrAbsent();
    case Kind::unknownCondition:
        // Wider than the list of the same name, which leaves out the stored "unknown".
        return BrickSetQueries::notTrashed() && BrickSetQueries::conditionUnknownOrAbsent();
    case Kind::retired:
        return BrickSetQueries::notTrashed() && BrickSetQueries::retiredBefore(retiredCutoff);
    case Kind::trash:
        return BrickSetQueries::trashed();
    default:
        return Predicate::alwaysFalse();
    }
}

} // namespace

SidebarViewModel::SidebarViewModel(ManagedObjectContext &viewContext, CatalogDatabaseService &catalogService,
                                   QObject *parent)
    : SidebarViewModel(viewContext, catalogService, &SidebarViewModel::sharedCatalogThemeTree, parent)
{
}

SidebarViewModel::SidebarViewModel(ManagedObjectContext &viewContext, CatalogDatabaseService &catalogService,
                                   ThemeTreeQuery themeTreeQuery, QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
    , m_themeTreeQuery(std::move(themeTreeQuery))
    , m_createdAt(QDateTime::currentDateTimeUtc())
{
    loadThemeTree();

    const QString storedID = QSettings().value(QLatin1StringView(lastSelectedItemKey), u"all_sets"_s).toString();
    if (const std::optional<SidebarItem> stored = SidebarItem::fromID(storedID); stored && stored != m_selectedItem)
        setSelectedItem(stored);

    connect(&catalogService, &CatalogDatabaseService::catalogDatabaseDidUpdate, this, &SidebarViewModel::loadThemeTree);

    connect(&SidebarVisibilitySettings::shared(), &SidebarVisibilitySettings::visibilityChanged, this,
            &SidebarViewModel::visibilityChanged);

    // Every badge but the wishlist's counts copies; they are counted together.
    QList<Predicate> copyPredicates;
    for (Kind kind : badgeKinds) {
        if (kind == Kind::wishlist)
            continue;
        m_copyKinds.append(kind);
        copyPredicates.append(badgePredicate(kind, m_createdAt));
    }
    m_copyCounter = std::make_unique<CopyMatchCounter>(viewContext, std::move(copyPredicates));
    QSet<EntityType> observed = m_copyCounter->entitiesRead();
    observed.insert(EntityType::WishlistItem);
    m_storeObserver = new StoreObserver(viewContext.container(), observed, this);
    connect(m_storeObserver, &StoreObserver::changed, this, [this](const StoreChanges &changes) { recount(&changes); });
    recount(nullptr);
}

SidebarViewModel::~SidebarViewModel() = default;

void SidebarViewModel::setSelectedItem(const std::optional<SidebarItem> &item)
{
    if (item)
        QSettings().setValue(QLatin1StringView(lastSelectedItemKey), item->id());
    if (item == m_selectedItem)
        return;
    m_selectedItem = item;
    Q_EMIT selectedItemChanged(m_selectedItem);
}

const QList<SidebarItem> &SidebarViewModel::allCollectionItems()
{
    static const QList<SidebarItem> items{
        SidebarItem(Kind::allSets),          SidebarItem(Kind::favorites),          SidebarItem(Kind::wishlist),
        SidebarItem(Kind::recentlyAdded),    SidebarItem(Kind::unknownAcquisition), SidebarItem(Kind::unknownCondition),
        SidebarItem(Kind::retired),          SidebarItem(Kind::noPricing),          SidebarItem(Kind::outdatedPricing),
        SidebarItem(Kind::inventory),        SidebarItem(Kind::trash),
    };
    return items;
}

QList<SidebarItem> SidebarViewModel::visibleCollectionItems() const
{
    QList<SidebarItem> visible;
    for (const SidebarItem &item : allCollectionItems()) {
        if (isVisible(item.kind()))
            visible << item;
    }
    return visible;
}

const QList<SidebarItem> &SidebarViewModel::catalogItems()
{
    static const QList<SidebarItem> items{SidebarItem(Kind::catalogAll), SidebarItem(Kind::catalogAllThemes)};
    return items;
}

bool SidebarViewModel::isVisible(SidebarItem::Kind kind) const
{
    return SidebarVisibilitySettings::shared().isVisible(kind);
}

bool SidebarViewModel::hasBadge(SidebarItem::Kind kind)
{
    return badgeKinds.contains(kind);
}

std::optional<qint64> SidebarViewModel::badgeCount(const SidebarItem &item) const
{
    const auto found = m_counts.constFind(item.kind());
    if (found == m_counts.cend())
        return std::nullopt;
    return found.value();
}

std::optional<QList<ThemeNode>> SidebarViewModel::sharedCatalogThemeTree()
{
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog)
        return std::nullopt;
    return catalog->themeTree();
}

void SidebarViewModel::loadThemeTree()
{
    const quint64 generation = ++m_themeTreeGeneration;
    ++m_themeTreeLoads;
    // The watcher belongs to this model: a model gone before the outline lands never
    // hears of it, and the pool's task holds no part of it.
    auto *watcher = new QFutureWatcher<std::optional<QList<ThemeNode>>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, generation] {
        watcher->deleteLater();
        --m_themeTreeLoads;
        if (generation != m_themeTreeGeneration)
            return; // a newer catalog's outline is on its way
        const std::optional<QList<ThemeNode>> tree = watcher->result();
        // Without a catalog (none yet, or it went away) the outline stays as it was.
        if (!tree)
            return;
        m_themeTree = *tree;
        Q_EMIT themeTreeChanged();
    });
    watcher->setFuture(QtConcurrent::run(m_themeTreeQuery));
}

void SidebarViewModel::recount(const StoreChanges *changes)
{
    if (!changes)
        m_copyCounter->recountAll();
    else
        m_copyCounter->follow(*changes);
    for (qsizetype index = 0; index < m_copyKinds.size(); ++index)
        setCount(m_copyKinds[index], m_copyCounter->count(index), changes != nullptr);
    if (!changes || changes->touches(EntityType::WishlistItem))
        setCount(Kind::wishlist, wishlistCount(), changes != nullptr);
}

void SidebarViewModel::setCount(Kind kind, qint64 count, bool announce)
{
    const auto old = m_counts.constFind(kind);
    if (old != m_counts.cend() && old.value() == count)
        return;
    m_counts.insert(kind, count);
    if (announce)
        Q_EMIT badgeCountChanged(kind, count);
}

qint64 SidebarViewModel::wishlistCount() const
{
    // A count that cannot be read shows as none, like a failed fetch.
    try {
        return m_viewContext.count(FetchRequest<WishlistItem>());
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Sidebar count failed:" << error.description();
        return 0;
    }
}
