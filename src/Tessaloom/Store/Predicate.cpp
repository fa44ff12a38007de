// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/Predicate.h"

#include "Store/StoreError.h"
#include "Store/TextFolding.h"

using namespace Qt::StringLiterals;

struct Predicate::Node
{
    enum class Kind { constant, objectIn, compare, containsFolded, count, any, allOf, anyOf, negation };
    Kind kind = Kind::constant;
    bool constantValue = true;
    QString keyPath;
    QString attribute; // of the related entity, for any()
    Comparison comparison = Comparison::equal;
    QVariant value;
    QList<Predicate> children;
    QList<ObjectID> objects;
};

namespace {

QString operatorText(Predicate::Comparison comparison)
{
    switch (comparison) {
    case Predicate::Comparison::equal:
        return u"IS"_s; // NULL-safe: "x == nil" holds for nil, "x == v" never for nil
    case Predicate::Comparison::notEqual:
        return u"IS NOT"_s;
    case Predicate::Comparison::less:
        return u"<"_s;
    case Predicate::Comparison::lessOrEqual:
        return u"<="_s;
    case Predicate::Comparison::greater:
        return u">"_s;
    case Predicate::Comparison::greaterOrEqual:
        return u">="_s;
    }
    return u"IS"_s;
}

QString comparisonSql(const QString &expression, Predicate::Comparison comparison, const SqlValue &value,
                      QList<SqlValue> &bindings)
{
    const bool ordered = comparison != Predicate::Comparison::equal && comparison != Predicate::Comparison::notEqual;
    if (ordered && std::holds_alternative<std::monostate>(value))
        return u"0"_s;
    bindings.append(value);
    return u'(' + expression + u' ' + operatorText(comparison) + u" ?)"_s;
}

} // namespace

Predicate::Predicate()
    : Predicate(alwaysTrue())
{
}

Predicate::Predicate(std::shared_ptr<const Node> node)
    : m_node(std::move(node))
{
}

Predicate Predicate::alwaysTrue()
{
    static const auto node = std::make_shared<const Node>();
    return Predicate(node);
}

Predicate Predicate::alwaysFalse()
{
    auto node = std::make_shared<Node>();
    node->constantValue = false;
    return Predicate(std::move(node));
}

Predicate Predicate::compare(const QString &keyPath, Comparison comparison, const QVariant &value)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::compare;
    node->keyPath = keyPath;
    node->comparison = comparison;
    node->value = value;
    return Predicate(std::move(node));
}

Predicate Predicate::equal(const QString &keyPath, const QVariant &value)
{
    return compare(keyPath, Comparison::equal, value);
}

Predicate Predicate::notEqual(const QString &keyPath, const QVariant &value)
{
    return compare(keyPath, Comparison::notEqual, value);
}

Predicate Predicate::isNil(const QString &keyPath)
{
    return compare(keyPath, Comparison::equal, QVariant());
}

Predicate Predicate::isNotNil(const QString &keyPath)
{
    return compare(keyPath, Comparison::notEqual, QVariant());
}

Predicate Predicate::containsFolded(const QString &keyPath, const QString &needle)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::containsFolded;
    node->keyPath = keyPath;
    node->value = needle;
    return Predicate(std::move(node));
}

Predicate Predicate::count(const QString &toManyKeyPath, Comparison comparison, qint64 value)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::count;
    node->keyPath = toManyKeyPath;
    node->comparison = comparison;
    node->value = value;
    return Predicate(std::move(node));
}

Predicate Predicate::any(const QString &toManyKeyPath, const QString &attribute, Comparison comparison,
                         const QVariant &value)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::any;
    node->keyPath = toManyKeyPath;
    node->attribute = attribute;
    node->comparison = comparison;
    node->value = value;
    return Predicate(std::move(node));
}

Predicate Predicate::objectIn(const QList<ObjectID> &objects)
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::objectIn;
    node->objects = objects;
    return Predicate(std::move(node));
}

Predicate Predicate::allOf(const QList<Predicate> &predicates)
{
    if (predicates.size() == 1)
        return predicates.first();
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::allOf;
    node->children = predicates;
    return Predicate(std::move(node));
}

