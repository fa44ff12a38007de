// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "ViewModels/SidebarItem.h"
#include "Views/BundledIconTheme.h"
#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;

namespace {

// Whether `icon` draws something at `size`: not null and not all transparent.
bool drawsSomething(const QIcon &icon, int size)
{
    const QImage image = icon.pixmap(size, size).toImage();
    if (image.isNull())
        return false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
        }
    }
    return false;
}

QList<SidebarItem> sidebarRows()
{
    QList<SidebarItem> rows;
    for (Kind kind : {Kind::allSets, Kind::favorites, Kind::wishlist, Kind::recentlyAdded, Kind::unknownAcquisition,
                      Kind::unknownCondition, Kind::retired, Kind::noPricing, Kind::outdatedPricing, Kind::inventory,
                      Kind::trash, Kind::catalogAll, Kind::catalogAllThemes})
        rows.append(SidebarItem(kind));
    rows.append(SidebarItem::catalogTheme(158, u"Star Wars"_s));
    return rows;
}

} // namespace

// The icons the program draws come from its own bundled theme when the desktop has none.
class BundledIconThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // As on a desktop that names no icon theme.
        QIcon::setThemeName(QString());
        BundledIconTheme::install();
    }

    void theBundledThemeStandsInForAMissingDesktopTheme()
    {
        QCOMPARE(QIcon::themeName(), QString::fromLatin1(BundledIconTheme::name));
        QCOMPARE(QIcon::fallbackThemeName(), QString::fromLatin1(BundledIconTheme::name));
        QVERIFY(QFile::exists(u":/icons/tessaloom-breeze/index.theme"_s));
    }

    void everySidebarRowHasItsOwnDrawnIcon()
    {
        QSet<QString> themeNames;
        for (const SidebarItem &row : sidebarRows()) {
            const QString themeName = SymbolIcon::themeName(row.iconName());
            QVERIFY2(!themeName.isEmpty(), qPrintable(row.iconName()));
            QVERIFY2(QFile::exists(u":/icons/tessaloom-breeze/scalable/"_s + themeName + u".svg"_s),
                     qPrintable(themeName));
            QVERIFY2(QIcon::hasThemeIcon(themeName), qPrintable(themeName));
            QVERIFY2(drawsSomething(SymbolIcon::icon(row.iconName()), 16), qPrintable(themeName));
            themeNames.insert(themeName);
        }
        // No two rows share a picture (the two "unknown" rows used to show the same "?").
        QCOMPARE(themeNames.size(), sidebarRows().size());
    }

    // The grid button and the empty collection's picture were the same stock picture.
    void theGridButtonAndTheEmptyStateDiffer()
    {
        const QString grid = SymbolIcon::themeName(u"square.grid.2x2"_s);
        const QString emptyCollection = SymbolIcon::themeName(u"square.grid.2x2.fill"_s);
        QVERIFY(grid != emptyCollection);
        QVERIFY(grid != SymbolIcon::themeName(u"magnifyingglass"_s));
        for (const QString &symbol : {u"square.grid.2x2"_s, u"square.grid.2x2.fill"_s, u"list.bullet"_s, u"magnifyingglass"_s})
            QVERIFY2(drawsSomething(SymbolIcon::icon(symbol), 22), qPrintable(symbol));
    }

    void aDesktopThemeIsKeptWithTheBundledOneBehindIt()
    {
        QIcon::setThemeName(u"some-desktop-theme"_s);
        BundledIconTheme::install();
        QCOMPARE(QIcon::themeName(), u"some-desktop-theme"_s);
        // A name the desktop theme lacks comes from the bundled one.
        QVERIFY(!QIcon::fromTheme(u"view-grid"_s).isNull());
        QIcon::setThemeName(QString::fromLatin1(BundledIconTheme::name));
    }
};

QTEST_MAIN(BundledIconThemeTest)
#include "BundledIconThemeTest.moc"
