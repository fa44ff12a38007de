// SPDX-License-Identifier: GPL-3.0-or-later
#include "JSONDecodingError.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

JSONDecodingError::JSONDecodingError(Kind kind, QString detail)
    : m_kind(kind)
    , m_detail(std::move(detail))
    , m_what(description().toUtf8())
{
}

QString JSONDecodingError::sentence(Kind kind)
{
    switch (kind) {
    case Kind::dataCorrupted:
        //% "The data is not valid JSON."
        return qtTrId("api.decoding.dataCorrupted");
    case Kind::keyNotFound:
        //% "A required value is missing."
        return qtTrId("api.decoding.keyNotFound");
    case Kind::valueNotFound:
        //% "A required value is null."
        return qtTrId("api.decoding.valueNotFound");
    case Kind::typeMismatch:
        //% "A value has the wrong type."
        return qtTrId("api.decoding.typeMismatch");
    }
    Q_UNREACHABLE();
    return {};
}

QString JSONDecodingError::description() const
{
    if (m_detail.isEmpty())
        return sentence(m_kind);
    return sentence(m_kind) + u" ("_s + m_detail + u')';
}
