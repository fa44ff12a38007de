// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The completion figures of a copy's checklist, as its summary shows them: complete items
// of all items, owned pieces of required pieces, and the share of pieces owned.
struct ChecklistCompletion
{
    int completeItems = 0;
    int items = 0;
    qint64 ownedPieces = 0;
    qint64 totalPieces = 0;

    // ownedPieces / totalPieces, at most 1.0; 0 without pieces to own (no division).
    double fraction() const;
    // The fraction in whole percent, cut towards zero: 99.9 % reads 99, and 100 appears
    // only when every piece is owned, so a nearly finished set never looks finished.
    int percent() const;

    // "12 of 40 parts", "130 of 512 pieces", "25% complete", the ring's "25%" and its
    // accessibility text.
    QString partsText() const;
    QString piecesText() const;
    QString percentText() const;
    QString ringText() const;
    QString accessibilityText() const;

    friend bool operator==(const ChecklistCompletion &, const ChecklistCompletion &) = default;
};
