// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreSchema.h"

#include "Logging.h"
#include "RebrickableKit/SQLiteConnection.h"
#include "Store/EntityTraits.h"
#include "Store/StoreError.h"

#include <sqlite3.h>

#include <array>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;
using RebrickableKit::SQLiteStatement;

namespace {

// Migration 1: the nine entities. Booleans default to false and integers to 0, so a new
// BrickSet is valid with only id, dateAdded, catalogSet and acquisitionType. The only
// cascade is BrickSet -> PartInventoryEntry; every other reference is set to NULL when its
// target goes, so deleting a copy never takes catalog facts or cached prices with it.
const char *const migration1 = R"sql(
CREATE TABLE CatalogSet (
    pk INTEGER PRIMARY KEY,
    setNumber TEXT, name TEXT, themeGroup TEXT, themeName TEXT,
    year INTEGER NOT NULL DEFAULT 0 CHECK (year BETWEEN -32768 AND 32767),
    pieceCount INTEGER NOT NULL DEFAULT 0 CHECK (pieceCount BETWEEN -2147483648 AND 2147483647),
    imageURL TEXT, thumbnailURL TEXT, retailPrice TEXT, retailPriceCurrency TEXT,
    dateFirstAvailable INTEGER, dateLastAvailable INTEGER, lastSyncDate INTEGER, partsSyncDate INTEGER
);
CREATE TABLE CatalogPart (
    pk INTEGER PRIMARY KEY,
    partNumber TEXT, name TEXT, categoryName TEXT, imageURL TEXT
);
CREATE TABLE CatalogColor (
    pk INTEGER PRIMARY KEY,
    colorID INTEGER NOT NULL DEFAULT 0 CHECK (colorID BETWEEN -2147483648 AND 2147483647),
    name TEXT, hexCode TEXT,
    isTransparent INTEGER NOT NULL DEFAULT 0 CHECK (isTransparent IN (0, 1))
);
CREATE TABLE CatalogSetPart (
    pk INTEGER PRIMARY KEY,
    quantity INTEGER NOT NULL DEFAULT 0 CHECK (quantity BETWEEN -2147483648 AND 2147483647),
    isSpare INTEGER NOT NULL DEFAULT 0 CHECK (isSpare IN (0, 1)),
    catalogSet INTEGER REFERENCES CatalogSet(pk) ON DELETE SET NULL,
    catalogPart INTEGER REFERENCES CatalogPart(pk) ON DELETE SET NULL,
    catalogColor INTEGER REFERENCES CatalogColor(pk) ON DELETE SET NULL
);
CREATE TABLE BrickSet (
    pk INTEGER PRIMARY KEY,
    id TEXT,
    dateAdded INTEGER,
    isFavorite INTEGER NOT NULL DEFAULT 0 CHECK (isFavorite IN (0, 1)),
    notes TEXT,
    rating INTEGER NOT NULL DEFAULT 0 CHECK (rating BETWEEN -32768 AND 32767),
    acquisitionType TEXT, pricePaid TEXT, priceCurrency TEXT, acquisitionDate INTEGER,
    acquisitionSource TEXT, overallCondition TEXT, boxCondition TEXT, instructionsCondition TEXT,
    builtStatus TEXT, stickerStatus TEXT, completeness TEXT,
    isDisposed INTEGER NOT NULL DEFAULT 0 CHECK (isDisposed IN (0, 1)),
    disposalType TEXT,
    isTrashed INTEGER NOT NULL DEFAULT 0 CHECK (isTrashed IN (0, 1)),
    trashedDate INTEGER, disposalDate INTEGER, disposalPrice TEXT, disposalCurrency TEXT, disposalNotes TEXT,
    catalogSet INTEGER REFERENCES CatalogSet(pk) ON DELETE SET NULL
);
CREATE TABLE PartInventoryEntry (
    pk INTEGER PRIMARY KEY,
    quantityOwned INTEGER NOT NULL DEFAULT 0 CHECK (quantityOwned BETWEEN -2147483648 AND 2147483647),
    partCondition TEXT, notes TEXT,
    brickSet INTEGER REFERENCES BrickSet(pk) ON DELETE CASCADE,
    catalogSetPart INTEGER REFERENCES CatalogSetPart(pk) ON DELETE SET NULL
);
CREATE TABLE CachedPriceGuide (
    pk INTEGER PRIMARY KEY,
    conditionType TEXT, guideType TEXT, avgPrice TEXT, minPrice TEXT, maxPrice TEXT,
    quantitySold INTEGER NOT NULL DEFAULT 0 CHECK (quantitySold BETWEEN -2147483648 AND 2147483647),
    currency TEXT, lastFetchDate INTEGER, providerName TEXT, forecastsJSON TEXT, growthRatesJSON TEXT,
    catalogSet INTEGER REFERENCES CatalogSet(pk) ON DELETE SET NULL
);
CREATE TABLE CachedInstructionURL (
    pk INTEGER PRIMARY KEY,
    pdfURL TEXT, descriptionText TEXT, coverImageURL TEXT, lastFetchDate INTEGER,
    catalogSet INTEGER REFERENCES CatalogSet(pk) ON DELETE SET NULL
);
CREATE TABLE WishlistItem (
    pk INTEGER PRIMARY KEY,
    setNumber TEXT, setName TEXT,
    year INTEGER NOT NULL DEFAULT 0 CHECK (year BETWEEN -32768 AND 32767),
    pieceCount INTEGER NOT NULL DEFAULT 0 CHECK (pieceCount BETWEEN -2147483648 AND 2147483647),
    imageURL TEXT, themeName TEXT, dateAdded INTEGER, notes TEXT
);
CREATE INDEX CatalogSet_setNumber ON CatalogSet(setNumber);
CREATE INDEX CatalogPart_partNumber ON CatalogPart(partNumber);
CREATE INDEX CatalogColor_colorID ON CatalogColor(colorID);
CREATE INDEX CatalogSetPart_catalogSet ON CatalogSetPart(catalogSet);
CREATE INDEX CatalogSetPart_catalogPart ON CatalogSetPart(catalogPart);
CREATE INDEX CatalogSetPart_catalogColor ON CatalogSetPart(catalogColor);
CREATE INDEX BrickSet_catalogSet ON BrickSet(catalogSet);
CREATE INDEX BrickSet_id ON BrickSet(id);
CREATE INDEX PartInventoryEntry_brickSet ON PartInventoryEntry(brickSet);
CREATE INDEX PartInventoryEntry_catalogSetPart ON PartInventoryEntry(catalogSetPart);
CREATE INDEX CachedPriceGuide_catalogSet ON CachedPriceGuide(catalogSet);
CREATE INDEX CachedInstructionURL_catalogSet ON CachedInstructionURL(catalogSet);
CREATE INDEX WishlistItem_setNumber ON WishlistItem(setNumber);
)sql";

