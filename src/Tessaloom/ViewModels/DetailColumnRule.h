// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SidebarItem.h"

#include <optional>

// What the window's detail column shows, decided from the sidebar's selection and from
// whether a copy or a catalog set is selected. The rules are tried in order and the first
// that applies wins:
//
//   the inventory item              → the inventory spreadsheet
//   the trash, a copy selected      → that copy as trash
//   the trash, nothing selected     → the trash's empty state
//   a catalog set selected          → that catalog set
//   a copy selected                 → that copy
//   the theme browser               → the empty state asking for a theme
//   anything else                   → the empty state asking for a set
class DetailColumnRule
{
public:
    enum class Content {
        inventorySpreadsheet,
        trashedCopy,
        trashPlaceholder,
        catalogSet,
        copy,
        themePlaceholder,
        setPlaceholder,
    };

    static Content choose(const std::optional<SidebarItem> &selection, bool copySelected, bool catalogSetSelected);
};
