// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QString>

// Turns the snake-case keys of a JSON answer into camel case before any field is looked
// up: "min_price" becomes "minPrice". Every answer goes through it, whatever its type.
//
// Fields are then looked up under their own key exactly as declared, so a field declared
// with an underscore ("qty_avg_price") can never be found: the answer's key was converted
// away before the lookup. That is how the client behaves and callers rely on it being so;
// do not add a fallback lookup.
class SnakeCaseKeyConverter
{
public:
    // One key. Leading and trailing underscores stay; the part between them is split at each
    // underscore. A single piece stays exactly as it is, case untouched ("LEGOCom"), since it
    // may already be camel case; otherwise the first piece goes to lower case and each further
    // piece gets an upper-case first letter and lower case after it, joined without
    // underscores ("Min_PRICE" becomes "minPrice").
    static QString convert(const QString &key);

    // Every object key at every depth of `value`, arrays included.
    static QJsonValue convertKeys(const QJsonValue &value);
};
