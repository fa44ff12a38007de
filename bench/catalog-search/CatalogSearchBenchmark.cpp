// SPDX-License-Identifier: GPL-3.0-or-later
// Replays a realistic typing session through the catalog's search on the full catalog and
// prints one JSON object per line: per-call latency of searchSets (p50, p95, max) beside
// the same statements run in this process through raw prepared statements, and the cost
// of the theme lists and of the largest set's parts list.
//
//   catalog-search-bench DATABASE
//
// DATABASE is a catalog built from the full dumps (scripts: see bench/README.md).

#include "SearchTokenizer.h"
#include "SetNumberNormalizer.h"
#include "Services/CatalogMatchBuilder.h"
#include "Services/RebrickableCatalog.h"

#include <QCoreApplication>
#include <QFile>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

struct Figures
{
    double p50 = 0;
    double p95 = 0;
    double max = 0;
    double mean = 0;
};

Figures summarise(QList<double> samples)
{
    std::sort(samples.begin(), samples.end());
    const auto at = [&](double share) { return samples[qsizetype(share * double(samples.size() - 1))]; };
    double total = 0;
    for (const double sample : samples)
        total += sample;
    return {at(0.5), at(0.95), samples.last(), total / double(samples.size())};
}

void print(const QJsonObject &object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

double milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

// The baseline: the statement the search would run for `query`, prepared, bound and
// stepped directly, reading the same six columns.
int rawSearch(sqlite3 *db, const QString &query, int limit)
{
    const QString trimmed = query.trimmed();
    QString sql;
    QList<std::variant<int, QByteArray>> parameters;
    const CatalogMatchBuilder::Match match = trimmed.isEmpty() ? CatalogMatchBuilder::Match{} : CatalogMatchBuilder::build(trimmed);
    QStringList yearMarks;
    yearMarks.fill(u"?"_s, match.years.size());
    if (match.matchText) {
        sql = u"SELECT s.set_num, s.name, s.year, s.theme_id, s.num_parts, s.img_url\nFROM sets_fts fts\n"
              "JOIN sets s ON s.rowid = fts.rowid\nWHERE sets_fts MATCH ?"_s;
        if (!match.years.isEmpty())
            sql += u" AND s.year IN ("_s + yearMarks.join(u',') + u")"_s;
        sql += u"\nORDER BY rank\nLIMIT ?"_s;
        parameters << match.matchText->toUtf8();
        for (const int year : match.years)
            parameters << year;
    } else if (!match.years.isEmpty()) {
        sql = u"SELECT set_num, name, year, theme_id, num_parts, img_url FROM sets WHERE year IN ("_s
            + yearMarks.join(u',') + u") ORDER BY year DESC, name ASC LIMIT ?"_s;
        for (const int year : match.years)
            parameters << year;
    } else {
        QStringList conditions;
        for (const SearchTokenizer::Token &token : SearchTokenizer::tokenize(trimmed)) {
            const QByteArray pattern = (u'%' + token.text + u'%').toUtf8();
            parameters << pattern << pattern;
            conditions << (token.year ? u"(name LIKE ? OR set_num LIKE ? OR year = ?)"_s : u"(name LIKE ? OR set_num LIKE ?)"_s);
            if (token.year)
                parameters << *token.year;
        }
        sql = u"SELECT set_num, name, year, theme_id, num_parts, img_url FROM sets"_s;
        if (!conditions.isEmpty())
            sql += u" WHERE "_s + conditions.join(u" AND "_s);
        sql += u" ORDER BY year DESC, name ASC LIMIT ?"_s;
    }
    parameters << limit;

    const QByteArray text = sql.toUtf8();
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, text.constData(), int(text.size()), &statement, nullptr);
    int index = 1;
    for (const auto &parameter : parameters) {
        if (const int *number = std::get_if<int>(&parameter))
            sqlite3_bind_int(statement, index++, *number);
        else
            sqlite3_bind_text(statement, index++, std::get<QByteArray>(parameter).constData(),
                              int(std::get<QByteArray>(parameter).size()), SQLITE_TRANSIENT);
    }
    int rows = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < 6; ++column)
            sqlite3_column_text(statement, column);
        ++rows;
    }
    sqlite3_finalize(statement);
    return rows;
}

