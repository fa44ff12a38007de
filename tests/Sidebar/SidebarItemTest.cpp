// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "Services/RebrickableCatalog.h"
#include "TestEnvironment.h"
#include "ViewModels/SidebarItem.h"

#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <unordered_set>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;

class SidebarItemTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_directory.isValid());
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "158,Star Wars,\n171,Ultimate Collector Series,158\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,171,7541,\n");
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path()));
        QVERIFY(m_catalog);
    }

    void plainItemsComeInDeclarationOrderWithTheirIDs()
    {
        QStringList ids;
        for (Kind kind : SidebarItem::plainKinds())
            ids << SidebarItem(kind).id();
        QCOMPARE(ids, (QStringList{u"all_sets"_s, u"favorites"_s, u"wishlist"_s, u"recently_added"_s,
                                   u"unknown_acquisition"_s, u"unknown_condition"_s, u"retired"_s, u"no_pricing"_s,
                                   u"outdated_pricing"_s, u"trash"_s, u"inventory"_s, u"catalog_all"_s,
                                   u"catalog_all_themes"_s}));
        QCOMPARE(SidebarItem::plainKinds().first(), Kind::allSets);
        QCOMPARE(SidebarItem::plainKinds().last(), Kind::catalogAllThemes);
    }

    void plainItemsCarryTheirTitlesIconsAndTextKeys_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("icon");
        QTest::addColumn<QString>("textKey");
        QTest::newRow("allSets") << Kind::allSets << u"All Sets"_s << u"square.grid.2x2"_s << u"sidebar.allSets"_s;
        QTest::newRow("favorites") << Kind::favorites << u"Favorites"_s << u"star"_s << u"sidebar.favorites"_s;
        QTest::newRow("wishlist") << Kind::wishlist << u"Wishlist"_s << u"heart"_s << u"sidebar.wishlist"_s;
        QTest::newRow("recentlyAdded") << Kind::recentlyAdded << u"Recently Added"_s << u"clock"_s
                                       << u"sidebar.recentlyAdded"_s;
        QTest::newRow("unknownAcquisition") << Kind::unknownAcquisition << u"Unknown Acquisition"_s
                                            << u"questionmark.circle"_s << u"sidebar.unknownAcquisition"_s;
        QTest::newRow("unknownCondition") << Kind::unknownCondition << u"Unknown Condition"_s
                                          << u"questionmark.diamond"_s << u"sidebar.unknownCondition"_s;
        QTest::newRow("retired") << Kind::retired << u"Retired"_s << u"tag"_s << u"sidebar.retired"_s;
        QTest::newRow("noPricing") << Kind::noPricing << u"No Pricing"_s << u"dollarsign.circle"_s
                                   << u"sidebar.noPricing"_s;
        QTest::newRow("outdatedPricing") << Kind::outdatedPricing << u"Outdated Pricing"_s
                                         << u"clock.badge.exclamationmark"_s << u"sidebar.outdatedPricing"_s;
        QTest::newRow("trash") << Kind::trash << u"Trash"_s << u"trash"_s << u"sidebar.trash"_s;
        QTest::newRow("inventory") << Kind::inventory << u"Inventory"_s << u"tablecells"_s << u"sidebar.inventory"_s;
        QTest::newRow("catalogAll") << Kind::catalogAll << u"All Sets"_s << u"books.vertical"_s
                                    << u"sidebar.catalog.allSets"_s;
        QTest::newRow("catalogAllThemes") << Kind::catalogAllThemes << u"All Themes"_s << u"folder.badge.gearshape"_s
                                          << u"sidebar.catalog.allThemes"_s;
    }

    void plainItemsCarryTheirTitlesIconsAndTextKeys()
    {
        QFETCH(Kind, kind);
        const SidebarItem item(kind);
        QTEST(item.title(), "title");
        QTEST(item.iconName(), "icon");
        QTEST(item.textKey(), "textKey");
        QVERIFY(!item.rowText().isEmpty());
    }

    void catalogAllHasTheSameTitleAsAllSets()
    {
        QCOMPARE(SidebarItem(Kind::catalogAll).title(), SidebarItem(Kind::allSets).title());
        QVERIFY(SidebarItem(Kind::catalogAll) != SidebarItem(Kind::allSets));
    }

    void aThemeShowsItsNameUnderAFolderWithoutTextKey()
    {
        const SidebarItem theme = SidebarItem::catalogTheme(158, u"Star Wars"_s);
        QCOMPARE(theme.id(), u"catalog_theme_158"_s);
        QCOMPARE(theme.title(), u"Star Wars"_s);
        QCOMPARE(theme.rowText(), u"Star Wars"_s);
        QCOMPARE(theme.iconName(), u"folder"_s);
        QVERIFY(theme.textKey().isEmpty());
        QCOMPARE(theme.kind(), Kind::catalogTheme);
    }

    void twoThemesAreEqualOnlyWithTheSameIDAndName()
    {
        QCOMPARE(SidebarItem::catalogTheme(158, u"Star Wars"_s), SidebarItem::catalogTheme(158, u"Star Wars"_s));
        QVERIFY(SidebarItem::catalogTheme(158, u"Star Wars"_s) != SidebarItem::catalogTheme(158, QString()));
        QVERIFY(SidebarItem::catalogTheme(158, u"Star Wars"_s) != SidebarItem::catalogTheme(171, u"Star Wars"_s));
    }

    void itemsAreHashable()
    {
        const QSet<SidebarItem> qtSet{SidebarItem(Kind::trash), SidebarItem(Kind::trash),
                                      SidebarItem::catalogTheme(1, u"A"_s), SidebarItem::catalogTheme(1, u"B"_s)};
        QCOMPARE(qtSet.size(), 3);
        const std::unordered_set<SidebarItem> standardSet{SidebarItem(Kind::allSets), SidebarItem(Kind::allSets)};
        QCOMPARE(standardSet.size(), size_t(1));
    }

    void everyPlainIDParsesBackToItsItem()
    {
        for (Kind kind : SidebarItem::plainKinds()) {
            const SidebarItem item(kind);
            QCOMPARE(SidebarItem::fromID(item.id(), m_catalog.get()), std::optional<SidebarItem>(item));
        }
    }

    void aStoredThemeTheCatalogKnowsComesBackWithItsName()
    {
        QCOMPARE(SidebarItem::fromID(u"catalog_theme_171"_s, m_catalog.get()),
                 std::optional(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)));
    }

    void aStoredThemeFoundThroughTheSharedCatalogComesBackWithItsName()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        QCOMPARE(SidebarItem::fromID(u"catalog_theme_158"_s),
                 std::optional(SidebarItem::catalogTheme(158, u"Star Wars"_s)));
        RebrickableCatalog::replaceShared(nullptr);
    }

    void aStoredThemeTheCatalogDoesNotKnowComesBackWithoutName()
    {
        QCOMPARE(SidebarItem::fromID(u"catalog_theme_4242"_s, m_catalog.get()),
                 std::optional(SidebarItem::catalogTheme(4242, QString())));
    }

    void aStoredThemeWithoutCatalogComesBackWithoutName()
    {
        QCOMPARE(SidebarItem::fromID(u"catalog_theme_158"_s, nullptr),
                 std::optional(SidebarItem::catalogTheme(158, QString())));
    }

    void idsThatNameNoItemGiveNothing_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("prefix alone") << u"catalog_theme_"_s;
        QTest::newRow("prefix and letters") << u"catalog_theme_abc"_s;
        QTest::newRow("prefix, digits and letters") << u"catalog_theme_12ab"_s;
        QTest::newRow("prefix and a blank") << u"catalog_theme_ 12"_s;
        QTest::newRow("prefix and a fraction") << u"catalog_theme_1.5"_s;
        QTest::newRow("prefix and a number too large") << u"catalog_theme_99999999999999999999"_s;
        QTest::newRow("empty") << QString();
        QTest::newRow("unknown word") << u"everything"_s;
        QTest::newRow("other case") << u"All_Sets"_s;
        QTest::newRow("trailing blank") << u"trash "_s;
        QTest::newRow("title instead of id") << u"All Sets"_s;
    }

    void idsThatNameNoItemGiveNothing()
    {
        QFETCH(QString, id);
        QCOMPARE(SidebarItem::fromID(id, m_catalog.get()), std::nullopt);
    }

    void aThemeIDRoundTripsThroughItsStoredForm()
    {
        const SidebarItem item = SidebarItem::catalogTheme(158, u"Star Wars"_s);
        QCOMPARE(SidebarItem::fromID(item.id(), m_catalog.get()), std::optional(item));
    }
};

QTEST_GUILESS_MAIN(SidebarItemTest)
#include "SidebarItemTest.moc"
