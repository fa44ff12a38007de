// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// A step of the downloader on the local disk that failed: the folder, the removal of a
// leftover, writing what arrives, or moving a finished download into place.
class FileOperationError : public std::exception
{
public:
    enum class Kind {
        createDirectoryFailed,
        removeFailed,
        writeFailed,
        moveFailed,
    };

    FileOperationError(Kind kind, QString path);

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
