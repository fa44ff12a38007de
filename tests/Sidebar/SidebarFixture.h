// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the sidebar's tests share: two small real catalogs (the second as a rebuild would
// leave it), an in-memory store, and copies with the few attributes a test cares about.

#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "Store/ManagedObjectContext.h"

#include <QDateTime>
#include <QUuid>

namespace SidebarFixture {

using namespace Qt::StringLiterals;

// Star Wars (158) with Ultimate Collector Series (171) under it, and Castle (186).
inline std::shared_ptr<RebrickableCatalog> firstCatalog(const QString &directory)
{
    CatalogFixture fixture;
    fixture.addRows(u"themes"_s, "158,Star Wars,\n171,Ultimate Collector Series,158\n186,Castle,\n");
    fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,171,7541,\n10305-1,Lion Knights' Castle,2022,186,4514,\n");
    return RebrickableCatalog::openFile(fixture.build(directory));
}

// The same themes after a rebuild, with Technic (1) added and Castle renamed.
inline std::shared_ptr<RebrickableCatalog> rebuiltCatalog(const QString &directory)
{
    CatalogFixture fixture;
    fixture.addRows(u"themes"_s,
                    "1,Technic,\n158,Star Wars,\n171,Ultimate Collector Series,158\n186,Castle Classic,\n");
    fixture.addRows(u"sets"_s, "42115-1,Lamborghini,2020,1,3696,\n75192-1,Millennium Falcon,2017,171,7541,\n"
                               "10305-1,Lion Knights' Castle,2022,186,4514,\n");
    return RebrickableCatalog::openFile(fixture.build(directory));
}

inline BrickSet copy(const std::optional<ObjectID> &catalogSet = std::nullopt)
{
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = QDateTime::currentDateTimeUtc();
    copy.catalogSet = catalogSet;
    copy.acquisitionType = u"purchased"_s;
    copy.overallCondition = u"new"_s;
    return copy;
}

} // namespace SidebarFixture
