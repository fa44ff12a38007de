// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSelection.h"

SetListSelection SetListSelection::fromItemID(const QString &itemID)
{
    // The sidebar's own parsing, without the theme's name: the list needs only the id.
    const std::optional<SidebarItem> item = SidebarItem::fromID(itemID, nullptr);
    SetListSelection selection;
    if (!item)
        return selection;
    selection.m_kind = item->kind();
    if (item->isCatalogTheme())
        selection.m_themeID = item->themeID();
    return selection;
}

bool SetListSelection::isCatalog() const
{
    return m_kind && SidebarItem::isCatalogKind(*m_kind);
}
