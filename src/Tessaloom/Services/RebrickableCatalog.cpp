// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/RebrickableCatalog.h"

#include "Endpoints.h"
#include "Logging.h"
#include "RebrickableKit/SQLiteConnection.h"
#include "SearchTokenizer.h"
#include "SetNumberNormalizer.h"
#include "Services/CatalogMatchBuilder.h"
#include "Services/CatalogThemeHierarchy.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>
#include <QVariant>

#include <sqlite3.h>

#include <functional>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;
using RebrickableKit::SQLiteStatement;

namespace {

// Binds each value in turn: a number or a text, the only two kinds a catalog query takes.
void bindAll(SQLiteStatement &statement, const QVariantList &parameters)
{
    for (const QVariant &parameter : parameters) {
        if (parameter.typeId() == QMetaType::Int)
            statement.bind(parameter.toInt());
        else
            statement.bind(parameter.toString());
    }
}

int intColumn(const SQLiteStatement &statement, int column)
{
    return int(statement.integer(column));
}

std::optional<int> optionalIntColumn(const SQLiteStatement &statement, int column)
{
    const std::optional<qint64> value = statement.optionalInt(column);
    return value ? std::optional<int>(int(*value)) : std::nullopt;
}

CatalogSetResult readSet(SQLiteStatement &statement)
{
    return {statement.string(0), statement.string(1), intColumn(statement, 2), intColumn(statement, 3),
            intColumn(statement, 4), statement.optionalString(5)};
}

CatalogThemeResult readTheme(SQLiteStatement &statement)
{
    return {intColumn(statement, 0), statement.string(1), optionalIntColumn(statement, 2)};
}

int readInt(SQLiteStatement &statement)
{
    return intColumn(statement, 0);
}

QString placeholders(qsizetype count)
{
    QStringList marks;
    marks.reserve(count);
    for (qsizetype i = 0; i < count; ++i)
        marks << u"?"_s;
    return marks.join(u","_s);
}

// Image addresses of inventory lines are stored without the media prefix they all share;
// anything that starts with "http" was stored whole.
std::optional<QString> restoredPartImageURL(const std::optional<QString> &stored)
{
    if (!stored)
        return std::nullopt;
    if (stored->startsWith(u"http"_s))
        return stored;
    return Endpoints::url(Endpoints::Service::rebrickable, u"/media/parts/"_s).toString() + *stored;
}

const QString selectSetColumns = u"SELECT set_num, name, year, theme_id, num_parts, img_url FROM sets"_s;

// Runs one statement on `db` under its lock and reads each row with `readRow`. A failed
// prepare gives nothing; a step that fails ends the loop with the rows read so far.
template <typename Row>
QList<Row> collect(const std::unique_ptr<SQLiteConnection> &db, QMutex &lock, const QString &sql,
                   const QVariantList &parameters, const std::function<Row(SQLiteStatement &)> &readRow)
{
    const QMutexLocker locker(&lock);
    if (!db)
        return {};
    try {
        SQLiteStatement statement = db->prepare(sql);
        bindAll(statement, parameters);
        QList<Row> rows;
        while (statement.step())
            rows.append(readRow(statement));
        return rows;
    } catch (const SQLiteError &) {
        return {};
    }
}

template <typename Row>
std::optional<Row> first(const QList<Row> &rows)
{
    return rows.isEmpty() ? std::nullopt : std::optional<Row>(rows.first());
}

QMutex sharedMutex;
std::shared_ptr<RebrickableCatalog> sharedCatalog;
bool sharedLoadTried = false;

} // namespace

RebrickableCatalog::RebrickableCatalog() = default;

RebrickableCatalog::~RebrickableCatalog() = default;

// ---- The shared instance and finding the file ----------------------------------------

std::shared_ptr<RebrickableCatalog> RebrickableCatalog::shared()
{
    const QMutexLocker locker(&sharedMutex);
    if (!sharedLoadTried) {
        sharedLoadTried = true;
        sharedCatalog = open();
    }
    return sharedCatalog;
}

