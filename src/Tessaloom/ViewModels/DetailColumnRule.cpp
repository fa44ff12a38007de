// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/DetailColumnRule.h"

DetailColumnRule::Content DetailColumnRule::choose(const std::optional<SidebarItem> &selection, bool copySelected,
                                                   bool catalogSetSelected)
{
    const std::optional<SidebarItem::Kind> kind = selection ? std::optional(selection->kind()) : std::nullopt;
    if (kind == SidebarItem::Kind::inventory)
        return Content::inventorySpreadsheet;
    if (kind == SidebarItem::Kind::trash)
        return copySelected ? Content::trashedCopy : Content::trashPlaceholder;
    if (catalogSetSelected)
        return Content::catalogSet;
    if (copySelected)
        return Content::copy;
    if (kind == SidebarItem::Kind::catalogAllThemes)
        return Content::themePlaceholder;
    return Content::setPlaceholder;
}
