// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FieldMapping.h"
#include "Store/ObjectID.h"

#include <QList>
#include <QString>

#include <optional>

namespace RebrickableKit {
class SQLiteConnection;
}

// The shape of the collection store: the migrations that build it, numbered by
// `PRAGMA user_version`, and a description of each entity's attributes and relationships
// that queries resolve their key paths against.
class StoreSchema
{
public:
    struct Attribute
    {
        QString name;
        AttributeType type;
        EntityType target; // for toOne
    };
    struct ToMany
    {
        QString name;
        EntityType target;
        QString inverseColumn; // the target's toOne column pointing back
    };
    // A toOne column that refers to an entity, with what deleting the referred row does.
    struct Reference
    {
        EntityType source;
        QString column;
        bool cascades; // otherwise the reference is set to NULL
    };
    struct Entity
    {
        EntityType type;
        QString table;
        QList<Attribute> attributes;
        QList<ToMany> toMany;
        QList<Reference> referencedBy;

        std::optional<Attribute> attribute(QStringView name) const;
        std::optional<ToMany> toManyRelationship(QStringView name) const;
    };

    static const Entity &entity(EntityType type);

    // `PRAGMA application_id` of every collection store: "TSLM" in ASCII, read as a
    // big-endian number. It tells our file from any other SQLite file at the same path
    // (a catalog, another program's database) before anything writes to it.
    static constexpr qint32 applicationId = 0x54534C4D;

    // The version a store has after every migration ran.
    static int latestVersion();
    // Runs the migrations above the file's user_version up to `targetVersion` (all of them
    // by default), each in its own transaction together with its new user_version and the
    // application id, so a crash leaves the file at one version or the next and a new file
    // is never without the id. A store written before it carried the id gets it here.
    // Throws StoreError.
    static void migrate(RebrickableKit::SQLiteConnection &connection, int targetVersion = -1);
    static int userVersion(RebrickableKit::SQLiteConnection &connection);
    static qint32 storedApplicationId(RebrickableKit::SQLiteConnection &connection);
};
