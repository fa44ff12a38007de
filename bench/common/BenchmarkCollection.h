// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class PersistentContainer;

// A collector's store at scale for the set list's benchmarks: `copies` copies, two per
// catalog set, with names in no particular order, 45 years, 40 themes, one set in five
// retired, half the sets with a used sold price guide, a favourite in ten, one copy in
// three of unknown acquisition, one in four of unknown condition, one in twenty trashed.
class BenchmarkCollection
{
public:
    static void fill(PersistentContainer &container, int copies);
};
