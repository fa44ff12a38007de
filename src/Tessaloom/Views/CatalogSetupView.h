// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogDatabaseService.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

// The sheet that asks for the catalog and shows its build. It cannot be dismissed: the
// program is of no use without a catalog, so the user either gets one or quits. It closes
// itself half a second after a build completes.
class CatalogSetupView : public QDialog
{
    Q_OBJECT

public:
    explicit CatalogSetupView(CatalogDatabaseService &service, QWidget *parent = nullptr);

    // The part on show, for the current state: "download", "rebuild", "working",
    // "completed" or "failed".
    QString currentPart() const;
    QPushButton *primaryButton() const;
    QProgressBar *progressBar() const { return m_progressBar; }
    QString statusText() const;
    QString failureText() const;

public Q_SLOTS:
    void reject() override; // Escape does not close the sheet

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void showState(const CatalogDatabaseService::State &state);
    QWidget *makeIdlePart(const QString &description, const QString &buttonText, QPushButton **button);
    QWidget *makeWorkingPart();
    QWidget *makeOutcomePart(const QString &symbolName, const QString &text, QLabel **label);

    CatalogDatabaseService &m_service;
    QStackedWidget *m_parts;
    QWidget *m_downloadPart = nullptr;
    QWidget *m_rebuildPart = nullptr;
    QWidget *m_workingPart = nullptr;
    QWidget *m_completedPart = nullptr;
    QWidget *m_failedPart = nullptr;
    QPushButton *m_downloadButton = nullptr;
    QPushButton *m_rebuildButton = nullptr;
    QPushButton *m_cancelButton = nullptr;
    QPushButton *m_retryButton = nullptr;
    QProgressBar *m_progressBar = nullptr;
    QLabel *m_statusLabel = nullptr;
    QLabel *m_failureLabel = nullptr;
    bool m_closing = false;
};
