// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QException>
#include <QString>

// Why a backup of the collection was not made, or a backup was not restored. One fixed,
// translated sentence per case, shown to the user; the detail (the file, SQLite's own
// message) follows it in log lines. A QException, so that it crosses QFuture and co_await
// with its type.
class CollectionBackupError : public QException
{
public:
    enum class Kind {
        folderNotCreatable, // the Backups folder is missing and cannot be made
        storeUnreadable,    // the collection could not be read for its copy
        writeFailed,        // the copy could not be written (full disk, read-only folder)
        renameFailed,       // the finished copy could not take its name
        notABackup,         // a file chosen for a restore is not a database at all
        damaged,            // a file chosen for a restore is cut short or has changed bytes
        foreignFile,        // a file chosen for a restore belongs to another program
        newerVersion,       // a file chosen for a restore was written by a newer version
        restoreFailed,      // bringing a checked backup in failed; the collection is as it was
    };

    CollectionBackupError(Kind kind, QString detail);

    Kind kind() const { return m_kind; }
    QString detail() const { return m_detail; }
    // The kind's sentence, in the user's language.
    static QString sentence(Kind kind);
    QString sentence() const { return sentence(m_kind); }
    // The sentence followed by the detail, for log lines.
    QString description() const;

    const char *what() const noexcept override { return m_what.constData(); }
    void raise() const override { throw *this; }
    CollectionBackupError *clone() const override { return new CollectionBackupError(*this); }

private:
    Kind m_kind;
    QString m_detail;
    QByteArray m_what;
};