void RebrickableCatalog::replaceShared(std::shared_ptr<RebrickableCatalog> catalog)
{
    std::shared_ptr<RebrickableCatalog> previous;
    {
        const QMutexLocker locker(&sharedMutex);
        previous = std::exchange(sharedCatalog, std::move(catalog));
        sharedLoadTried = true;
    }
    // `previous` is released here, outside the mutex; a reader still holding it keeps
    // it open until its query ends.
}

QString RebrickableCatalog::defaultDatabasePath()
{
    static const QString path = [] {
        const QString dataLocation = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        const QString base = dataLocation.isEmpty() ? QDir::tempPath() : dataLocation;
        return QString(base + u"/Tessaloom/rebrickable.sqlite"_s);
    }();
    return path;
}

QString RebrickableCatalog::bundledDatabasePath()
{
    // The program sits in bin/ and its data in share/Tessaloom/, both when installed and
    // in the build tree.
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../share/Tessaloom/rebrickable.sqlite"_s);
}

QStringList RebrickableCatalog::candidatePaths()
{
    return {defaultDatabasePath(), bundledDatabasePath()};
}

std::shared_ptr<RebrickableCatalog> RebrickableCatalog::open()
{
    const QStringList candidates = candidatePaths();
    for (const QString &candidate : candidates) {
        if (!QFileInfo(candidate).isFile())
            continue;
        QString error;
        if (auto catalog = openFile(candidate, &error)) {
            qCInfo(lcCatalog, "Rebrickable catalog loaded from: %s", qUtf8Printable(candidate));
            return catalog;
        }
        qCCritical(lcCatalog, "Failed to open catalog at %s: %s", qUtf8Printable(candidate), qUtf8Printable(error));
    }
    qCCritical(lcCatalog, "Rebrickable catalog database not found. Searched: %s",
               qUtf8Printable(candidates.join(u", "_s)));
    return nullptr;
}

std::shared_ptr<RebrickableCatalog> RebrickableCatalog::openFile(const QString &path, QString *errorText)
{
    std::shared_ptr<RebrickableCatalog> catalog(new RebrickableCatalog);
    catalog->m_path = path;
    try {
        // NOMUTEX: each connection's own lock already lets one statement at a time use it.
        for (Connection *connection : {&catalog->m_searches, &catalog->m_lookUps})
            connection->db = std::make_unique<SQLiteConnection>(QFile::encodeName(path),
                                                                SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX);
    } catch (const SQLiteError &) {
        if (errorText)
            *errorText = u"Failed to open database"_s;
        return nullptr;
    }
    catalog->m_schemaVersion =
        first(collect<int>(catalog->m_lookUps.db, catalog->m_lookUps.lock, u"PRAGMA user_version"_s, {}, readInt)).value_or(0);
    const QString ftsTable = u"SELECT 1 FROM sqlite_master WHERE type='table' AND name='sets_fts'"_s;
    catalog->m_hasFTS = !collect<int>(catalog->m_lookUps.db, catalog->m_lookUps.lock, ftsTable, {}, readInt).isEmpty();
    return catalog;
}

// ---- Searching sets ---------------------------------------------------------------------

QList<CatalogSetResult> RebrickableCatalog::searchSets(const QString &query, int limit) const
{
    return runSetSearch(query, std::nullopt, limit);
}

QList<CatalogSetResult> RebrickableCatalog::searchSets(int themeID, const QString &query, int limit) const
{
    return runSetSearch(query, themeWithDescendants(themeID), limit);
}

QList<CatalogSetResult> RebrickableCatalog::searchSetsPromotingExactHit(const QString &query, int limit) const
{
    QList<CatalogSetResult> results = searchSets(query, limit);
    promoteExactHit(query, results);
    return results;
}

void RebrickableCatalog::promoteExactHit(const QString &query, QList<CatalogSetResult> &results) const
{
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return;
    const QList<SearchTokenizer::Token> tokens = SearchTokenizer::tokenize(trimmed);
    if (tokens.size() != 1 || tokens.first().year)
        return;
    const std::optional<CatalogSetResult> hit = set(SetNumberNormalizer::catalogNumber(trimmed));
    if (!hit)
        return;
    const auto found = std::find_if(results.begin(), results.end(),
                                    [&](const CatalogSetResult &result) { return result.setNum == hit->setNum; });
    if (found != results.end())
        results.erase(found);
    results.prepend(*hit);
}

