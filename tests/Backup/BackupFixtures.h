// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the backup tests share: a collection with copies, wishlist items and checklist
// entries in a real store file, and the store's rows as text to compare before and after.

#include "../Store/StoreFixtures.h"

#include "Store/FetchRequest.h"

#include <QStringList>

#include <sqlite3.h>

namespace BackupFixtures {

using namespace Qt::StringLiterals;

// `copies` copies of one set, each with a checklist entry, and `wishes` wishlist items,
// saved through the view context. Notes carry `label` so collections tell apart.
inline void fillCollection(ManagedObjectContext &context, int copies, int wishes, const QString &label)
{
    const CatalogSet set = context.insert(StoreFixtures::catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s, 2022));
    CatalogSetPart line;
    line.quantity = 4;
    line.catalogSet = set.objectID;
    line = context.insert(line);
    for (int index = 0; index < copies; ++index) {
        BrickSet copy = StoreFixtures::newCopy(set.objectID);
        copy.notes = u"%1 copy %2"_s.arg(label).arg(index);
        copy = context.insert(copy);
        PartInventoryEntry entry;
        entry.quantityOwned = index % 5;
        entry.notes = u"%1 entry %2"_s.arg(label).arg(index);
        entry.brickSet = copy.objectID;
        entry.catalogSetPart = line.objectID;
        context.insert(entry);
    }
    for (int index = 0; index < wishes; ++index) {
        WishlistItem wish;
        wish.setNumber = u"%1-1"_s.arg(60000 + index);
        wish.setName = u"%1 wish %2"_s.arg(label).arg(index);
        wish.dateAdded = QDateTime::currentDateTimeUtc();
        context.insert(wish);
    }
    context.save();
}

// Every row of the copies, wishlist and checklist tables (and the catalog rows they point
// at) as text, in key order, read through a connection of its own.
inline QStringList storeRows(const QString &path)
{
    QStringList rows;
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(database);
        return {u"(unreadable)"_s};
    }
    for (EntityType entity : allEntityTypes) {
        const QByteArray sql = "SELECT * FROM " + entityName(entity).toUtf8() + " ORDER BY pk";
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(database, sql.constData(), -1, &statement, nullptr) != SQLITE_OK) {
            rows.append(u"(no table %1)"_s.arg(entityName(entity)));
            continue;
        }
        while (sqlite3_step(statement) == SQLITE_ROW) {
            QStringList values{entityName(entity)};
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
                values.append(text ? QString::fromUtf8(text) : u"NULL"_s);
            }
            rows.append(values.join(u'|'));
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return rows;
}

inline qint64 rowCount(const QString &path, const QString &table)
{
    sqlite3 *database = nullptr;
    qint64 count = -1;
    if (sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        const QByteArray sql = "SELECT count(*) FROM " + table.toUtf8();
        if (sqlite3_prepare_v2(database, sql.constData(), -1, &statement, nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW)
            count = sqlite3_column_int64(statement, 0);
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return count;
}

inline QString pragmaText(const QString &path, const char *pragma)
{
    sqlite3 *database = nullptr;
    QString value;
    if (sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(database, pragma, -1, &statement, nullptr) == SQLITE_OK
            && sqlite3_step(statement) == SQLITE_ROW)
            value = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return value;
}

// Whether files in `folder` can be created by this process: as root, a folder without
// write permission still takes new files.
inline bool permissionsAreEnforced(const QString &folder)
{
    QFile probe(folder + u"/probe"_s);
    const bool written = probe.open(QIODevice::WriteOnly);
    if (written)
        probe.remove();
    return !written;
}

} // namespace BackupFixtures
