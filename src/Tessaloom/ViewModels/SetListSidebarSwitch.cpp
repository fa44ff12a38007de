// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSidebarSwitch.h"

SetListSidebarSwitch SetListSidebarSwitch::to(const SetListSelection &selection,
                                              std::optional<int> currentCatalogThemeID)
{
    using Kind = SidebarItem::Kind;
    switch (selection.kind().value_or(Kind::allSets)) {
    case Kind::catalogTheme:
        return {false, selection.themeID(), true};
    case Kind::catalogAll:
        return {false, std::nullopt, true};
    case Kind::catalogAllThemes:
        return {true, currentCatalogThemeID, false};
    default:
        return {false, std::nullopt, false};
    }
}
