// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the collection import and export tests share: real stores in temporary folders, an
// import run the way the main window runs it, and reads of everything a store holds.

#include "Services/CSVExportImportService.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QDir>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>

namespace CollectionCSVFixture {

using namespace Qt::StringLiterals;

// A new store in its own folder below `folder`.
inline std::unique_ptr<PersistentContainer> openStore(const QTemporaryDir &folder)
{
    static int storeNumber = 0;
    const QString directory = folder.filePath(u"store%1"_s.arg(++storeNumber));
    QDir().mkpath(directory);
    return PersistentContainer::open(directory + u"/Tessaloom.sqlite"_s);
}

// Runs the import on a background context named and merged as the window's, and waits.
inline CSVExportImportService::ImportResult importText(PersistentContainer &store, const QString &text)
{
    const std::shared_ptr<ManagedObjectContext> context = store.newBackgroundContext();
    context->setName(u"backgroundContext"_s);
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    return context->performAndWait(
        [&text](ManagedObjectContext &store) { return CSVExportImportService::importCSV(text, store); });
}

// What a store holds, read through a fresh context so that nothing cached answers.
struct StoreContents
{
    QList<BrickSet> copies;
    QList<CatalogSet> catalogSets;
    QList<WishlistItem> wishlist;

    friend bool operator==(const StoreContents &, const StoreContents &) = default;
};

inline StoreContents contents(PersistentContainer &store)
{
    const std::shared_ptr<ManagedObjectContext> context = store.newBackgroundContext();
    return context->performAndWait([](ManagedObjectContext &reader) {
        return StoreContents{reader.fetch(FetchRequest<BrickSet>()), reader.fetch(FetchRequest<CatalogSet>()),
                             reader.fetch(FetchRequest<WishlistItem>())};
    });
}

inline std::optional<BrickSet> copyWithId(PersistentContainer &store, const QUuid &id)
{
    const QList<BrickSet> copies = contents(store).copies;
    const auto found = std::find_if(copies.cbegin(), copies.cend(), [&id](const BrickSet &copy) { return copy.id == id; });
    return found == copies.cend() ? std::nullopt : std::optional<BrickSet>(*found);
}

inline std::optional<CatalogSet> catalogSetNumbered(PersistentContainer &store, const QString &number)
{
    const QList<CatalogSet> sets = contents(store).catalogSets;
    const auto found = std::find_if(sets.cbegin(), sets.cend(),
                                    [&number](const CatalogSet &set) { return set.setNumber == number; });
    return found == sets.cend() ? std::nullopt : std::optional<CatalogSet>(*found);
}

// The text of the export of everything the store holds, as the settings export makes it.
inline QString exportStore(PersistentContainer &store)
{
    const std::shared_ptr<ManagedObjectContext> context = store.newBackgroundContext();
    return context->performAndWait([](ManagedObjectContext &reader) { return CSVExportImportService::exportCSV(reader); });
}

// Runs `sql` on the store's file through a connection of its own; false when it fails.
inline bool executeOnStoreFile(const PersistentContainer &store, const char *sql)
{
    sqlite3 *database = nullptr;
    bool done = sqlite3_open(store.path().toUtf8().constData(), &database) == SQLITE_OK
        && sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return done;
}

} // namespace CollectionCSVFixture

namespace CollectionCSVFixture {

// The header line of the 31 columns.
inline QString header()
{
    return CSVExportImportService::columnNames().join(u',');
}

// One line in the order of the 31 columns, with the values named in `values` (written as
// given, so a test can quote or break a field itself) and the other fields empty.
inline QString row(const QHash<QString, QString> &values)
{
    QStringList fields;
    for (const QString &name : CSVExportImportService::columnNames())
        fields.append(values.value(name));
    Q_ASSERT(values.size() <= fields.size());
    return fields.join(u',');
}

inline QString file(const QStringList &rows)
{
    return (QStringList{header()} + rows).join(u'\n');
}

} // namespace CollectionCSVFixture
