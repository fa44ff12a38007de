// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogSchema.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

static_assert(sizeof(CatalogSchema::partImagePrefix) - 1 == 40);

QString CatalogSchema::ImportTable::fileName() const
{
    return tableName + u".csv"_s;
}

const QList<CatalogSchema::ImportTable> &CatalogSchema::importTables()
{
    using enum Column;
    // The order matters only for progress; no table reads another while importing.
    static const QList<ImportTable> tables = {
        {u"themes"_s, 700, u"INSERT INTO themes (id, name, parent_id) VALUES (?, ?, ?)"_s, 3,
         {requiredInteger, text, forgivingInteger}, {u"id"_s, u"name"_s, u"parent_id"_s}},
        {u"colors"_s, 200, u"INSERT INTO colors (id, name, rgb, is_trans) VALUES (?, ?, ?, ?)"_s, 4,
         {requiredInteger, text, text, boolean}, {u"id"_s, u"name"_s, u"rgb"_s, u"is_trans"_s}},
        {u"part_categories"_s, 100, u"INSERT INTO part_categories (id, name) VALUES (?, ?)"_s, 2,
         {requiredInteger, text}, {u"id"_s, u"name"_s}},
        {u"parts"_s, 50000, u"INSERT INTO parts (part_num, name, part_cat_id, part_material) VALUES (?, ?, ?, ?)"_s, 4,
         {text, text, requiredInteger, text}, {u"part_num"_s, u"name"_s, u"part_cat_id"_s, u"part_material"_s}},
        {u"part_relationships"_s, 30000,
         u"INSERT INTO part_relationships (rel_type, child_part_num, parent_part_num) VALUES (?, ?, ?)"_s, 3,
         {relationType, text, text}, {u"rel_type"_s, u"child_part_num"_s, u"parent_part_num"_s}},
        {u"elements"_s, 120000,
         u"INSERT OR IGNORE INTO elements (element_id, part_num, color_id, design_id) VALUES (?, ?, ?, ?)"_s, 3,
         {text, text, requiredInteger, optionalText}, {u"element_id"_s, u"part_num"_s, u"color_id"_s, u"design_id"_s}},
        {u"minifigs"_s, 15000, u"INSERT INTO minifigs (fig_num, name, num_parts, img_url) VALUES (?, ?, ?, ?)"_s, 4,
         {text, text, requiredInteger, optionalText}, {u"fig_num"_s, u"name"_s, u"num_parts"_s, u"img_url"_s}},
        {u"sets"_s, 22000,
         u"INSERT INTO sets (set_num, name, year, theme_id, num_parts, img_url) VALUES (?, ?, ?, ?, ?, ?)"_s, 6,
         {text, text, requiredInteger, requiredInteger, requiredInteger, optionalText},
         {u"set_num"_s, u"name"_s, u"year"_s, u"theme_id"_s, u"num_parts"_s, u"img_url"_s}},
        {u"inventories"_s, 45000, u"INSERT INTO inventories (id, version, set_num) VALUES (?, ?, ?)"_s, 3,
         {requiredInteger, requiredInteger, text}, {u"id"_s, u"version"_s, u"set_num"_s}},
        {u"inventory_parts"_s, 800000,
         u"INSERT INTO inventory_parts (inventory_id, part_num, color_id, quantity, is_spare, img_url) VALUES (?, ?, ?, ?, ?, ?)"_s,
         6, {requiredInteger, text, requiredInteger, requiredInteger, boolean, partImageURL},
         {u"inventory_id"_s, u"part_num"_s, u"color_id"_s, u"quantity"_s, u"is_spare"_s, u"img_url"_s}},
        {u"inventory_sets"_s, 5000, u"INSERT INTO inventory_sets (inventory_id, set_num, quantity) VALUES (?, ?, ?)"_s, 3,
         {requiredInteger, text, requiredInteger}, {u"inventory_id"_s, u"set_num"_s, u"quantity"_s}},
        {u"inventory_minifigs"_s, 40000,
         u"INSERT INTO inventory_minifigs (inventory_id, fig_num, quantity) VALUES (?, ?, ?)"_s, 3,
         {requiredInteger, text, requiredInteger}, {u"inventory_id"_s, u"fig_num"_s, u"quantity"_s}},
    };
    return tables;
}

double CatalogSchema::totalExpectedRows()
{
    double total = 0;
    for (const ImportTable &table : importTables())
        total += table.expectedRows;
    return total;
}