// Migration 2: the smart lists filter copies by their trash flag and the recently-added
// list by date; these indexes keep those lists fast as a collection grows.
const char *const migration2 = R"sql(
CREATE INDEX BrickSet_isTrashed_dateAdded ON BrickSet(isTrashed, dateAdded);
CREATE INDEX CachedPriceGuide_catalogSet_lastFetchDate ON CachedPriceGuide(catalogSet, lastFetchDate);
)sql";

const std::array<const char *, 2> migrations{migration1, migration2};

template <typename T>
StoreSchema::Entity describe()
{
    StoreSchema::Entity entity;
    entity.type = EntityTraits<T>::type;
    entity.table = entityName(entity.type);
    for (const auto &field : EntityTraits<T>::fields())
        entity.attributes.append({field.name.toString(), field.type, field.target});
    return entity;
}

QList<StoreSchema::Entity> buildEntities()
{
    QList<StoreSchema::Entity> entities{
        describe<CatalogSet>(),       describe<CatalogPart>(),          describe<CatalogColor>(),
        describe<CatalogSetPart>(),   describe<BrickSet>(),             describe<PartInventoryEntry>(),
        describe<CachedPriceGuide>(), describe<CachedInstructionURL>(), describe<WishlistItem>(),
    };
    auto at = [&entities](EntityType type) -> StoreSchema::Entity & { return entities[qsizetype(type)]; };
    at(EntityType::BrickSet).toMany = {{u"partInventoryEntries"_s, EntityType::PartInventoryEntry, u"brickSet"_s}};
    at(EntityType::CatalogSet).toMany = {
        {u"catalogSetParts"_s, EntityType::CatalogSetPart, u"catalogSet"_s},
        {u"cachedInstructions"_s, EntityType::CachedInstructionURL, u"catalogSet"_s},
        {u"cachedPriceGuides"_s, EntityType::CachedPriceGuide, u"catalogSet"_s},
        {u"brickSets"_s, EntityType::BrickSet, u"catalogSet"_s},
    };
    at(EntityType::CatalogPart).toMany = {{u"catalogSetParts"_s, EntityType::CatalogSetPart, u"catalogPart"_s}};
    at(EntityType::CatalogColor).toMany = {{u"catalogSetParts"_s, EntityType::CatalogSetPart, u"catalogColor"_s}};
    at(EntityType::CatalogSetPart).toMany = {
        {u"partInventoryEntries"_s, EntityType::PartInventoryEntry, u"catalogSetPart"_s}};
    for (const auto &source : std::as_const(entities)) {
        for (const auto &attribute : source.attributes) {
            if (attribute.type != AttributeType::toOne)
                continue;
            const bool cascades = source.type == EntityType::PartInventoryEntry && attribute.name == u"brickSet";
            at(attribute.target).referencedBy.append({source.type, attribute.name, cascades});
        }
    }
    return entities;
}

