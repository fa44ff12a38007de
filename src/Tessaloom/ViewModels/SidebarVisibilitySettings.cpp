// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SidebarVisibilitySettings.h"

#include <QSettings>

using namespace Qt::StringLiterals;

SidebarVisibilitySettings &SidebarVisibilitySettings::shared()
{
    static SidebarVisibilitySettings instance;
    return instance;
}

const QList<SidebarItem::Kind> &SidebarVisibilitySettings::configurableKinds()
{
    using Kind = SidebarItem::Kind;
    static const QList<Kind> kinds{Kind::recentlyAdded, Kind::unknownAcquisition, Kind::unknownCondition,
                                   Kind::retired,       Kind::noPricing,          Kind::outdatedPricing};
    return kinds;
}

std::optional<QString> SidebarVisibilitySettings::settingsKey(SidebarItem::Kind kind)
{
    using Kind = SidebarItem::Kind;
    switch (kind) {
    case Kind::recentlyAdded:
        return u"sidebar.show.recentlyAdded"_s;
    case Kind::unknownAcquisition:
        return u"sidebar.show.unknownAcquisition"_s;
    case Kind::unknownCondition:
        return u"sidebar.show.unknownCondition"_s;
    case Kind::retired:
        return u"sidebar.show.retired"_s;
    case Kind::noPricing:
        return u"sidebar.show.noPricing"_s;
    case Kind::outdatedPricing:
        return u"sidebar.show.outdatedPricing"_s;
    default:
        return std::nullopt;
    }
}

bool SidebarVisibilitySettings::isVisible(SidebarItem::Kind kind) const
{
    const std::optional<QString> key = settingsKey(kind);
    return !key || QSettings().value(*key, true).toBool();
}

void SidebarVisibilitySettings::setVisible(SidebarItem::Kind kind, bool visible)
{
    const std::optional<QString> key = settingsKey(kind);
    if (!key || isVisible(kind) == visible)
        return;
    QSettings().setValue(*key, visible);
    Q_EMIT visibilityChanged(kind, visible);
}
