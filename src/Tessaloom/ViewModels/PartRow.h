// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

// One line of a set's inventory as the parts tab lists it: the catalog's row with the
// names of its part, colour and category looked up. A plain value, safe to hand from the
// thread that read it to the one that shows it.
struct PartRow
{
    QString id;        // part number, "-", colour ID, and "-spare" for a spare row
    QString partNum;
    QString partName;  // the part number when the catalog does not know the part
    int colorID = 0;
    QString colorName; // "Unknown" when the catalog does not know the colour
    QString colorHex;  // six hex digits without "#"; "808080" for an unknown colour
    QString category;  // "Other" when the category has no name in the catalog
    int quantity = 0;
    bool isSpare = false;
    std::optional<QString> imgURL;

    friend bool operator==(const PartRow &, const PartRow &) = default;
};
