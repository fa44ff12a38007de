// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/CatalogSetSearch.h"

#include <QHash>
#include <QSet>
#include <QString>

// The theme names that the catalog results' theme column shows, gathered from the
// searches: a name once known is kept, and a theme the catalog has no name for is shown
// with a placeholder.
class ThemeNameCache
{
public:
    const QHash<int, QString> &names() const { return m_names; }
    // The ids a search need not look up again.
    QSet<int> knownThemeIDs() const;
    // Adds the ids not yet known; returns whether any was added.
    bool merge(const CatalogSetSearch::ThemeNames &found);

private:
    QHash<int, QString> m_names;
};
