// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ChangeWriter.h"

#include "Store/StoreSchema.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

template <typename T>
QString insertSql(bool upsert, const QString &table)
{
    const auto &fields = EntityTraits<T>::fields();
    QString columns = u"pk"_s;
    QString values = u"?"_s;
    QString updates;
    for (const auto &field : fields) {
        columns += u", "_s + field.name;
        values += u", ?"_s;
        updates += (updates.isEmpty() ? u""_s : u", "_s) + field.name + u" = excluded."_s + field.name;
    }
    QString sql = u"INSERT INTO "_s + table + u" ("_s + columns + u") VALUES ("_s + values + u')';
    if (upsert)
        sql += u" ON CONFLICT(pk) DO UPDATE SET "_s + updates;
    return sql;
}

template <typename T>
QString updateSql(quint64 changedFields, const QString &table)
{
    const auto &fields = EntityTraits<T>::fields();
    QStringList assignments;
    for (qsizetype index = 0; index < fields.size(); ++index) {
        if (changedFields & (quint64(1) << index))
            assignments.append(fields[index].name + u" = ?"_s);
    }
    return u"UPDATE "_s + table + u" SET "_s + assignments.join(u", "_s) + u" WHERE pk = ?"_s;
}

} // namespace

void ChangeWriter::write(StoreConnection &connection, const ObjectID &id, Kind kind, const AnyEntity &value,
                         quint64 changedFields, bool upsert, StoreChanges *changes, const QString &table)
{
    const QString target = table.isEmpty() ? entityName(id.entity) : table;
    std::visit(
        [&](const auto &object) {
            using T = std::decay_t<decltype(object)>;
            const auto &fields = EntityTraits<T>::fields();
            switch (kind) {
            case Kind::inserted: {
                auto statement = connection.prepare(insertSql<T>(upsert, target));
                statement.bindInteger(1, id.primaryKey);
                for (qsizetype index = 0; index < fields.size(); ++index)
                    fields[index].bind(object, statement, int(index) + 2);
                statement.run();
                if (changes)
                    changes->inserted.insert(id);
                break;
            }
            case Kind::updated: {
                auto statement = connection.prepare(updateSql<T>(changedFields, target));
                int parameter = 1;
                for (qsizetype index = 0; index < fields.size(); ++index) {
                    if (changedFields & (quint64(1) << index))
                        fields[index].bind(object, statement, parameter++);
                }
                statement.bindInteger(parameter, id.primaryKey);
                statement.run();
                // An object deleted by another context meanwhile stays deleted.
                if (changes && sqlite3_changes(connection.handle()) > 0)
                    changes->updated.insert(id);
                break;
            }
            case Kind::deleted: {
                if (changes) {
                    for (const auto &reference : StoreSchema::entity(id.entity).referencedBy) {
                        auto statement = connection.prepare(u"SELECT pk FROM "_s + entityName(reference.source)
                                                               + u" WHERE "_s + reference.column + u" = ?"_s);
                        statement.bindInteger(1, id.primaryKey);
                        while (statement.step()) {
                            const ObjectID affected{reference.source, statement.integer(0)};
                            (reference.cascades ? changes->deleted : changes->updated).insert(affected);
                        }
                    }
                }
                auto statement = connection.prepare(u"DELETE FROM "_s + entityName(id.entity) + u" WHERE pk = ?"_s);
                statement.bindInteger(1, id.primaryKey);
                statement.run();
                if (changes && sqlite3_changes(connection.handle()) > 0)
                    changes->deleted.insert(id);
                break;
            }
            }
        },
        value);
}

