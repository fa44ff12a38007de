// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QMetaType>
#include <QString>
#include <QUrl>

#include <array>
#include <optional>

// The nine entities of the collection store. The order is the order in which inserts are
// written, so that a row is written after the rows it refers to.
enum class EntityType {
    CatalogSet,
    CatalogPart,
    CatalogColor,
    CatalogSetPart,
    BrickSet,
    PartInventoryEntry,
    CachedPriceGuide,
    CachedInstructionURL,
    WishlistItem,
};

inline constexpr std::array<EntityType, 9> allEntityTypes{
    EntityType::CatalogSet,         EntityType::CatalogPart,          EntityType::CatalogColor,
    EntityType::CatalogSetPart,     EntityType::BrickSet,             EntityType::PartInventoryEntry,
    EntityType::CachedPriceGuide,   EntityType::CachedInstructionURL, EntityType::WishlistItem,
};

// The entity's name, which is also its table's name.
QString entityName(EntityType entity);
std::optional<EntityType> entityTypeFromName(QStringView name);

// Identifies one stored object across contexts and threads: the entity and the row's
// primary key. Objects never cross threads; their ObjectIDs do, and the other side
// resolves them with ManagedObjectContext::existingObject().
struct ObjectID
{
    EntityType entity = EntityType::BrickSet;
    qint64 primaryKey = 0; // 0: not an object of the store

    bool isValid() const { return primaryKey > 0; }

    // "x-tessaloom://store/BrickSet/p42": the form that opens a copy's checklist window.
    QUrl uriRepresentation() const;
    static std::optional<ObjectID> fromURIRepresentation(const QUrl &uri);

    friend bool operator==(const ObjectID &, const ObjectID &) = default;
};

inline size_t qHash(const ObjectID &id, size_t seed = 0) noexcept
{
    return qHashMulti(seed, int(id.entity), id.primaryKey);
}

Q_DECLARE_METATYPE(ObjectID)
