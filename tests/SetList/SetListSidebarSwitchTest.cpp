// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSidebarSwitch.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(SetListSidebarSwitch)

namespace QTest {
template<>
char *toString(const SetListSidebarSwitch &change)
{
    const QString text = u"keepsSearchText=%1 catalogThemeID=%2 searchesCatalog=%3"_s.arg(
        change.keepsSearchText ? u"yes"_s : u"no"_s,
        change.catalogThemeID ? QString::number(*change.catalogThemeID) : u"none"_s,
        change.searchesCatalog ? u"yes"_s : u"no"_s);
    return qstrdup(text.toUtf8().constData());
}
} // namespace QTest

class SetListSidebarSwitchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachItemKindChangesSearchThemeAndResultsAsTheListNeeds_data()
    {
        QTest::addColumn<QString>("itemID");
        QTest::addColumn<SetListSidebarSwitch>("expected");
        // The catalog was limited to theme 5 before each switch.
        QTest::newRow("a catalog theme searches it with a cleared text")
            << u"catalog_theme_158"_s << SetListSidebarSwitch{false, 158, true};
        QTest::newRow("the whole catalog searches without a theme")
            << u"catalog_all"_s << SetListSidebarSwitch{false, std::nullopt, true};
        QTest::newRow("all themes keeps text and theme and empties the results")
            << u"catalog_all_themes"_s << SetListSidebarSwitch{true, 5, false};
        QTest::newRow("a collection list clears all three")
            << u"favorites"_s << SetListSidebarSwitch{false, std::nullopt, false};
        QTest::newRow("the trash clears all three") << u"trash"_s << SetListSidebarSwitch{false, std::nullopt, false};
        QTest::newRow("no selection clears all three") << QString() << SetListSidebarSwitch{false, std::nullopt, false};
        QTest::newRow("an unknown id is no selection")
            << u"catalog_theme_abc"_s << SetListSidebarSwitch{false, std::nullopt, false};
    }

    void eachItemKindChangesSearchThemeAndResultsAsTheListNeeds()
    {
        QFETCH(QString, itemID);
        QFETCH(SetListSidebarSwitch, expected);
        QCOMPARE(SetListSidebarSwitch::to(SetListSelection::fromItemID(itemID), 5), expected);
    }

    void allThemesWithoutAThemeStaysWithoutOne()
    {
        const SetListSidebarSwitch change =
            SetListSidebarSwitch::to(SetListSelection::fromItemID(u"catalog_all_themes"_s), std::nullopt);
        QCOMPARE(change.catalogThemeID, std::nullopt);
    }
};

QTEST_GUILESS_MAIN(SetListSidebarSwitchTest)
#include "SetListSidebarSwitchTest.moc"
