// SPDX-License-Identifier: GPL-3.0-or-later
#include "SidebarFixture.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "TestEnvironment.h"
#include "ViewModels/SidebarTreeModel.h"
#include "ViewModels/SidebarViewModel.h"
#include "ViewModels/SidebarVisibilitySettings.h"

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;
using Section = SidebarTreeModel::Section;

class SidebarTreeModelTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::shared_ptr<RebrickableCatalog> m_rebuiltCatalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<SidebarViewModel> m_viewModel;
    std::unique_ptr<SidebarTreeModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;

    ManagedObjectContext &context() const { return m_store->container().viewContext(); }

    void makeModel()
    {
        m_viewModel = std::make_unique<SidebarViewModel>(context(), *m_catalogService);
        m_model = std::make_unique<SidebarTreeModel>(*m_viewModel);
        m_tester = std::make_unique<QAbstractItemModelTester>(m_model.get(),
                                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        // The outline of themes is read on the pool and lands shortly after.
        QTRY_VERIFY(!m_viewModel->isLoadingThemeTree());
    }

    QStringList rowIDs(const QModelIndex &parent) const
    {
        QStringList ids;
        for (int row = 0; row < m_model->rowCount(parent); ++row)
            ids << m_model->index(row, 0, parent).data(SidebarTreeModel::ItemIDRole).toString();
        return ids;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_directory.isValid());
        m_catalog = SidebarFixture::firstCatalog(m_directory.filePath(u"first"_s));
        m_rebuiltCatalog = SidebarFixture::rebuiltCatalog(m_directory.filePath(u"rebuilt"_s));
        QVERIFY(m_catalog);
        QVERIFY(m_rebuiltCatalog);
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_directory.filePath(u"app"_s), QUrl());
    }

    void cleanup()
    {
        // Back to the defaults through the shared settings, so no test sees another's rows.
        for (Kind kind : SidebarVisibilitySettings::configurableKinds())
            SidebarVisibilitySettings::shared().setVisible(kind, true);
        m_tester.reset();
        m_model.reset();
        m_viewModel.reset();
        m_catalogService.reset();
        m_store.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void theTopLevelHoldsTheTwoSectionsWhichCannotBeSelected()
    {
        makeModel();
        QCOMPARE(m_model->rowCount(), 2);
        const QModelIndex collection = m_model->sectionIndex(Section::myCollection);
        const QModelIndex catalog = m_model->sectionIndex(Section::catalog);
        QCOMPARE(collection.row(), 0);
        QCOMPARE(catalog.row(), 1);
        QCOMPARE(collection.data().toString(), SidebarTreeModel::sectionTitle(Section::myCollection));
        QCOMPARE(catalog.data().toString(), SidebarTreeModel::sectionTitle(Section::catalog));
        QVERIFY(collection.data(SidebarTreeModel::IsSectionRole).toBool());
        QVERIFY(!(m_model->flags(collection) & Qt::ItemIsSelectable));
        QCOMPARE(m_model->itemAt(collection), std::nullopt);
        QVERIFY(!SidebarTreeModel::listTitle().isEmpty());
    }

    void theCollectionSectionListsItsRowsInOrder()
    {
        makeModel();
        QCOMPARE(rowIDs(m_model->sectionIndex(Section::myCollection)),
                 (QStringList{u"all_sets"_s, u"favorites"_s, u"wishlist"_s, u"recently_added"_s,
                              u"unknown_acquisition"_s, u"unknown_condition"_s, u"retired"_s, u"no_pricing"_s,
                              u"outdated_pricing"_s, u"inventory"_s, u"trash"_s}));
    }

    void theCatalogSectionListsTheWholeCatalogTheThemeBrowserAndTheOutline()
    {
        makeModel();
        const QModelIndex catalog = m_model->sectionIndex(Section::catalog);
        QCOMPARE(rowIDs(catalog), (QStringList{u"catalog_all"_s, u"catalog_all_themes"_s, u"catalog_theme_186"_s,
                                              u"catalog_theme_158"_s}));
        const QModelIndex starWars = m_model->index(3, 0, catalog);
        QCOMPARE(starWars.data().toString(), u"Star Wars"_s);
        QCOMPARE(starWars.data(SidebarTreeModel::SymbolNameRole).toString(), u"folder"_s);
        QCOMPARE(rowIDs(starWars), QStringList{u"catalog_theme_171"_s});
        const QModelIndex ucs = m_model->index(0, 0, starWars);
        QCOMPARE(m_model->parent(ucs), starWars);
        QCOMPARE(m_model->itemAt(ucs), std::optional(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)));
        QVERIFY(m_model->flags(ucs) & Qt::ItemIsSelectable);
    }

    void aRowCarriesItsTextIconIDItemAndBadge()
    {
        BrickSet favorite = SidebarFixture::copy();
        favorite.isFavorite = true;
        context().insert(favorite);
        context().save();
        makeModel();
        const QModelIndex row = m_model->indexOf(SidebarItem(Kind::favorites));
        QCOMPARE(row.data().toString(), SidebarItem(Kind::favorites).rowText());
        QCOMPARE(row.data(SidebarTreeModel::TitleRole).toString(), u"Favorites"_s);
        QCOMPARE(row.data(SidebarTreeModel::SymbolNameRole).toString(), u"star"_s);
        QCOMPARE(row.data(SidebarTreeModel::ItemIDRole).toString(), u"favorites"_s);
        QCOMPARE(row.data(SidebarTreeModel::SidebarItemRole).value<SidebarItem>(), SidebarItem(Kind::favorites));
        QCOMPARE(row.data(SidebarTreeModel::BadgeCountRole).toLongLong(), 1);
        QVERIFY(!m_model->indexOf(SidebarItem(Kind::recentlyAdded)).data(SidebarTreeModel::BadgeCountRole).isValid());
        QVERIFY(!m_model->indexOf(SidebarItem(Kind::catalogAll)).data(SidebarTreeModel::BadgeCountRole).isValid());
    }

    // A narrow sidebar cuts long labels short; the whole label is the row's tool tip.
    void aRowsToolTipIsItsWholeLabel()
    {
        makeModel();
        const QModelIndex row = m_model->indexOf(SidebarItem(Kind::recentlyAdded));
        QVERIFY(row.isValid());
        QVERIFY(!row.data(Qt::ToolTipRole).toString().isEmpty());
        QCOMPARE(row.data(Qt::ToolTipRole).toString(), SidebarItem(Kind::recentlyAdded).rowText());
    }

    void iconsComeFromTheGivenProvider()
    {
        makeModel();
        const QModelIndex trash = m_model->indexOf(SidebarItem(Kind::trash));
        QVERIFY(!trash.data(Qt::DecorationRole).isValid());
        QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
        QStringList asked;
        m_model->setIconProvider([&asked](const QString &symbol) {
            asked << symbol;
            return QIcon();
        });
        QCOMPARE(changed.count(), 2);
        QVERIFY(trash.data(Qt::DecorationRole).canConvert<QIcon>());
        QCOMPARE(asked.last(), u"trash"_s);
    }

    void aBadgeChangeUpdatesItsRow()
    {
        makeModel();
        QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
        const QModelIndex trash = m_model->indexOf(SidebarItem(Kind::trash));
        BrickSet trashed = SidebarFixture::copy();
        trashed.isTrashed = true;
        context().insert(trashed);
        context().save();
        QTRY_COMPARE(trash.data(SidebarTreeModel::BadgeCountRole).toLongLong(), 1);
        QVERIFY(!changed.isEmpty());
        bool trashRowChanged = false;
        for (const QList<QVariant> &arguments : changed)
            trashRowChanged |= arguments.at(0).toModelIndex() == trash;
        QVERIFY(trashRowChanged);
    }

    void aHiddenSettingLeavesItsRowOut()
    {
        QSettings().setValue(u"sidebar.show.outdatedPricing"_s, false);
        QSettings().setValue(u"sidebar.show.recentlyAdded"_s, false);
        makeModel();
        QCOMPARE(rowIDs(m_model->sectionIndex(Section::myCollection)),
                 (QStringList{u"all_sets"_s, u"favorites"_s, u"wishlist"_s, u"unknown_acquisition"_s,
                              u"unknown_condition"_s, u"retired"_s, u"no_pricing"_s, u"inventory"_s, u"trash"_s}));
        QVERIFY(!m_model->indexOf(SidebarItem(Kind::outdatedPricing)).isValid());
    }

    void turningASettingOffAndOnRemovesAndInsertsItsRow()
    {
        makeModel();
        const QModelIndex collection = m_model->sectionIndex(Section::myCollection);
        QSignalSpy removed(m_model.get(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);

        SidebarVisibilitySettings::shared().setVisible(Kind::unknownCondition, false);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(removed.first().at(1).toInt(), 5);
        QVERIFY(!rowIDs(collection).contains(u"unknown_condition"_s));

        SidebarVisibilitySettings::shared().setVisible(Kind::unknownCondition, true);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 5);
        QCOMPARE(rowIDs(collection).at(5), u"unknown_condition"_s);
        QCOMPARE(rowIDs(collection).size(), 11);
    }

    void hidingTheSelectedRowLeavesTheViewModelsSelection()
    {
        makeModel();
        QItemSelectionModel selection(m_model.get());
        m_viewModel->setSelectedItem(SidebarItem(Kind::retired));
        selection.setCurrentIndex(m_model->indexOf(SidebarItem(Kind::retired)), QItemSelectionModel::ClearAndSelect);

        SidebarVisibilitySettings::shared().setVisible(Kind::retired, false);

        QVERIFY(!selection.hasSelection());
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem(Kind::retired)));
        QVERIFY(!m_model->indexOf(SidebarItem(Kind::retired)).isValid());
    }

    void anUnknownStoredSelectionMatchesNoRow()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_"_s);
        makeModel();
        QCOMPARE(m_viewModel->selectedItem(), std::nullopt);
        QVERIFY(!m_model->indexOf(SidebarItem::catalogTheme(0, QString())).isValid());
    }

    void aNamelessThemeMatchesNoRow()
    {
        makeModel();
        QVERIFY(m_model->indexOf(SidebarItem::catalogTheme(158, u"Star Wars"_s)).isValid());
        QVERIFY(!m_model->indexOf(SidebarItem::catalogTheme(158, QString())).isValid());
    }

    void aCatalogRebuildReplacesTheOutlineAndKeepsTheOtherRows()
    {
        makeModel();
        const QPersistentModelIndex favorites = m_model->indexOf(SidebarItem(Kind::favorites));
        const QPersistentModelIndex allThemes = m_model->indexOf(SidebarItem(Kind::catalogAllThemes));
        m_viewModel->setSelectedItem(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s));

        RebrickableCatalog::replaceShared(m_rebuiltCatalog);
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();
        QTRY_VERIFY(!m_viewModel->isLoadingThemeTree());

        const QModelIndex catalog = m_model->sectionIndex(Section::catalog);
        QCOMPARE(rowIDs(catalog), (QStringList{u"catalog_all"_s, u"catalog_all_themes"_s, u"catalog_theme_186"_s,
                                              u"catalog_theme_158"_s, u"catalog_theme_1"_s}));
        QCOMPARE(m_model->indexOf(SidebarItem::catalogTheme(186, u"Castle Classic"_s)).row(), 2);
        QVERIFY(!m_model->indexOf(SidebarItem::catalogTheme(186, u"Castle"_s)).isValid());
        QVERIFY(m_model->indexOf(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)).isValid());
        QVERIFY(favorites.isValid());
        QVERIFY(allThemes.isValid());
        QCOMPARE(m_viewModel->selectedItem(),
                 std::optional(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)));
    }
};

QTEST_GUILESS_MAIN(SidebarTreeModelTest)
#include "SidebarTreeModelTest.moc"
