// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

class QSplitter;

// How the main window's three columns (sidebar, list, detail) share its width.
//
// Each column has a fixed least width, so a detail page that asks for more room (the
// inventory sheet, a long set name) never pushes the splitter away from where the user
// left it. The sidebar grows with the window up to a limit; the list and the detail take
// most of the window's growth. The main window remembers the widths across launches.
class ContentSplitterLayout
{
public:
    static constexpr int sidebarMinimumWidth = 180;
    static constexpr int sidebarMaximumWidth = 360;
    static constexpr int middleMinimumWidth = 360;
    static constexpr int detailMinimumWidth = 320;

    // Lays out `splitter`, which already holds the three columns, at the default widths.
    static void apply(QSplitter &splitter);
    static QList<int> defaultSizes() { return {220, 460, 520}; }
};