QStringList typingSession(const RebrickableCatalog &catalog)
{
    QStringList queries{QString()};
    // Thirty set names and thirty set numbers, typed one character at a time.
    const QList<CatalogSetResult> popular = catalog.searchSets(u"2019"_s, 30) + catalog.searchSets(u"1995"_s, 15)
        + catalog.searchSets(u"2024"_s, 15);
    for (qsizetype i = 0; i < popular.size(); ++i) {
        const QString typed = i < 30 ? popular[i].name : SetNumberNormalizer::baseNumber(popular[i].setNum);
        for (qsizetype length = 1; length <= typed.size(); ++length)
            queries << typed.left(length);
    }
    for (const QString &search : {u"2019"_s, u"1985"_s, u"2024"_s, u"star wars 2019"_s, u"castle 1990"_s,
                                  u"technic 2020"_s, u"city police"_s, u"harry potter"_s, u"ninjago 2015"_s,
                                  u"creator expert"_s, u"ideas"_s, u"millennium falcon"_s})
        queries << search;
    return queries;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: catalog-search-bench DATABASE\n", stderr);
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const auto catalog = RebrickableCatalog::openFile(path);
    sqlite3 *raw = nullptr;
    if (!catalog || catalog->schemaVersion() < 2
        || sqlite3_open_v2(QFile::encodeName(path).constData(), &raw, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        std::fputs("not a catalog database\n", stderr);
        return 1;
    }

    const QStringList queries = typingSession(*catalog);
    // Warm the page cache for both paths alike before measuring.
    for (const QString &query : queries) {
        catalog->searchSets(query, 1000);
        rawSearch(raw, query, 1000);
    }

    QList<double> searchTimes;
    QList<double> rawTimes;
    for (const QString &query : queries) {
        rawTimes << milliseconds([&] { rawSearch(raw, query, 1000); });
        searchTimes << milliseconds([&] { catalog->searchSets(query, 1000); });
    }
    const Figures search = summarise(searchTimes);
    const Figures baseline = summarise(rawTimes);
    print({{u"benchmark"_s, u"catalog.searchSets"_s},
           {u"calls"_s, int(queries.size())},
           {u"p50_ms"_s, search.p50}, {u"p95_ms"_s, search.p95}, {u"max_ms"_s, search.max}, {u"mean_ms"_s, search.mean},
           {u"baseline"_s, u"raw prepared statements"_s},
           {u"baseline_p50_ms"_s, baseline.p50}, {u"baseline_p95_ms"_s, baseline.p95},
           {u"baseline_max_ms"_s, baseline.max}, {u"baseline_mean_ms"_s, baseline.mean},
           {u"overhead_mean_percent"_s, 100.0 * (search.mean - baseline.mean) / baseline.mean}});

    // Searches within the largest themes (with all their sub-themes), as the sidebar runs them.
    QList<double> themeTimes;
    const QList<FlatThemeResult> themes = catalog->flatThemes();
    QList<FlatThemeResult> largest = themes;
    std::sort(largest.begin(), largest.end(), [](const auto &a, const auto &b) { return a.setCount > b.setCount; });
    for (qsizetype i = 0; i < std::min<qsizetype>(12, largest.size()); ++i) {
        themeTimes << milliseconds([&] { catalog->searchSets(largest[i].id, QString(), 1000); });
        themeTimes << milliseconds([&] { catalog->searchSets(largest[i].id, u"20"_s, 1000); });
    }
    const Figures theme = summarise(themeTimes);
    print({{u"benchmark"_s, u"catalog.searchSets.theme"_s}, {u"calls"_s, int(themeTimes.size())},
           {u"p50_ms"_s, theme.p50}, {u"p95_ms"_s, theme.p95}, {u"max_ms"_s, theme.max}});

    QList<double> treeTimes;
    QList<double> flatTimes;
    for (int i = 0; i < 10; ++i) {
        treeTimes << milliseconds([&] { catalog->themeTree(); });
        flatTimes << milliseconds([&] { catalog->flatThemes(); });
    }
    print({{u"benchmark"_s, u"catalog.themeTree"_s}, {u"p50_ms"_s, summarise(treeTimes).p50},
           {u"max_ms"_s, summarise(treeTimes).max}});
    print({{u"benchmark"_s, u"catalog.flatThemes"_s}, {u"p50_ms"_s, summarise(flatTimes).p50},
           {u"max_ms"_s, summarise(flatTimes).max}});

    const QList<CatalogSetResult> biggest = [&] {
        QList<CatalogSetResult> all = catalog->searchSets(QString(), 100000);
        std::sort(all.begin(), all.end(), [](const auto &a, const auto &b) { return a.numParts > b.numParts; });
        return all.mid(0, 1);
    }();
    QList<double> partTimes;
    qsizetype lines = 0;
    for (int i = 0; i < 10; ++i)
        partTimes << milliseconds([&] { lines = catalog->inventoryParts(biggest.value(0).setNum).size(); });
    print({{u"benchmark"_s, u"catalog.inventoryParts.largestSet"_s}, {u"set"_s, biggest.value(0).setNum},
           {u"lines"_s, int(lines)}, {u"p50_ms"_s, summarise(partTimes).p50}, {u"max_ms"_s, summarise(partTimes).max}});

    sqlite3_close(raw);
    return 0;
}
