// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

// One row of a copy's parts checklist: a non-spare line of the set's newest catalog
// inventory, with the names the catalog gives for its part, colour and category. Rows are
// not merged, so two rows of one part and colour share the same `id` (and the same owned
// count).
struct ChecklistItem
{
    QString id; // partNum, "-", colorID in decimal: the key of the owned count
    QString partNum;
    QString partName; // the part number when the catalog lacks the part
    int colorID = 0;
    QString colorName; // "Unknown" when the catalog lacks the colour
    QString colorHex;  // "808080" when the catalog lacks the colour
    QString category;  // "Other" when the catalog cannot name it
    qint32 quantity = 0;
    std::optional<QString> imgURL;

    // The key of a part in a colour, as items and stored entries are matched by it.
    static QString key(const QString &partNum, int colorID);

    friend bool operator==(const ChecklistItem &, const ChecklistItem &) = default;
};
