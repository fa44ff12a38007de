// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CollectionGridViewSetting.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString collectionIsGridViewKey = u"collectionIsGridView"_s;
} // namespace

CollectionGridViewSetting::CollectionGridViewSetting()
{
    // A presence test rather than a default value, so that a stored false is never taken
    // for an absent key.
    const QSettings settings;
    m_isGridView = settings.contains(collectionIsGridViewKey) ? settings.value(collectionIsGridViewKey).toBool() : true;
}

bool CollectionGridViewSetting::setGridView(bool isGridView)
{
    if (isGridView == m_isGridView)
        return false;
    m_isGridView = isGridView;
    QSettings().setValue(collectionIsGridViewKey, m_isGridView);
    return true;
}
