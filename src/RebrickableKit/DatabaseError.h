// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// The error of RebrickableDatabase itself; SQLite's own failures come as SQLiteError.
class DatabaseError : public std::exception
{
public:
    enum class Kind {
        notFound,
    };

    explicit DatabaseError(Kind kind);

    Kind kind() const { return m_kind; }
    QString description() const;
    const char *what() const noexcept override;

private:
    Kind m_kind;
    QByteArray m_what;
};

} // namespace RebrickableKit
