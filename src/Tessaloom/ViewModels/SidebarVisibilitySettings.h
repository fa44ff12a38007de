// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SidebarItem.h"

#include <QObject>
#include <QString>

#include <optional>

// The six user settings that hide smart lists from the sidebar ("sidebar.show.retired",
// ...), each true unless the user turned it off. Written through the shared instance so
// that every open sidebar follows a change made on the settings screen at once.
class SidebarVisibilitySettings : public QObject
{
    Q_OBJECT

public:
    static SidebarVisibilitySettings &shared();

    // The kinds that have a setting, in the order the settings screen lists them.
    static const QList<SidebarItem::Kind> &configurableKinds();
    // The settings key of `kind`, or nothing for rows that are always shown.
    static std::optional<QString> settingsKey(SidebarItem::Kind kind);

    // Whether the row of `kind` is shown; rows without a setting always are.
    bool isVisible(SidebarItem::Kind kind) const;
    void setVisible(SidebarItem::Kind kind, bool visible);

Q_SIGNALS:
    void visibilityChanged(SidebarItem::Kind kind, bool visible);

private:
    SidebarVisibilitySettings() = default;
};
