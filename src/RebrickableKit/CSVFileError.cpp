// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVFileError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

CSVFileError::CSVFileError(Kind kind, QString path)
    : m_kind(kind)
    , m_path(std::move(path))
    , m_what(description().toUtf8())
{
}

QString CSVFileError::description() const
{
    switch (m_kind) {
    case Kind::fileNotFound:
        return u"CSV file not found: "_s + m_path;
    case Kind::readFailed:
        return u"Failed to read CSV file: "_s + m_path;
    case Kind::invalidUTF8:
        return u"CSV file is not valid UTF-8: "_s + m_path;
    }
    Q_UNREACHABLE();
    return m_path;
}

const char *CSVFileError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
