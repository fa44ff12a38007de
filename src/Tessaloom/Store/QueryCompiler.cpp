// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/QueryCompiler.h"

#include "Decimal.h"
#include "Store/FieldMapping.h"
#include "Store/ObjectID.h"
#include "Store/StoreError.h"

#include <QDateTime>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {
[[noreturn]] void unknownKeyPath(EntityType root, QStringView keyPath)
{
    throw StoreError(StoreError::Kind::queryFailed,
                     u"Unknown key path \"%1\" on %2."_s.arg(keyPath.toString(), entityName(root)));
}
} // namespace

QueryCompiler::QueryCompiler(EntityType root, QString rootAlias)
    : m_root(root)
    , m_rootAlias(std::move(rootAlias))
{
    m_entities.insert(root);
}

QString QueryCompiler::newAlias()
{
    return u"r"_s + QString::number(++m_aliasCounter);
}

QString QueryCompiler::column(const Row &row, const QString &name)
{
    if (!row.alias.isEmpty())
        return row.alias + u'.' + name;
    const QString alias = newAlias();
    return u"(SELECT "_s + alias + u'.' + name + u" FROM "_s + entityName(row.entity) + u' ' + alias
        + u" WHERE "_s + alias + u".pk = "_s + row.keyExpression + u')';
}

QueryCompiler::Row QueryCompiler::walk(const QStringList &segments, qsizetype count)
{
    Row row{m_root, m_rootAlias, m_rootAlias + u".pk"_s};
    for (qsizetype index = 0; index < count; ++index) {
        const auto attribute = StoreSchema::entity(row.entity).attribute(segments[index]);
        if (!attribute || attribute->type != AttributeType::toOne)
            unknownKeyPath(m_root, segments.join(u'.'));
        row = Row{attribute->target, QString(), column(row, attribute->name)};
        m_entities.insert(row.entity);
    }
    return row;
}

QueryCompiler::Scalar QueryCompiler::scalar(QStringView keyPath)
{
    const QStringList segments = keyPath.toString().split(u'.');
    const Row owner = walk(segments, segments.size() - 1);
    const auto attribute = StoreSchema::entity(owner.entity).attribute(segments.last());
    if (!attribute)
        unknownKeyPath(m_root, keyPath);
    return Scalar{column(owner, attribute->name), *attribute};
}

QueryCompiler::ToMany QueryCompiler::toMany(QStringView keyPath)
{
    const QStringList segments = keyPath.toString().split(u'.');
    const Row owner = walk(segments, segments.size() - 1);
    const auto relationship = StoreSchema::entity(owner.entity).toManyRelationship(segments.last());
    if (!relationship)
        unknownKeyPath(m_root, keyPath);
    m_entities.insert(relationship->target);
    return ToMany{owner.alias.isEmpty() ? owner.keyExpression : owner.alias + u".pk"_s, *relationship};
}

SqlValue QueryCompiler::storageValue(const QVariant &value, AttributeType type)
{
    if (!value.isValid() || value.isNull())
        return std::monostate{};
    switch (type) {
    case AttributeType::string:
        return value.toString();
    case AttributeType::boolean:
        return qint64(value.toBool() ? 1 : 0);
    case AttributeType::integer16:
    case AttributeType::integer32:
        return value.toLongLong();
    case AttributeType::date:
        return value.toDateTime().toMSecsSinceEpoch();
    case AttributeType::decimal:
        if (value.metaType() == QMetaType::fromType<Decimal>())
            return value.value<Decimal>().toString();
        return value.toString();
    case AttributeType::uuid:
        return StoreValueCodec::uuidText(value.toUuid());
    case AttributeType::toOne:
        if (value.metaType() == QMetaType::fromType<ObjectID>())
            return value.value<ObjectID>().primaryKey;
        return value.toLongLong();
    }
    return std::monostate{};
}
