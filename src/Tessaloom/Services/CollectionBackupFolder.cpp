// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionBackupFolder.h"

#include "Logging.h"
#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupName.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

CollectionBackupFolder::CollectionBackupFolder(QString path)
    : m_path(std::move(path))
{
}

CollectionBackupFolder CollectionBackupFolder::besideStore(const QString &storePath)
{
    return CollectionBackupFolder(QFileInfo(storePath).absolutePath() + u"/Backups"_s);
}

void CollectionBackupFolder::create() const
{
    const QFileInfo info(m_path);
    if (info.isDir())
        return;
    if (info.exists() || !QDir().mkpath(m_path)) {
        throw CollectionBackupError(CollectionBackupError::Kind::folderNotCreatable,
                                    u"(%1) The folder could not be created."_s.arg(QDir::toNativeSeparators(m_path)));
    }
}

QList<CollectionBackup> CollectionBackupFolder::list() const
{
    QList<CollectionBackup> backups;
    const QFileInfoList files = QDir(m_path).entryInfoList({u"Tessaloom *.sqlite"_s}, QDir::Files);
    for (const QFileInfo &file : files) {
        const std::optional<CollectionBackupName::Parsed> parsed = CollectionBackupName::parse(file.fileName());
        if (parsed)
            backups.append(CollectionBackup{file.absoluteFilePath(), parsed->createdAt, parsed->sequence, file.size()});
    }
    std::sort(backups.begin(), backups.end(),
              [](const CollectionBackup &a, const CollectionBackup &b) { return a.isNewerThan(b); });
    return backups;
}

QString CollectionBackupFolder::freePath(const QDateTime &createdAt) const
{
    const QDir folder(m_path);
    for (int sequence = 1;; ++sequence) {
        const QString path = folder.absoluteFilePath(CollectionBackupName::fileName(createdAt, sequence));
        if (!QFileInfo::exists(path) && !QFileInfo::exists(path + CollectionBackupName::partialSuffix()))
            return path;
    }
}

QStringList CollectionBackupFolder::prune(int keep, const QString &spared) const
{
    QStringList deleted;
    const QList<CollectionBackup> backups = list();
    const QString sparedPath = spared.isEmpty() ? QString() : QFileInfo(spared).absoluteFilePath();
    for (qsizetype index = keep; index < backups.size(); ++index) {
        const QString &path = backups[index].path;
        if (path == sparedPath)
            continue;
        if (QFile::remove(path))
            deleted.append(path);
        else
            qCWarning(lcPersistence).noquote() << u"An old backup could not be deleted: %1"_s.arg(QDir::toNativeSeparators(path));
    }
    return deleted;
}

void CollectionBackupFolder::removeLeftovers() const
{
    const QString suffix = CollectionBackupName::partialSuffix();
    const QFileInfoList files = QDir(m_path).entryInfoList({u"*"_s + suffix, u"*"_s + suffix + u"-*"_s}, QDir::Files);
    for (const QFileInfo &file : files)
        QFile::remove(file.absoluteFilePath());
}

void CollectionBackupFolder::removePartial(const QString &partialPath)
{
    for (const QString &side : {QString(), u"-journal"_s, u"-wal"_s, u"-shm"_s})
        QFile::remove(partialPath + side);
}
