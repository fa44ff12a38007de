// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QException>
#include <QString>

struct sqlite3;

// The one error type of the collection store. Each kind has one fixed sentence; the
// details (the path, SQLite's own message) follow it, so a log line says what failed
// and where.
class StoreError : public QException
{
public:
    enum class Kind {
        directoryNotCreatable,
        openFailed,
        notADatabase,
        readOnly,
        migrationFailed,
        queryFailed,
        saveFailed,
        // New kinds go last, so that the numbers of the kinds above stay as they were.
        pathIsFolder,
        unreadable,
        damaged,
        foreignFile,
        newerVersion,
    };

    StoreError(Kind kind, QString detail, int sqliteCode = 0);
    static StoreError fromDatabase(Kind kind, sqlite3 *database);
    // "(<path>) <message>": the detail of an error about one file, so every line that
    // reports it names the file.
    static QString detailFor(const QString &path, const QString &message);

    Kind kind() const { return m_kind; }
    int sqliteCode() const { return m_sqliteCode; }
    QString detail() const { return m_detail; }
    // The kind's sentence followed by the detail.
    QString description() const;
    // The kind's fixed sentence alone.
    static QString sentence(Kind kind);

    const char *what() const noexcept override { return m_what.constData(); }
    // QException: lets the error cross QtConcurrent and QFuture with its type intact.
    void raise() const override { throw *this; }
    StoreError *clone() const override { return new StoreError(*this); }

private:
    Kind m_kind;
    QString m_detail;
    int m_sqliteCode;
    QByteArray m_what;
};