Predicate Predicate::anyOf(const QList<Predicate> &predicates)
{
    if (predicates.size() == 1)
        return predicates.first();
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::anyOf;
    node->children = predicates;
    return Predicate(std::move(node));
}

Predicate Predicate::operator&&(const Predicate &other) const
{
    return allOf({*this, other});
}

Predicate Predicate::operator||(const Predicate &other) const
{
    return anyOf({*this, other});
}

Predicate Predicate::operator!() const
{
    auto node = std::make_shared<Node>();
    node->kind = Node::Kind::negation;
    node->children = {*this};
    return Predicate(std::move(node));
}

QString Predicate::toSql(QueryCompiler &compiler, QList<SqlValue> &bindings) const
{
    const Node &node = *m_node;
    switch (node.kind) {
    case Node::Kind::constant:
        return node.constantValue ? u"1"_s : u"0"_s;
    case Node::Kind::objectIn: {
        QStringList keys;
        for (const ObjectID &id : node.objects) {
            if (id.entity == compiler.root())
                keys.append(QString::number(id.primaryKey));
        }
        if (keys.isEmpty())
            return u"0"_s;
        return u'(' + compiler.rootKeyExpression() + u" IN ("_s + keys.join(u',') + u"))"_s;
    }
    case Node::Kind::compare: {
        const auto scalar = compiler.scalar(node.keyPath);
        return comparisonSql(scalar.expression, node.comparison,
                             QueryCompiler::storageValue(node.value, scalar.attribute.type), bindings);
    }
    case Node::Kind::containsFolded: {
        const auto scalar = compiler.scalar(node.keyPath);
        const QString needle = TextFolding::fold(node.value.toString());
        if (needle.isEmpty())
            return u"0"_s;
        bindings.append(needle);
        // instr() is NULL for a NULL haystack, and NULL is not true: nil never contains.
        return u"(instr(tessaloom_fold("_s + scalar.expression + u"), ?) > 0)"_s;
    }
    case Node::Kind::count: {
        const auto toMany = compiler.toMany(node.keyPath);
        const QString alias = compiler.newAlias();
        const QString counted = u"(SELECT COUNT(*) FROM "_s + entityName(toMany.relationship.target) + u' '
            + alias + u" WHERE "_s + alias + u'.' + toMany.relationship.inverseColumn + u" = "_s
            + toMany.ownerKeyExpression + u')';
        return comparisonSql(counted, node.comparison, node.value.toLongLong(), bindings);
    }
    case Node::Kind::any: {
        const auto toMany = compiler.toMany(node.keyPath);
        const auto attribute = StoreSchema::entity(toMany.relationship.target).attribute(node.attribute);
        if (!attribute)
            throw StoreError(StoreError::Kind::queryFailed, u"Unknown key path \"%1.%2\"."_s.arg(node.keyPath, node.attribute));
        const QString alias = compiler.newAlias();
        const QString condition = comparisonSql(alias + u'.' + attribute->name, node.comparison,
                                                QueryCompiler::storageValue(node.value, attribute->type), bindings);
        return u"EXISTS (SELECT 1 FROM "_s + entityName(toMany.relationship.target) + u' ' + alias + u" WHERE "_s
            + alias + u'.' + toMany.relationship.inverseColumn + u" = "_s + toMany.ownerKeyExpression + u" AND "_s
            + condition + u')';
    }
    case Node::Kind::allOf:
    case Node::Kind::anyOf: {
        if (node.children.isEmpty())
            return node.kind == Node::Kind::allOf ? u"1"_s : u"0"_s;
        QStringList parts;
        for (const Predicate &child : node.children)
            parts.append(child.toSql(compiler, bindings));
        return u'(' + parts.join(node.kind == Node::Kind::allOf ? u" AND "_s : u" OR "_s) + u')';
    }
    case Node::Kind::negation:
        // NOT of an unknown (NULL) stays unknown in SQL; coalesce so "NOT p" holds
        // wherever p does not, as it does for the store's predicates.
        return u"(NOT coalesce("_s + node.children.first().toSql(compiler, bindings) + u", 0))"_s;
    }
    return u"1"_s;
}
