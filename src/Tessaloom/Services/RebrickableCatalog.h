// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"

#include <QHash>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <memory>
#include <optional>

namespace RebrickableKit {
class SQLiteConnection;
}

// The application's read access to the local catalog database: finds the file, opens it
// read-only, and answers searches and look-ups. Callable from any thread. It never raises:
// a query that cannot run gives an empty result (an empty list, or nothing).
//
// Two read-only connections, each with its own lock held for one statement at a time: the
// searches and bulk reads (inventories, many parts at once) that workers run, which can
// take tens of milliseconds, use one; the short look-ups the window makes on the main thread (a theme, a set, the set
// count) use the other, so a search in progress never holds up a repaint.
//
// One instance serves the process (shared()); after a new build the catalog service stores
// a fresh one with replaceShared(). Holders keep the instance they got alive, so a reader
// in the middle of a query is never cut off by a swap.
class RebrickableCatalog
{
public:
    ~RebrickableCatalog();
    RebrickableCatalog(const RebrickableCatalog &) = delete;
    RebrickableCatalog &operator=(const RebrickableCatalog &) = delete;

    // The process-wide catalog: loaded by the first caller through open(), remembered even
    // when absent, until replaced.
    static std::shared_ptr<RebrickableCatalog> shared();
    static void replaceShared(std::shared_ptr<RebrickableCatalog> catalog);

    // Tries the candidate files in order (the live file in the user's data, the file
    // bundled with the program) and opens the first that opens.
    static std::shared_ptr<RebrickableCatalog> open();
    // Opens one file read-only; on failure gives nothing and, when asked, the reason.
    static std::shared_ptr<RebrickableCatalog> openFile(const QString &path, QString *errorText = nullptr);

    // Where the live catalog file of this user lives. Computed once.
    static QString defaultDatabasePath();
    // The catalog shipped with the program, beside its executable.
    static QString bundledDatabasePath();
    static QStringList candidatePaths();

    QString path() const { return m_path; }
    int schemaVersion() const { return m_schemaVersion; }
    bool hasFTS() const { return m_hasFTS; }

    QList<CatalogSetResult> searchSets(const QString &query, int limit) const;
    QList<CatalogSetResult> searchSets(int themeID, const QString &query, int limit) const;
    // The search the set list runs: like searchSets(query, limit), but a bare set number
    // typed alone brings that set to the front.
    QList<CatalogSetResult> searchSetsPromotingExactHit(const QString &query, int limit) const;
    // How many sets searchSets() would give without a limit, counted without reading them.
    // 0 when the query fails.
    int searchSetCount(const QString &query) const;
    int searchSetCount(int themeID, const QString &query) const;

    std::optional<CatalogSetResult> set(const QString &number) const;
    QList<CatalogInventoryPartResult> inventoryParts(const QString &setNumber) const;
    std::optional<CatalogColorResult> color(int id) const;
    std::optional<CatalogPartResult> part(const QString &number) const;
    // Many colours or parts in a few statements, by id or number; the ones the catalog
    // lacks are not in the answer. For bulk work on a worker, as a set's inventory needs.
    QHash<int, CatalogColorResult> colors(const QList<int> &ids) const;
    QHash<QString, CatalogPartResult> parts(const QStringList &numbers) const;
    std::optional<QString> partCategoryName(int id) const;
    std::optional<CatalogThemeResult> theme(int id) const;
    QString themePath(int id) const;
    QList<ThemeNode> themeTree() const;
    QList<FlatThemeResult> flatThemes() const;
    int setCount() const;

    // The theme and all its descendants, the theme first.
    QList<int> themeWithDescendants(int themeID) const;

    // Puts the set `query` names at the front of `results` when the query is one bare
    // set number (one token, not a year) and the catalog has that set.
    void promoteExactHit(const QString &query, QList<CatalogSetResult> &results) const;

private:
    // One SQLite connection and the lock that lets one statement at a time use it.
    struct Connection
    {
        std::unique_ptr<RebrickableKit::SQLiteConnection> db;
        mutable QMutex lock;
    };

    friend class RebrickableCatalogTestAccess; // lets a test hold the search connection's lock

    RebrickableCatalog();

    // A set search in two pieces: the selection with its WHERE clause, and the order with
    // a "LIMIT ?" whose value follows the parameters. The count wraps the selection alone.
    struct SetSearchStatement
    {
        QString selection;
        QString orderAndLimit;
        QVariantList parameters;
    };
    SetSearchStatement setSearchStatement(const QString &query, const std::optional<QList<int>> &themeIDs) const;
    int countSetSearch(const QString &query, const std::optional<QList<int>> &themeIDs) const;
    QList<CatalogSetResult> runSetSearch(const QString &query, const std::optional<QList<int>> &themeIDs,
                                         int limit) const;

    QString m_path;
    Connection m_searches; // searches, theme expansion for them, inventories
    Connection m_lookUps;  // everything else: short, and asked from the main thread
    int m_schemaVersion = 0;
    bool m_hasFTS = false;
};
