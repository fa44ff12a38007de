// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CollectionBackup.h"
#include "Views/DestructiveConfirmation.h"

#include <QCoroTask>
#include <QList>
#include <QWidget>

class CollectionBackupService;
class QLabel;
class QPushButton;
class QTreeWidget;

// The backups of the collection, newest first with their date and size, and "Restore…"
// for the one selected: it asks first, and then the service backs up the current store,
// checks the chosen file and brings it in while the window stays open. A refused or
// failed restore says why in a sentence below the list; the collection stays as it was.
// The list reads the folder off the main thread and follows every new backup.
class CollectionBackupsView : public QWidget
{
    Q_OBJECT

public:
    explicit CollectionBackupsView(CollectionBackupService &service, QWidget *parent = nullptr);

    // The question before a restore; the dialog on screen, a stand-in in tests.
    void setConfirmationAsker(DestructiveConfirmation::Asker asker) { m_ask = std::move(asker); }
    static DestructiveConfirmation restoreConfirmation(const QString &backupDate);

    QList<CollectionBackup> backups() const { return m_backups; }
    QTreeWidget *list() const { return m_list; }
    QPushButton *restoreButton() const { return m_restoreButton; }
    // The outcome of the last restore, or why it was refused.
    QString message() const;

    // Reads the folder again and shows what it holds.
    QCoro::Task<> refresh();
    // "Restore…" for the selected backup.
    QCoro::Task<> restoreSelected();

    // The date as the list shows it, in the user's locale.
    static QString dateText(const CollectionBackup &backup);

Q_SIGNALS:
    void refreshed();
    void restoreFinished(bool restored);

private:
    void showBackups(const QList<CollectionBackup> &backups);
    void updateButton();

    CollectionBackupService &m_service;
    QTreeWidget *m_list;
    QPushButton *m_restoreButton;
    QLabel *m_messageLabel;
    QList<CollectionBackup> m_backups;
    DestructiveConfirmation::Asker m_ask;
    bool m_isRestoring = false;
};
