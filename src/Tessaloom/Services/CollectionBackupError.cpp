// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionBackupError.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

CollectionBackupError::CollectionBackupError(Kind kind, QString detail)
    : m_kind(kind)
    , m_detail(std::move(detail))
    , m_what(description().toUtf8())
{
}

QString CollectionBackupError::sentence(Kind kind)
{
    switch (kind) {
    case Kind::folderNotCreatable:
        //% "The folder for backups of the collection could not be created."
        return qtTrId("backup.error.folderNotCreatable");
    case Kind::storeUnreadable:
        //% "The collection could not be read for its backup."
        return qtTrId("backup.error.storeUnreadable");
    case Kind::writeFailed:
        //% "The backup of the collection could not be written."
        return qtTrId("backup.error.writeFailed");
    case Kind::renameFailed:
        //% "The finished backup of the collection could not be named."
        return qtTrId("backup.error.renameFailed");
    case Kind::notABackup:
        //% "The chosen file is not a backup of a collection."
        return qtTrId("backup.error.notABackup");
    case Kind::damaged:
        //% "The chosen backup is damaged and cannot be restored."
        return qtTrId("backup.error.damaged");
    case Kind::foreignFile:
        //% "The chosen file belongs to another program and cannot be restored."
        return qtTrId("backup.error.foreignFile");
    case Kind::newerVersion:
        //% "The chosen backup was made by a newer version of Tessaloom and cannot be restored."
        return qtTrId("backup.error.newerVersion");
    case Kind::restoreFailed:
        //% "The backup could not be restored; the collection was left as it was."
        return qtTrId("backup.error.restoreFailed");
    }
    return {};
}

QString CollectionBackupError::description() const
{
    if (m_detail.isEmpty())
        return sentence(m_kind);
    return sentence(m_kind) + u' ' + m_detail;
}
