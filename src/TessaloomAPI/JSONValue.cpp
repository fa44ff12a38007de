// SPDX-License-Identifier: GPL-3.0-or-later
#include "JSONValue.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

JSONValue::JSONValue(QJsonValue value, QString codingPath)
    : m_value(std::move(value))
    , m_codingPath(std::move(codingPath))
{
}

QString JSONValue::displayPath() const
{
    return m_codingPath.isEmpty() ? u"the top level"_s : m_codingPath;
}

void JSONValue::throwTypeMismatch(const QString &expected) const
{
    throw JSONDecodingError(JSONDecodingError::Kind::typeMismatch,
                            displayPath() + u": expected "_s + expected);
}

QString JSONValue::childPath(const QString &key) const
{
    return m_codingPath.isEmpty() ? key : m_codingPath + u'.' + key;
}

JSONValue JSONValue::optionalMember(const QString &key) const
{
    if (!m_value.isObject())
        throwTypeMismatch(u"an object"_s);
    return JSONValue(m_value.toObject().value(key), childPath(key));
}

JSONValue JSONValue::member(const QString &key) const
{
    JSONValue field = optionalMember(key);
    if (field.raw().isUndefined())
        throw JSONDecodingError(JSONDecodingError::Kind::keyNotFound, field.codingPath());
    return field;
}

QString JSONDecoding<QString>::decode(const JSONValue &value)
{
    if (!value.raw().isString())
        value.throwTypeMismatch(u"text"_s);
    return value.raw().toString();
}

bool JSONDecoding<bool>::decode(const JSONValue &value)
{
    if (!value.raw().isBool())
        value.throwTypeMismatch(u"a boolean"_s);
    return value.raw().toBool();
}

double JSONDecoding<double>::decode(const JSONValue &value)
{
    if (!value.raw().isDouble())
        value.throwTypeMismatch(u"a number"_s);
    return value.raw().toDouble();
}

qint64 JSONDecoding<qint64>::decode(const JSONValue &value)
{
    if (!value.raw().isDouble())
        value.throwTypeMismatch(u"a whole number"_s);
    // The parser keeps whole numbers that fit exactly; anything else arrives as a double.
    constexpr qint64 notWhole = std::numeric_limits<qint64>::min();
    const qint64 whole = value.raw().toInteger(notWhole);
    if (whole == notWhole) {
        const double number = value.raw().toDouble();
        if (number != static_cast<double>(notWhole))
            value.throwTypeMismatch(u"a whole number"_s);
    }
    return whole;
}

int JSONDecoding<int>::decode(const JSONValue &value)
{
    const qint64 whole = JSONDecoding<qint64>::decode(value);
    if (whole < std::numeric_limits<int>::min() || whole > std::numeric_limits<int>::max())
        value.throwTypeMismatch(u"a whole number within 32 bits"_s);
    return static_cast<int>(whole);
}

Decimal JSONDecoding<Decimal>::decode(const JSONValue &value)
{
    if (!value.raw().isDouble())
        value.throwTypeMismatch(u"a number"_s);
    const std::optional<Decimal> amount = Decimal::fromDouble(value.raw().toDouble());
    if (!amount)
        value.throwTypeMismatch(u"a finite number"_s);
    return *amount;
}
