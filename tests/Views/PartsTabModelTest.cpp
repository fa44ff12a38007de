// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/RebrickableCatalog.h"
#include "ViewModels/PartsTabModel.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

PartRow row(const QString &partNum, const QString &partName, int colorID, const QString &colorName,
            const QString &category, int quantity, bool isSpare = false)
{
    PartRow result;
    result.id = partNum + u'-' + QString::number(colorID) + (isSpare ? u"-spare"_s : QString());
    result.partNum = partNum;
    result.partName = partName;
    result.colorID = colorID;
    result.colorName = colorName;
    result.colorHex = u"808080"_s;
    result.category = category;
    result.quantity = quantity;
    result.isSpare = isSpare;
    return result;
}

QStringList numbers(const QList<PartRow> &rows)
{
    QStringList result;
    for (const PartRow &part : rows)
        result << part.partNum;
    return result;
}

QStringList titles(const QList<PartsTabModel::Block> &blocks)
{
    QStringList result;
    for (const PartsTabModel::Block &block : blocks)
        result << block.title;
    return result;
}

// Rows as the catalog hands them out: by part number.
QList<PartRow> sampleRows()
{
    return {row(u"10"_s, u"Tile 2 x 2"_s, 4, u"Red"_s, u"Tiles"_s, 3),
            row(u"3001"_s, u"Brick 2 x 4"_s, 1, u"Blue"_s, u"Bricks"_s, 8),
            row(u"3023"_s, u"Plate 1 x 2"_s, 4, u"Red"_s, u"Plates"_s, 8),
            row(u"3024"_s, u"plate 1 x 1"_s, 0, u"Black"_s, u"Plates"_s, 1),
            row(u"9"_s, u"Axle 2"_s, 0, u"Black"_s, u"Technic Axles"_s, 2),
            row(u"3024"_s, u"plate 1 x 1"_s, 0, u"Black"_s, u"Plates"_s, 1, true)};
}

} // namespace

