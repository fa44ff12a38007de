// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogTableDump.h"

#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/CSVParser.h>
#include <RebrickableKit/CSVRowParsers.h>
#include <RebrickableKit/PartRelationship.h>
#include <RebrickableKit/SQLiteConnection.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

QStringList CatalogTableDump::rows(const QString &databasePath, const QString &table)
{
    SQLiteConnection connection(databasePath, SQLiteConnection::OpenMode::readOnly);
    const auto columns = connection.query(u"SELECT name FROM pragma_table_info('"_s + table + u"')"_s,
                                          [](SQLiteStatement &row) { return row.string(0); });
    QStringList quoted;
    for (const QString &column : columns)
        quoted.append(u"quote("_s + column + u")"_s);
    const QString sql = u"SELECT "_s + quoted.join(u" || ',' || "_s) + u" FROM "_s + table + u" ORDER BY rowid"_s;
    return connection.query(sql, [](SQLiteStatement &row) { return row.string(0); });
}

QString CatalogTableDump::value(const QString &databasePath, const QString &sql)
{
    SQLiteConnection connection(databasePath, SQLiteConnection::OpenMode::readOnly);
    return connection.queryOne(sql, [](SQLiteStatement &row) { return row.string(0); }).value_or(QString());
}

namespace {

QString withoutPartImagePrefix(const QString &url)
{
    const QString prefix = QString::fromLatin1(CatalogSchema::partImagePrefix);
    return url.startsWith(prefix) ? url.mid(prefix.size()) : url;
}

template <typename Parse, typename Bind>
void insertAll(SQLiteConnection &connection, const QString &sql, const QList<QStringList> &rows, Parse parse, Bind bind)
{
    connection.execute(u"BEGIN"_s);
    SQLiteStatement statement = connection.prepare(sql);
    for (const QStringList &row : rows) {
        const auto record = parse(row);
        if (!record)
            continue;
        bind(statement, *record);
        statement.step();
        statement.reset();
    }
    statement.finalize();
    connection.execute(u"COMMIT"_s);
}

} // namespace

void CatalogTableDump::buildByRecords(const QString &csvDirectory, const QString &databasePath)
{
    QFile::remove(databasePath);
    SQLiteConnection connection(databasePath, SQLiteConnection::OpenMode::create);
    connection.execute(CatalogSchema::schemaScript());
    const QDir directory(csvDirectory);
    QHash<QString, QString> statements;
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
        statements.insert(table.tableName, table.insertStatement);
    auto read = [&directory](const QString &name) {
        QFile file(directory.filePath(name + u".csv"_s));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("Cannot read %s", qUtf8Printable(name));
        return CSVParser::parse(QString::fromUtf8(file.readAll()));
    };
    using S = SQLiteStatement;
    insertAll(connection, statements[u"themes"_s], read(u"themes"_s), CSVRowParsers::parseTheme, [](S &s, const Theme &r) {
        s.bind(r.id); s.bind(r.name);
        if (r.parentID) s.bind(*r.parentID); else s.bindNull();
    });
    insertAll(connection, statements[u"colors"_s], read(u"colors"_s), CSVRowParsers::parseColor, [](S &s, const Color &r) {
        s.bind(r.id); s.bind(r.name); s.bind(r.rgb); s.bind(r.isTransparent);
    });
    insertAll(connection, statements[u"part_categories"_s], read(u"part_categories"_s), CSVRowParsers::parsePartCategory,
              [](S &s, const PartCategory &r) { s.bind(r.id); s.bind(r.name); });
    insertAll(connection, statements[u"parts"_s], read(u"parts"_s), CSVRowParsers::parsePart, [](S &s, const Part &r) {
        s.bind(r.partNum); s.bind(r.name); s.bind(r.partCatID); s.bind(r.partMaterial);
    });
    insertAll(
        connection, statements[u"part_relationships"_s], read(u"part_relationships"_s),
        [](const QStringList &row) -> std::optional<PartRelationship> {
            if (row.size() < 3)
                return std::nullopt;
            const auto type = PartRelationship::relationType(row[0]);
            if (!type)
                return std::nullopt;
            return PartRelationship{*type, row[1], row[2]};
        },
        [](S &s, const PartRelationship &r) {
            s.bind(PartRelationship::rawValue(r.relType)); s.bind(r.childPartNum); s.bind(r.parentPartNum);
        });
    insertAll(connection, statements[u"elements"_s], read(u"elements"_s), CSVRowParsers::parseElement, [](S &s, const Element &r) {
        s.bind(r.elementID); s.bind(r.partNum); s.bind(r.colorID); s.bind(r.designID);
    });
    insertAll(connection, statements[u"minifigs"_s], read(u"minifigs"_s), CSVRowParsers::parseMinifig, [](S &s, const Minifig &r) {
        s.bind(r.figNum); s.bind(r.name); s.bind(r.numParts); s.bind(r.imgURL);
    });
    insertAll(connection, statements[u"sets"_s], read(u"sets"_s), CSVRowParsers::parseSet, [](S &s, const RebrickableSet &r) {
        s.bind(r.setNum); s.bind(r.name); s.bind(r.year); s.bind(r.themeID); s.bind(r.numParts); s.bind(r.imgURL);
    });
    insertAll(connection, statements[u"inventories"_s], read(u"inventories"_s), CSVRowParsers::parseInventory,
              [](S &s, const Inventory &r) { s.bind(r.id); s.bind(r.version); s.bind(r.setNum); });
    insertAll(connection, statements[u"inventory_parts"_s], read(u"inventory_parts"_s), CSVRowParsers::parseInventoryPart,
              [](S &s, const InventoryPart &r) {
                  s.bind(r.inventoryID); s.bind(r.partNum); s.bind(r.colorID); s.bind(r.quantity); s.bind(r.isSpare);
                  if (r.imgURL) s.bind(withoutPartImagePrefix(*r.imgURL)); else s.bindNull();
              });
    insertAll(connection, statements[u"inventory_sets"_s], read(u"inventory_sets"_s), CSVRowParsers::parseInventorySet,
              [](S &s, const InventorySet &r) { s.bind(r.inventoryID); s.bind(r.setNum); s.bind(r.quantity); });
    insertAll(connection, statements[u"inventory_minifigs"_s], read(u"inventory_minifigs"_s),
              CSVRowParsers::parseInventoryMinifig,
              [](S &s, const InventoryMinifig &r) { s.bind(r.inventoryID); s.bind(r.figNum); s.bind(r.quantity); });
}
