// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "Store/QueryCompiler.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>

// A condition on the objects of one entity, built from typed parts and compiled to SQL
// against the store's schema. The parts mean what the store's query language means:
//
// - equal / notEqual with a null QVariant test for nil; notEqual with a value holds for
//   nil too ("nil != x" is true), unlike SQL's "<>";
// - ordered comparisons never hold for nil;
// - a key path through an absent to-one relationship reads as nil;
// - count() counts a to-many relationship, 0 when the relationship is absent;
// - any() holds when at least one related object satisfies the comparison;
// - containsFolded() is "CONTAINS[cd]": case and diacritic insensitive containment, never
//   true for an empty needle or a nil attribute.
//
// Values are given as QVariant: QString, bool, integers, QDateTime, Decimal, QUuid or
// ObjectID (for a relationship), each stored the way the attribute is stored.
class Predicate
{
public:
    enum class Comparison { equal, notEqual, less, lessOrEqual, greater, greaterOrEqual };

    Predicate(); // always true

    static Predicate alwaysTrue();
    static Predicate alwaysFalse();
    static Predicate compare(const QString &keyPath, Comparison comparison, const QVariant &value);
    static Predicate equal(const QString &keyPath, const QVariant &value);
    static Predicate notEqual(const QString &keyPath, const QVariant &value);
    static Predicate isNil(const QString &keyPath);
    static Predicate isNotNil(const QString &keyPath);
    static Predicate containsFolded(const QString &keyPath, const QString &needle);
    static Predicate count(const QString &toManyKeyPath, Comparison comparison, qint64 value);
    static Predicate any(const QString &toManyKeyPath, const QString &attribute, Comparison comparison,
                         const QVariant &value);

    // The objects whose ObjectID is one of `objects`.
    static Predicate objectIn(const QList<ObjectID> &objects);

    static Predicate allOf(const QList<Predicate> &predicates);
    static Predicate anyOf(const QList<Predicate> &predicates);
    Predicate operator&&(const Predicate &other) const;
    Predicate operator||(const Predicate &other) const;
    Predicate operator!() const;

    // The condition as an SQL expression over the root row `compiler` was made for; its
    // parameters are appended to `bindings` in order.
    QString toSql(QueryCompiler &compiler, QList<SqlValue> &bindings) const;

    struct Node;

private:
    explicit Predicate(std::shared_ptr<const Node> node);
    std::shared_ptr<const Node> m_node;
};