QList<int> RebrickableCatalog::themeWithDescendants(int themeID) const
{
    QList<int> themes{themeID};
    QList<int> frontier{themeID};
    QSet<int> seen{themeID};
    while (!frontier.isEmpty()) {
        QVariantList parameters;
        for (const int id : frontier)
            parameters.append(id);
        const QList<int> children = collect<int>(
            m_searches.db, m_searches.lock, u"SELECT id FROM themes WHERE parent_id IN ("_s + placeholders(frontier.size()) + u")"_s,
            parameters, readInt);
        frontier.clear();
        for (const int child : children) {
            // A cycle in the parent ids would otherwise walk forever.
            if (!seen.contains(child)) {
                seen.insert(child);
                frontier.append(child);
            }
        }
        themes.append(frontier);
    }
    return themes;
}

RebrickableCatalog::SetSearchStatement RebrickableCatalog::setSearchStatement(const QString &query,
                                                                            const std::optional<QList<int>> &themeIDs) const
{
    const QString trimmed = query.trimmed();
    QVariantList themeParameters;
    QString themeList;
    if (themeIDs) {
        for (const int id : *themeIDs)
            themeParameters.append(id);
        themeList = placeholders(themeIDs->size());
    }

    if (!trimmed.isEmpty() && m_hasFTS) {
        const CatalogMatchBuilder::Match match = CatalogMatchBuilder::build(trimmed);
        QVariantList yearParameters;
        for (const int year : match.years)
            yearParameters.append(year);
        const QString yearList = placeholders(match.years.size());

        if (match.matchText) {
            QString sql = u"SELECT s.set_num, s.name, s.year, s.theme_id, s.num_parts, s.img_url\n"
                          "FROM sets_fts fts\n"
                          "JOIN sets s ON s.rowid = fts.rowid\n"
                          "WHERE sets_fts MATCH ?"_s;
            if (themeIDs)
                sql += u"\nAND s.theme_id IN ("_s + themeList + u")"_s;
            if (!match.years.isEmpty())
                sql += u" AND s.year IN ("_s + yearList + u")"_s;
            return {sql, u"\nORDER BY rank\nLIMIT ?"_s, QVariantList{*match.matchText} + themeParameters + yearParameters};
        }
        if (!match.years.isEmpty()) {
            QString sql = selectSetColumns + u" WHERE "_s;
            if (themeIDs)
                sql += u"theme_id IN ("_s + themeList + u") AND "_s;
            sql += u"year IN ("_s + yearList + u")"_s;
            return {sql, u" ORDER BY year DESC, name ASC LIMIT ?"_s, themeParameters + yearParameters};
        }
    }

    // The fallback, which also serves the empty query (newest sets first) and a file
    // without the full-text table. "%" and "_" in a token act as wildcards on purpose.
    QStringList conditions;
    QVariantList tokenParameters;
    for (const SearchTokenizer::Token &token : SearchTokenizer::tokenize(trimmed)) {
        const QString pattern = u'%' + token.text + u'%';
        tokenParameters << pattern << pattern;
        if (token.year) {
            conditions << u"(name LIKE ? OR set_num LIKE ? OR year = ?)"_s;
            tokenParameters << *token.year;
        } else {
            conditions << u"(name LIKE ? OR set_num LIKE ?)"_s;
        }
    }
    QString sql = selectSetColumns;
    if (themeIDs) {
        sql += u" WHERE theme_id IN ("_s + themeList + u")"_s;
        if (!conditions.isEmpty())
            sql += u" AND "_s + conditions.join(u" AND "_s);
    } else if (!conditions.isEmpty()) {
        sql += u" WHERE "_s + conditions.join(u" AND "_s);
    }
    return {sql, u" ORDER BY year DESC, name ASC LIMIT ?"_s, themeParameters + tokenParameters};
}

