// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSelection.h"

#include <QHash>

using namespace Qt::StringLiterals;

SetListSelection SetListSelection::fromItemID(const QString &itemID)
{
    static const QHash<QString, Kind> fixed{
        {u"all_sets"_s, Kind::allSets},
        {u"favorites"_s, Kind::favorites},
        {u"wishlist"_s, Kind::wishlist},
        {u"recently_added"_s, Kind::recentlyAdded},
        {u"unknown_acquisition"_s, Kind::unknownAcquisition},
        {u"unknown_condition"_s, Kind::unknownCondition},
        {u"retired"_s, Kind::retired},
        {u"no_pricing"_s, Kind::noPricing},
        {u"outdated_pricing"_s, Kind::outdatedPricing},
        {u"trash"_s, Kind::trash},
        {u"inventory"_s, Kind::inventory},
        {u"catalog_all"_s, Kind::catalogAll},
        {u"catalog_all_themes"_s, Kind::catalogAllThemes},
    };
    SetListSelection selection;
    if (const auto found = fixed.constFind(itemID); found != fixed.cend()) {
        selection.m_kind = *found;
        return selection;
    }
    static const QString themePrefix = u"catalog_theme_"_s;
    if (itemID.startsWith(themePrefix)) {
        bool isNumber = false;
        const int themeID = QStringView(itemID).mid(themePrefix.size()).toInt(&isNumber, 10);
        if (isNumber) {
            selection.m_kind = Kind::catalogTheme;
            selection.m_themeID = themeID;
        }
    }
    return selection;
}

bool SetListSelection::isCatalog() const
{
    return m_kind == Kind::catalogAll || m_kind == Kind::catalogAllThemes || m_kind == Kind::catalogTheme;
}
