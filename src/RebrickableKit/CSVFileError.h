// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// A dump that can't be read as a whole UTF-8 text. It ends the build: a catalog missing a
// table, or built from half a file, would mislead every screen that reads it.
class CSVFileError : public std::exception
{
public:
    enum class Kind {
        fileNotFound,
        readFailed,
        invalidUTF8,
    };

    CSVFileError(Kind kind, QString path);

    Kind kind() const { return m_kind; }
    const QString &path() const { return m_path; }
    QString description() const;

    const char *what() const noexcept override;

private:
    Kind m_kind;
    QString m_path;
    QByteArray m_what;
};

} // namespace RebrickableKit
