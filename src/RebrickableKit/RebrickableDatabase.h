// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Color.h"
#include "Element.h"
#include "Inventory.h"
#include "InventoryMinifig.h"
#include "InventoryPart.h"
#include "InventorySet.h"
#include "Minifig.h"
#include "Part.h"
#include "PartCategory.h"
#include "PartRelationship.h"
#include "RebrickableSet.h"
#include "SQLiteConnection.h"
#include "Theme.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace RebrickableKit {

// Read access to a built catalog database, returning the library's own records. Unlike
// the application's catalog reader it throws its errors, has no full-text search and no
// lock: one thread at a time uses an object.
class RebrickableDatabase
{
public:
    // The catalog inside the library's own source tree, where the command-line tools put
    // it. Throws DatabaseError::notFound when it isn't there.
    RebrickableDatabase();
    // Opens read-only; throws SQLiteError::openFailed.
    explicit RebrickableDatabase(const QString &path);

    static QString bundledDatabasePath();

    std::optional<RebrickableSet> set(const QString &number);
    // "%" and "_" in the name act as wildcards: they are not escaped.
    QList<RebrickableSet> searchSets(const QString &name, qint64 limit);
    QList<RebrickableSet> setsOfTheme(qint64 themeID);
    QList<RebrickableSet> setsOfYear(qint64 year);
    std::optional<Part> part(const QString &number);
    QList<Part> searchParts(const QString &name, qint64 limit);
    QList<Color> colors();
    std::optional<Color> color(qint64 id);
    QList<Theme> themes();
    std::optional<Theme> theme(qint64 id);
    // Names from the outermost theme down, joined with " > "; empty for an unknown id.
    QString themePath(qint64 id);
    std::optional<PartCategory> partCategory(qint64 id);
    std::optional<Minifig> minifig(const QString &number);
    QList<Minifig> searchMinifigs(const QString &name, qint64 limit);
    // The highest version of the set's inventories.
    std::optional<Inventory> inventory(const QString &setNumber);
    QList<PartRelationship> relationships(const QString &partNumber);
    QList<Element> elements(const QString &partNumber);
    qint64 setCount();
    qint64 partCount();
    QList<qint64> years();

    // Contents of the highest inventory version of a set. Part lines carry no image.
    QList<InventoryPart> inventoryParts(const QString &setNumber);
    QList<InventoryMinifig> inventoryMinifigs(const QString &setNumber);
    QList<InventorySet> inventorySets(const QString &setNumber);

private:
    std::unique_ptr<SQLiteConnection> m_connection;
};

} // namespace RebrickableKit
