// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// The one error of the SQLite access layer. Only opening, execute and prepare raise it;
// binding and stepping never do, so that one bad row can't end a whole import.
class SQLiteError : public std::exception
{
public:
    enum class Kind {
        openFailed,
        executeFailed,
        prepareFailed,
    };

    SQLiteError(Kind kind, QString message, int code = 0);

    Kind kind() const { return m_kind; }
    // The text that SQLite gave (or "Unknown error" when it gave none).
    const QString &message() const { return m_message; }
    // SQLite's result code: what sqlite3_open_v2 returned for openFailed, the connection's
    // extended code for executeFailed and prepareFailed. Callers that sort failures (a
    // file that is not a database, a read-only file) look at it; the sentence does not.
    int code() const { return m_code; }
    // The sentence a screen shows: a fixed opening per kind, then the message.
    QString description() const;

    const char *what() const noexcept override;

private:
    Kind m_kind;
    QString m_message;
    int m_code;
    QByteArray m_what;
};

} // namespace RebrickableKit
