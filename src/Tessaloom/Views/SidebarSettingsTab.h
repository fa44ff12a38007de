// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SidebarItem.h"

#include <QHash>
#include <QWidget>

class QCheckBox;

// The sidebar settings: one toggle for each smart list the user may hide, in the order of
// the sidebar. A change goes through SidebarVisibilitySettings, so every open sidebar
// shows or hides the row at once.
class SidebarSettingsTab : public QWidget
{
    Q_OBJECT

public:
    explicit SidebarSettingsTab(QWidget *parent = nullptr);

    QCheckBox *toggle(SidebarItem::Kind kind) const { return m_toggles.value(kind); }

private:
    QHash<SidebarItem::Kind, QCheckBox *> m_toggles;
};
