// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QWidget>

class AppUpdateService;
class QLabel;
class QPushButton;

// The about settings: the program's icon, name, version and copyright, the check for a
// newer release (its answer shown in the tab), and where the data comes from.
class AboutSettingsTab : public QWidget
{
    Q_OBJECT

public:
    explicit AboutSettingsTab(AppUpdateService &updateService, QWidget *parent = nullptr);

    // "Version 0.1.0 (0.1.0)": the release, then the build. The project numbers its builds
    // by release, so both come from the application's version.
    static QString versionLine();

    QPushButton *checkForUpdatesButton() const { return m_checkButton; }
    QLabel *updateResultLabel() const { return m_updateResult; }

    QCoro::Task<> checkForUpdates();

private:
    AppUpdateService &m_updateService;
    QPushButton *m_checkButton;
    QLabel *m_updateResult;
};
