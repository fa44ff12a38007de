// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListColumnTitle.h"

QString SetListColumnTitle::text(Kind kind)
{
    switch (kind) {
    case Kind::setNumber:
        //% "Set #"
        return qtTrId("table.column.setNumber");
    case Kind::name:
        //% "Name"
        return qtTrId("table.column.name");
    case Kind::theme:
        //% "Theme"
        return qtTrId("table.column.theme");
    case Kind::year:
        //% "Year"
        return qtTrId("table.column.year");
    case Kind::pieces:
        //% "Pieces"
        return qtTrId("table.column.pieces");
    case Kind::condition:
        //% "Condition"
        return qtTrId("table.column.condition");
    case Kind::value:
        //% "Value"
        return qtTrId("table.column.value");
    case Kind::added:
        //% "Added"
        return qtTrId("table.column.added");
    }
    return {};
}
