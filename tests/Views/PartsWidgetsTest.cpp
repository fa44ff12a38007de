// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEnvironment.h"

#include "Views/CategoryFilterChip.h"
#include "Views/ColorFilterChip.h"
#include "Views/ColorSwatch.h"
#include "Views/CompletionRing.h"

#include <QImage>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QImage rendered(QWidget &widget)
{
    widget.resize(widget.sizeHint());
    return widget.grab().toImage();
}

bool isNearly(QColor a, QColor b)
{
    return qAbs(a.red() - b.red()) < 12 && qAbs(a.green() - b.green()) < 12 && qAbs(a.blue() - b.blue()) < 12;
}

} // namespace

// The small painted pieces of the parts screens: ring, swatch and filter chips.
class PartsWidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void ringHoldsItsFractionBetweenZeroAndOne()
    {
        CompletionRing ring(1.5, 80);
        QCOMPARE(ring.fraction(), 1.0);
        ring.setFraction(-0.2);
        QCOMPARE(ring.fraction(), 0.0);
        ring.setFraction(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(ring.fraction(), 0.0);
        ring.setFraction(0.25);
        QCOMPARE(ring.fraction(), 0.25);
        QCOMPARE(ring.sizeHint(), QSize(80, 80));
    }

    void ringFillsClockwiseFromTheTop()
    {
        CompletionRing ring(0.5, 100);
        const QColor accent = ring.palette().color(QPalette::Highlight);
        const QImage half = rendered(ring);
        // The right half is drawn, the left is only the faint track.
        QVERIFY(isNearly(half.pixelColor(95, 50), accent));
        QVERIFY(!isNearly(half.pixelColor(4, 50), accent));
        ring.setFraction(0);
        QVERIFY(!isNearly(rendered(ring).pixelColor(95, 50), accent));
    }

    void aFinishedRingTurnsGreen()
    {
        CompletionRing ring(1.0, 100);
        QVERIFY(isNearly(rendered(ring).pixelColor(4, 50), QColor(52, 168, 83)));
    }

    void ringCentreShowsItsText()
    {
        CompletionRing ring(0.5, 100);
        const QImage empty = rendered(ring);
        ring.setCentreText(u"50%"_s);
        QCOMPARE(ring.centreText(), u"50%"_s);
        QVERIFY(rendered(ring) != empty);
    }

    void swatchReadsHexWithOrWithoutHash()
    {
        QCOMPARE(ColorSwatch::colorOf(u"C91A09"_s), QColor(0xC9, 0x1A, 0x09));
        QCOMPARE(ColorSwatch::colorOf(u"#0055BF"_s), QColor(0x00, 0x55, 0xBF));
        QCOMPARE(ColorSwatch::colorOf(u"nonsense"_s), QColor(0x80, 0x80, 0x80));
        QCOMPARE(ColorSwatch::colorOf(QString()), QColor(0x80, 0x80, 0x80));
    }

    void swatchPaintsItsColour()
    {
        ColorSwatch swatch(u"C91A09"_s, 20);
        QCOMPARE(swatch.sizeHint(), QSize(20, 20));
        QCOMPARE(rendered(swatch).pixelColor(10, 10), QColor(0xC9, 0x1A, 0x09));
        QCOMPARE(ColorSwatch::icon(u"0055BF"_s, 16).pixmap(16, 16).toImage().pixelColor(8, 8), QColor(0x00, 0x55, 0xBF));
    }

    void colourChipRunsItsActionAndShowsItsSwatch()
    {
        int runs = 0;
        ColorFilterChip chip(u"C91A09"_s, false, [&runs] { ++runs; });
        chip.setColorName(u"Red"_s);
        chip.resize(chip.sizeHint());
        QCOMPARE(chip.swatch()->hexCode(), u"C91A09"_s);
        QCOMPARE(chip.accessibleName(), u"Red"_s);
        QTest::mouseClick(&chip, Qt::LeftButton, {}, chip.rect().center());
        QCOMPARE(runs, 1);
        // Selection is the owner's to set, not a side effect of the click.
        QVERIFY(!chip.isSelected());
    }

    void aSelectedColourChipWearsARing()
    {
        ColorFilterChip chip(u"FFFFFF"_s, false, {});
        const QImage plain = rendered(chip);
        chip.setSelected(true);
        const QImage selected = rendered(chip);
        const QColor accent = chip.palette().color(QPalette::Highlight);
        QVERIFY(!isNearly(plain.pixelColor(1, selected.height() / 2), accent));
        QVERIFY(isNearly(selected.pixelColor(1, selected.height() / 2), accent));
    }

    void categoryChipRunsItsActionAndShowsSelection()
    {
        int runs = 0;
        CategoryFilterChip chip(u"Bricks"_s, true, [&runs] { ++runs; });
        chip.resize(chip.sizeHint());
        QCOMPARE(chip.name(), u"Bricks"_s);
        QCOMPARE(chip.text(), u"Bricks"_s);
        QVERIFY(chip.isSelected());
        const QImage selected = rendered(chip);
        QTest::mouseClick(&chip, Qt::LeftButton, {}, chip.rect().center());
        QCOMPARE(runs, 1);
        chip.setSelected(false);
        QVERIFY(rendered(chip) != selected);
    }
};

QTEST_MAIN(PartsWidgetsTest)
#include "PartsWidgetsTest.moc"
