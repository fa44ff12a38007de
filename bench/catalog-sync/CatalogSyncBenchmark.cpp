// SPDX-License-Identifier: GPL-3.0-or-later
// How long CatalogSyncService::syncSet (with its syncParts) takes for the set with the
// most inventory lines of a full catalog, into a fresh store file (`first`: every part,
// colour and line is created) and again into the same store (`again`: every one is found
// and nothing changes but the sync dates).
//
// Baseline, in the same run and on an equivalent fresh store file (made by the store, so
// the same schema, indexes and pragmas): the same rows written by hand with prepared
// SQLite statements in one transaction. For `first`, plain inserts; for `again`, a
// look-up by key and an update per part, colour and row, as the sync's rules would have
// it done by hand. The data comes from the catalog beforehand. The sync reads the catalog
// as well: `catalogReadMs` is those reads through RebrickableCatalog, `rawCatalogReadMs`
// the same reads by hand with statements prepared once. Sync and baseline take turns at
// going first. One JSON object per line.
//
//   catalog-sync-bench DATABASE [--set NUMBER] [--runs N]

#include "BenchmarkOutput.h"

#include "Services/CatalogSyncService.h"
#include "Services/RebrickableCatalog.h"
#include "SetNumberNormalizer.h"
#include "Store/PersistenceController.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCoroTask>
#include <QDateTime>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double targetMilliseconds = 250;
constexpr double targetRatio = 3;

// What one sync of the set writes, read from the catalog.
struct Inventory
{
    CatalogSetResult set;
    QString themeName;
    QString themePath;
    QList<std::pair<QString, QString>> parts; // number, name
    QList<CatalogColorResult> colors;
    struct Line
    {
        qsizetype part;
        qsizetype color;
        int quantity;
        bool isSpare;
    };
    QList<Line> lines; // one per part and colour, the last row's values
    qsizetype rows = 0;
};

Inventory readInventory(const RebrickableCatalog &catalog, const QString &number)
{
    Inventory inventory;
    inventory.set = *catalog.set(number);
    if (const auto theme = catalog.theme(inventory.set.themeID))
        inventory.themeName = theme->name;
    inventory.themePath = catalog.themePath(inventory.set.themeID);
    const QList<CatalogInventoryPartResult> rows = catalog.inventoryParts(number);
    inventory.rows = rows.size();
    // As the sync reads them: every part and colour of the inventory in a few statements.
    QStringList partNumbers;
    QList<int> colorIDs;
    for (const CatalogInventoryPartResult &row : rows) {
        partNumbers.append(row.partNum);
        colorIDs.append(row.colorID);
    }
    partNumbers.removeDuplicates();
    colorIDs = QSet<int>(colorIDs.cbegin(), colorIDs.cend()).values();
    const QHash<QString, CatalogPartResult> catalogParts = catalog.parts(partNumbers);
    const QHash<int, CatalogColorResult> catalogColors = catalog.colors(colorIDs);
    QHash<QString, qsizetype> partIndex;
    QHash<int, qsizetype> colorIndex;
    QHash<std::pair<qsizetype, qsizetype>, qsizetype> lineIndex;
    for (const CatalogInventoryPartResult &row : rows) {
        if (!partIndex.contains(row.partNum)) {
            const auto part = catalogParts.constFind(row.partNum);
            partIndex.insert(row.partNum, inventory.parts.size());
            inventory.parts.append({row.partNum, part != catalogParts.cend() ? part->name : row.partNum});
        }
        if (!colorIndex.contains(row.colorID)) {
            colorIndex.insert(row.colorID, inventory.colors.size());
            inventory.colors.append(catalogColors.value(
                row.colorID, CatalogColorResult{row.colorID, u"Unknown"_s, u"000000"_s, false}));
        }
        const std::pair<qsizetype, qsizetype> key(partIndex.value(row.partNum), colorIndex.value(row.colorID));
        if (!lineIndex.contains(key)) {
            lineIndex.insert(key, inventory.lines.size());
            inventory.lines.append({key.first, key.second, 0, false});
        }
        Inventory::Line &line = inventory.lines[lineIndex.value(key)];
        line.quantity = row.quantity;
        line.isSpare = row.isSpare;
    }
    return inventory;
}

// A connection whose statements are prepared once and reused.
class RawConnection
{
public:
    // A store file, configured as the store configures its own connections.
    static std::unique_ptr<RawConnection> store(const QString &path)
    {
        auto connection = std::make_unique<RawConnection>(path, SQLITE_OPEN_READWRITE);
        connection->exec("PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL");
        return connection;
    }

