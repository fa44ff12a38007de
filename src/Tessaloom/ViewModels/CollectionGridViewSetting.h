// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether the copies are shown as a grid rather than a table, kept in the user setting
// "collectionIsGridView": read at construction, written back on each change. An absent
// key means a grid.
class CollectionGridViewSetting
{
public:
    CollectionGridViewSetting();

    bool isGridView() const { return m_isGridView; }
    // Returns whether the value changed; only a change is written.
    bool setGridView(bool isGridView);

private:
    bool m_isGridView;
};
