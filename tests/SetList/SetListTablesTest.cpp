// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "TestEnvironment.h"

#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "Views/CatalogGridItemView.h"
#include "Views/CatalogTableView.h"
#include "Views/SetGridCellPainter.h"
#include "Views/SetGridItemView.h"
#include "Views/SetGridView.h"
#include "Views/SetListView.h"
#include "Views/SetTableView.h"
#include "Views/TranslationLoader.h"

#include <QApplication>
#include <QFontMetrics>
#include <QHeaderView>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {
// The middle column of the main window at its default size of 1,600 x 1,000 points: the
// sidebar's 220 and the detail's share taken away.
constexpr int defaultListWidth = 660;
constexpr int defaultListHeight = 900;
} // namespace

// The set list's tables and cells as the user reads them: the name gets the room, the
// other columns their content's width, the user's widths are kept, and numbers follow the
// user's locale.
class SetListTablesTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<SetListViewModel> m_model;
    std::unique_ptr<SetListView> m_view;
    CatalogSet m_falcon;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }
    SetListViewModel &model() { return *m_model; }

    void showView()
    {
        m_view->resize(defaultListWidth, defaultListHeight);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

    void showCatalogTable()
    {
        model().setGridView(false);
        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::catalogAll));
        m_view->setSidebarSelection(SidebarItem(SidebarItem::Kind::catalogAll));
        QTRY_VERIFY(!model().isCatalogSearchRunning());
        QTRY_COMPARE(m_view->currentList(), m_view->catalogTable());
    }

    void showCopiesTable()
    {
        saveCopy(context(), m_falcon.objectID);
        model().setGridView(false);
        QTRY_COMPARE(m_view->currentList(), m_view->copiesTable());
    }

    static int textWidth(const QTableView &table, const QString &text)
    {
        return QFontMetrics(table.font()).horizontalAdvance(text);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Star Wars,\n5,Castle,\n6,Collectible Minifigures,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,1,7541,\n"
                                   "75257-1,Millennium Falcon,2019,1,1351,\n"
                                   "10305-1,Lion Knights' Castle,2022,5,4514,\n"
                                   "71045-13,Series 25 Minifigure Complete Set,2024,6,96,\n");
        QVERIFY(m_directory.isValid());
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_directory.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        QSettings().clear();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        CatalogSet falcon = catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        falcon.pieceCount = 7541;
        falcon.themeName = u"Star Wars"_s;
        m_falcon = context().insert(falcon);
        context().save();
        m_model = std::make_unique<SetListViewModel>(m_store->container());
        m_view = std::make_unique<SetListView>(*m_model);
        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
    }

    void cleanup()
    {
        m_view.reset();
        m_model.reset();
        m_store.reset();
        QThreadPool::globalInstance()->waitForDone();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void theCatalogTablesNameTakesAtLeastTwoFifthsAtTheDefaultSize()
    {
        showView();
        showCatalogTable();
        CatalogTableView *table = m_view->catalogTable();
        const int name = table->horizontalHeader()->sectionSize(CatalogSetListModel::NameColumn);
        QVERIFY2(name >= SetListTable::stretchColumnShare * table->viewport()->width(),
                 qPrintable(u"%1 of %2"_s.arg(name).arg(table->viewport()->width())));
        // The name is never squeezed below any other column.
        for (int column = 0; column < table->model()->columnCount(); ++column)
            QVERIFY(table->horizontalHeader()->sectionSize(column) <= name);
    }

    void theCatalogTablesOtherColumnsFitTheirContent()
    {
        showView();
        showCatalogTable();
        CatalogTableView *table = m_view->catalogTable();
        QHeaderView *header = table->horizontalHeader();
        QVERIFY(header->sectionSize(CatalogSetListModel::SetNumberColumn) >= textWidth(*table, u"71045-13"_s));
        QVERIFY(header->sectionSize(CatalogSetListModel::ThemeColumn) >= textWidth(*table, u"Star Wars"_s));
        QVERIFY(header->sectionSize(CatalogSetListModel::PiecesColumn) >= textWidth(*table, u"7,541"_s));
        // Content-sized, not the old fixed widths: the year column is narrow.
        QVERIFY(header->sectionSize(CatalogSetListModel::YearColumn) < header->sectionSize(CatalogSetListModel::ThemeColumn));
    }

    void theCollectionTablesNameTakesAtLeastTwoFifthsAtTheDefaultSize()
    {
        showView();
        showCopiesTable();
        SetTableView *table = m_view->copiesTable();
        const int name = table->horizontalHeader()->sectionSize(SetListGroupModel::NameColumn);
        QVERIFY2(name >= SetListTable::stretchColumnShare * table->viewport()->width(),
                 qPrintable(u"%1 of %2"_s.arg(name).arg(table->viewport()->width())));
    }

    void aColumnWidthTheUserSetIsKeptByTheNextTable()
    {
        showView();
        showCatalogTable();
        QHeaderView *header = m_view->catalogTable()->horizontalHeader();
        header->resizeSection(CatalogSetListModel::ThemeColumn, 211);
        QVERIFY(m_view->catalogTable()->hasUserColumnWidths());
        QVERIFY(QSettings().contains(m_view->catalogTable()->columnSettingsKey()));

        m_view.reset();
        m_view = std::make_unique<SetListView>(*m_model);
        showView();
        showCatalogTable();
        CatalogTableView *table = m_view->catalogTable();
        QVERIFY(table->hasUserColumnWidths());
        QCOMPARE(table->horizontalHeader()->sectionSize(CatalogSetListModel::ThemeColumn), 211);
        // The other table keeps its own widths.
        QVERIFY(!m_view->copiesTable()->hasUserColumnWidths());
    }

    void piecesInTheTablesFollowTheUsersLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("pieces");
        QTest::newRow("en_US") << QLocale(QLocale::English, QLocale::UnitedStates) << u"7,541"_s;
        QTest::newRow("de_DE") << QLocale(QLocale::German, QLocale::Germany) << u"7.541"_s;
    }

    void piecesInTheTablesFollowTheUsersLocale()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, pieces);
        QLocale::setDefault(locale);
        showCatalogTable();
        const CatalogSetListModel &catalog = *model().catalogModel();
        const int falconRow = catalog.rowOf(u"75192-1"_s);
        QCOMPARE(catalog.index(falconRow, CatalogSetListModel::PiecesColumn).data().toString(), pieces);
        // A year is never grouped.
        QCOMPARE(catalog.index(falconRow, CatalogSetListModel::YearColumn).data().toString(), u"2017"_s);

        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
        saveCopy(context(), m_falcon.objectID);
        QTRY_COMPARE(model().groups()->rowCount(), 1);
        QCOMPARE(model().groups()->index(0, SetListGroupModel::PiecesColumn).data().toString(), pieces);
        QCOMPARE(model().groups()->index(0, SetListGroupModel::YearColumn).data().toString(), u"2017"_s);
    }

    void gridCardsShowTheYearUnderTheNumber()
    {
        showCatalogTable();
        const CatalogSetListModel &catalog = *model().catalogModel();
        const SetGridCell catalogCell = m_view->catalogCells()->cell(catalog.index(catalog.rowOf(u"75257-1"_s), 0));
        QCOMPARE(catalogCell.setNumber, u"75257-1"_s);
        QCOMPARE(catalogCell.yearText, u"2019"_s);

        model().sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::allSets));
        saveCopy(context(), m_falcon.objectID);
        QTRY_COMPARE(model().groups()->rowCount(), 1);
        const SetGridCell copyCell = m_view->copyCells()->cell(model().groups()->index(0, 0));
        QCOMPARE(copyCell.yearText, u"2017"_s);
        // The cell has a line for it: name, number, year and pieces under the picture.
        const int lineHeight = QFontMetrics(QApplication::font()).height();
        QVERIFY(SetGridCellPainter::cellSize().height() >= 120 + 4 * lineHeight);
    }
};

QTEST_MAIN(SetListTablesTest)
#include "SetListTablesTest.moc"
