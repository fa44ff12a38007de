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

    SQLiteError(Kind kind, QString message);

    Kind kind() const { return m_kind; }
    // The text that SQLite gave (or "Unknown error" when it gave none).
    const QString &message() const { return m_message; }
    // The sentence a screen shows: a fixed opening per kind, then the message.
    QString description() const;

    const char *what() const noexcept override;

private:
    Kind m_kind;
    QString m_message;
    QByteArray m_what;
};

} // namespace RebrickableKit
