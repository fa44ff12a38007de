// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ChecklistCompletion.h"

#include <QLocale>

#include <algorithm>

double ChecklistCompletion::fraction() const
{
    if (totalPieces < 1)
        return 0.0;
    return std::min(1.0, double(ownedPieces) / double(totalPieces));
}

int ChecklistCompletion::percent() const
{
    return int(fraction() * 100.0); // truncation, never rounding
}

QString ChecklistCompletion::partsText() const
{
    //% "%1 of %2 parts"
    return qtTrId("detail.parts.completionParts.").arg(QLocale().toString(completeItems), QLocale().toString(items));
}

QString ChecklistCompletion::piecesText() const
{
    //% "%1 of %2 pieces"
    return qtTrId("detail.parts.completionPieces.")
        .arg(QLocale().toString(ownedPieces), QLocale().toString(totalPieces));
}

QString ChecklistCompletion::percentText() const
{
    //% "%1% complete"
    return qtTrId("detail.parts.completionPercent.").arg(percent());
}

QString ChecklistCompletion::ringText() const
{
    //% "%1%"
    return qtTrId("detail.parts.percent.").arg(percent());
}

QString ChecklistCompletion::accessibilityText() const
{
    //% "%1 percent complete"
    return qtTrId("accessibility.parts.completion.").arg(percent());
}
