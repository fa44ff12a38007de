// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QList>
#include <QMetaType>
#include <QString>

#include <functional>
#include <optional>

class RebrickableCatalog;

// One place the sidebar can lead to: a smart list of the collection, the wishlist, the
// trash, the inventory, the whole catalog, the theme browser, or one catalog theme. Its
// id is a stable string, stored as the sidebar's selection across launches.
class SidebarItem
{
public:
    // In declaration order; every kind but catalogTheme is a plain item without payload.
    enum class Kind {
        catalogTheme,
        allSets,
        favorites,
        wishlist,
        recentlyAdded,
        unknownAcquisition,
        unknownCondition,
        retired,
        noPricing,
        outdatedPricing,
        trash,
        inventory,
        catalogAll,
        catalogAllThemes,
    };

    // allSets, the item at first start; also what a QVariant holding no item gives.
    SidebarItem()
        : m_kind(Kind::allSets)
    {
    }
    // A plain item; `kind` must not be catalogTheme.
    explicit SidebarItem(Kind kind);
    // The catalog theme `themeID`, shown under `name`.
    static SidebarItem catalogTheme(int themeID, const QString &name);

    // The thirteen plain kinds, in declaration order.
    static const QList<Kind> &plainKinds();

    Kind kind() const { return m_kind; }
    bool isCatalogTheme() const { return m_kind == Kind::catalogTheme; }
    // An item of the catalog's section (all sets, all themes, a theme) rather than of the
    // collection's.
    bool isCatalogItem() const { return isCatalogKind(m_kind); }
    static bool isCatalogKind(Kind kind)
    {
        return kind == Kind::catalogAll || kind == Kind::catalogAllThemes || kind == Kind::catalogTheme;
    }
    // The theme's id and name; 0 and empty for plain items.
    int themeID() const { return m_themeID; }
    QString themeName() const { return m_themeName; }

    // "all_sets", "catalog_theme_158", ...
    QString id() const;
    // Plain English, for navigation titles; the theme's name for a theme.
    QString title() const;
    // The symbol name of the row's icon ("square.grid.2x2", "folder", ...).
    QString iconName() const;
    // The localisation key of the row's text; empty for a theme, whose row shows its name.
    QString textKey() const;
    // What the row shows: the localised text of textKey(), or the theme's name.
    QString rowText() const;

    // The item a stored id stands for, or nothing. A theme id that the shared catalog
    // does not know (or no catalog at all) still gives that theme, with an empty name.
    static std::optional<SidebarItem> fromID(const QString &id);
    // The same with `catalog` (which may be null) for the theme's name.
    static std::optional<SidebarItem> fromID(const QString &id, const RebrickableCatalog *catalog);

    // Two themes are equal only when both id and name are.
    friend bool operator==(const SidebarItem &, const SidebarItem &) = default;

private:
    SidebarItem(Kind kind, int themeID, QString themeName);

    Kind m_kind;
    int m_themeID = 0;
    QString m_themeName;
};

size_t qHash(const SidebarItem &item, size_t seed = 0) noexcept;

template <>
struct std::hash<SidebarItem>
{
    size_t operator()(const SidebarItem &item) const noexcept { return qHash(item); }
};

Q_DECLARE_METATYPE(SidebarItem)
