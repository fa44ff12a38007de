// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <atomic>

using namespace Qt::StringLiterals;

// The catalog's searches on the full-size catalog, each checked against the same SQL run
// independently by the sqlite3 shell on the same file.
class CatalogFullDumpTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    QString m_databasePath;
    std::shared_ptr<RebrickableCatalog> m_catalog;

    QStringList shell(const QString &sql) const
    {
        QProcess process;
        process.start(u"sqlite3"_s, {u"-readonly"_s, u"-noheader"_s, u"-list"_s, m_databasePath, sql});
        if (!process.waitForFinished(60'000) || process.exitCode() != 0)
            return {u"<sqlite3 failed: "_s + QString::fromUtf8(process.readAllStandardError()) + u'>'};
        return QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }

    static QStringList numbers(const QList<CatalogSetResult> &results)
    {
        QStringList list;
        for (const CatalogSetResult &result : results)
            list << result.setNum;
        return list;
    }

    static QString ftsSql(const QString &match, const QString &extra = {})
    {
        return u"SELECT s.set_num FROM sets_fts fts JOIN sets s ON s.rowid = fts.rowid WHERE sets_fts MATCH '"_s + match
            + u"'"_s + extra + u" ORDER BY rank LIMIT 1000"_s;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        if (TestEnvironment::sharedDumpDirectory().isEmpty())
            QSKIP("the full-size dumps are not beside this checkout");
        QVERIFY(m_directory.isValid());
        m_databasePath = CatalogFixture::buildFullCatalog(m_directory.path());
        QVERIFY(!m_databasePath.isEmpty());
        m_catalog = RebrickableCatalog::openFile(m_databasePath);
        QVERIFY(m_catalog);
        QCOMPARE(m_catalog->schemaVersion(), 2);
    }

    void wordAndYearMatchesTheShell()
    {
        const QStringList expected = shell(ftsSql(u"{set_num name}: falcon*"_s, u" AND s.year IN (2019)"_s));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(numbers(m_catalog->searchSets(u"falcon 2019"_s, 1000)), expected);
    }

    void yearAloneMatchesTheShell()
    {
        const QStringList expected =
            shell(u"SELECT set_num FROM sets WHERE year IN (2019) ORDER BY year DESC, name ASC LIMIT 1000"_s);
        QCOMPARE(expected.size(), 1000);
        QCOMPARE(numbers(m_catalog->searchSets(u"2019"_s, 1000)), expected);
    }

    void setNumberPrefixMatchesTheShell()
    {
        const QStringList expected = shell(ftsSql(u"{set_num}: 75192*"_s));
        QVERIFY(expected.contains(u"75192-1"_s));
        QCOMPARE(numbers(m_catalog->searchSets(u"75192"_s, 1000)), expected);
        QCOMPARE(numbers(m_catalog->searchSets(u"7965"_s, 1000)), shell(ftsSql(u"{set_num}: 7965*"_s)));
        QCOMPARE(numbers(m_catalog->searchSetsPromotingExactHit(u"7965"_s, 1000)).first(), u"7965-1"_s);
    }

    void twoWordsMatchTheShell()
    {
        const QStringList expected = shell(ftsSql(u"{set_num name}: star* AND {set_num name}: wars*"_s));
        QVERIFY(expected.size() > 50);
        QCOMPARE(numbers(m_catalog->searchSets(u"star wars"_s, 1000)), expected);
    }

    void onlyRemovedCharactersMatchTheShellFallback()
    {
        const QStringList expected = shell(
            u"SELECT set_num FROM sets WHERE (name LIKE '%()%' OR set_num LIKE '%()%') ORDER BY year DESC, name ASC LIMIT 1000"_s);
        QCOMPARE(numbers(m_catalog->searchSets(u"()"_s, 1000)), expected);
    }

    void hyphenatedNumberGivesAnEmptyList()
    {
        QVERIFY(m_catalog->searchSets(u"75192-1"_s, 1000).isEmpty());
    }

    void deepThemeMatchesARecursiveQueryOfTheShell()
    {
        // The theme with the most levels below it.
        const QStringList deepest = shell(
            u"WITH RECURSIVE walk(root, id, depth) AS (SELECT id, id, 0 FROM themes UNION ALL "
            "SELECT walk.root, themes.id, walk.depth + 1 FROM themes JOIN walk ON themes.parent_id = walk.id) "
            "SELECT root FROM walk GROUP BY root ORDER BY MAX(depth) DESC, COUNT(*) DESC LIMIT 1"_s);
        QCOMPARE(deepest.size(), 1);
        const int themeID = deepest.first().toInt();
        const QStringList expected = shell(
            u"WITH RECURSIVE walk(id) AS (SELECT "_s + QString::number(themeID)
            + u" UNION ALL SELECT themes.id FROM themes JOIN walk ON themes.parent_id = walk.id) "
              "SELECT set_num FROM sets WHERE theme_id IN (SELECT id FROM walk) ORDER BY year DESC, name ASC LIMIT 1000"_s);
        QVERIFY(!expected.isEmpty());
        QCOMPARE(numbers(m_catalog->searchSets(themeID, QString(), 1000)), expected);
    }

    void largestSetInventoryMatchesTheShell()
    {
        const QStringList largest = shell(u"SELECT set_num FROM sets ORDER BY num_parts DESC LIMIT 1"_s);
        const QString setNumber = largest.value(0);
        const QStringList expected = shell(
            u"SELECT ip.part_num FROM inventory_parts ip JOIN inventories i ON ip.inventory_id = i.id WHERE i.set_num = '"_s
            + setNumber + u"' AND i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = '"_s
            + setNumber + u"') ORDER BY ip.part_num"_s);
        QStringList parts;
        for (const CatalogInventoryPartResult &part : m_catalog->inventoryParts(setNumber))
            parts << part.partNum;
        QCOMPARE(parts, expected);
    }

    void themeListsCoverEveryThemeWithSets()
    {
        const QStringList usedThemes = shell(u"SELECT COUNT(DISTINCT theme_id) FROM sets WHERE theme_id IN (SELECT id FROM themes)"_s);
        QCOMPARE(m_catalog->flatThemes().size(), usedThemes.value(0).toInt());
        QVERIFY(!m_catalog->themeTree().isEmpty());
        QCOMPARE(m_catalog->setCount(), shell(u"SELECT COUNT(*) FROM sets"_s).value(0).toInt());
    }

    void eightThreadsQueryWhileTheInstanceIsReplaced()
    {
        const auto second = RebrickableCatalog::openFile(m_databasePath);
        QVERIFY(second);
        RebrickableCatalog::replaceShared(m_catalog);
        const QStringList expected = numbers(m_catalog->searchSets(u"falcon"_s, 1000));

        std::atomic<bool> stop = false;
        std::atomic<int> queries = 0;
        std::atomic<int> mismatches = 0;
        QList<QThread *> threads;
        for (int i = 0; i < 8; ++i) {
            threads << QThread::create([&] {
                while (!stop) {
                    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
                    if (numbers(catalog->searchSets(u"falcon"_s, 1000)) != expected)
                        ++mismatches;
                    ++queries;
                }
            });
            threads.last()->start();
        }
        // Swap between two instances of the same file while the readers run.
        for (int swap = 0; swap < 200; ++swap) {
            RebrickableCatalog::replaceShared(swap % 2 ? m_catalog : RebrickableCatalog::openFile(m_databasePath));
            QThread::msleep(2);
        }
        stop = true;
        for (QThread *thread : threads) {
            QVERIFY(thread->wait(30'000));
            delete thread;
        }
        QVERIFY(queries > 8);
        QCOMPARE(mismatches.load(), 0);
        RebrickableCatalog::replaceShared(nullptr);
    }
};

QTEST_GUILESS_MAIN(CatalogFullDumpTest)
#include "CatalogFullDumpTest.moc"
