// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CollectionFileCommands.h"

#include "Logging.h"
#include "Services/CSVDocument.h"
#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupService.h"
#include "Services/CollectionFileImport.h"
#include "Services/ImportResultMessage.h"
#include "Services/RebrickableSetListExport.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreError.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {
const QString csvSuffix = u"csv"_s;

QCoro::Task<> backUpCollection(PersistentContainer &container)
{
    co_await CollectionBackupService::of(container).backUp();
}
} // namespace

CollectionFileCommands::CollectionFileCommands(PersistentContainer &container, QWidget *window)
    : QObject(window)
    , m_container(container)
    , m_window(window)
    , m_exportAction(new QAction(this))
    , m_importAction(new QAction(this))
    , m_exportSetListAction(new QAction(this))
{
    //% "Export…"
    m_exportAction->setText(qtTrId("menu.exportData"));
    //% "Import…"
    m_importAction->setText(qtTrId("menu.importData"));
    //% "Rebrickable Set List…"
    m_exportSetListAction->setText(qtTrId("menu.exportAs.rebrickableSetList"));
    m_chooseFile = [this](FileDialogMode mode, const QString &suggestedName) {
        return chooseWithDialog(mode, suggestedName);
    };
    m_presentAlert = [this](const QString &title, const QString &text, bool isFailure) {
        showAlertBox(title, text, isFailure);
    };
    m_backUp = [container = &container] { return backUpCollection(*container); };
    m_exportAction->setObjectName(u"exportDataAction"_s);
    m_importAction->setObjectName(u"importDataAction"_s);
    m_exportSetListAction->setObjectName(u"exportRebrickableSetListAction"_s);
    m_exportAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    m_importAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    connect(m_exportAction, &QAction::triggered, this, [this] { exportData(); });
    connect(m_importAction, &QAction::triggered, this, &CollectionFileCommands::importData);
    connect(m_exportSetListAction, &QAction::triggered, this, [this] { exportRebrickableSetList(); });
}

bool CollectionFileCommands::exportData()
{
    const QString path = m_chooseFile(FileDialogMode::save, defaultExportName);
    if (path.isEmpty())
        return false;
    try {
        CSVDocument(CSVExportImportService::exportCSV(m_container.viewContext())).write(path);
        return true;
    } catch (const CSVDocument::FileError &error) {
        qCWarning(lcApp).noquote() << u"CSV export failed: %1"_s.arg(error.description());
        return false;
    }
}

bool CollectionFileCommands::exportRebrickableSetList()
{
    const QString path = m_chooseFile(FileDialogMode::save, defaultSetListExportName);
    if (path.isEmpty())
        return false;
    try {
        CSVDocument(RebrickableSetListExport::text(m_container.viewContext())).write(path);
        return true;
    } catch (const CSVDocument::FileError &error) {
        qCWarning(lcApp).noquote() << u"Rebrickable set list export failed: %1"_s.arg(error.description());
        return false;
    }
}

void CollectionFileCommands::importData()
{
    // One import at a time: a second one would read rows the first has not saved yet.
    if (m_isImporting)
        return;
    const QString path = m_chooseFile(FileDialogMode::open, QString());
    if (!path.isEmpty())
        importFile(path);
}

QCoro::Task<> CollectionFileCommands::importFile(QString path)
{
    QPointer<CollectionFileCommands> self(this);
    m_isImporting = true;
    m_importAction->setEnabled(false);
    const QString fileName = QFileInfo(path).fileName();

    // What the import changes can be undone from the backup; without one it does not start.
    QString backupFailure;
    if (m_backUp) {
        try {
            QCoro::Task<> backingUp = m_backUp();
            // Said only when there is something to wait for: a store without a file has
            // nothing to back up, and its import begins at once.
            if (!backingUp.isReady()) {
                //% "Backing up the collection before importing “%1”…"
                Q_EMIT statusMessage(qtTrId("import.status.backingUp.").arg(fileName));
            }
            co_await std::move(backingUp);
        } catch (const CollectionBackupError &error) {
            //% "The import was not started because the collection could not be backed up first. %1"
            backupFailure = qtTrId("import.backupFailed.").arg(error.sentence());
        }
    }
    if (!self)
        co_return;
    if (!backupFailure.isEmpty()) {
        m_isImporting = false;
        m_importAction->setEnabled(true);
        Q_EMIT statusMessage(QString());
        m_presentAlert(ImportResultMessage::failedTitle(), backupFailure, true);
        Q_EMIT importFinished();
        co_return;
    }

    //% "Importing “%1”…"
    Q_EMIT statusMessage(qtTrId("import.status.reading.").arg(fileName));

    std::optional<CSVExportImportService::ImportResult> result;
    QString failure;
    try {
        const auto progress = [self, fileName](qint64 rowsDone, qint64 rowsTotal) {
            if (!self)
                return;
            //% "Importing “%1”: %2 of %3 rows"
            Q_EMIT self->statusMessage(qtTrId("import.status.progress.")
                                           .arg(fileName, QLocale().toString(rowsDone), QLocale().toString(rowsTotal)));
        };
        result = co_await CollectionFileImport::importFileInBackground(m_container, path, progress);
    } catch (const CSVDocument::FileError &error) {
        failure = error.description();
    } catch (const CSVExportImportService::ImportError &error) {
        failure = error.description();
    } catch (const StoreError &error) {
        failure = error.description();
    }
    if (!self)
        co_return; // the window went while the import ran; its changes are saved or not
    m_isImporting = false;
    m_importAction->setEnabled(true);
    Q_EMIT statusMessage(QString());
    if (result)
        m_presentAlert(ImportResultMessage::completeTitle(), ImportResultMessage::text(*result), false);
    else
        m_presentAlert(ImportResultMessage::failedTitle(), failure, true);
    Q_EMIT importFinished();
}

QString CollectionFileCommands::chooseWithDialog(FileDialogMode mode, const QString &suggestedName) const
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    //% "CSV Files (*.csv);;All Files (*)"
    const QString filter = qtTrId("file.filter.csv");
    if (mode == FileDialogMode::open) {
        // The collection's own file, Rebrickable's set list (CSV too) and BrickLink's XML.
        //% "Collection Files (*.csv *.xml);;CSV Files (*.csv);;BrickLink XML (*.xml);;All Files (*)"
        const QString importFilter = qtTrId("file.filter.import");
        return QFileDialog::getOpenFileName(m_window, m_importAction->text().remove(u'…'), folder, importFilter);
    }
    QFileDialog dialog(m_window, m_exportAction->text().remove(u'…'), folder, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(csvSuffix);
    dialog.selectFile(suggestedName + u'.' + csvSuffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().first();
}

void CollectionFileCommands::showAlertBox(const QString &title, const QString &text, bool isFailure) const
{
    QMessageBox box(isFailure ? QMessageBox::Warning : QMessageBox::Information, title, text, QMessageBox::NoButton,
                    m_window);
    box.addButton(ImportResultMessage::okButton(), QMessageBox::AcceptRole);
    box.exec();
}
