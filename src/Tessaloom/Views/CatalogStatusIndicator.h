// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogDatabaseService.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QStatusBar;

// Shows a catalog build that runs behind the user's back in the status bar: its step and
// progress while it works, then its outcome for a while. The user keeps working throughout.
class CatalogStatusIndicator : public QWidget
{
    Q_OBJECT

public:
    CatalogStatusIndicator(CatalogDatabaseService &service, QStatusBar *statusBar);

    QString statusText() const;
    int progressPercent() const;

private:
    void showState(const CatalogDatabaseService::State &state);

    QStatusBar *m_statusBar;
    QLabel *m_label;
    QProgressBar *m_progressBar;
};
