// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/MainWindow.h"

#include "Services/AppUpdateService.h"
#include "Services/ImageCacheService.h"
#include "Store/PersistentContainer.h"
#include "Views/CatalogStatusIndicator.h"
#include "Views/CollectionFileCommands.h"
#include "Views/ContentView.h"
#include "Views/PartsChecklistWindowGroup.h"
#include "Views/PriceRefreshStatusView.h"
#include "Views/QuitCommand.h"
#include "Views/SetListView.h"
#include "Views/SampleCatalogNotice.h"
#include "Views/SettingsView.h"
#include "Views/UndoStatusNotice.h"
#include "ViewModels/CollectionUndoStack.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
const QString geometryKey = u"mainWindow.geometry"_s;
const QString columnsKey = u"mainWindow.columns"_s;
} // namespace

MainWindow::MainWindow(PersistentContainer &container, CatalogDatabaseService &catalogService,
                       AppUpdateService &updateService, QWidget *parent)
    : QMainWindow(parent)
    , m_container(container)
    , m_catalogService(catalogService)
    , m_updateService(updateService)
    , m_contentView(new ContentView(container, catalogService))
    , m_sampleCatalogNotice(new SampleCatalogNotice(catalogService))
    , m_catalogStatusIndicator(new CatalogStatusIndicator(catalogService, statusBar()))
    , m_quitCommand(new QuitCommand(catalogService, this))
    , m_undoNotice(new UndoStatusNotice(m_contentView->undoStack(), statusBar()))
    , m_fileCommands(new CollectionFileCommands(container, this))
    , m_partsChecklistWindows(new PartsChecklistWindowGroup(container.viewContext(), this, this))
{
    setObjectName(u"mainWindow"_s);
    setWindowTitle(QApplication::applicationDisplayName());

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_sampleCatalogNotice);
    layout->addWidget(m_contentView, 1);
    setCentralWidget(central);

    setUnifiedTitleAndToolBarOnMac(true);
    buildMenus();
    connect(m_contentView->setListView(), &SetListView::partsChecklistRequested, this,
            &MainWindow::openPartsChecklist);
    connect(m_contentView, &ContentView::partsChecklistRequested, this,
            [this](const QUrl &copyURI) { m_partsChecklistWindows->open(copyURI); });
    statusBar()->addWidget(m_undoNotice, 1);
    statusBar()->setSizeGripEnabled(true);
    resize(1200, 760);
    restoreWindowState();
}

PriceRefreshStatusView *MainWindow::showPriceRefreshProgress(PriceRefreshProgress &progress)
{
    // A refresh of all prices takes hours at the providers' rates: its progress and its
    // cancel button stay in the status bar while it runs, and hide when it ends.
    auto *status = new PriceRefreshStatusView(progress, statusBar());
    statusBar()->addPermanentWidget(status);
    return status;
}

PartsChecklistWindow *MainWindow::openPartsChecklist(const ObjectID &brickSet)
{
    return m_partsChecklistWindows->open(brickSet);
}

void MainWindow::buildMenus()
{
    //% "&File"
    QMenu *fileMenu = menuBar()->addMenu(qtTrId("menu.file"));
    fileMenu->addAction(m_fileCommands->exportAction());
    //% "Export As"
    QMenu *exportAsMenu = fileMenu->addMenu(qtTrId("menu.exportAs"));
    exportAsMenu->setObjectName(u"exportAsMenu"_s);
    exportAsMenu->addAction(m_fileCommands->exportSetListAction());
    fileMenu->addAction(m_fileCommands->importAction());
    fileMenu->addSeparator();
    connect(m_fileCommands, &CollectionFileCommands::statusMessage, this, [this](const QString &text) {
        if (text.isEmpty())
            statusBar()->clearMessage();
        else
            statusBar()->showMessage(text);
    });
    fileMenu->addAction(m_quitCommand->action());

    buildEditMenu();

    //% "&Help"
    QMenu *helpMenu = menuBar()->addMenu(qtTrId("menu.help"));
    //% "About Tessaloom"
    QAction *about = helpMenu->addAction(qtTrId("menu.about"), this, &MainWindow::showAbout);
    about->setMenuRole(QAction::AboutRole);
    // Stands after the application-info entry, enabled while no check is under way.
    //% "Check for Updates…"
    m_checkForUpdatesAction = helpMenu->addAction(qtTrId("settings.about.checkForUpdates"), this,
                                                  [this] { checkForUpdates(); });
    m_checkForUpdatesAction->setMenuRole(QAction::ApplicationSpecificRole);
    m_checkForUpdatesAction->setEnabled(m_updateService.canCheckForUpdates());
    connect(&m_updateService, &AppUpdateService::canCheckForUpdatesChanged,
            m_checkForUpdatesAction, &QAction::setEnabled);
}

