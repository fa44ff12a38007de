// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class CatalogDatabaseService;
class QAction;
class QWidget;

// Ending the application from any window, the catalog set-up sheet included: the sheet
// blocks the main window and its menu bar, so it carries a quit action of its own. When a
// catalog build runs, the user confirms first; the build is then stopped through its stop
// token and the application ends once the build has wound down (its leftovers removed),
// or after a few seconds at the most.
class QuitCommand : public QObject
{
    Q_OBJECT

public:
    // `window` receives the action (Ctrl+Q) and parents the confirmation.
    QuitCommand(CatalogDatabaseService &service, QWidget *window);

    QAction *action() const { return m_action; }

    // Whether the user agrees to end the application now: always when no build runs,
    // otherwise after confirming. Once a quit has been agreed to, it is not asked again.
    bool confirm();
    // Confirms, stops a running build, and ends the application.
    void quit();
    // The same once the user has agreed: stops a running build and ends the application
    // when it has wound down.
    void stopBuildAndQuit();

    // True from the moment a quit was agreed to: windows that refuse to close for other
    // reasons let it through.
    static bool isQuitting();

private:

    CatalogDatabaseService &m_service;
    QWidget *m_window;
    QAction *m_action;
};