void execute(SQLiteConnection &connection, const QByteArray &sql)
{
    try {
        connection.execute(QString::fromUtf8(sql));
    } catch (const SQLiteError &error) {
        throw StoreError(StoreError::Kind::migrationFailed, error.message(), error.code());
    }
}

} // namespace

std::optional<StoreSchema::Attribute> StoreSchema::Entity::attribute(QStringView name) const
{
    for (const auto &candidate : attributes) {
        if (candidate.name == name)
            return candidate;
    }
    return std::nullopt;
}

std::optional<StoreSchema::ToMany> StoreSchema::Entity::toManyRelationship(QStringView name) const
{
    for (const auto &candidate : toMany) {
        if (candidate.name == name)
            return candidate;
    }
    return std::nullopt;
}

const StoreSchema::Entity &StoreSchema::entity(EntityType type)
{
    static const QList<Entity> entities = buildEntities();
    return entities[qsizetype(type)];
}

int StoreSchema::latestVersion()
{
    return int(migrations.size());
}

namespace {

qint64 pragmaValue(SQLiteConnection &connection, const char *sql)
{
    std::optional<qint64> value;
    try {
        SQLiteStatement statement = connection.prepare(QString::fromUtf8(sql));
        if (statement.step())
            value = statement.integer(0);
    } catch (const SQLiteError &error) {
        throw StoreError(StoreError::Kind::openFailed, error.message(), error.code());
    }
    // The statement has ended; the connection still holds what went wrong with it.
    if (!value)
        throw StoreError::fromDatabase(StoreError::Kind::openFailed, connection.handle());
    return *value;
}

const QByteArray markStatement = "PRAGMA application_id = " + QByteArray::number(StoreSchema::applicationId);

} // namespace

int StoreSchema::userVersion(SQLiteConnection &connection)
{
    return int(pragmaValue(connection, "PRAGMA user_version"));
}

qint32 StoreSchema::storedApplicationId(SQLiteConnection &connection)
{
    return qint32(pragmaValue(connection, "PRAGMA application_id"));
}

void StoreSchema::migrate(SQLiteConnection &connection, int targetVersion)
{
    const int target = targetVersion < 0 ? latestVersion() : std::min(targetVersion, latestVersion());
    int version = userVersion(connection);
    if (version > latestVersion()) {
        throw StoreError(StoreError::Kind::newerVersion,
                         u"The file has schema version %1; this version knows up to %2."_s.arg(version).arg(
                             latestVersion()));
    }
    while (version < target) {
        const int next = version + 1;
        execute(connection, "BEGIN IMMEDIATE");
        try {
            execute(connection, migrations[size_t(version)]);
            execute(connection, markStatement);
            execute(connection, "PRAGMA user_version = " + QByteArray::number(next));
            execute(connection, "COMMIT");
        } catch (...) {
            sqlite3_exec(connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
        qCDebug(lcPersistence) << "Migrated the collection store to schema version" << next;
        version = next;
    }
    if (version > 0 && storedApplicationId(connection) != applicationId) {
        execute(connection, "BEGIN IMMEDIATE");
        try {
            execute(connection, markStatement);
            execute(connection, "COMMIT");
        } catch (...) {
            sqlite3_exec(connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
        qCDebug(lcPersistence) << "Marked the collection store with its application id";
    }
}
