// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/DetailColumnRule.h"

#include <QTest>

using Content = DetailColumnRule::Content;
using Kind = SidebarItem::Kind;

Q_DECLARE_METATYPE(std::optional<SidebarItem>)

// Which screen the detail column takes; the first rule that applies wins.
class DetailColumnRuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesByTheFirstRuleThatApplies_data()
    {
        QTest::addColumn<std::optional<SidebarItem>>("selection");
        QTest::addColumn<bool>("copy");
        QTest::addColumn<bool>("catalogSet");
        QTest::addColumn<Content>("expected");

        const auto item = [](Kind kind) { return std::optional<SidebarItem>(SidebarItem(kind)); };
        QTest::newRow("inventory wins over any selection") << item(Kind::inventory) << true << true
                                                           << Content::inventorySpreadsheet;
        QTest::newRow("trash with a copy") << item(Kind::trash) << true << false << Content::trashedCopy;
        QTest::newRow("trash with a copy and a catalog set") << item(Kind::trash) << true << true << Content::trashedCopy;
        QTest::newRow("trash alone") << item(Kind::trash) << false << true << Content::trashPlaceholder;
        QTest::newRow("catalog set before copy") << item(Kind::allSets) << true << true << Content::catalogSet;
        QTest::newRow("catalog set in a theme")
            << std::optional<SidebarItem>(SidebarItem::catalogTheme(5, QStringLiteral("Castle"))) << false << true
            << Content::catalogSet;
        QTest::newRow("copy") << item(Kind::favorites) << true << false << Content::copy;
        QTest::newRow("copy with no selection") << std::optional<SidebarItem>() << true << false << Content::copy;
        QTest::newRow("theme browser with a copy") << item(Kind::catalogAllThemes) << true << false << Content::copy;
        QTest::newRow("theme browser alone") << item(Kind::catalogAllThemes) << false << false
                                             << Content::themePlaceholder;
        QTest::newRow("catalog without selection") << item(Kind::catalogAll) << false << false
                                                   << Content::setPlaceholder;
        QTest::newRow("nothing at all") << std::optional<SidebarItem>() << false << false << Content::setPlaceholder;
    }

    void choosesByTheFirstRuleThatApplies()
    {
        QFETCH(std::optional<SidebarItem>, selection);
        QFETCH(bool, copy);
        QFETCH(bool, catalogSet);
        QFETCH(Content, expected);
        QCOMPARE(DetailColumnRule::choose(selection, copy, catalogSet), expected);
    }
};

QTEST_GUILESS_MAIN(DetailColumnRuleTest)
#include "DetailColumnRuleTest.moc"
