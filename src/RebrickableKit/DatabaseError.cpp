// SPDX-License-Identifier: GPL-3.0-or-later
#include "DatabaseError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

DatabaseError::DatabaseError(Kind kind)
    : m_kind(kind)
    , m_what(description().toUtf8())
{
}

QString DatabaseError::description() const
{
    switch (m_kind) {
    case Kind::notFound:
        return u"Bundled rebrickable.sqlite not found. Run `rebrickable-fetch` then `rebrickable-build-db` first."_s;
    }
    Q_UNREACHABLE();
    return QString();
}

const char *DatabaseError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
