// SPDX-License-Identifier: GPL-3.0-or-later
#include "DownloadError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

DownloadError::DownloadError(Kind kind, QString name, int status)
    : m_kind(kind)
    , m_name(std::move(name))
    , m_status(status)
    , m_what(description().toUtf8())
{
}

DownloadError DownloadError::httpError(QString name, int status)
{
    return DownloadError(Kind::httpError, std::move(name), status);
}

DownloadError DownloadError::decompressionFailed(QString fileName)
{
    return DownloadError(Kind::decompressionFailed, std::move(fileName), 0);
}

QString DownloadError::description() const
{
    switch (m_kind) {
    case Kind::httpError:
        return u"Failed to download "_s + m_name + u".csv.gz: HTTP "_s + QString::number(m_status);
    case Kind::decompressionFailed:
        return u"Failed to decompress "_s + m_name;
    }
    Q_UNREACHABLE();
    return m_name;
}

const char *DownloadError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