QList<CatalogSetResult> RebrickableCatalog::runSetSearch(const QString &query, const std::optional<QList<int>> &themeIDs,
                                                         int limit) const
{
    const SetSearchStatement statement = setSearchStatement(query, themeIDs);
    return collect<CatalogSetResult>(m_searches.db, m_searches.lock, statement.selection + statement.orderAndLimit,
                                     statement.parameters + QVariantList{limit}, readSet);
}

int RebrickableCatalog::countSetSearch(const QString &query, const std::optional<QList<int>> &themeIDs) const
{
    // The same rows without their order: counting them needs no ranking or sorting.
    const SetSearchStatement statement = setSearchStatement(query, themeIDs);
    return first(collect<int>(m_searches.db, m_searches.lock, u"SELECT COUNT(*) FROM ("_s + statement.selection + u")"_s,
                              statement.parameters, readInt))
        .value_or(0);
}

int RebrickableCatalog::searchSetCount(const QString &query) const
{
    return countSetSearch(query, std::nullopt);
}

int RebrickableCatalog::searchSetCount(int themeID, const QString &query) const
{
    return countSetSearch(query, themeWithDescendants(themeID));
}

// ---- Look-ups -----------------------------------------------------------------------------

std::optional<CatalogSetResult> RebrickableCatalog::set(const QString &number) const
{
    return first(collect<CatalogSetResult>(m_lookUps.db, m_lookUps.lock, selectSetColumns + u" WHERE set_num = ?"_s,
                                           {number}, readSet));
}

QList<CatalogInventoryPartResult> RebrickableCatalog::inventoryParts(const QString &setNumber) const
{
    const QString sql = u"SELECT ip.part_num, ip.color_id, ip.quantity, ip.is_spare, ip.img_url\n"
                        "FROM inventory_parts ip\n"
                        "JOIN inventories i ON ip.inventory_id = i.id\n"
                        "WHERE i.set_num = ?\n"
                        "AND i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = ?)\n"
                        "ORDER BY ip.part_num"_s;
    return collect<CatalogInventoryPartResult>(m_searches.db, m_searches.lock, sql, {setNumber, setNumber}, [](SQLiteStatement &statement) {
        return CatalogInventoryPartResult{statement.string(0), intColumn(statement, 1), intColumn(statement, 2),
                                          statement.boolean(3), restoredPartImageURL(statement.optionalString(4))};
    });
}

namespace {

const QString selectColorColumns = u"SELECT id, name, rgb, is_trans FROM colors"_s;
const QString selectPartColumns = u"SELECT part_num, name, part_cat_id FROM parts"_s;

CatalogColorResult readColor(SQLiteStatement &statement)
{
    return {intColumn(statement, 0), statement.string(1), statement.string(2), statement.boolean(3)};
}

CatalogPartResult readPart(SQLiteStatement &statement)
{
    return {statement.string(0), statement.string(1), intColumn(statement, 2)};
}

// Keys per statement of a look-up by many keys: well under SQLite's limit of bound values,
// and few statements even for the largest inventory.
constexpr qsizetype keysPerStatement = 500;

// The rows whose `column` is one of `keys`, asked in slices, by the key `keyOf` reads back.
template <typename Key, typename Row, typename KeyOf>
QHash<Key, Row> collectByKeys(const std::unique_ptr<SQLiteConnection> &db, QMutex &lock, const QString &select,
                              const QString &column, const QList<Key> &keys,
                              const std::function<Row(SQLiteStatement &)> &readRow, KeyOf keyOf)
{
    QHash<Key, Row> found;
    found.reserve(keys.size());
    for (qsizetype start = 0; start < keys.size(); start += keysPerStatement) {
        const QList<Key> slice = keys.mid(start, keysPerStatement);
        QVariantList parameters;
        parameters.reserve(slice.size());
        for (const Key &key : slice)
            parameters.append(key);
        const QString sql = select + u" WHERE "_s + column + u" IN ("_s + placeholders(slice.size()) + u")"_s;
        for (const Row &row : collect<Row>(db, lock, sql, parameters, readRow))
            found.insert(keyOf(row), row);
    }
    return found;
}

} // namespace

