// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/ChecklistItem.h"

#include <optional>

// One block of the checklist as the screens show it: the items of one colour or one
// category, or all items in one block when nothing groups them.
struct ChecklistGroup
{
    QString id;    // "color-<colorID>", "category-<name>", or "all"
    QString title; // the colour's or category's name; empty for the one block
    std::optional<int> colorID; // the colour of a colour block
    QString colorHex;           // the swatch of a colour block
    QList<ChecklistItem> items;

    friend bool operator==(const ChecklistGroup &, const ChecklistGroup &) = default;
};
