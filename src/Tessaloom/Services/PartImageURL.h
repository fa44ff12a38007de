// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

// Where the picture of a part in one colour is found. An inventory row usually names its
// own picture; when it names none, the media host of Rebrickable still has the rendered
// part under "/media/parts/ldraw/<colour>/<part>.png", so that address is formed instead.
// Every screen that lists parts asks here, so they all request the same picture (and share
// one cache entry) for the same row.
class PartImageURL
{
public:
    // The row's own address when it has one, else the formed one.
    static QString forPart(const std::optional<QString> &imgURL, int colorID, const QString &partNum);
    // The address formed from colour and number on the media host in force.
    static QString formed(int colorID, const QString &partNum);
};
