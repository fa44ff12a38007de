// SPDX-License-Identifier: GPL-3.0-or-later
// The whole catalog from the real, full-size dumps: what every table holds, checked row by
// row against the dumps read the plain way, and what readers rely on afterwards.
#include "CatalogTableDump.h"
#include "TestEnvironment.h"

#include <RebrickableKit/CatalogSchema.h>
#include <RebrickableKit/CSVRowParsers.h>
#include <RebrickableKit/CSVTokenizer.h>
#include <RebrickableKit/PartRelationship.h>
#include <RebrickableKit/RebrickableDatabase.h>
#include <RebrickableKit/RebrickableDatabaseBuilder.h>
#include <RebrickableKit/SQLiteConnection.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <zlib.h>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

namespace {

// Calls onRow with every data row of a dump, decoded, the header left out.
template <typename OnRow>
void forEachRow(const QString &path, OnRow onRow)
{
    bool isHeader = true;
    CSVTokenizer tokenizer([&](std::span<const std::string_view> fields) {
        if (std::exchange(isHeader, false))
            return;
        QStringList row;
        for (const std::string_view field : fields)
            row.append(QString::fromUtf8(field.data(), qsizetype(field.size())));
        onRow(row);
    });
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qUtf8Printable(path));
    while (!file.atEnd())
        tokenizer.feed(file.read(1 << 20));
    tokenizer.finish();
}

// How many rows a table must hold: those its parser accepts, the first of each key only.
qint64 acceptedRows(const QString &path, const QString &table)
{
    qint64 count = 0;
    QSet<QString> keys;
    auto keep = [&](const std::optional<QString> &key) {
        if (!key || keys.contains(*key))
            return;
        keys.insert(*key);
        ++count;
    };
    auto counted = [&count](bool accepted) { count += accepted ? 1 : 0; };
    forEachRow(path, [&](const QStringList &row) {
        auto id = [](const auto &record) { return record ? std::optional(QString::number(record->id)) : std::nullopt; };
        if (table == u"themes"_s) keep(id(CSVRowParsers::parseTheme(row)));
        else if (table == u"colors"_s) keep(id(CSVRowParsers::parseColor(row)));
        else if (table == u"part_categories"_s) keep(id(CSVRowParsers::parsePartCategory(row)));
        else if (table == u"inventories"_s) keep(id(CSVRowParsers::parseInventory(row)));
        else if (table == u"parts"_s) { const auto r = CSVRowParsers::parsePart(row); keep(r ? std::optional(r->partNum) : std::nullopt); }
        else if (table == u"elements"_s) { const auto r = CSVRowParsers::parseElement(row); keep(r ? std::optional(r->elementID) : std::nullopt); }
        else if (table == u"minifigs"_s) { const auto r = CSVRowParsers::parseMinifig(row); keep(r ? std::optional(r->figNum) : std::nullopt); }
        else if (table == u"sets"_s) { const auto r = CSVRowParsers::parseSet(row); keep(r ? std::optional(r->setNum) : std::nullopt); }
        else if (table == u"part_relationships"_s) counted(row.size() >= 3 && PartRelationship::relationType(row[0]));
        else if (table == u"inventory_parts"_s) counted(CSVRowParsers::parseInventoryPart(row).has_value());
        else if (table == u"inventory_sets"_s) counted(CSVRowParsers::parseInventorySet(row).has_value());
        else if (table == u"inventory_minifigs"_s) counted(CSVRowParsers::parseInventoryMinifig(row).has_value());
    });
    return count;
}

} // namespace

class CatalogBuildIntegrationTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_work;
    QString m_csv;
    QString m_database;
    QList<RebrickableDatabaseBuilder::BuildPhase> m_phases;
    BuildReport m_report;

    QString value(const QString &sql) const { return CatalogTableDump::value(m_database, sql); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        const QString dumps = TestEnvironment::sharedDumpDirectory();
        if (dumps.isEmpty())
            QSKIP("The full-size dumps are not beside this checkout");
        QVERIFY(m_work.isValid());
        m_csv = m_work.filePath(u"csv"_s);
        QVERIFY(QDir().mkpath(m_csv));
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables()) {
            gzFile input = gzopen(QFile::encodeName(QDir(dumps).filePath(table.fileName() + u".gz"_s)).constData(), "rb");
            QVERIFY(input);
            QFile output(QDir(m_csv).filePath(table.fileName()));
            QVERIFY(output.open(QIODevice::WriteOnly));
            QByteArray buffer(1 << 18, Qt::Uninitialized);
            int count = 0;
            while ((count = gzread(input, buffer.data(), unsigned(buffer.size()))) > 0)
                output.write(buffer.constData(), count);
            gzclose(input);
            QCOMPARE(count, 0);
        }
        m_database = m_work.filePath(u"rebrickable.sqlite"_s);
        m_report = RebrickableDatabaseBuilder::build(m_csv, m_database,
                                          [this](const RebrickableDatabaseBuilder::BuildPhase &phase) { m_phases.append(phase); });
    }

    void theBuildCompletesWithTheFileSize()
    {
        QVERIFY(!m_phases.isEmpty());
        QCOMPARE(m_phases.last().kind, RebrickableDatabaseBuilder::BuildPhase::Kind::complete);
        QCOMPARE(m_phases.last().fileSize, QFileInfo(m_database).size());
        QCOMPARE(value(u"PRAGMA user_version"_s), u"2"_s);
    }

    void everyTableHoldsTheRowsItsParserAccepts()
    {
        for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables()) {
            const qint64 accepted = acceptedRows(QDir(m_csv).filePath(table.fileName()), table.tableName);
            QCOMPARE(value(u"SELECT COUNT(*) FROM "_s + table.tableName).toLongLong(), accepted);
        }
    }

    void theReportHasEveryRowOfTheseDumpsStoredAndEveryHeaderAsExpected()
    {
        QVERIFY(m_report.isClean());
        QCOMPARE(m_report.tables.size(), 12);
        for (const TableImportReport &table : m_report.tables) {
            QCOMPARE(table.rowsStored, table.rowsRead);
            QCOMPARE(table.rowsStored, value(u"SELECT COUNT(*) FROM "_s + table.tableName).toLongLong());
        }
        QCOMPARE(m_report.table(u"inventory_parts"_s)->rowsRead, 1371949);
    }

    void theStrictToolBuildsTheseDumpsWithExitStatusZero()
    {
        QProcess tool;
        tool.start(QStringLiteral(REBRICKABLE_BUILD_DB), {m_csv, m_work.filePath(u"tool.sqlite"_s)});
        QVERIFY(tool.waitForFinished(300000));
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        QCOMPARE(tool.exitCode(), 0);
        QVERIFY(QString::fromUtf8(tool.readAllStandardOutput()).contains(u"inventory_parts     "_s));
    }

    void theTablesHoldTheKnownSizesOfTheseDumps()
    {
        const QList<std::pair<QString, int>> sizes{
            {u"themes"_s, 492},          {u"colors"_s, 275},      {u"part_categories"_s, 76},
            {u"parts"_s, 61770},         {u"part_relationships"_s, 35577}, {u"elements"_s, 108920},
            {u"minifigs"_s, 16663},      {u"sets"_s, 26452},      {u"inventories"_s, 45032},
            {u"inventory_parts"_s, 1371949}, {u"inventory_sets"_s, 4936}, {u"inventory_minifigs"_s, 24894}};
        for (const auto &[table, size] : sizes)
            QCOMPARE(value(u"SELECT COUNT(*) FROM "_s + table).toInt(), size);
    }

    void inventoryPartsEqualTheirDumpRowByRowWithAddressesRestored()
    {
        SQLiteConnection connection(m_database, SQLiteConnection::OpenMode::readOnly);
        SQLiteStatement rows = connection.prepare(
            u"SELECT inventory_id, part_num, color_id, quantity, is_spare, img_url FROM inventory_parts ORDER BY rowid"_s);
        const QString prefix = QString::fromLatin1(CatalogSchema::partImagePrefix);
        qint64 compared = 0;
        qint64 shortened = 0;
        bool same = true;
        forEachRow(QDir(m_csv).filePath(u"inventory_parts.csv"_s), [&](const QStringList &row) {
            const auto expected = CSVRowParsers::parseInventoryPart(row);
            if (!expected || !same)
                return;
            if (!rows.step()) {
                same = false;
                return;
            }
            std::optional<QString> url = rows.optionalString(5);
            if (url && !url->startsWith(u"http"_s)) {
                url = prefix + *url; // the reader's restoration
                ++shortened;
            }
            const InventoryPart stored{rows.integer(0), rows.string(1), rows.integer(2), rows.integer(3), rows.boolean(4), url};
            same = stored == *expected;
            if (!same)
                qWarning() << "differs at row" << compared << row;
            ++compared;
        });
        QVERIFY(!rows.step());
        rows.finalize();
        QVERIFY(same);
        QCOMPARE(compared, 1371949);
        QVERIFY(shortened > 1000000);
    }

    void noStoredPartImageKeepsThePrefix()
    {
        QCOMPARE(value(u"SELECT COUNT(*) FROM inventory_parts WHERE img_url LIKE 'https://cdn.rebrickable.com/media/parts/%'"_s),
                 u"0"_s);
        QVERIFY(value(u"SELECT COUNT(*) FROM inventory_parts WHERE img_url LIKE 'elements/%'"_s).toInt() > 0);
        QVERIFY(value(u"SELECT COUNT(*) FROM inventory_parts WHERE img_url LIKE 'ldraw/%'"_s).toInt() > 0);
        QVERIFY(value(u"SELECT COUNT(*) FROM inventory_parts WHERE img_url IS NULL"_s).toInt() > 0);
        QCOMPARE(value(u"SELECT COUNT(*) FROM inventory_parts WHERE img_url = ''"_s), u"0"_s);
    }

    void colorsWithExtraColumnsAreRead()
    {
        QCOMPARE(value(u"SELECT id || '|' || name || '|' || rgb || '|' || is_trans FROM colors WHERE id = -1"_s),
                 u"-1|[Unknown]|0033B2|0"_s);
        QVERIFY(value(u"SELECT COUNT(*) FROM colors WHERE is_trans = 1"_s).toInt() > 10);
    }

    void quotedNamesWithCommasAreWhole()
    {
        QCOMPARE(value(u"SELECT name FROM parts WHERE part_num = '003383'"_s), u"Sticker Sheet for Sets 618-1, 628-2"_s);
    }

    void fullTextAnswersPrefixQueries()
    {
        QVERIFY(value(u"SELECT COUNT(*) FROM sets_fts WHERE sets_fts MATCH '{set_num name}: falc*'"_s).toInt() > 0);
        QVERIFY(value(u"SELECT COUNT(*) FROM sets_fts f JOIN sets s ON s.rowid = f.rowid "
                      "WHERE sets_fts MATCH '{set_num name}: falc*' AND s.name NOT LIKE '%falc%'"_s) == u"0"_s);
        QCOMPARE(value(u"SELECT s.set_num FROM sets_fts f JOIN sets s ON s.rowid = f.rowid "
                       "WHERE sets_fts MATCH '{set_num}: 75192*' ORDER BY rank LIMIT 1"_s),
                 u"75192-1"_s);
    }

    void theReadInterfaceAnswersFromTheBuiltFile()
    {
        RebrickableDatabase database(m_database);
        const auto falcon = database.set(u"75192-1"_s);
        QVERIFY(falcon);
        QVERIFY(falcon->name.contains(u"Falcon"_s));
        QVERIFY(!database.inventoryParts(u"75192-1"_s).isEmpty());
        QCOMPARE(database.setCount(), 26452);
        QVERIFY(!database.themePath(falcon->themeID).isEmpty());
    }
};

QTEST_GUILESS_MAIN(CatalogBuildIntegrationTest)
#include "CatalogBuildIntegrationTest.moc"
