// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CollectionBackupsView.h"

#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupService.h"

#include <QHeaderView>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int pathRole = Qt::UserRole + 1;
} // namespace

CollectionBackupsView::CollectionBackupsView(CollectionBackupService &service, QWidget *parent)
    : QWidget(parent)
    , m_service(service)
    , m_list(new QTreeWidget(this))
    , m_restoreButton(new QPushButton(this))
    , m_messageLabel(new QLabel(this))
    , m_ask(&DestructiveConfirmation::askWithDialog)
{
    m_list->setObjectName(u"backupList"_s);
    m_list->setColumnCount(2);
    //% "Backup"
    //: The date and time a backup of the collection was made
    const QString dateHeader = qtTrId("backups.column.date");
    //% "Size"
    m_list->setHeaderLabels({dateHeader, qtTrId("backups.column.size")});
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);

    m_restoreButton->setObjectName(u"restoreButton"_s);
    //% "Restore…"
    m_restoreButton->setText(qtTrId("backups.restore"));
    m_restoreButton->setEnabled(false);
    m_messageLabel->setObjectName(u"backupMessage"_s);
    m_messageLabel->setWordWrap(true);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_restoreButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    layout->addWidget(m_messageLabel);

    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &CollectionBackupsView::updateButton);
    connect(m_restoreButton, &QPushButton::clicked, this, [this] { restoreSelected(); });
    connect(&m_service, &CollectionBackupService::backupAdded, this, [this] { refresh(); });
    refresh();
}

DestructiveConfirmation CollectionBackupsView::restoreConfirmation(const QString &backupDate)
{
    //% "Restore the Backup?"
    return DestructiveConfirmation{qtTrId("backups.confirm.title"),
                                   //% "The collection will be replaced by the backup of %1. A backup of the collection as it is now is made first."
                                   qtTrId("backups.confirm.message.").arg(backupDate),
                                   //% "Restore"
                                   qtTrId("backups.confirm.restore")};
}

QString CollectionBackupsView::message() const
{
    return m_messageLabel->text();
}

QString CollectionBackupsView::dateText(const CollectionBackup &backup)
{
    QString text = QLocale().toString(backup.createdAt, QLocale::LongFormat);
    if (backup.sequence > 1)
        text += u" (%1)"_s.arg(QLocale().toString(backup.sequence));
    return text;
}

QCoro::Task<> CollectionBackupsView::refresh()
{
    QPointer<CollectionBackupsView> self(this);
    const QList<CollectionBackup> backups = co_await m_service.backups();
    if (self)
        showBackups(backups);
}

void CollectionBackupsView::showBackups(const QList<CollectionBackup> &backups)
{
    const QString selected = m_list->currentItem() ? m_list->currentItem()->data(0, pathRole).toString() : QString();
    m_backups = backups;
    m_list->clear();
    for (const CollectionBackup &backup : backups) {
        auto *item = new QTreeWidgetItem(m_list, {dateText(backup), QLocale().formattedDataSize(backup.size)});
        item->setData(0, pathRole, backup.path);
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        if (backup.path == selected)
            m_list->setCurrentItem(item);
    }
    updateButton();
    Q_EMIT refreshed();
}

void CollectionBackupsView::updateButton()
{
    m_restoreButton->setEnabled(!m_isRestoring && !m_list->selectedItems().isEmpty());
}

QCoro::Task<> CollectionBackupsView::restoreSelected()
{
    const QList<QTreeWidgetItem *> selected = m_list->selectedItems();
    if (m_isRestoring || selected.isEmpty())
        co_return;
    const QString path = selected.first()->data(0, pathRole).toString();
    const QString date = selected.first()->text(0);
    if (!m_ask(this, restoreConfirmation(date)))
        co_return;

    QPointer<CollectionBackupsView> self(this);
    m_isRestoring = true;
    updateButton();
    //% "Restoring the backup of %1…"
    m_messageLabel->setText(qtTrId("backups.status.restoring.").arg(date));
    QString failure;
    try {
        co_await m_service.restore(path);
    } catch (const CollectionBackupError &error) {
        failure = error.sentence();
    }
    if (!self)
        co_return;
    m_isRestoring = false;
    updateButton();
    if (failure.isEmpty()) {
        //% "The collection was restored from the backup of %1."
        m_messageLabel->setText(qtTrId("backups.status.restored.").arg(date));
    } else {
        m_messageLabel->setText(failure);
    }
    Q_EMIT restoreFinished(failure.isEmpty());
}
