// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

#include <optional>

// The number of copies in a set list from another collection tool, as the two readers of
// such lists take it: a whole decimal number from 1 to ImportedSetList::maximumQuantity.
class SetListQuantity
{
public:
    // The quantity `text` writes, white space around it allowed; nothing for any other text
    // (empty, 0, -1, +2, 2.5, 1e3, "abc", or more than the maximum however many digits).
    static std::optional<qint64> fromText(QStringView text);
};
