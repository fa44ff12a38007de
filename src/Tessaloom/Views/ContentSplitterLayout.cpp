// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ContentSplitterLayout.h"

#include <QSplitter>

void ContentSplitterLayout::apply(QSplitter &splitter)
{
    Q_ASSERT(splitter.count() == 3);
    splitter.setChildrenCollapsible(false);
    // Explicit least widths: the splitter then ignores what the pages on show ask for.
    splitter.widget(0)->setMinimumWidth(sidebarMinimumWidth);
    splitter.widget(0)->setMaximumWidth(sidebarMaximumWidth);
    splitter.widget(1)->setMinimumWidth(middleMinimumWidth);
    splitter.widget(2)->setMinimumWidth(detailMinimumWidth);
    // A wider window widens the sidebar a little and the list and the detail a lot.
    splitter.setStretchFactor(0, 1);
    splitter.setStretchFactor(1, 3);
    splitter.setStretchFactor(2, 3);
    splitter.setSizes(defaultSizes());
}
