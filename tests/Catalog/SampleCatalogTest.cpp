// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"

#include <QTest>

using namespace Qt::StringLiterals;

// The catalog that ships with the program, as the build makes it from data/sample-catalog.
class SampleCatalogTest : public QObject
{
    Q_OBJECT

private:
    std::shared_ptr<RebrickableCatalog> m_catalog;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_catalog = RebrickableCatalog::openFile(QStringLiteral(TESSALOOM_SAMPLE_CATALOG));
        QVERIFY(m_catalog);
    }

    void isACurrentCatalogWithFullText()
    {
        QCOMPARE(m_catalog->schemaVersion(), 2);
        QVERIFY(m_catalog->hasFTS());
        QCOMPARE(m_catalog->setCount(), 477);
    }

    void holdsWellKnownSetsWithTheirParts()
    {
        const auto falcon = m_catalog->set(u"75192-1"_s);
        QVERIFY(falcon);
        QCOMPARE(falcon->name, u"Millennium Falcon"_s);
        QVERIFY(m_catalog->inventoryParts(u"75192-1"_s).size() > 100);
        QCOMPARE(m_catalog->searchSetsPromotingExactHit(u"75192"_s, 1000).first().setNum, u"75192-1"_s);
    }

    void everySetHasItsThemeWithAncestors()
    {
        for (const CatalogSetResult &set : m_catalog->searchSets(QString(), 1000)) {
            QVERIFY2(!m_catalog->themePath(set.themeID).isEmpty(), qPrintable(set.setNum));
            QVERIFY(m_catalog->theme(set.themeID));
        }
        QVERIFY(m_catalog->themeTree().size() > 10);
    }

    void coversEveryDecade()
    {
        for (int decade = 1950; decade <= 2020; decade += 10) {
            int sets = 0;
            for (int year = decade; year < decade + 10; ++year)
                sets += int(m_catalog->searchSets(QString::number(year), 1000).size());
            QVERIFY2(sets > 0, qPrintable(QString::number(decade)));
        }
    }
};

QTEST_GUILESS_MAIN(SampleCatalogTest)
#include "SampleCatalogTest.moc"
