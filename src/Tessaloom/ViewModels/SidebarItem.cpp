// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SidebarItem.h"

#include "Services/RebrickableCatalog.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace {

const QString themeIDPrefix = u"catalog_theme_"_s;

struct PlainItemFacts
{
    SidebarItem::Kind kind;
    QString id;
    QString title;
    QString iconName;
    QString textKey;
};

const QList<PlainItemFacts> &plainItemFacts()
{
    using Kind = SidebarItem::Kind;
    static const QList<PlainItemFacts> facts{
        {Kind::allSets, u"all_sets"_s, u"All Sets"_s, u"square.grid.2x2"_s, u"sidebar.allSets"_s},
        {Kind::favorites, u"favorites"_s, u"Favorites"_s, u"star"_s, u"sidebar.favorites"_s},
        {Kind::wishlist, u"wishlist"_s, u"Wishlist"_s, u"heart"_s, u"sidebar.wishlist"_s},
        {Kind::recentlyAdded, u"recently_added"_s, u"Recently Added"_s, u"clock"_s, u"sidebar.recentlyAdded"_s},
        {Kind::unknownAcquisition, u"unknown_acquisition"_s, u"Unknown Acquisition"_s, u"questionmark.circle"_s,
         u"sidebar.unknownAcquisition"_s},
        {Kind::unknownCondition, u"unknown_condition"_s, u"Unknown Condition"_s, u"questionmark.diamond"_s,
         u"sidebar.unknownCondition"_s},
        {Kind::retired, u"retired"_s, u"Retired"_s, u"tag"_s, u"sidebar.retired"_s},
        {Kind::noPricing, u"no_pricing"_s, u"No Pricing"_s, u"dollarsign.circle"_s, u"sidebar.noPricing"_s},
        {Kind::outdatedPricing, u"outdated_pricing"_s, u"Outdated Pricing"_s, u"clock.badge.exclamationmark"_s,
         u"sidebar.outdatedPricing"_s},
        {Kind::trash, u"trash"_s, u"Trash"_s, u"trash"_s, u"sidebar.trash"_s},
        {Kind::inventory, u"inventory"_s, u"Inventory"_s, u"tablecells"_s, u"sidebar.inventory"_s},
        // The catalog's whole list carries the collection's title on purpose: both are "all sets".
        {Kind::catalogAll, u"catalog_all"_s, u"All Sets"_s, u"books.vertical"_s, u"sidebar.catalog.allSets"_s},
        {Kind::catalogAllThemes, u"catalog_all_themes"_s, u"All Themes"_s, u"folder.badge.gearshape"_s,
         u"sidebar.catalog.allThemes"_s},
    };
    return facts;
}

const PlainItemFacts &factsOf(SidebarItem::Kind kind)
{
    // The table follows the enumeration, one row per plain kind after catalogTheme.
    return plainItemFacts().at(int(kind) - 1);
}

} // namespace

SidebarItem::SidebarItem(Kind kind)
    : SidebarItem(kind, 0, QString())
{
    Q_ASSERT(kind != Kind::catalogTheme);
}

SidebarItem::SidebarItem(Kind kind, int themeID, QString themeName)
    : m_kind(kind)
    , m_themeID(themeID)
    , m_themeName(std::move(themeName))
{
}

SidebarItem SidebarItem::catalogTheme(int themeID, const QString &name)
{
    return SidebarItem(Kind::catalogTheme, themeID, name);
}

const QList<SidebarItem::Kind> &SidebarItem::plainKinds()
{
    static const QList<Kind> kinds = [] {
        QList<Kind> list;
        for (const PlainItemFacts &facts : plainItemFacts())
            list << facts.kind;
        return list;
    }();
    return kinds;
}

QString SidebarItem::id() const
{
    if (isCatalogTheme())
        return themeIDPrefix + QString::number(m_themeID);
    return factsOf(m_kind).id;
}

QString SidebarItem::title() const
{
    return isCatalogTheme() ? m_themeName : factsOf(m_kind).title;
}

QString SidebarItem::iconName() const
{
    return isCatalogTheme() ? u"folder"_s : factsOf(m_kind).iconName;
}

QString SidebarItem::textKey() const
{
    return isCatalogTheme() ? QString() : factsOf(m_kind).textKey;
}

QString SidebarItem::rowText() const
{
    // Each key is spelled out so that the translation tools find it with its English text.
    switch (m_kind) {
    case Kind::catalogTheme:
        return m_themeName;
    case Kind::allSets:
        //% "All Sets"
        return qtTrId("sidebar.allSets");
    case Kind::favorites:
        //% "Favorites"
        return qtTrId("sidebar.favorites");
    case Kind::wishlist:
        //% "Wishlist"
        return qtTrId("sidebar.wishlist");
    case Kind::recentlyAdded:
        //% "Recently Added"
        return qtTrId("sidebar.recentlyAdded");
    case Kind::unknownAcquisition:
        //% "Unknown Acquisition"
        return qtTrId("sidebar.unknownAcquisition");
    case Kind::unknownCondition:
        //% "Unknown Condition"
        return qtTrId("sidebar.unknownCondition");
    case Kind::retired:
        //% "Retired"
        return qtTrId("sidebar.retired");
    case Kind::noPricing:
        //% "No Pricing"
        return qtTrId("sidebar.noPricing");
    case Kind::outdatedPricing:
        //% "Outdated Pricing"
        return qtTrId("sidebar.outdatedPricing");
    case Kind::trash:
        //% "Trash"
        return qtTrId("sidebar.trash");
    case Kind::inventory:
        //% "Inventory"
        return qtTrId("sidebar.inventory");
    case Kind::catalogAll:
        //% "All Sets"
        return qtTrId("sidebar.catalog.allSets");
    case Kind::catalogAllThemes:
        //% "All Themes"
        return qtTrId("sidebar.catalog.allThemes");
    }
    return QString();
}

std::optional<SidebarItem> SidebarItem::fromID(const QString &id)
{
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    return fromID(id, catalog.get());
}

std::optional<SidebarItem> SidebarItem::fromID(const QString &id, const RebrickableCatalog *catalog)
{
    for (const PlainItemFacts &facts : plainItemFacts()) {
        if (facts.id == id)
            return SidebarItem(facts.kind);
    }
    if (!id.startsWith(themeIDPrefix))
        return std::nullopt;
    const QStringView rest = QStringView(id).mid(themeIDPrefix.size());
    // An optional sign and decimal digits only: no blanks, no letters, no other digits.
    bool isInteger = !rest.isEmpty();
    for (qsizetype i = 0; i < rest.size() && isInteger; ++i) {
        const QChar c = rest.at(i);
        const bool isDigit = c >= u'0' && c <= u'9';
        const bool isSign = i == 0 && (c == u'-' || c == u'+') && rest.size() > 1;
        isInteger = isDigit || isSign;
    }
    const int themeID = isInteger ? rest.toInt(&isInteger) : 0;
    if (!isInteger)
        return std::nullopt;
    // A theme that has since left the catalog stays selected, without a name.
    std::optional<CatalogThemeResult> theme;
    if (catalog)
        theme = catalog->theme(themeID);
    return catalogTheme(themeID, theme ? theme->name : QString());
}

size_t qHash(const SidebarItem &item, size_t seed) noexcept
{
    return qHashMulti(seed, int(item.kind()), item.themeID(), item.themeName());
}
