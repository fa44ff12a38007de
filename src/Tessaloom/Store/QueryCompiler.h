// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/StoreSchema.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QVariant>

#include <variant>

// A value bound to a query: NULL, an integer or a text.
using SqlValue = std::variant<std::monostate, qint64, QString>;

// Turns key paths ("isTrashed", "catalogSet.dateLastAvailable",
// "catalogSet.cachedPriceGuides") into SQL expressions over one root entity, checking
// every step against StoreSchema. A to-one step becomes a primary-key lookup, so a
// missing relationship yields NULL, the way a nil relationship reads as nil. It also
// records which entities a query reads, so live lists know which changes concern them.
class QueryCompiler
{
public:
    QueryCompiler(EntityType root, QString rootAlias);

    struct Scalar
    {
        QString expression;
        StoreSchema::Attribute attribute;
    };
    struct ToMany
    {
        QString ownerKeyExpression; // the primary key of the row that owns the relationship
        StoreSchema::ToMany relationship;
    };

    // An attribute or to-one relationship at the end of `keyPath`. Throws StoreError
    // for a key path the schema does not know: that is a programming error.
    Scalar scalar(QStringView keyPath);
    // A to-many relationship at the end of `keyPath`.
    ToMany toMany(QStringView keyPath);

    // A fresh table alias for a subquery.
    QString newAlias();

    // `value` in the storage format of `type`: dates as UTC milliseconds, booleans 0/1,
    // decimals as text, UUIDs as text, related objects (ObjectID) as their primary key.
    static SqlValue storageValue(const QVariant &value, AttributeType type);

    void noteEntity(EntityType entity) { m_entities.insert(entity); }
    QSet<EntityType> entitiesRead() const { return m_entities; }
    EntityType root() const { return m_root; }
    QString rootKeyExpression() const { return m_rootAlias + QStringLiteral(".pk"); }

private:
    struct Row
    {
        EntityType entity;
        QString alias;         // set when the row's columns can be named directly
        QString keyExpression; // its primary key otherwise
    };
    QString column(const Row &row, const QString &name);
    Row walk(const QStringList &segments, qsizetype count);

    EntityType m_root;
    QString m_rootAlias;
    int m_aliasCounter = 0;
    QSet<EntityType> m_entities;
};