// The parts tab's rules without a widget: reading, search, order, sections and blocks.
class PartsTabModelTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Town,\n");
        fixture.addRows(u"sets"_s, "1000-1,Fire Station,2020,1,17,\n");
        fixture.addRows(u"inventories"_s, "1,1,1000-1\n2,2,1000-1\n");
        fixture.addRows(u"colors"_s, "4,Red,C91A09,False\n1,Blue,0055BF,False\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n");
        fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3023,Plate 1 x 2,77,Plastic\n");
        fixture.addRows(u"inventory_parts"_s,
                        "1,3005,4,99,False,\n"
                        "2,3001,4,6,False,https://cdn.rebrickable.com/media/parts/elements/300121.jpg\n"
                        "2,3023,1,2,False,\n"
                        "2,3001,4,1,True,\n"
                        "2,99999,321,8,False,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void readingTakesTheNewestInventoryAndNamesEachRow()
    {
        const QList<PartRow> rows = PartsTabModel::readRows(*m_catalog, u"1000-1"_s);
        QCOMPARE(numbers(rows), (QStringList{u"3001"_s, u"3001"_s, u"3023"_s, u"99999"_s}));
        const auto regular = std::find_if(rows.cbegin(), rows.cend(), [](const PartRow &part) { return !part.isSpare; });
        const PartRow brick = *regular;
        QCOMPARE(brick.id, u"3001-4"_s);
        QCOMPARE(brick.partName, u"Brick 2 x 4"_s);
        QCOMPARE(brick.colorID, 4);
        QCOMPARE(brick.colorName, u"Red"_s);
        QCOMPARE(brick.colorHex, u"C91A09"_s);
        QCOMPARE(brick.category, u"Bricks"_s);
        QCOMPARE(brick.quantity, 6);
        QVERIFY(!brick.isSpare);
        QCOMPARE(brick.imgURL, u"https://cdn.rebrickable.com/media/parts/elements/300121.jpg"_s);
        const auto spareRow = std::find_if(rows.cbegin(), rows.cend(), [](const PartRow &part) { return part.isSpare; });
        QVERIFY(spareRow != rows.cend());
        const PartRow spare = *spareRow;
        QCOMPARE(spare.quantity, 1);
        QCOMPARE(spare.id, u"3001-4-spare"_s);
        QCOMPARE(rows.at(2).imgURL, std::nullopt);
    }

    void unknownPartColourAndCategoryFallBack()
    {
        const QList<PartRow> rows = PartsTabModel::readRows(*m_catalog, u"1000-1"_s);
        // Category 77 has no name in the catalog.
        QCOMPARE(rows.at(2).category, u"Other"_s);
        const PartRow unknown = rows.at(3);
        QCOMPARE(unknown.partName, u"99999"_s);
        QCOMPARE(unknown.colorName, u"Unknown"_s);
        QCOMPARE(unknown.colorHex, u"808080"_s);
        QCOMPARE(unknown.category, u"Other"_s);
    }

    void aSetTheCatalogLacksReadsAsNoRows()
    {
        QVERIFY(PartsTabModel::readRows(*m_catalog, u"4242-1"_s).isEmpty());
    }

    void headerFiguresCountRegularRowsTheirPiecesAndSpares()
    {
        PartsTabModel model;
        model.setParts(sampleRows());
        QCOMPARE(model.uniqueCount(), 5);
        QCOMPARE(model.totalPieces(), 22);
        QCOMPARE(model.spareCount(), 1);
    }

    void aSetWithoutSparesHasNoSpareSectionAndNoSpareCount()
    {
        PartsTabModel model;
        model.setParts(sampleRows().first(5));
        QCOMPARE(model.spareCount(), 0);
        const QList<PartsTabModel::Section> sections = model.sections();
        QCOMPARE(sections.size(), 1);
        QCOMPARE(sections.at(0).kind, PartsTabModel::Section::Kind::regular);
    }

    void sparesFollowTheRegularPartsInASectionOfTheirOwn()
    {
        PartsTabModel model;
        model.setParts(sampleRows());
        model.setGroupBy(PartsTabModel::GroupMode::color);
        const QList<PartsTabModel::Section> sections = model.sections();
        QCOMPARE(sections.size(), 2);
        QCOMPARE(sections.at(0).kind, PartsTabModel::Section::Kind::regular);
        QCOMPARE(sections.at(1).kind, PartsTabModel::Section::Kind::spare);
        // Spares stand in one block whatever the grouping.
        QCOMPARE(sections.at(1).blocks.size(), 1);
        QCOMPARE(numbers(sections.at(1).blocks.at(0).rows), (QStringList{u"3024"_s}));
    }

    void noRowsMeansNoSections()
    {
        PartsTabModel model;
        QVERIFY(model.sections().isEmpty());
    }

    void searchRedFindsARowByItsColourName()
    {
        PartsTabModel model;
        model.setSearchText(u"red"_s);
        const PartRow tile = sampleRows().at(0);
        QVERIFY(!tile.partName.toLower().contains(u"red"_s));
        QVERIFY(!tile.partNum.contains(u"red"_s));
        QVERIFY(model.matches(tile));
        QCOMPARE(numbers(model.filteredAndSorted(sampleRows())), (QStringList{u"3023"_s, u"10"_s}));
    }

    void searchIgnoresCaseAndLooksAtNumberAndCategory()
    {
        PartsTabModel model;
        model.setSearchText(u"TECHNIC"_s);
        QCOMPARE(numbers(model.filteredAndSorted(sampleRows())), (QStringList{u"9"_s}));
        model.setSearchText(u"302"_s);
        QCOMPARE(numbers(model.filteredAndSorted(sampleRows())), (QStringList{u"3023"_s, u"3024"_s, u"3024"_s}));
    }

    void searchKeepsTheWholeTextTogether()
    {
        PartsTabModel model;
        model.setSearchText(u"plate 1 x 2"_s);
        QCOMPARE(numbers(model.filteredAndSorted(sampleRows())), (QStringList{u"3023"_s}));
        model.setSearchText(u" plate"_s);
        QCOMPARE(numbers(model.filteredAndSorted(sampleRows())), QStringList());
    }

    void searchNarrowsTheSpareSectionButKeepsIt()
    {
        PartsTabModel model;
        model.setParts(sampleRows());
        model.setSearchText(u"brick"_s);
        const QList<PartsTabModel::Section> sections = model.sections();
        QCOMPARE(sections.size(), 2);
        QCOMPARE(numbers(sections.at(0).blocks.at(0).rows), (QStringList{u"3001"_s}));
        QVERIFY(sections.at(1).blocks.at(0).rows.isEmpty());
    }

    void nameOrderIsPlainTextOrder()
    {
        QList<PartRow> rows = sampleRows().first(5);
        PartsTabModel::sort(rows, PartsTabModel::SortMode::name);
        // Plain comparison: upper case before lower case.
        QCOMPARE(numbers(rows), (QStringList{u"9"_s, u"3001"_s, u"3023"_s, u"10"_s, u"3024"_s}));
    }

    void quantityOrderPutsTheMostUsedFirstAndKeepsTiesInCatalogOrder()
    {
        QList<PartRow> rows = sampleRows().first(5);
        PartsTabModel::sort(rows, PartsTabModel::SortMode::quantity);
        QCOMPARE(numbers(rows), (QStringList{u"3001"_s, u"3023"_s, u"10"_s, u"9"_s, u"3024"_s}));
    }

    void partNumberOrderPutsTenBeforeNine()
    {
        QList<PartRow> rows = sampleRows().first(5);
        std::reverse(rows.begin(), rows.end());
        PartsTabModel::sort(rows, PartsTabModel::SortMode::partNumber);
        QCOMPARE(numbers(rows), (QStringList{u"10"_s, u"3001"_s, u"3023"_s, u"3024"_s, u"9"_s}));
    }

    void noGroupingIsOneBlockWithoutTitle()
    {
        const QList<PartsTabModel::Block> blocks = PartsTabModel::group(sampleRows(), PartsTabModel::GroupMode::none);
        QCOMPARE(blocks.size(), 1);
        QVERIFY(blocks.at(0).title.isEmpty());
        QCOMPARE(blocks.at(0).rows.size(), 6);
    }

    void colourBlocksStandInColourNameOrderAndKeepRowOrder()
    {
        const QList<PartsTabModel::Block> blocks =
            PartsTabModel::group(sampleRows().first(5), PartsTabModel::GroupMode::color);
        QCOMPARE(titles(blocks), (QStringList{u"Black"_s, u"Blue"_s, u"Red"_s}));
        QCOMPARE(blocks.at(0).colorID, 0);
        QCOMPARE(numbers(blocks.at(0).rows), (QStringList{u"3024"_s, u"9"_s}));
        QCOMPARE(numbers(blocks.at(2).rows), (QStringList{u"10"_s, u"3023"_s}));
    }

    void twoColoursOfOneNameStayApart()
    {
        QList<PartRow> rows{row(u"1"_s, u"A"_s, 9, u"Same"_s, u"X"_s, 1), row(u"2"_s, u"B"_s, 3, u"Same"_s, u"X"_s, 1)};
        const QList<PartsTabModel::Block> blocks = PartsTabModel::group(rows, PartsTabModel::GroupMode::color);
        QCOMPARE(blocks.size(), 2);
        QCOMPARE(blocks.at(0).colorID, 3);
        QCOMPARE(blocks.at(1).colorID, 9);
    }

    void categoryBlocksStandInCategoryOrder()
    {
        PartsTabModel model;
        model.setParts(sampleRows());
        model.setGroupBy(PartsTabModel::GroupMode::category);
        model.setSortBy(PartsTabModel::SortMode::quantity);
        const QList<PartsTabModel::Block> blocks = model.sections().at(0).blocks;
        QCOMPARE(titles(blocks), (QStringList{u"Bricks"_s, u"Plates"_s, u"Technic Axles"_s, u"Tiles"_s}));
        QVERIFY(!blocks.at(1).colorID);
        // Within a block the chosen order holds.
        QCOMPARE(numbers(blocks.at(1).rows), (QStringList{u"3023"_s, u"3024"_s}));
    }
};

QTEST_GUILESS_MAIN(PartsTabModelTest)
#include "PartsTabModelTest.moc"
