// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogDatabaseService.h"

#include <QDialog>

class FailureMessageView;
class QLabel;
class QProgressBar;
class QuitCommand;
class QPushButton;
class QStackedWidget;

// The sheet that asks for the catalog and shows its build. It cannot be dismissed: the
// program is of no use without a catalog, so the user either gets one or quits. Quitting
// stays open throughout (Ctrl+Q, the sheet's close button), after a confirmation while a
// build runs. It closes itself half a second after a build completes.
//
// The buttons keep their places in every state: the one that starts a build (Download,
// Rebuild, Try Again) stands at the right and is only disabled while the build runs, and
// Cancel appears at the left. A click aimed at Rebuild can never land on Cancel.
class CatalogSetupView : public QDialog
{
    Q_OBJECT

public:
    explicit CatalogSetupView(CatalogDatabaseService &service, QWidget *parent = nullptr);

    // The part on show, for the current state: "download", "rebuild", "working",
    // "completed" or "failed".
    QString currentPart() const;
    // The button that starts a build, whatever its text; disabled while a build runs.
    QPushButton *primaryButton() const { return m_primaryButton; }
    // Stops the running build; hidden when none runs.
    QPushButton *cancelButton() const { return m_cancelButton; }
    QuitCommand *quitCommand() const { return m_quitCommand; }
    QProgressBar *progressBar() const { return m_progressBar; }
    QString statusText() const;
    // The failure's sentence, and its technical text under "Details".
    QString failureText() const;
    QString failureDetails() const;

public Q_SLOTS:
    void reject() override; // Escape does not close the sheet

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void showState(const CatalogDatabaseService::State &state);
    QString startText() const;
    QWidget *makeIdlePart(const QString &description);
    QWidget *makeWorkingPart();
    QWidget *makeOutcomePart(const QString &symbolName, const QString &text);

    CatalogDatabaseService &m_service;
    QStackedWidget *m_parts;
    QWidget *m_downloadPart = nullptr;
    QWidget *m_rebuildPart = nullptr;
    QWidget *m_workingPart = nullptr;
    QWidget *m_completedPart = nullptr;
    QWidget *m_failedPart = nullptr;
    QPushButton *m_primaryButton = nullptr;
    QPushButton *m_cancelButton = nullptr;
    QProgressBar *m_progressBar = nullptr;
    QLabel *m_statusLabel = nullptr;
    FailureMessageView *m_failureMessage = nullptr;
    QuitCommand *m_quitCommand = nullptr;
    bool m_closing = false;
};