void MainWindow::buildEditMenu()
{
    CollectionUndoStack &undoStack = m_contentView->undoStack();
    QUndoStack *stack = undoStack.stack();
    //% "&Edit"
    QMenu *editMenu = menuBar()->addMenu(qtTrId("menu.edit"));

    // Our own actions rather than QUndoStack's, so that an undo goes through the collection's
    // stack and the status bar hears of it. A text field with the focus keeps Ctrl+Z for its
    // own typing.
    //% "&Undo"
    m_undoAction = editMenu->addAction(qtTrId("menu.undo"), &undoStack, &CollectionUndoStack::undo);
    m_undoAction->setShortcut(QKeySequence::Undo);
    m_undoAction->setEnabled(stack->canUndo());
    connect(stack, &QUndoStack::canUndoChanged, m_undoAction, &QAction::setEnabled);
    const auto nameUndo = [this](const QString &text) {
        if (text.isEmpty()) {
            m_undoAction->setText(qtTrId("menu.undo"));
            return;
        }
        //% "&Undo %1"
        m_undoAction->setText(qtTrId("menu.undo.named.").arg(text));
    };
    connect(stack, &QUndoStack::undoTextChanged, this, nameUndo);

    //% "&Redo"
    m_redoAction = editMenu->addAction(qtTrId("menu.redo"), stack, &QUndoStack::redo);
    m_redoAction->setShortcuts({QKeySequence::Redo, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    m_redoAction->setEnabled(stack->canRedo());
    connect(stack, &QUndoStack::canRedoChanged, m_redoAction, &QAction::setEnabled);
    const auto nameRedo = [this](const QString &text) {
        if (text.isEmpty()) {
            m_redoAction->setText(qtTrId("menu.redo"));
            return;
        }
        //% "&Redo %1"
        m_redoAction->setText(qtTrId("menu.redo.named.").arg(text));
    };
    connect(stack, &QUndoStack::redoTextChanged, this, nameRedo);

    editMenu->addSeparator();
    //% "Preferences…"
    m_preferencesAction = editMenu->addAction(qtTrId("menu.preferences"), this, &MainWindow::showPreferences);
    m_preferencesAction->setObjectName(u"preferencesAction"_s);
    QList<QKeySequence> preferencesKeys{QKeySequence(u"Ctrl+,"_s)};
    // The platform's own binding too, where it has one (empty on most Linux desktops).
    const QKeySequence platformKey(QKeySequence::Preferences);
    if (!platformKey.isEmpty() && !preferencesKeys.contains(platformKey))
        preferencesKeys.append(platformKey);
    m_preferencesAction->setShortcuts(preferencesKeys);
    m_preferencesAction->setMenuRole(QAction::PreferencesRole);
}

SettingsView *MainWindow::settingsView() const
{
    return m_settingsView;
}

SettingsView *MainWindow::showPreferences()
{
    if (!m_settingsView) {
        m_settingsView = new SettingsView(m_container, m_catalogService, m_updateService,
                                          ImageCacheService::shared(), this);
        // Closing it ends it; credentials typed within their save pause are saved anyway.
        m_settingsView->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_settingsView->show();
    m_settingsView->raise();
    m_settingsView->activateWindow();
    return m_settingsView;
}

QCoro::Task<> MainWindow::checkForUpdates()
{
    //% "Checking for updates…"
    statusBar()->showMessage(qtTrId("update.status.checking"));
    QPointer<MainWindow> self(this);
    const AppUpdateService::CheckResult result = co_await m_updateService.checkForUpdates();
    if (!self)
        co_return; // the window closed while the feed was being read
    statusBar()->clearMessage();

    switch (result.outcome) {
    case AppUpdateService::CheckResult::Outcome::upToDate:
        //% "You're Up to Date"
        QMessageBox::information(this, qtTrId("update.upToDate.title"),
                                 //% "Tessaloom %1 is the newest version available."
                                 qtTrId("update.upToDate.message").arg(QApplication::applicationVersion()));
        break;
    case AppUpdateService::CheckResult::Outcome::updateAvailable: {
        QMessageBox box(QMessageBox::Information,
                        //% "A New Version Is Available"
                        qtTrId("update.available.title"),
                        //% "Tessaloom %1 is available; you have %2."
                        qtTrId("update.available.message")
                            .arg(result.newest.displayVersion, QApplication::applicationVersion()),
                        QMessageBox::NoButton, this);
        //% "Open Download Page"
        QPushButton *open = box.addButton(qtTrId("update.available.openPage"), QMessageBox::AcceptRole);
        box.addButton(QMessageBox::Close);
        box.exec();
        if (box.clickedButton() == open && result.newest.pageUrl.isValid())
            QDesktopServices::openUrl(result.newest.pageUrl);
        break;
    }
    case AppUpdateService::CheckResult::Outcome::failed: {
        // The sentence says what happened and what to do; the technical text is one click away.
        //% "Update Check Failed"
        QMessageBox box(QMessageBox::Warning, qtTrId("update.failed.title"), result.errorText, QMessageBox::Ok, this);
        box.setObjectName(u"updateCheckFailure"_s);
        box.setDetailedText(result.errorDetails);
        box.exec();
        break;
    }
    }
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, qtTrId("menu.about"),
                       //% "Tessaloom %1\nYour LEGO collection, its parts and its value, on your own computer."
                       qtTrId("about.message").arg(QApplication::applicationVersion()));
}

void MainWindow::restoreWindowState()
{
    const QSettings settings;
    restoreGeometry(settings.value(geometryKey).toByteArray());
    m_contentView->splitter()->restoreState(settings.value(columnsKey).toByteArray());
}

void MainWindow::saveWindowState() const
{
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(columnsKey, m_contentView->splitter()->saveState());
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (m_hasAppeared)
        return;
    m_hasAppeared = true;
    // After the first paint, so that a sheet opened in response sits over a drawn window.
    QTimer::singleShot(0, this, &MainWindow::contentAppeared);
}

// Closing the main window ends the program, with the set-up sheet or any other window still
// open; while a catalog build runs, only once the user agrees to stop it.
void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!m_quitCommand->confirm()) {
        event->ignore();
        return;
    }
    saveWindowState();
    event->accept();
    if (!QuitCommand::isQuitting())
        QTimer::singleShot(0, m_quitCommand, &QuitCommand::stopBuildAndQuit);
}
