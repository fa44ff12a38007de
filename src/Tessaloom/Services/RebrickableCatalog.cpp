// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/RebrickableCatalog.h"

#include "Endpoints.h"
#include "Logging.h"
#include "SearchTokenizer.h"
#include "SetNumberNormalizer.h"
#include "Services/CatalogMatchBuilder.h"
#include "Services/CatalogThemeHierarchy.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>

#include <sqlite3.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

// A value bound to a statement: a number or UTF-8 text. A plain struct rather than
// std::variant<int, QByteArray>, whose copies GCC 12 at -O3 wrongly reports as reading
// uninitialised memory.
struct Parameter
{
    Parameter(int number)
        : number(number)
    {
    }
    Parameter(QByteArray text)
        : isText(true)
        , text(std::move(text))
    {
    }

    bool isText = false;
    int number = 0;
    QByteArray text;
};

// One prepared statement for the length of one query; finalised on every path.
class Statement
{
public:
    Statement(sqlite3 *db, const QString &sql)
    {
        const QByteArray text = sql.toUtf8();
        if (!db || sqlite3_prepare_v2(db, text.constData(), int(text.size()), &m_statement, nullptr) != SQLITE_OK)
            m_statement = nullptr;
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool isValid() const { return m_statement != nullptr; }
    sqlite3_stmt *handle() const { return m_statement; }

    void bind(const QList<Parameter> &parameters)
    {
        int index = 1;
        for (const Parameter &parameter : parameters) {
            if (parameter.isText)
                sqlite3_bind_text(m_statement, index, parameter.text.constData(), int(parameter.text.size()),
                                  SQLITE_TRANSIENT);
            else
                sqlite3_bind_int(m_statement, index, parameter.number);
            ++index;
        }
    }

private:
    sqlite3_stmt *m_statement = nullptr;
};

QString text(sqlite3_stmt *statement, int column)
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    return bytes ? QString::fromUtf8(bytes, sqlite3_column_bytes(statement, column)) : QString();
}

std::optional<QString> optionalText(sqlite3_stmt *statement, int column)
{
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return std::nullopt;
    return text(statement, column);
}

std::optional<int> optionalInt(sqlite3_stmt *statement, int column)
{
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return std::nullopt;
    return sqlite3_column_int(statement, column);
}

CatalogSetResult readSet(sqlite3_stmt *statement)
{
    return {text(statement, 0), text(statement, 1), sqlite3_column_int(statement, 2),
            sqlite3_column_int(statement, 3), sqlite3_column_int(statement, 4), optionalText(statement, 5)};
}

CatalogThemeResult readTheme(sqlite3_stmt *statement)
{
    return {sqlite3_column_int(statement, 0), text(statement, 1), optionalInt(statement, 2)};
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

QMutex sharedMutex;
std::shared_ptr<RebrickableCatalog> sharedCatalog;
bool sharedLoadTried = false;

} // namespace

RebrickableCatalog::~RebrickableCatalog()
{
    sqlite3_close(m_db);
}

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
    const QByteArray nativePath = QFile::encodeName(path);
    if (sqlite3_open_v2(nativePath.constData(), &catalog->m_db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr)
            != SQLITE_OK
        || !catalog->m_db) {
        if (errorText)
            *errorText = u"Failed to open database"_s;
        return nullptr; // the destructor closes whatever handle SQLite gave back
    }
    {
        Statement version(catalog->m_db, u"PRAGMA user_version"_s);
        if (version.isValid() && sqlite3_step(version.handle()) == SQLITE_ROW)
            catalog->m_schemaVersion = sqlite3_column_int(version.handle(), 0);
    }
    {
        Statement fts(catalog->m_db, u"SELECT 1 FROM sqlite_master WHERE type='table' AND name='sets_fts'"_s);
        catalog->m_hasFTS = fts.isValid() && sqlite3_step(fts.handle()) == SQLITE_ROW;
    }
    return catalog;
}

// ---- Running statements -----------------------------------------------------------------

