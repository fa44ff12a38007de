// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CSVExportImportService.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

class PersistentContainer;
class QAction;
class QWidget;

// File → Export… and File → Import… of the main window: the whole collection, owned
// copies and wishlist, out to one CSV file and back in. The import also takes the set lists
// of other collection tools (see CollectionFileImport), and File → Export As → Rebrickable
// Set List writes the sets the user has in Rebrickable's format.
//
// Before every import the collection is backed up (see CollectionBackupService): the
// import waits for the backup, and does not start when it fails, saying why.
//
// The export is written at once (the text of 10,000 copies takes a few dozen
// milliseconds); a failure is logged, not shown. The import reads the file, runs on a
// background context off the main thread while the window stays usable, reports its
// progress for the status bar, and ends in an alert that sums it up or says why it failed.
class CollectionFileCommands : public QObject
{
    Q_OBJECT

public:
    enum class FileDialogMode { save, open };
    // Asks for a file; an empty text when the user cancelled. The desktop's own dialog in
    // the program, a stand-in in tests.
    using FileChooser = std::function<QString(FileDialogMode mode, const QString &suggestedName)>;
    // Shows an alert with its title and text, with an OK button.
    using AlertPresenter = std::function<void(const QString &title, const QString &text, bool isFailure)>;
    // Awaited before an import; a CollectionBackupError it throws stops the import. By
    // default the backup service of the store.
    using BackupStep = std::function<QCoro::Task<>()>;

    // The name the export suggests for its file.
    static inline const QString defaultExportName = QStringLiteral("Brick-Inventory");
    // The name Export As → Rebrickable Set List suggests.
    static inline const QString defaultSetListExportName = QStringLiteral("Brick-Inventory-Rebrickable");

    CollectionFileCommands(PersistentContainer &container, QWidget *window);

    QAction *exportAction() const { return m_exportAction; }
    QAction *importAction() const { return m_importAction; }
    // The entries of File → Export As, in menu order.
    QAction *exportSetListAction() const { return m_exportSetListAction; }
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void setAlertPresenter(AlertPresenter presenter) { m_presentAlert = std::move(presenter); }
    void setBackupStep(BackupStep step) { m_backUp = std::move(step); }
    bool isImporting() const { return m_isImporting; }

    // Asks for a file and writes the collection to it; returns whether a file was written.
    bool exportData();
    // Asks for a file and writes the Rebrickable set list to it; returns whether a file was
    // written.
    bool exportRebrickableSetList();
    // Asks for a file and imports it; the alert at its end closes the import.
    void importData();
    // Imports the file at `path` as importData() does once the file is chosen.
    QCoro::Task<> importFile(QString path);

Q_SIGNALS:
    // A sentence for the status bar while an import runs; empty once it has ended.
    void statusMessage(const QString &text);
    void importFinished();

private:
    QString chooseWithDialog(FileDialogMode mode, const QString &suggestedName) const;
    void showAlertBox(const QString &title, const QString &text, bool isFailure) const;

    PersistentContainer &m_container;
    QPointer<QWidget> m_window;
    QAction *m_exportAction;
    QAction *m_importAction;
    QAction *m_exportSetListAction;
    FileChooser m_chooseFile;
    AlertPresenter m_presentAlert;
    BackupStep m_backUp;
    bool m_isImporting = false;
};