    RawConnection(const QString &path, int flags)
    {
        if (sqlite3_open_v2(QFile::encodeName(path).constData(), &m_database, flags, nullptr) != SQLITE_OK)
            qFatal("cannot open %s", qUtf8Printable(path));
    }
    RawConnection(const RawConnection &) = delete;
    RawConnection &operator=(const RawConnection &) = delete;
    ~RawConnection()
    {
        for (sqlite3_stmt *statement : std::as_const(m_statements))
            sqlite3_finalize(statement);
        sqlite3_close(m_database);
    }

    void exec(const char *sql)
    {
        if (sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql, sqlite3_errmsg(m_database));
    }

    // Binds `values` to the statement of `sql` (prepared once) and steps it to its end;
    // gives the first column of its first row, or 0. With `texts`, also every row's text
    // columns, so that a read costs what reading the values costs.
    qint64 run(const char *sql, const QList<QVariant> &values, QStringList *texts = nullptr)
    {
        sqlite3_stmt *&statement = m_statements[QByteArray(sql)];
        if (!statement && sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql, sqlite3_errmsg(m_database));
        for (int index = 0; index < values.size(); ++index) {
            const QVariant &value = values[index];
            if (value.typeId() == QMetaType::QString) {
                const QByteArray text = value.toString().toUtf8();
                sqlite3_bind_text(statement, index + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            } else if (value.isNull()) {
                sqlite3_bind_null(statement, index + 1);
            } else {
                sqlite3_bind_int64(statement, index + 1, value.toLongLong());
            }
        }
        qint64 first = 0;
        int result = sqlite3_step(statement);
        if (result == SQLITE_ROW)
            first = sqlite3_column_int64(statement, 0);
        while (result == SQLITE_ROW) {
            for (int column = 0; texts && column < sqlite3_column_count(statement); ++column)
                texts->append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column))));
            result = sqlite3_step(statement);
        }
        if (result != SQLITE_DONE)
            qFatal("%s: %s", sql, sqlite3_errmsg(m_database));
        sqlite3_reset(statement);
        return first;
    }

    qint64 lastInsert() const { return sqlite3_last_insert_rowid(m_database); }

private:
    sqlite3 *m_database = nullptr;
    QHash<QByteArray, sqlite3_stmt *> m_statements;
};

QList<QVariant> setValues(const Inventory &inventory)
{
    const CatalogSetResult &set = inventory.set;
    return {set.name, set.year, set.numParts, set.imgURL ? QVariant(*set.imgURL) : QVariant(),
            QDateTime::currentMSecsSinceEpoch()};
}

// The rows of a first sync, inserted.
void insertRows(RawConnection &store, const Inventory &inventory, const QString &number)
{
    store.exec("BEGIN IMMEDIATE");
    QList<QVariant> values = setValues(inventory);
    values << number << inventory.themeName << inventory.themePath << QDateTime::currentMSecsSinceEpoch();
    store.run("INSERT INTO CatalogSet (name, year, pieceCount, imageURL, lastSyncDate, setNumber, themeName, "
              "themeGroup, partsSyncDate) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
              values);
    const qint64 set = store.lastInsert();
    QList<qint64> parts;
    for (const auto &[partNumber, name] : inventory.parts) {
        store.run("INSERT INTO CatalogPart (partNumber, name) VALUES (?, ?)", {partNumber, name});
        parts.append(store.lastInsert());
    }
    QList<qint64> colors;
    for (const CatalogColorResult &color : inventory.colors) {
        store.run("INSERT INTO CatalogColor (colorID, name, hexCode, isTransparent) VALUES (?, ?, ?, ?)",
                  {color.id, color.name, color.rgb, int(color.isTransparent)});
        colors.append(store.lastInsert());
    }
    for (const Inventory::Line &line : inventory.lines) {
        store.run("INSERT INTO CatalogSetPart (quantity, isSpare, catalogSet, catalogPart, catalogColor) "
                  "VALUES (?, ?, ?, ?, ?)",
                  {line.quantity, int(line.isSpare), set, parts[line.part], colors[line.color]});
    }
    store.exec("COMMIT");
}

