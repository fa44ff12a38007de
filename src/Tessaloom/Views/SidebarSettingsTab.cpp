// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SidebarSettingsTab.h"

#include "ViewModels/SidebarVisibilitySettings.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SidebarSettingsTab::SidebarSettingsTab(QWidget *parent)
    : QWidget(parent)
{
    SidebarVisibilitySettings &settings = SidebarVisibilitySettings::shared();
    //% "Smart Lists"
    auto *section = new QGroupBox(qtTrId("settings.sidebar.visibility"), this);
    auto *sectionLayout = new QVBoxLayout(section);
    for (const SidebarItem::Kind kind : SidebarVisibilitySettings::configurableKinds()) {
        auto *toggle = new QCheckBox(SidebarItem(kind).rowText(), section);
        toggle->setObjectName(u"sidebarToggle."_s + SidebarVisibilitySettings::settingsKey(kind).value_or(QString()));
        toggle->setChecked(settings.isVisible(kind));
        connect(toggle, &QCheckBox::toggled, this, [kind](bool checked) {
            SidebarVisibilitySettings::shared().setVisible(kind, checked);
        });
        sectionLayout->addWidget(toggle);
        m_toggles.insert(kind, toggle);
    }
    //% "Choose which smart lists appear in the sidebar. Hidden lists keep their sets."
    auto *hint = new QLabel(qtTrId("settings.sidebar.visibilityHint"), section);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    sectionLayout->addWidget(hint);
    // A change made elsewhere (another settings window) shows here too.
    connect(&settings, &SidebarVisibilitySettings::visibilityChanged, this,
            [this](SidebarItem::Kind kind, bool visible) {
                if (QCheckBox *toggle = m_toggles.value(kind))
                    toggle->setChecked(visible);
            });

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(section);
    layout->addStretch(1);
}
