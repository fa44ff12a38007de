// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ImportedSetList.h"

#include <QStringView>

// The inventory XML that BrickLink reads and writes for wanted lists and uploads:
// <INVENTORY> holding <ITEM> elements, each with <ITEMTYPE>, <ITEMID> and a quantity in
// <MINQTY> (or <QTY>). Only items of type "S", sets, are entries; parts, minifigures and
// the rest are skipped rows.
class BrickLinkInventoryXML
{
public:
    // Whether `text` is such a file: its first element, after a byte-order mark, white
    // space, an XML declaration and comments, is <INVENTORY> (in any case).
    static bool recognises(QStringView text);

    // The items of a recognised file, each ITEM's line being the line of its <ITEM> tag.
    // An item of another type is skipped as "Line 9: item type P skipped"; an S item with
    // no ITEMID as "Line 9: missing set number"; one whose MINQTY (or, without it, QTY) is
    // present but not a whole number from 1 to ImportedSetList::maximumQuantity as
    // "Line 9: invalid quantity". Without either the quantity is 1. Element names are
    // matched in any case; unknown elements are ignored. XML that is not well formed sets
    // `unreadable` and gives nothing else. Entities beyond XML's five are never expanded.
    static ImportedSetList read(QStringView text);
};