// The rows of a later sync: each found by its key and updated.
void findAndUpdateRows(RawConnection &store, const Inventory &inventory, const QString &number)
{
    store.exec("BEGIN IMMEDIATE");
    const qint64 set = store.run("SELECT pk FROM CatalogSet WHERE setNumber = ? LIMIT 1", {number});
    store.run("UPDATE CatalogSet SET name = ?, year = ?, pieceCount = ?, imageURL = ?, lastSyncDate = ? WHERE pk = ?",
              setValues(inventory) << set);
    QList<qint64> parts;
    for (const auto &[partNumber, name] : inventory.parts) {
        parts.append(store.run("SELECT pk FROM CatalogPart WHERE partNumber = ? LIMIT 1", {partNumber}));
        store.run("UPDATE CatalogPart SET name = ? WHERE pk = ?", {name, parts.last()});
    }
    QList<qint64> colors;
    for (const CatalogColorResult &color : inventory.colors) {
        colors.append(store.run("SELECT pk FROM CatalogColor WHERE colorID = ? LIMIT 1", {color.id}));
        store.run("UPDATE CatalogColor SET name = ?, hexCode = ?, isTransparent = ? WHERE pk = ?",
                  {color.name, color.rgb, int(color.isTransparent), colors.last()});
    }
    for (const Inventory::Line &line : inventory.lines) {
        const qint64 pk = store.run("SELECT pk FROM CatalogSetPart WHERE catalogSet = ? AND catalogPart = ? AND "
                                    "catalogColor = ? LIMIT 1",
                                    {set, parts[line.part], colors[line.color]});
        store.run("UPDATE CatalogSetPart SET quantity = ?, isSpare = ? WHERE pk = ?", {line.quantity, int(line.isSpare), pk});
    }
    store.run("UPDATE CatalogSet SET partsSyncDate = ? WHERE pk = ?", {QDateTime::currentMSecsSinceEpoch(), set});
    store.exec("COMMIT");
}

// The catalog reads of one sync (the set, its theme chain, its inventory, each part and
// colour once) with statements prepared once: what the reads cost at the least.
void readCatalogRaw(RawConnection &catalog, const Inventory &inventory, const QString &number)
{
    QStringList texts;
    catalog.run("SELECT set_num, name, year, theme_id, num_parts, img_url FROM sets WHERE set_num = ?", {number}, &texts);
    for (qint64 theme = inventory.set.themeID; theme != 0;)
        theme = catalog.run("SELECT parent_id, name FROM themes WHERE id = ?", {theme}, &texts);
    const QByteArray utf8 = number.toUtf8();
    catalog.run("SELECT ip.part_num, ip.color_id, ip.quantity, ip.is_spare, ip.img_url FROM inventory_parts ip "
                "JOIN inventories i ON ip.inventory_id = i.id WHERE i.set_num = ? AND i.version = "
                "(SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = ?) ORDER BY ip.part_num",
                {number, number}, &texts);
    for (const auto &part : inventory.parts)
        catalog.run("SELECT part_num, name, part_cat_id FROM parts WHERE part_num = ?", {part.first}, &texts);
    for (const CatalogColorResult &color : inventory.colors)
        catalog.run("SELECT id, name, rgb, is_trans FROM colors WHERE id = ?", {color.id}, &texts);
}

struct Times
{
    double first = 0;
    double again = 0;
};

Times timeSync(const QString &number)
{
    QTemporaryDir folder;
    const auto controller = PersistenceController::open(folder.filePath(u"Tessaloom.sqlite"_s));
    CatalogSyncService service(*controller);
    Times times;
    times.first = BenchmarkOutput::milliseconds([&] { QCoro::waitFor(service.syncSet(number)); });
    times.again = BenchmarkOutput::milliseconds([&] { QCoro::waitFor(service.syncSet(number)); });
    return times;
}

Times timeBaseline(const Inventory &inventory, const QString &number)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
    PersistenceController::open(path).reset(); // an empty store file with the store's schema
    const auto store = RawConnection::store(path);
    Times times;
    times.first = BenchmarkOutput::milliseconds([&] { insertRows(*store, inventory, number); });
    times.again = BenchmarkOutput::milliseconds([&] { findAndUpdateRows(*store, inventory, number); });
    return times;
}

