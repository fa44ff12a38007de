// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the checklist's tests share: small real catalogs built with the real builder, a
// real store in a temporary folder, a copy of a set, and a raw look at the stored counts.

#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreConnection.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QUuid>

namespace ChecklistFixture {

using namespace Qt::StringLiterals;

// Colours Red (4), Blue (1), White (15); categories Bricks (11), Plates (14) and
// Technic Axles (46). Set "1000-1" has two inventory versions; the newest one holds, by
// part number: 10 Red ×2 (Bricks), 3001 Blue ×3 with a spare 3001 Blue ×1 (Bricks),
// 3020 Red ×4 and 3021 White ×1 (Plates, both named
// "Plate 2 x 4"), 9 White ×1 (Technic Axles), and 99999 in
// colour 9999, neither of which the catalog knows. "2000-1" has spare rows only,
// "3000-1" two lines of 3 pieces, "4000-1" one line of 1,000 pieces, "5000-1" one of
// 2,000, "6000-1" one line of 0 pieces, and "8000-1" the same part and colour on two
// regular rows (2 and 5).
inline CatalogFixture standardFixture()
{
    CatalogFixture fixture;
    fixture.addRows(u"themes"_s, "1,Test Theme,\n");
    fixture.addRows(u"colors"_s, "4,Red,C91A09,False\n1,Blue,0055BF,False\n15,White,FFFFFF,False\n");
    fixture.addRows(u"part_categories"_s, "11,Bricks\n14,Plates\n46,Technic Axles\n");
    fixture.addRows(u"parts"_s, "10,brick Round 2 x 2,11,Plastic\n3001,Brick 2 x 4,11,Plastic\n"
                                "3020,Plate 2 x 4,14,Plastic\n3021,Plate 2 x 4,14,Plastic\n9,axle 2,46,Plastic\n");
    fixture.addRows(u"sets"_s, "1000-1,Checklist Set,2020,1,12,\n2000-1,Spares Only,2020,1,2,\n"
                               "3000-1,Two Lines,2020,1,6,\n4000-1,Thousand,2020,1,1000,\n"
                               "5000-1,Two Thousand,2020,1,2000,\n6000-1,Nothing Needed,2020,1,0,\n");
    fixture.addRows(u"inventories"_s, "1,1,1000-1\n2,2,1000-1\n3,1,2000-1\n4,1,3000-1\n5,1,4000-1\n6,1,5000-1\n"
                                      "7,1,6000-1\n8,1,8000-1\n");
    fixture.addRows(u"inventory_parts"_s,
                    "1,3001,1,99,False,\n"
                    "2,10,4,2,False,https://example.invalid/10.png\n"
                    "2,3001,1,3,False,\n"
                    "2,3001,1,1,True,\n"
                    "2,3020,4,4,False,\n"
                    "2,3021,15,1,False,\n"
                    "2,9,15,1,False,\n"
                    "2,99999,9999,1,False,\n"
                    "3,3001,1,1,True,\n3,3020,4,1,True,\n"
                    "4,3001,1,3,False,\n4,3020,4,3,False,\n"
                    "5,3001,1,1000,False,\n"
                    "6,3001,1,2000,False,\n"
                    "7,3001,1,0,False,\n"
                    "8,3001,1,2,False,\n8,3001,1,5,False,\n");
    return fixture;
}

inline BrickSet newCopy(const std::optional<ObjectID> &catalogSet)
{
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = catalogSet;
    copy.setAcquisitionType(AcquisitionType::unknown);
    return copy;
}

// A saved copy of a saved catalog set with `setNumber` (no parts synchronised).
inline BrickSet saveCopyOf(ManagedObjectContext &context, const QString &setNumber)
{
    CatalogSet set;
    set.setNumber = setNumber;
    set.name = setNumber;
    set = context.insert(set);
    BrickSet copy = context.insert(newCopy(set.objectID));
    context.save();
    return copy;
}

// The stored entries of a copy, read through a connection of its own: what a restart
// would find. Keyed by the line's part number "-" colour ID, counts as values.
inline QMap<QString, int> storedCounts(const QString &storePath, const ObjectID &copy)
{
    StoreConnection connection(storePath, false, false);
    auto statement = connection.prepare(
        u"SELECT p.partNumber, c.colorID, e.quantityOwned FROM PartInventoryEntry e "
        "JOIN CatalogSetPart l ON l.pk = e.catalogSetPart JOIN CatalogPart p ON p.pk = l.catalogPart "
        "JOIN CatalogColor c ON c.pk = l.catalogColor WHERE e.brickSet = ?"_s);
    statement.bindInteger(1, copy.primaryKey);
    QMap<QString, int> counts;
    while (statement.step())
        counts.insert(statement.string(0) + u'-' + QString::number(statement.integer(1)), int(statement.integer(2)));
    return counts;
}

inline qint64 storedEntryRows(const QString &storePath)
{
    StoreConnection connection(storePath, false, false);
    auto statement = connection.prepare(u"SELECT count(*) FROM PartInventoryEntry"_s);
    statement.step();
    return statement.integer(0);
}

} // namespace ChecklistFixture
