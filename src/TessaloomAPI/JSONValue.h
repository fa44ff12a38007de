// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "JSONDecodingError.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>

#include <optional>

class JSONValue;

// How a type is read from JSON. Types of our own provide `static T decode(const JSONValue &)`
// and read their fields through JSONValue::decode and decodeIfPresent; text, numbers,
// booleans, Decimal and lists are provided here.
template<typename T>
struct JSONDecoding
{
    static T decode(const JSONValue &value) { return T::decode(value); }
};

// One value of an answer whose keys have already been converted (SnakeCaseKeyConverter),
// with the path that led to it, so a failure says where in the answer it happened.
//
// A field is looked up under its own key exactly as declared; nothing else is tried.
class JSONValue
{
public:
    explicit JSONValue(QJsonValue value, QString codingPath = {});

    const QJsonValue &raw() const { return m_value; }
    const QString &codingPath() const { return m_codingPath; }

    // The field `key` of this object as T. Fails with keyNotFound when absent, valueNotFound
    // when null, typeMismatch when this is no object or the field has another type.
    template<typename T>
    T decode(const QString &key) const
    {
        const JSONValue field = member(key);
        if (field.raw().isNull())
            throw JSONDecodingError(JSONDecodingError::Kind::valueNotFound, field.codingPath());
        return JSONDecoding<T>::decode(field);
    }

    // The field `key` as T, or nothing when it is absent or null. A value of another type
    // still fails: absent and wrong are different things.
    template<typename T>
    std::optional<T> decodeIfPresent(const QString &key) const
    {
        const JSONValue field = optionalMember(key);
        if (field.raw().isUndefined() || field.raw().isNull())
            return std::nullopt;
        return JSONDecoding<T>::decode(field);
    }

    // This value itself as T.
    template<typename T>
    T as() const
    {
        if (m_value.isNull() || m_value.isUndefined())
            throw JSONDecodingError(JSONDecodingError::Kind::valueNotFound, displayPath());
        return JSONDecoding<T>::decode(*this);
    }

    [[noreturn]] void throwTypeMismatch(const QString &expected) const;
    QString displayPath() const;

private:
    JSONValue member(const QString &key) const;
    JSONValue optionalMember(const QString &key) const;
    QString childPath(const QString &key) const;

    QJsonValue m_value;
    QString m_codingPath;
};

template<>
struct JSONDecoding<QString>
{
    static QString decode(const JSONValue &value);
};

template<>
struct JSONDecoding<bool>
{
    static bool decode(const JSONValue &value);
};

template<>
struct JSONDecoding<double>
{
    static double decode(const JSONValue &value);
};

// Whole numbers only: 2.5 where a count is expected is a type mismatch, as is a number
// beyond the range of the type.
template<>
struct JSONDecoding<qint64>
{
    static qint64 decode(const JSONValue &value);
};

template<>
struct JSONDecoding<int>
{
    static int decode(const JSONValue &value);
};

// A JSON number as money: the parser hands it over as a double, which becomes a decimal
// through its shortest round-trip text (99.99 stays 99.99). Text is not accepted here;
// services that send prices as text are read as QString and go through PriceAmount.
template<>
struct JSONDecoding<Decimal>
{
    static Decimal decode(const JSONValue &value);
};

template<typename T>
struct JSONDecoding<QList<T>>
{
    static QList<T> decode(const JSONValue &value)
    {
        if (!value.raw().isArray())
            value.throwTypeMismatch(QStringLiteral("an array"));
        QList<T> elements;
        const QJsonArray array = value.raw().toArray();
        elements.reserve(array.size());
        for (qsizetype index = 0; index < array.size(); ++index) {
            const JSONValue element(array.at(index), value.codingPath() + u'[' + QString::number(index) + u']');
            elements.append(element.as<T>());
        }
        return elements;
    }
};