QString CatalogSchema::schemaScript()
{
    // No foreign keys: references between tables are by convention and may dangle.
    return u"CREATE TABLE themes (id INTEGER PRIMARY KEY, name TEXT NOT NULL, parent_id INTEGER);\n"
           "CREATE TABLE colors (id INTEGER PRIMARY KEY, name TEXT NOT NULL, rgb TEXT NOT NULL, is_trans INTEGER NOT NULL DEFAULT 0);\n"
           "CREATE TABLE part_categories (id INTEGER PRIMARY KEY, name TEXT NOT NULL);\n"
           "CREATE TABLE parts (part_num TEXT PRIMARY KEY, name TEXT NOT NULL, part_cat_id INTEGER NOT NULL, part_material TEXT NOT NULL);\n"
           "CREATE TABLE part_relationships (rel_type TEXT NOT NULL, child_part_num TEXT NOT NULL, parent_part_num TEXT NOT NULL);\n"
           "CREATE TABLE elements (element_id TEXT PRIMARY KEY, part_num TEXT NOT NULL, color_id INTEGER NOT NULL, design_id TEXT);\n"
           "CREATE TABLE minifigs (fig_num TEXT PRIMARY KEY, name TEXT NOT NULL, num_parts INTEGER NOT NULL, img_url TEXT);\n"
           "CREATE TABLE sets (set_num TEXT PRIMARY KEY, name TEXT NOT NULL, year INTEGER NOT NULL, theme_id INTEGER NOT NULL, num_parts INTEGER NOT NULL, img_url TEXT);\n"
           "CREATE TABLE inventories (id INTEGER PRIMARY KEY, version INTEGER NOT NULL, set_num TEXT NOT NULL);\n"
           "CREATE TABLE inventory_parts (inventory_id INTEGER NOT NULL, part_num TEXT NOT NULL, color_id INTEGER NOT NULL, quantity INTEGER NOT NULL, is_spare INTEGER NOT NULL DEFAULT 0, img_url TEXT);\n"
           "CREATE TABLE inventory_sets (inventory_id INTEGER NOT NULL, set_num TEXT NOT NULL, quantity INTEGER NOT NULL);\n"
           "CREATE TABLE inventory_minifigs (inventory_id INTEGER NOT NULL, fig_num TEXT NOT NULL, quantity INTEGER NOT NULL);\n"_s;
}

QString CatalogSchema::indexScript()
{
    return u"CREATE INDEX idx_sets_theme ON sets(theme_id);\n"
           "CREATE INDEX idx_sets_year ON sets(year);\n"
           "CREATE INDEX idx_sets_name ON sets(name);\n"
           "CREATE INDEX idx_sets_year_name ON sets(year DESC, name ASC);\n"
           "CREATE INDEX idx_sets_num_parts ON sets(num_parts);\n"
           "CREATE INDEX idx_parts_cat ON parts(part_cat_id);\n"
           "CREATE INDEX idx_parts_name ON parts(name);\n"
           "CREATE INDEX idx_inventories_set ON inventories(set_num);\n"
           "CREATE INDEX idx_inventory_parts_inv ON inventory_parts(inventory_id);\n"
           "CREATE INDEX idx_inventory_parts_part ON inventory_parts(part_num);\n"
           "CREATE INDEX idx_inventory_sets_inv ON inventory_sets(inventory_id);\n"
           "CREATE INDEX idx_inventory_minifigs_inv ON inventory_minifigs(inventory_id);\n"
           "CREATE INDEX idx_elements_part ON elements(part_num);\n"
           "CREATE INDEX idx_part_rel_child ON part_relationships(child_part_num);\n"
           "CREATE INDEX idx_part_rel_parent ON part_relationships(parent_part_num);\n"
           "CREATE INDEX idx_minifigs_name ON minifigs(name);\n"_s;
}

QString CatalogSchema::fullTextScript()
{
    // External content and no triggers: only the builder ever writes the database, so the
    // index never has to follow a change.
    return u"CREATE VIRTUAL TABLE sets_fts USING fts5(set_num, name, content='sets', content_rowid='rowid', "
           "tokenize='unicode61 remove_diacritics 2');\n"
           "INSERT INTO sets_fts(rowid, set_num, name) SELECT rowid, set_num, name FROM sets;\n"_s;
}

} // namespace RebrickableKit
