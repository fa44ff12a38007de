// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/PartInventoryEntry.h"
#include "ViewModels/ChecklistItem.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

// The pieces a copy still lacks, in the form Rebrickable's part-list import reads: a CSV
// file with the header "Part,Color,Quantity" and one line per part and colour, with the
// catalog's own part numbers and colour IDs (which are Rebrickable's). Spare parts never
// reach the checklist, so they are never asked for here.
class MissingPartsList
{
public:
    struct Line
    {
        QString partNum;
        int colorID = 0;
        qint64 quantity = 0;

        friend bool operator==(const Line &, const Line &) = default;
    };

    // Required minus owned per part and colour, in the items' order; lines with nothing
    // missing are left out. Two rows of one part and colour share one owned count, so their
    // quantities are added before the count is taken off.
    static QList<Line> fromChecklist(const QList<ChecklistItem> &items,
                                     const QHash<QString, PartInventoryEntry> &entriesByKey);

    // The file's bytes: UTF-8, lines ending in "\n".
    static QByteArray csv(const QList<Line> &lines);
    // Writes csv(lines) to `path` in one piece; on failure leaves what was there and says why.
    static bool writeCsv(const QString &path, const QList<Line> &lines, QString *errorText = nullptr);
};