QString setWithMostInventoryLines(const QString &databasePath)
{
    sqlite3 *database = nullptr;
    sqlite3_open_v2(QFile::encodeName(databasePath).constData(), &database, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt *statement = nullptr;
    QString number;
    if (sqlite3_prepare_v2(database,
                           "SELECT i.set_num FROM inventory_parts ip JOIN inventories i ON ip.inventory_id = i.id "
                           "WHERE i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = i.set_num) "
                           "GROUP BY i.set_num ORDER BY COUNT(*) DESC, i.set_num LIMIT 1",
                           -1, &statement, nullptr)
            == SQLITE_OK
        && sqlite3_step(statement) == SQLITE_ROW)
        number = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return number;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument(u"database"_s, u"A catalog built from the full dumps."_s);
    parser.addOption({u"set"_s, u"The set to sync (default: the one with the most inventory lines)."_s, u"number"_s});
    parser.addOption({u"runs"_s, u"Runs of each side."_s, u"count"_s, u"5"_s});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    const QString databasePath = parser.positionalArguments().first();
    const int runs = qMax(1, parser.value(u"runs"_s).toInt());
    QLoggingCategory::setFilterRules(u"com.tessaloom.app.*.info=false\ncom.tessaloom.app.*.debug=false"_s);

    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::openFile(databasePath);
    if (!catalog)
        qFatal("cannot open the catalog %s", qUtf8Printable(databasePath));
    RebrickableCatalog::replaceShared(catalog);
    const QString number = SetNumberNormalizer::catalogNumber(
        parser.isSet(u"set"_s) ? parser.value(u"set"_s) : setWithMostInventoryLines(databasePath));
    if (!catalog->set(number))
        qFatal("the catalog has no set %s", qUtf8Printable(number));

    // The catalog's share of a sync: through RebrickableCatalog, and by hand.
    Inventory inventory;
    QList<double> reads, rawReads;
    RawConnection rawCatalog(databasePath, SQLITE_OPEN_READONLY);
    for (int run = 0; run < runs; ++run) {
        reads << BenchmarkOutput::milliseconds([&] { inventory = readInventory(*catalog, number); });
        rawReads << BenchmarkOutput::milliseconds([&] { readCatalogRaw(rawCatalog, inventory, number); });
    }

    QList<double> syncFirst, syncAgain, rawFirst, rawAgain;
    timeSync(number); // warms the catalog's and the file system's caches
    for (int run = 0; run < runs; ++run) {
        for (const bool syncSide : {run % 2 == 0, run % 2 != 0}) {
            const Times times = syncSide ? timeSync(number) : timeBaseline(inventory, number);
            (syncSide ? syncFirst : rawFirst) << times.first;
            (syncSide ? syncAgain : rawAgain) << times.again;
            BenchmarkOutput::print({{u"measure"_s, u"run"_s},
                                    {u"side"_s, syncSide ? u"syncSet"_s : u"rawStatements"_s},
                                    {u"run"_s, run},
                                    {u"firstMs"_s, times.first},
                                    {u"againMs"_s, times.again}});
        }
    }

    const double median = 0.5;
    const double first = BenchmarkOutput::percentile(syncFirst, median);
    const double again = BenchmarkOutput::percentile(syncAgain, median);
    const double baseFirst = BenchmarkOutput::percentile(rawFirst, median);
    const double baseAgain = BenchmarkOutput::percentile(rawAgain, median);
    const double catalogRead = BenchmarkOutput::percentile(reads, median);
    const double rawCatalogRead = BenchmarkOutput::percentile(rawReads, median);
    BenchmarkOutput::print({{u"measure"_s, u"summary"_s},
                            {u"set"_s, number},
                            {u"inventoryRows"_s, qint64(inventory.rows)},
                            {u"lines"_s, qint64(inventory.lines.size())},
                            {u"parts"_s, qint64(inventory.parts.size())},
                            {u"colors"_s, qint64(inventory.colors.size())},
                            {u"runs"_s, runs},
                            {u"catalogReadMs"_s, catalogRead},
                            {u"rawCatalogReadMs"_s, rawCatalogRead},
                            {u"syncFirstMs"_s, first},
                            {u"syncAgainMs"_s, again},
                            {u"syncFirstMaxMs"_s, BenchmarkOutput::percentile(syncFirst, 1)},
                            {u"syncAgainMaxMs"_s, BenchmarkOutput::percentile(syncAgain, 1)},
                            {u"rawFirstMs"_s, baseFirst},
                            {u"rawAgainMs"_s, baseAgain},
                            {u"ratioFirst"_s, first / baseFirst},
                            {u"ratioAgain"_s, again / baseAgain},
                            // Against the whole work done by hand: the reads and the writes.
                            {u"ratioFirstToRawReadAndWrite"_s, first / (rawCatalogRead + baseFirst)},
                            {u"ratioAgainToRawReadAndWrite"_s, again / (rawCatalogRead + baseAgain)},
                            // The store's share: the sync without its catalog reads.
                            {u"ratioFirstWithoutCatalogReads"_s, (first - catalogRead) / baseFirst},
                            {u"ratioAgainWithoutCatalogReads"_s, (again - catalogRead) / baseAgain},
                            {u"withinTime"_s, first <= targetMilliseconds && again <= targetMilliseconds},
                            {u"withinRatio"_s, first / baseFirst <= targetRatio && again / baseAgain <= targetRatio}});
    return 0;
}
