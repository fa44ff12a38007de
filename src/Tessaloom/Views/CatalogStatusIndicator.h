// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogDatabaseService.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QStatusBar;

// Shows a catalog build that runs behind the user's back in the status bar: its step and
// progress while it works, then its outcome for a while. The user keeps working throughout.
// When a new catalog turned out empty or unreadable and the previous one is kept, the
// failure stays in view with a button that puts the previous catalog back; so it does at
// start-up, for as long as that state lasts.
class CatalogStatusIndicator : public QWidget
{
    Q_OBJECT

public:
    CatalogStatusIndicator(CatalogDatabaseService &service, QStatusBar *statusBar);

    QString statusText() const;
    int progressPercent() const;
    QPushButton *restoreButton() const { return m_restoreButton; }

private:
    void showState(const CatalogDatabaseService::State &state);
    void offerPreviousCatalog(const QString &message);
    void restorePreviousCatalog();

    CatalogDatabaseService &m_service;
    QStatusBar *m_statusBar;
    QLabel *m_label;
    QProgressBar *m_progressBar;
    QPushButton *m_restoreButton;
};