std::optional<CatalogColorResult> RebrickableCatalog::color(int id) const
{
    return first(collect<CatalogColorResult>(m_lookUps.db, m_lookUps.lock, selectColorColumns + u" WHERE id = ?"_s,
                                             {id}, readColor));
}

std::optional<CatalogPartResult> RebrickableCatalog::part(const QString &number) const
{
    return first(collect<CatalogPartResult>(m_lookUps.db, m_lookUps.lock, selectPartColumns + u" WHERE part_num = ?"_s,
                                            {number}, readPart));
}

QHash<int, CatalogColorResult> RebrickableCatalog::colors(const QList<int> &ids) const
{
    return collectByKeys<int, CatalogColorResult>(m_searches.db, m_searches.lock, selectColorColumns, u"id"_s, ids,
                                                  readColor, [](const CatalogColorResult &row) { return row.id; });
}

QHash<QString, CatalogPartResult> RebrickableCatalog::parts(const QStringList &numbers) const
{
    return collectByKeys<QString, CatalogPartResult>(m_searches.db, m_searches.lock, selectPartColumns, u"part_num"_s,
                                                     numbers, readPart,
                                                     [](const CatalogPartResult &row) { return row.partNum; });
}

std::optional<QString> RebrickableCatalog::partCategoryName(int id) const
{
    return first(collect<QString>(m_lookUps.db, m_lookUps.lock, u"SELECT name FROM part_categories WHERE id = ?"_s, {id},
                                  [](SQLiteStatement &statement) { return statement.string(0); }));
}

std::optional<CatalogThemeResult> RebrickableCatalog::theme(int id) const
{
    return first(collect<CatalogThemeResult>(m_lookUps.db, m_lookUps.lock, u"SELECT id, name, parent_id FROM themes WHERE id = ?"_s,
                                             {id}, readTheme));
}

QString RebrickableCatalog::themePath(int id) const
{
    QStringList names;
    QSet<int> visited; // a cycle in the parent ids must not hang the caller
    std::optional<int> current = id;
    while (current && !visited.contains(*current)) {
        const std::optional<CatalogThemeResult> found = theme(*current);
        if (!found)
            break;
        visited.insert(*current);
        names.prepend(found->name);
        current = found->parentID;
    }
    return names.join(u" > "_s);
}

QList<ThemeNode> RebrickableCatalog::themeTree() const
{
    // Each statement takes the lock on its own; the shaping runs outside it.
    const QList<CatalogThemeResult> themes =
        collect<CatalogThemeResult>(m_lookUps.db, m_lookUps.lock, u"SELECT id, name, parent_id FROM themes ORDER BY name"_s, {}, readTheme);
    const QList<int> used = collect<int>(m_lookUps.db, m_lookUps.lock, u"SELECT DISTINCT theme_id FROM sets"_s, {}, readInt);
    return CatalogThemeHierarchy::tree(themes, QSet<int>(used.cbegin(), used.cend()));
}

QList<FlatThemeResult> RebrickableCatalog::flatThemes() const
{
    const QList<CatalogThemeResult> themes =
        collect<CatalogThemeResult>(m_lookUps.db, m_lookUps.lock, u"SELECT id, name, parent_id FROM themes ORDER BY name"_s, {}, readTheme);
    using Stats = std::pair<int, CatalogThemeHierarchy::ThemeStats>;
    const QList<Stats> stats = collect<Stats>(
        m_lookUps.db, m_lookUps.lock, u"SELECT theme_id, COUNT(*), MIN(year), MAX(year) FROM sets GROUP BY theme_id"_s, {},
        [](SQLiteStatement &statement) {
            return Stats{intColumn(statement, 0),
                         {intColumn(statement, 1), intColumn(statement, 2), intColumn(statement, 3)}};
        });
    QHash<int, CatalogThemeHierarchy::ThemeStats> statsByTheme;
    for (const auto &[themeID, themeStats] : stats)
        statsByTheme.insert(themeID, themeStats);
    return CatalogThemeHierarchy::flat(themes, statsByTheme);
}

int RebrickableCatalog::setCount() const
{
    return first(collect<int>(m_lookUps.db, m_lookUps.lock, u"SELECT COUNT(*) FROM sets"_s, {}, readInt)).value_or(0);
}
