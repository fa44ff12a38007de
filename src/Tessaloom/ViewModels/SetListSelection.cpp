// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSelection.h"

#include "ViewModels/SidebarItem.h"

SetListSelection SetListSelection::fromItemID(const QString &itemID)
{
    // The sidebar's own parsing, without the theme's name: the list needs only the id.
    const std::optional<SidebarItem> item = SidebarItem::fromID(itemID, nullptr);
    SetListSelection selection;
    if (!item)
        return selection;
    switch (item->kind()) {
    case SidebarItem::Kind::catalogTheme:
        selection.m_kind = Kind::catalogTheme;
        selection.m_themeID = item->themeID();
        break;
    case SidebarItem::Kind::allSets:
        selection.m_kind = Kind::allSets;
        break;
    case SidebarItem::Kind::favorites:
        selection.m_kind = Kind::favorites;
        break;
    case SidebarItem::Kind::wishlist:
        selection.m_kind = Kind::wishlist;
        break;
    case SidebarItem::Kind::recentlyAdded:
        selection.m_kind = Kind::recentlyAdded;
        break;
    case SidebarItem::Kind::unknownAcquisition:
        selection.m_kind = Kind::unknownAcquisition;
        break;
    case SidebarItem::Kind::unknownCondition:
        selection.m_kind = Kind::unknownCondition;
        break;
    case SidebarItem::Kind::retired:
        selection.m_kind = Kind::retired;
        break;
    case SidebarItem::Kind::noPricing:
        selection.m_kind = Kind::noPricing;
        break;
    case SidebarItem::Kind::outdatedPricing:
        selection.m_kind = Kind::outdatedPricing;
        break;
    case SidebarItem::Kind::trash:
        selection.m_kind = Kind::trash;
        break;
    case SidebarItem::Kind::inventory:
        selection.m_kind = Kind::inventory;
        break;
    case SidebarItem::Kind::catalogAll:
        selection.m_kind = Kind::catalogAll;
        break;
    case SidebarItem::Kind::catalogAllThemes:
        selection.m_kind = Kind::catalogAllThemes;
        break;
    }
    return selection;
}

bool SetListSelection::isCatalog() const
{
    return m_kind == Kind::catalogAll || m_kind == Kind::catalogAllThemes || m_kind == Kind::catalogTheme;
}
