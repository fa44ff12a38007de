// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "RebrickableKit/SQLiteStatement.h"
#include "Store/ObjectID.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// How one attribute of an entity struct maps to its column: the column's name, its kind,
// and three functions generated from the member pointer (bind, read, compare), so that
// rows are read straight into structs without passing through QVariant.
//
// Storage formats: strings as text, booleans as 0/1, integers as integers, dates as UTC
// milliseconds, decimals as their exact text, UUIDs as lower-case text without braces,
// to-one relationships as the target's primary key. Absent values are NULL.
enum class AttributeType { string, boolean, integer16, integer32, date, decimal, uuid, toOne };

template <typename T>
struct FieldMapping
{
    QStringView name;
    AttributeType type;
    EntityType target; // the related entity of a toOne field
    void (*bind)(const T &object, RebrickableKit::SQLiteStatement &statement, int index);
    void (*read)(T &object, const RebrickableKit::SQLiteStatement &statement, int column);
    bool (*equal)(const T &left, const T &right);
    void (*copy)(T &target, const T &source);
};

namespace StoreValueCodec {

inline void bind(RebrickableKit::SQLiteStatement &statement, int index, const std::optional<QString> &value)
{
    value ? statement.bindText(index, *value) : statement.bindNull(index);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, bool value)
{
    statement.bindInteger(index, value ? 1 : 0);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, qint16 value)
{
    statement.bindInteger(index, value);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, qint32 value)
{
    statement.bindInteger(index, value);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, const std::optional<QDateTime> &value)
{
    // An invalid date carries no point in time: it is stored as absent.
    value && value->isValid() ? statement.bindInteger(index, value->toMSecsSinceEpoch())
                              : statement.bindNull(index);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, const std::optional<Decimal> &value)
{
    value ? statement.bindText(index, value->toString()) : statement.bindNull(index);
}
inline QString uuidText(const QUuid &value)
{
    return value.toString(QUuid::WithoutBraces);
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, const QUuid &value)
{
    value.isNull() ? statement.bindNull(index) : statement.bindText(index, uuidText(value));
}
inline void bind(RebrickableKit::SQLiteStatement &statement, int index, const std::optional<ObjectID> &value)
{
    value && value->isValid() ? statement.bindInteger(index, value->primaryKey) : statement.bindNull(index);
}

inline void read(const RebrickableKit::SQLiteStatement &statement, int column, std::optional<QString> &value)
{
    value = statement.optionalString(column);
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, bool &value)
{
    value = statement.integer(column) != 0;
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, qint16 &value)
{
    value = qint16(statement.integer(column)); // the column's CHECK keeps it in range
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, qint32 &value)
{
    value = qint32(statement.integer(column)); // the column's CHECK keeps it in range
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, std::optional<QDateTime> &value)
{
    if (statement.isNull(column))
        value.reset();
    else
        value = QDateTime::fromMSecsSinceEpoch(statement.integer(column), Qt::UTC);
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, std::optional<Decimal> &value)
{
    // A text that is no decimal (a hand-edited file) reads as absent, never as zero.
    value = statement.isNull(column) ? std::nullopt : Decimal::fromString(statement.string(column));
}
inline void read(const RebrickableKit::SQLiteStatement &statement, int column, QUuid &value)
{
    value = statement.isNull(column) ? QUuid() : QUuid::fromString(statement.string(column));
}

template <typename M>
constexpr AttributeType attributeTypeOf()
{
    if constexpr (std::is_same_v<M, std::optional<QString>>)
        return AttributeType::string;
    else if constexpr (std::is_same_v<M, bool>)
        return AttributeType::boolean;
    else if constexpr (std::is_same_v<M, qint16>)
        return AttributeType::integer16;
    else if constexpr (std::is_same_v<M, qint32>)
        return AttributeType::integer32;
    else if constexpr (std::is_same_v<M, std::optional<QDateTime>>)
        return AttributeType::date;
    else if constexpr (std::is_same_v<M, std::optional<Decimal>>)
        return AttributeType::decimal;
    else if constexpr (std::is_same_v<M, QUuid>)
        return AttributeType::uuid;
    else
        static_assert(sizeof(M) == 0, "no storage format for this attribute type");
}

} // namespace StoreValueCodec

template <typename>
struct MemberPointerTraits;
template <typename C, typename M>
struct MemberPointerTraits<M C::*>
{
    using Class = C;
    using Member = M;
};

// An attribute column named `name` for the member `Member`.
template <auto Member>
FieldMapping<typename MemberPointerTraits<decltype(Member)>::Class> attribute(QStringView name)
{
    using C = typename MemberPointerTraits<decltype(Member)>::Class;
    using M = typename MemberPointerTraits<decltype(Member)>::Member;
    return FieldMapping<C>{
        name,
        StoreValueCodec::attributeTypeOf<M>(),
        EntityType::BrickSet,
        [](const C &object, RebrickableKit::SQLiteStatement &statement, int index) {
            StoreValueCodec::bind(statement, index, object.*Member);
        },
        [](C &object, const RebrickableKit::SQLiteStatement &statement, int column) {
            StoreValueCodec::read(statement, column, object.*Member);
        },
        [](const C &left, const C &right) { return left.*Member == right.*Member; },
        [](C &target, const C &source) { target.*Member = source.*Member; },
    };
}

// A to-one relationship column named `name` for the member `Member`, pointing at `Target`.
template <auto Member, EntityType Target>
FieldMapping<typename MemberPointerTraits<decltype(Member)>::Class> toOne(QStringView name)
{
    using C = typename MemberPointerTraits<decltype(Member)>::Class;
    return FieldMapping<C>{
        name,
        AttributeType::toOne,
        Target,
        [](const C &object, RebrickableKit::SQLiteStatement &statement, int index) {
            StoreValueCodec::bind(statement, index, object.*Member);
        },
        [](C &object, const RebrickableKit::SQLiteStatement &statement, int column) {
            if (statement.isNull(column))
                (object.*Member).reset();
            else
                object.*Member = ObjectID{Target, statement.integer(column)};
        },
        [](const C &left, const C &right) { return left.*Member == right.*Member; },
        [](C &target, const C &source) { target.*Member = source.*Member; },
    };
}
