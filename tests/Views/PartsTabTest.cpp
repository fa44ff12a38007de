// SPDX-License-Identifier: GPL-3.0-or-later
#include "../ImageCache/TestPictures.h"
#include "CatalogFixture.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include "Endpoints.h"
#include "Services/ImageCacheService.h"
#include "Services/PartImageURL.h"
#include "Services/RebrickableCatalog.h"
#include "Views/CellPictureLoader.h"
#include "Views/PartPictureDelegate.h"
#include "Views/PartsTab.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

// The part numbers of the rows under `parent`, headings skipped, depth first.
QStringList rowNumbers(const QTreeWidgetItem *parent)
{
    QStringList numbers;
    for (int child = 0; child < parent->childCount(); ++child) {
        const QTreeWidgetItem *item = parent->child(child);
        if (item->data(PartsTab::NameColumn, Qt::UserRole).toString().isEmpty())
            numbers << rowNumbers(item);
        else
            numbers << item->text(PartsTab::NumberColumn);
    }
    return numbers;
}

QStringList childTitles(const QTreeWidgetItem *parent)
{
    QStringList titles;
    for (int child = 0; child < parent->childCount(); ++child)
        titles << parent->child(child)->text(PartsTab::NameColumn);
    return titles;
}

const QTreeWidgetItem *findRow(const QTreeWidgetItem *parent, const QString &id)
{
    for (int child = 0; child < parent->childCount(); ++child) {
        const QTreeWidgetItem *item = parent->child(child);
        if (item->data(PartsTab::NameColumn, Qt::UserRole).toString() == id)
            return item;
        if (const QTreeWidgetItem *found = findRow(item, id))
            return found;
    }
    return nullptr;
}

} // namespace

