// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/ThemeNameCache.h"

#include <QCoreApplication>

QSet<int> ThemeNameCache::knownThemeIDs() const
{
    QSet<int> ids;
    ids.reserve(m_names.size());
    for (auto it = m_names.cbegin(); it != m_names.cend(); ++it)
        ids.insert(it.key());
    return ids;
}

bool ThemeNameCache::merge(const CatalogSetSearch::ThemeNames &found)
{
    bool changed = false;
    for (auto it = found.cbegin(); it != found.cend(); ++it) {
        if (m_names.contains(it.key()))
            continue;
        //% "Unknown Theme"
        m_names.insert(it.key(), it.value().value_or(qtTrId("setList.theme.unknown")));
        changed = true;
    }
    return changed;
}
