// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileOperationError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

FileOperationError::FileOperationError(Kind kind, QString path)
    : m_kind(kind)
    , m_path(std::move(path))
    , m_what(description().toUtf8())
{
}

QString FileOperationError::description() const
{
    switch (m_kind) {
    case Kind::createDirectoryFailed:
        return u"Could not create the folder "_s + m_path;
    case Kind::removeFailed:
        return u"Could not remove "_s + m_path;
    case Kind::writeFailed:
        return u"Could not write "_s + m_path;
    case Kind::moveFailed:
        return u"Could not move the download into place at "_s + m_path;
    }
    Q_UNREACHABLE();
    return m_path;
}

const char *FileOperationError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