// The parts tab offscreen over a tiny real catalog.
class PartsTabTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<QTemporaryDir> m_caches;
    std::unique_ptr<ImageCacheService> m_pictures;
    std::unique_ptr<PartsTab> m_tab;

    PartsTab &tab() { return *m_tab; }
    QTreeWidgetItem *root() { return m_tab->list()->invisibleRootItem(); }

    void load(const QString &setNumber)
    {
        QSignalSpy loaded(m_tab.get(), &PartsTab::loaded);
        tab().setSetNumber(setNumber);
        QVERIFY(loaded.wait());
        QVERIFY(!tab().isLoading());
    }

    void show()
    {
        m_tab->resize(800, 600);
        m_tab->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_tab.get()));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        // One picture cache for the whole run: loads it started for one test may still
        // be on their way when the next begins, and must find it alive.
        m_caches = std::make_unique<QTemporaryDir>();
        m_pictures = std::make_unique<ImageCacheService>(m_caches->path());
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Town,\n");
        fixture.addRows(u"sets"_s, "1000-1,Fire Station,2020,1,17,\n2000-1,Small Car,2021,1,4,\n3000-1,Empty Box,2021,1,0,\n");
        fixture.addRows(u"inventories"_s, "1,1,1000-1\n2,1,2000-1\n3,1,3000-1\n");
        fixture.addRows(u"colors"_s, "0,Black,05131D,False\n4,Red,C91A09,False\n1,Blue,0055BF,False\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n14,Plates\n");
        fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3023,Plate 1 x 2,14,Plastic\n"
                                    "3024,Plate 1 x 1,14,Plastic\n");
        fixture.addRows(u"inventory_parts"_s,
                        "1,3001,1,6,False,https://cdn.rebrickable.com/media/parts/elements/300123.jpg\n"
                        "1,3023,4,8,False,\n"
                        "1,3024,0,2,False,\n"
                        "1,3024,0,1,True,\n"
                        "2,3001,4,4,False,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        // Pictures of rows that get painted go to a port where nothing listens, unless a
        // test serves them.
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9");
        m_tab = std::make_unique<PartsTab>();
        m_tab->setImageCache(m_pictures.get());
    }

    void cleanup()
    {
        m_tab.reset();
        QThreadPool::globalInstance()->waitForDone();
        qunsetenv(Endpoints::overrideVariable);
    }

    void whileLoadingTheHeaderShowsTheProgressText()
    {
        QSignalSpy loaded(m_tab.get(), &PartsTab::loaded);
        tab().setSetNumber(u"1000-1"_s);
        QVERIFY(tab().isLoading());
        QVERIFY(!tab().loadingIndicator()->isHidden());
        QVERIFY(!tab().loadingLabel()->isHidden());
        QCOMPARE(tab().loadingLabel()->text(), u"Loading parts…"_s);
        QVERIFY(tab().uniqueCountLabel()->isHidden());
        QVERIFY(tab().totalPiecesLabel()->isHidden());
        QVERIFY(loaded.wait());
        QVERIFY(tab().loadingIndicator()->isHidden());
        QVERIFY(tab().loadingLabel()->isHidden());
        QVERIFY(!tab().uniqueCountLabel()->isHidden());
    }

    void headerCountsRegularRowsTheirPiecesAndSpares()
    {
        load(u"1000-1"_s);
        QCOMPARE(tab().uniqueCountLabel()->text(), u"3 unique parts"_s);
        QCOMPARE(tab().totalPiecesLabel()->text(), u"16 pieces"_s);
        QVERIFY(!tab().sparesCountLabel()->isHidden());
        QCOMPARE(tab().sparesCountLabel()->text(), u"1 spare"_s);
    }

    void aSetWithoutSparePartsHasNoSpareSectionAndNoSpareCount()
    {
        load(u"2000-1"_s);
        QCOMPARE(tab().uniqueCountLabel()->text(), u"1 unique part"_s);
        QCOMPARE(tab().totalPiecesLabel()->text(), u"4 pieces"_s);
        QVERIFY(tab().sparesCountLabel()->isHidden());
        QCOMPARE(tab().list()->topLevelItemCount(), 1);
        QCOMPARE(tab().list()->topLevelItem(0)->text(PartsTab::NameColumn), u"Parts"_s);
    }

    void sparePartsFollowInTheirOwnSection()
    {
        load(u"1000-1"_s);
        QCOMPARE(tab().list()->topLevelItemCount(), 2);
        QCOMPARE(tab().list()->topLevelItem(0)->text(PartsTab::NameColumn), u"Parts"_s);
        QCOMPARE(tab().list()->topLevelItem(1)->text(PartsTab::NameColumn), u"Spare Parts"_s);
        QCOMPARE(rowNumbers(tab().list()->topLevelItem(0)), (QStringList{u"3001"_s, u"3024"_s, u"3023"_s}));
        QCOMPARE(rowNumbers(tab().list()->topLevelItem(1)), (QStringList{u"3024"_s}));
    }

    void aRowShowsNameNumberColourAndCount()
    {
        load(u"1000-1"_s);
        const QTreeWidgetItem *plate = findRow(root(), u"3023-4"_s);
        QVERIFY(plate);
        QCOMPARE(plate->text(PartsTab::NameColumn), u"Plate 1 x 2"_s);
        QCOMPARE(plate->text(PartsTab::NumberColumn), u"3023"_s);
        QCOMPARE(plate->text(PartsTab::ColorColumn), u"Red"_s);
        QVERIFY(!plate->icon(PartsTab::ColorColumn).isNull());
        QCOMPARE(plate->text(PartsTab::QuantityColumn), u"×8"_s);
    }

    void aRowWithoutPictureAddressAsksTheImageCacheForTheFormedPath()
    {
        LoopbackHttpServer server;
        QVERIFY(server.listen());
        server.serveBytes(u"/media/parts/ldraw/4/3023.png"_s, TestPictures::png(QSize(60, 60)));
        server.serveBytes(u"/media/parts/elements/300123.jpg"_s, TestPictures::jpeg(QSize(60, 60)));
        qputenv(Endpoints::overrideVariable, QByteArray("rebrickable=") + server.baseUrl().toString().toUtf8());
        show();
        load(u"1000-1"_s);

        const QString formed = server.url(u"/media/parts/ldraw/4/3023.png"_s).toString();
        QCOMPARE(PartImageURL::formed(4, u"3023"_s), formed);
        const QTreeWidgetItem *plate = findRow(root(), u"3023-4"_s);
        QVERIFY(plate);
        QCOMPARE(plate->data(PartsTab::NameColumn, PartPictureDelegate::PictureURLRole).toString(), formed);
        // Painting the row asks for its picture; once there, the loader holds it.
        QTRY_COMPARE(server.requestCount(u"/media/parts/ldraw/4/3023.png"_s), 1);
        QTRY_VERIFY(!tab().pictures()->picture(formed).isNull());
        // A row that names its own picture asks for that one instead. (The catalog keeps
        // the media host apart from the path, so the row's own address is on the same host.)
        const QTreeWidgetItem *brick = findRow(root(), u"3001-1"_s);
        QVERIFY(brick);
        QCOMPARE(brick->data(PartsTab::NameColumn, PartPictureDelegate::PictureURLRole).toString(),
                 server.url(u"/media/parts/elements/300123.jpg"_s).toString());
        QTRY_COMPARE(server.requestCount(u"/media/parts/elements/300123.jpg"_s), 1);
        QCOMPARE(server.requestCount(u"/media/parts/ldraw/1/3001.png"_s), 0);
        QTRY_VERIFY(server.inFlightRequests() == 0);
    }

    void searchRedFindsARowByItsColourName()
    {
        load(u"1000-1"_s);
        QTest::keyClicks(tab().searchField(), u"red"_s);
        QCOMPARE(tab().model().searchText(), u"red"_s);
        // Neither "Plate 1 x 2" nor "3023" holds "red"; its colour does.
        QCOMPARE(rowNumbers(tab().list()->topLevelItem(0)), (QStringList{u"3023"_s}));
        QVERIFY(rowNumbers(tab().list()->topLevelItem(1)).isEmpty());
    }

    void theSearchFieldPromptsForAFilter()
    {
        QCOMPARE(tab().searchField()->placeholderText(), u"Filter parts"_s);
    }

    void groupPickerIs130Wide()
    {
        show();
        QCOMPARE(tab().groupPicker()->width(), PartsTab::groupPickerWidth);
        QCOMPARE(PartsTab::groupPickerWidth, 130);
        QCOMPARE(tab().groupPicker()->accessibleName(), u"Group"_s);
        QCOMPARE(tab().sortPicker()->accessibleName(), u"Sort"_s);
    }

    void groupingByColourPutsRowsUnderColourHeadings()
    {
        load(u"1000-1"_s);
        tab().groupPicker()->setCurrentIndex(tab().groupPicker()->findData(int(PartsTab::GroupMode::color)));
        QCOMPARE(tab().model().groupBy(), PartsTab::GroupMode::color);
        const QTreeWidgetItem *regular = tab().list()->topLevelItem(0);
        QCOMPARE(childTitles(regular), (QStringList{u"Black"_s, u"Blue"_s, u"Red"_s}));
        QCOMPARE(rowNumbers(regular->child(2)), (QStringList{u"3023"_s}));
        QVERIFY(!regular->child(0)->icon(PartsTab::NameColumn).isNull());
        // The spares stay in one run, without colour headings.
        QCOMPARE(childTitles(tab().list()->topLevelItem(1)), (QStringList{u"Plate 1 x 1"_s}));
    }

    void headingsSpanTheRowInBoldAndEveryHeadingIsOpen()
    {
        load(u"1000-1"_s);
        tab().setGroupBy(PartsTab::GroupMode::color);
        QTreeWidgetItem *regular = tab().list()->topLevelItem(0);
        QTreeWidgetItem *black = regular->child(0);
        for (QTreeWidgetItem *heading : {regular, black, tab().list()->topLevelItem(1)}) {
            QVERIFY(heading->isFirstColumnSpanned());
            QVERIFY(heading->font(PartsTab::NameColumn).bold());
            QVERIFY(heading->isExpanded());
        }
        QVERIFY(!black->child(0)->isFirstColumnSpanned());
        QVERIFY(!black->child(0)->font(PartsTab::NameColumn).bold());
    }

    void groupingByCategoryPutsRowsUnderCategoryHeadings()
    {
        load(u"1000-1"_s);
        tab().setGroupBy(PartsTab::GroupMode::category);
        QCOMPARE(tab().groupPicker()->currentData().toInt(), int(PartsTab::GroupMode::category));
        const QTreeWidgetItem *regular = tab().list()->topLevelItem(0);
        QCOMPARE(childTitles(regular), (QStringList{u"Bricks"_s, u"Plates"_s}));
        QCOMPARE(rowNumbers(regular->child(1)), (QStringList{u"3024"_s, u"3023"_s}));
    }

    void sortPickerReordersTheRows()
    {
        load(u"1000-1"_s);
        tab().sortPicker()->setCurrentIndex(tab().sortPicker()->findData(int(PartsTab::SortMode::quantity)));
        QCOMPARE(rowNumbers(tab().list()->topLevelItem(0)), (QStringList{u"3023"_s, u"3001"_s, u"3024"_s}));
        tab().sortPicker()->setCurrentIndex(tab().sortPicker()->findData(int(PartsTab::SortMode::partNumber)));
        QCOMPARE(rowNumbers(tab().list()->topLevelItem(0)), (QStringList{u"3001"_s, u"3023"_s, u"3024"_s}));
    }

    void aSetWithoutRowsSaysThereIsNoData()
    {
        load(u"3000-1"_s);
        show();
        QVERIFY(tab().noDataLabel()->isVisible());
        QVERIFY(!tab().list()->isVisible());
        QCOMPARE(tab().noDataLabel()->text(), u"No parts data for this set."_s);
        QVERIFY(tab().sparesCountLabel()->isHidden());
    }

    void anAbsentCatalogEndsLoadingWithNoData()
    {
        RebrickableCatalog::replaceShared(nullptr);
        load(u"1000-1"_s);
        QVERIFY(tab().model().parts().isEmpty());
        QCOMPARE(tab().list()->topLevelItemCount(), 0);
    }

    void theLaterSetNumberWinsOverAReadStillRunning()
    {
        QSignalSpy loaded(m_tab.get(), &PartsTab::loaded);
        tab().setSetNumber(u"1000-1"_s);
        tab().setSetNumber(u"2000-1"_s);
        QVERIFY(loaded.wait());
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(tab().setNumber(), u"2000-1"_s);
        QCOMPARE(rowNumbers(root()), (QStringList{u"3001"_s}));
    }
};

QTEST_MAIN(PartsTabTest)
#include "PartsTabTest.moc"
