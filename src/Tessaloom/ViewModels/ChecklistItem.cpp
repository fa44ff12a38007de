// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ChecklistItem.h"

using namespace Qt::StringLiterals;

QString ChecklistItem::key(const QString &partNum, int colorID)
{
    return partNum + u'-' + QString::number(colorID);
}
