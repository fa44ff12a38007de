// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Orders a fetch by one key path ("dateAdded", "catalogSet.name"). Texts compare by their
// code points, case-sensitively; absent values come first when ascending, as nil sorts
// before any value.
struct SortDescriptor
{
    QString keyPath;
    bool ascending = true;

    friend bool operator==(const SortDescriptor &, const SortDescriptor &) = default;
};
