// SPDX-License-Identifier: GPL-3.0-or-later
#include "RebrickableDatabase.h"

#include "DatabaseError.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

const QString setColumns = u"SELECT set_num, name, year, theme_id, num_parts, img_url FROM sets"_s;
const QString partColumns = u"SELECT part_num, name, part_cat_id, part_material FROM parts"_s;
const QString minifigColumns = u"SELECT fig_num, name, num_parts, img_url FROM minifigs"_s;
const QString colorColumns = u"SELECT id, name, rgb, is_trans FROM colors"_s;
const QString themeColumns = u"SELECT id, name, parent_id FROM themes"_s;
// Only the highest inventory version of a set counts; the set number fills both places.
const QString latestInventoryOfSet = u"WHERE i.set_num = ?\n"
                                     "AND i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = ?)"_s;

RebrickableSet readSet(SQLiteStatement &row)
{
    return RebrickableSet{row.string(0), row.string(1), row.integer(2), row.integer(3), row.integer(4),
                          row.optionalString(5)};
}

Part readPart(SQLiteStatement &row)
{
    return Part{row.string(0), row.string(1), row.integer(2), row.string(3)};
}

Minifig readMinifig(SQLiteStatement &row)
{
    return Minifig{row.string(0), row.string(1), row.integer(2), row.optionalString(3)};
}

Color readColor(SQLiteStatement &row)
{
    return Color{row.integer(0), row.string(1), row.string(2), row.boolean(3)};
}

Theme readTheme(SQLiteStatement &row)
{
    return Theme{row.integer(0), row.string(1), row.optionalInt(2)};
}

auto bindText(const QString &text)
{
    return [text](SQLiteStatement &statement) { statement.bind(text); };
}

auto bindInteger(qint64 value)
{
    return [value](SQLiteStatement &statement) { statement.bind(value); };
}

auto bindTwice(const QString &text)
{
    return [text](SQLiteStatement &statement) {
        statement.bind(text);
        statement.bind(text);
    };
}

auto bindPattern(const QString &name, qint64 limit)
{
    return [name, limit](SQLiteStatement &statement) {
        statement.bind(QString(u"%"_s + name + u"%"_s));
        statement.bind(limit);
    };
}

QString existingBundledDatabasePath()
{
    const QString path = RebrickableDatabase::bundledDatabasePath();
    if (!QFileInfo(path).isFile())
        throw DatabaseError(DatabaseError::Kind::notFound);
    return path;
}

} // namespace

RebrickableDatabase::RebrickableDatabase()
    : RebrickableDatabase(existingBundledDatabasePath())
{
}

RebrickableDatabase::RebrickableDatabase(const QString &path)
    : m_connection(std::make_unique<SQLiteConnection>(path, SQLiteConnection::OpenMode::readOnly))
{
    try {
        m_connection->execute(u"PRAGMA journal_mode=WAL"_s);
    } catch (const SQLiteError &) {
        // A read-only file may refuse to change its journal mode; reading works all the same.
    }
}

QString RebrickableDatabase::bundledDatabasePath()
{
    return QDir(QStringLiteral(REBRICKABLEKIT_SOURCE_DIR)).filePath(u"Resources/rebrickable.sqlite"_s);
}

std::optional<RebrickableSet> RebrickableDatabase::set(const QString &number)
{
    return m_connection->queryOne(setColumns + u" WHERE set_num = ?"_s, bindText(number), readSet);
}

QList<RebrickableSet> RebrickableDatabase::searchSets(const QString &name, qint64 limit)
{
    return m_connection->query(setColumns + u" WHERE name LIKE ? ORDER BY year DESC LIMIT ?"_s,
                               bindPattern(name, limit), readSet);
}

QList<RebrickableSet> RebrickableDatabase::setsOfTheme(qint64 themeID)
{
    return m_connection->query(setColumns + u" WHERE theme_id = ? ORDER BY year DESC"_s, bindInteger(themeID), readSet);
}

QList<RebrickableSet> RebrickableDatabase::setsOfYear(qint64 year)
{
    return m_connection->query(setColumns + u" WHERE year = ? ORDER BY name"_s, bindInteger(year), readSet);
}

std::optional<Part> RebrickableDatabase::part(const QString &number)
{
    return m_connection->queryOne(partColumns + u" WHERE part_num = ?"_s, bindText(number), readPart);
}

QList<Part> RebrickableDatabase::searchParts(const QString &name, qint64 limit)
{
    return m_connection->query(partColumns + u" WHERE name LIKE ? LIMIT ?"_s, bindPattern(name, limit), readPart);
}

QList<Color> RebrickableDatabase::colors()
{
    return m_connection->query(colorColumns + u" ORDER BY name"_s, readColor);
}

std::optional<Color> RebrickableDatabase::color(qint64 id)
{
    return m_connection->queryOne(colorColumns + u" WHERE id = ?"_s, bindInteger(id), readColor);
}

QList<Theme> RebrickableDatabase::themes()
{
    return m_connection->query(themeColumns + u" ORDER BY name"_s, readTheme);
}