namespace {

// Runs one statement under the catalog's lock and reads each row with `readRow`. A failed
// prepare gives nothing; a step that fails ends the loop with the rows read so far.
template <typename Row>
QList<Row> collect(sqlite3 *db, QRecursiveMutex &lock, const QString &sql, const QList<Parameter> &parameters,
                   const std::function<Row(sqlite3_stmt *)> &readRow)
{
    const QMutexLocker locker(&lock);
    Statement statement(db, sql);
    if (!statement.isValid())
        return {};
    statement.bind(parameters);
    QList<Row> rows;
    while (sqlite3_step(statement.handle()) == SQLITE_ROW)
        rows.append(readRow(statement.handle()));
    return rows;
}

template <typename Row>
std::optional<Row> first(const QList<Row> &rows)
{
    return rows.isEmpty() ? std::nullopt : std::optional<Row>(rows.first());
}

} // namespace

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
        QList<Parameter> parameters;
        for (const int id : frontier)
            parameters.append(id);
        const QList<int> children = collect<int>(
            m_db, m_lock, u"SELECT id FROM themes WHERE parent_id IN ("_s + placeholders(frontier.size()) + u")"_s,
            parameters, [](sqlite3_stmt *statement) { return sqlite3_column_int(statement, 0); });
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

QList<CatalogSetResult> RebrickableCatalog::runSetSearch(const QString &query, const std::optional<QList<int>> &themeIDs,
                                                         int limit) const
{
    const QString trimmed = query.trimmed();
    QList<Parameter> themeParameters;
    QString themeList;
    if (themeIDs) {
        for (const int id : *themeIDs)
            themeParameters.append(id);
        themeList = placeholders(themeIDs->size());
    }

    if (!trimmed.isEmpty() && m_hasFTS) {
        const CatalogMatchBuilder::Match match = CatalogMatchBuilder::build(trimmed);
        QList<Parameter> yearParameters;
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
            sql += u"\nORDER BY rank\nLIMIT ?"_s;
            const QList<Parameter> parameters =
                QList<Parameter>{match.matchText->toUtf8()} + themeParameters + yearParameters + QList<Parameter>{limit};
            return collect<CatalogSetResult>(m_db, m_lock, sql, parameters, readSet);
        }
        if (!match.years.isEmpty()) {
            QString sql = selectSetColumns + u" WHERE "_s;
            if (themeIDs)
                sql += u"theme_id IN ("_s + themeList + u") AND "_s;
            sql += u"year IN ("_s + yearList + u") ORDER BY year DESC, name ASC LIMIT ?"_s;
            return collect<CatalogSetResult>(m_db, m_lock, sql, themeParameters + yearParameters + QList<Parameter>{limit},
                                             readSet);
        }
    }

    // The fallback, which also serves the empty query (newest sets first) and a file
    // without the full-text table. "%" and "_" in a token act as wildcards on purpose.
    QStringList conditions;
    QList<Parameter> tokenParameters;
    for (const SearchTokenizer::Token &token : SearchTokenizer::tokenize(trimmed)) {
        const QByteArray pattern = (u'%' + token.text + u'%').toUtf8();
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
    sql += u" ORDER BY year DESC, name ASC LIMIT ?"_s;
    return collect<CatalogSetResult>(m_db, m_lock, sql, themeParameters + tokenParameters + QList<Parameter>{limit},
                                     readSet);
}

// ---- Look-ups -----------------------------------------------------------------------------

std::optional<CatalogSetResult> RebrickableCatalog::set(const QString &number) const
{
    return first(collect<CatalogSetResult>(m_db, m_lock, selectSetColumns + u" WHERE set_num = ?"_s,
                                           {number.toUtf8()}, readSet));
}

