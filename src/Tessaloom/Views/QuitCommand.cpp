// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/QuitCommand.h"

#include "Logging.h"
#include "Services/CatalogDatabaseService.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {
// A cancelled download stops at once; a cancelled import only between two tables.
constexpr int buildStopWaitMilliseconds = 10'000;
bool quitting = false;

// Qt asks every window to close on its way out; the agreement lasts until the event loop
// has ended, and a later event loop (a test's) starts afresh.
void endApplication()
{
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [] { quitting = false; }, Qt::SingleShotConnection);
    QCoreApplication::quit();
}
} // namespace

QuitCommand::QuitCommand(CatalogDatabaseService &service, QWidget *window)
    : QObject(window)
    , m_service(service)
    , m_window(window)
    //% "&Quit"
    , m_action(new QAction(qtTrId("menu.quit"), window))
{
    m_action->setObjectName(u"quitAction"_s);
    // Without a desktop theme (a bare X server, the offscreen platform) Qt binds nothing to
    // the standard Quit key: Ctrl+Q is added so that quitting works the same everywhere.
    QList<QKeySequence> keys = QKeySequence::keyBindings(QKeySequence::Quit);
    const QKeySequence controlQ(Qt::CTRL | Qt::Key_Q);
    if (!keys.contains(controlQ))
        keys.append(controlQ);
    m_action->setShortcuts(keys);
    m_action->setMenuRole(QAction::QuitRole);
    window->addAction(m_action);
    connect(m_action, &QAction::triggered, this, &QuitCommand::quit);
}

bool QuitCommand::isQuitting()
{
    return quitting;
}

bool QuitCommand::confirm()
{
    // Only a build is worth a question: a check for updates that happens to run ends with
    // the program and loses nothing.
    if (quitting || !m_service.isBuilding())
        return true;
    QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                    //% "A catalog build is running. Quit and stop it?"
                    qtTrId("quit.buildRunning.message"), QMessageBox::NoButton, m_window);
    box.setObjectName(u"quitConfirmation"_s);
    //% "The catalog stays as it was before the build; you can build it again later."
    box.setInformativeText(qtTrId("quit.buildRunning.informative"));
    //% "Quit"
    QPushButton *quitButton = box.addButton(qtTrId("quit.buildRunning.quit"), QMessageBox::DestructiveRole);
    //% "Keep Building"
    QPushButton *keep = box.addButton(qtTrId("quit.buildRunning.keep"), QMessageBox::RejectRole);
    box.setDefaultButton(keep);
    box.setEscapeButton(keep);
    box.exec();
    return box.clickedButton() == quitButton;
}

void QuitCommand::quit()
{
    if (confirm())
        stopBuildAndQuit();
}

void QuitCommand::stopBuildAndQuit()
{
    quitting = true;
    if (!m_service.isBuilding()) {
        QTimer::singleShot(0, qApp, &endApplication);
        return;
    }
    qCInfo(lcApp, "Quitting: stopping the catalog build first");
    auto *fallback = new QTimer(qApp);
    fallback->setSingleShot(true);
    connect(fallback, &QTimer::timeout, qApp, [fallback] {
        fallback->deleteLater();
        endApplication();
    });
    connect(&m_service, &CatalogDatabaseService::stateChanged, fallback,
            [fallback](const CatalogDatabaseService::State &state) {
                if (state.kind != CatalogDatabaseService::State::Kind::working)
                    fallback->start(0);
            });
    fallback->start(buildStopWaitMilliseconds);
    m_service.cancelCurrentTask();
}