std::optional<Theme> RebrickableDatabase::theme(qint64 id)
{
    return m_connection->queryOne(themeColumns + u" WHERE id = ?"_s, bindInteger(id), readTheme);
}

QString RebrickableDatabase::themePath(qint64 id)
{
    QStringList names;
    std::optional<qint64> next = id;
    while (next) {
        const std::optional<Theme> found = theme(*next);
        if (!found)
            break;
        names.prepend(found->name);
        next = found->parentID;
    }
    return names.join(u" > "_s);
}

std::optional<PartCategory> RebrickableDatabase::partCategory(qint64 id)
{
    return m_connection->queryOne(u"SELECT id, name FROM part_categories WHERE id = ?"_s, bindInteger(id),
                                  [](SQLiteStatement &row) { return PartCategory{row.integer(0), row.string(1)}; });
}

std::optional<Minifig> RebrickableDatabase::minifig(const QString &number)
{
    return m_connection->queryOne(minifigColumns + u" WHERE fig_num = ?"_s, bindText(number), readMinifig);
}

QList<Minifig> RebrickableDatabase::searchMinifigs(const QString &name, qint64 limit)
{
    return m_connection->query(minifigColumns + u" WHERE name LIKE ? LIMIT ?"_s, bindPattern(name, limit), readMinifig);
}

std::optional<Inventory> RebrickableDatabase::inventory(const QString &setNumber)
{
    return m_connection->queryOne(
        u"SELECT id, version, set_num FROM inventories WHERE set_num = ? ORDER BY version DESC LIMIT 1"_s,
        bindText(setNumber),
        [](SQLiteStatement &row) { return Inventory{row.integer(0), row.integer(1), row.string(2)}; });
}

QList<PartRelationship> RebrickableDatabase::relationships(const QString &partNumber)
{
    return m_connection->query(
        u"SELECT rel_type, child_part_num, parent_part_num FROM part_relationships "
        "WHERE child_part_num = ? OR parent_part_num = ?"_s,
        bindTwice(partNumber), [](SQLiteStatement &row) {
            // Reading never refuses a row: an unknown letter reads as the loosest relation.
            const auto type = PartRelationship::relationType(row.string(0));
            return PartRelationship{type.value_or(PartRelationship::RelationType::alternate), row.string(1),
                                    row.string(2)};
        });
}

QList<Element> RebrickableDatabase::elements(const QString &partNumber)
{
    return m_connection->query(
        u"SELECT element_id, part_num, color_id, design_id FROM elements WHERE part_num = ?"_s, bindText(partNumber),
        [](SQLiteStatement &row) {
            return Element{row.string(0), row.string(1), row.integer(2), row.optionalString(3)};
        });
}

qint64 RebrickableDatabase::setCount()
{
    return m_connection->queryOne(u"SELECT COUNT(*) FROM sets"_s, [](SQLiteStatement &row) { return row.integer(0); })
        .value_or(0);
}

qint64 RebrickableDatabase::partCount()
{
    return m_connection->queryOne(u"SELECT COUNT(*) FROM parts"_s, [](SQLiteStatement &row) { return row.integer(0); })
        .value_or(0);
}

QList<qint64> RebrickableDatabase::years()
{
    return m_connection->query(u"SELECT DISTINCT year FROM sets ORDER BY year DESC"_s,
                               [](SQLiteStatement &row) { return row.integer(0); });
}

QList<InventoryPart> RebrickableDatabase::inventoryParts(const QString &setNumber)
{
    return m_connection->query(
        u"SELECT ip.inventory_id, ip.part_num, ip.color_id, ip.quantity, ip.is_spare\n"
        "FROM inventory_parts ip\n"
        "JOIN inventories i ON ip.inventory_id = i.id\n"_s
            + latestInventoryOfSet + u"\nORDER BY ip.part_num"_s,
        bindTwice(setNumber), [](SQLiteStatement &row) {
            return InventoryPart{row.integer(0), row.string(1), row.integer(2), row.integer(3), row.boolean(4),
                                 std::nullopt};
        });
}

QList<InventoryMinifig> RebrickableDatabase::inventoryMinifigs(const QString &setNumber)
{
    return m_connection->query(
        u"SELECT im.inventory_id, im.fig_num, im.quantity\n"
        "FROM inventory_minifigs im\n"
        "JOIN inventories i ON im.inventory_id = i.id\n"_s
            + latestInventoryOfSet,
        bindTwice(setNumber),
        [](SQLiteStatement &row) { return InventoryMinifig{row.integer(0), row.string(1), row.integer(2)}; });
}

QList<InventorySet> RebrickableDatabase::inventorySets(const QString &setNumber)
{
    return m_connection->query(
        u"SELECT isub.inventory_id, isub.set_num, isub.quantity\n"
        "FROM inventory_sets isub\n"
        "JOIN inventories i ON isub.inventory_id = i.id\n"_s
            + latestInventoryOfSet,
        bindTwice(setNumber),
        [](SQLiteStatement &row) { return InventorySet{row.integer(0), row.string(1), row.integer(2)}; });
}

} // namespace RebrickableKit