QList<CatalogInventoryPartResult> RebrickableCatalog::inventoryParts(const QString &setNumber) const
{
    const QString sql = u"SELECT ip.part_num, ip.color_id, ip.quantity, ip.is_spare, ip.img_url\n"
                        "FROM inventory_parts ip\n"
                        "JOIN inventories i ON ip.inventory_id = i.id\n"
                        "WHERE i.set_num = ?\n"
                        "AND i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = ?)\n"
                        "ORDER BY ip.part_num"_s;
    const QByteArray number = setNumber.toUtf8();
    return collect<CatalogInventoryPartResult>(m_db, m_lock, sql, {number, number}, [](sqlite3_stmt *statement) {
        return CatalogInventoryPartResult{text(statement, 0), sqlite3_column_int(statement, 1),
                                          sqlite3_column_int(statement, 2), sqlite3_column_int(statement, 3) != 0,
                                          restoredPartImageURL(optionalText(statement, 4))};
    });
}

std::optional<CatalogColorResult> RebrickableCatalog::color(int id) const
{
    return first(collect<CatalogColorResult>(
        m_db, m_lock, u"SELECT id, name, rgb, is_trans FROM colors WHERE id = ?"_s, {id}, [](sqlite3_stmt *statement) {
            return CatalogColorResult{sqlite3_column_int(statement, 0), text(statement, 1), text(statement, 2),
                                      sqlite3_column_int(statement, 3) != 0};
        }));
}

std::optional<CatalogPartResult> RebrickableCatalog::part(const QString &number) const
{
    return first(collect<CatalogPartResult>(
        m_db, m_lock, u"SELECT part_num, name, part_cat_id FROM parts WHERE part_num = ?"_s, {number.toUtf8()},
        [](sqlite3_stmt *statement) {
            return CatalogPartResult{text(statement, 0), text(statement, 1), sqlite3_column_int(statement, 2)};
        }));
}

std::optional<QString> RebrickableCatalog::partCategoryName(int id) const
{
    return first(collect<QString>(m_db, m_lock, u"SELECT name FROM part_categories WHERE id = ?"_s, {id},
                                  [](sqlite3_stmt *statement) { return text(statement, 0); }));
}

std::optional<CatalogThemeResult> RebrickableCatalog::theme(int id) const
{
    return first(collect<CatalogThemeResult>(m_db, m_lock, u"SELECT id, name, parent_id FROM themes WHERE id = ?"_s,
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
        collect<CatalogThemeResult>(m_db, m_lock, u"SELECT id, name, parent_id FROM themes ORDER BY name"_s, {}, readTheme);
    const QList<int> used = collect<int>(m_db, m_lock, u"SELECT DISTINCT theme_id FROM sets"_s, {},
                                         [](sqlite3_stmt *statement) { return sqlite3_column_int(statement, 0); });
    return CatalogThemeHierarchy::tree(themes, QSet<int>(used.cbegin(), used.cend()));
}

QList<FlatThemeResult> RebrickableCatalog::flatThemes() const
{
    const QList<CatalogThemeResult> themes =
        collect<CatalogThemeResult>(m_db, m_lock, u"SELECT id, name, parent_id FROM themes ORDER BY name"_s, {}, readTheme);
    using Stats = std::pair<int, CatalogThemeHierarchy::ThemeStats>;
    const QList<Stats> stats = collect<Stats>(
        m_db, m_lock, u"SELECT theme_id, COUNT(*), MIN(year), MAX(year) FROM sets GROUP BY theme_id"_s, {},
        [](sqlite3_stmt *statement) {
            return Stats{sqlite3_column_int(statement, 0),
                         {sqlite3_column_int(statement, 1), sqlite3_column_int(statement, 2),
                          sqlite3_column_int(statement, 3)}};
        });
    QHash<int, CatalogThemeHierarchy::ThemeStats> statsByTheme;
    for (const auto &[themeID, themeStats] : stats)
        statsByTheme.insert(themeID, themeStats);
    return CatalogThemeHierarchy::flat(themes, statsByTheme);
}

int RebrickableCatalog::setCount() const
{
    return first(collect<int>(m_db, m_lock, u"SELECT COUNT(*) FROM sets"_s, {},
                              [](sqlite3_stmt *statement) { return sqlite3_column_int(statement, 0); }))
        .value_or(0);
}
