// SPDX-License-Identifier: GPL-3.0-or-later
#include "SidebarFixture.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/PersistenceController.h"
#include "TestEnvironment.h"
#include "ViewModels/SidebarSelectionBinder.h"
#include "ViewModels/SidebarTreeModel.h"
#include "ViewModels/SidebarViewModel.h"
#include "ViewModels/SidebarVisibilitySettings.h"

#include <QItemSelectionModel>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;
using Section = SidebarTreeModel::Section;

class SidebarSelectionBinderTest : public QObject
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
    std::unique_ptr<QItemSelectionModel> m_selection;
    std::unique_ptr<SidebarSelectionBinder> m_binder;

    void bind()
    {
        m_viewModel = std::make_unique<SidebarViewModel>(m_store->container().viewContext(), *m_catalogService);
        m_model = std::make_unique<SidebarTreeModel>(*m_viewModel);
        m_selection = std::make_unique<QItemSelectionModel>(m_model.get());
        m_binder = std::make_unique<SidebarSelectionBinder>(*m_model, *m_selection);
        // The outline of themes is read on the pool and lands shortly after.
        QTRY_VERIFY(!m_viewModel->isLoadingThemeTree());
    }

    void click(const SidebarItem &item) const
    {
        const QModelIndex row = m_model->indexOf(item);
        QVERIFY(row.isValid());
        m_selection->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
    }

    std::optional<SidebarItem> shownItem() const
    {
        const QModelIndexList rows = m_selection->selectedIndexes();
        if (rows.size() != 1 || rows.first() != m_selection->currentIndex())
            return std::nullopt;
        return m_model->itemAt(rows.first());
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
        for (Kind kind : SidebarVisibilitySettings::configurableKinds())
            SidebarVisibilitySettings::shared().setVisible(kind, true);
        m_binder.reset();
        m_selection.reset();
        m_model.reset();
        m_viewModel.reset();
        m_catalogService.reset();
        m_store.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    void theRestoredSelectionIsShownAtStart()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_171"_s);
        bind();
        QCOMPARE(shownItem(), std::optional(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)));
    }

    void choosingARowSelectsAndStoresItsItem()
    {
        bind();
        click(SidebarItem(Kind::wishlist));
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem(Kind::wishlist)));
        QCOMPARE(QSettings().value(u"sidebar.lastSelectedItem"_s).toString(), u"wishlist"_s);
    }

    void choosingASectionRowKeepsTheSelection()
    {
        bind();
        m_selection->setCurrentIndex(m_model->sectionIndex(Section::catalog), QItemSelectionModel::NoUpdate);
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem(Kind::allSets)));
    }

    void aSelectionMadeElsewhereBecomesTheCurrentRow()
    {
        bind();
        const SidebarItem castle = SidebarItem::catalogTheme(186, u"Castle"_s);
        m_viewModel->setSelectedItem(castle);
        QCOMPARE(m_selection->currentIndex(), m_model->indexOf(castle));
        QCOMPARE(shownItem(), std::optional(castle));
    }

    void aStoredSelectionThatNamesNoItemShowsNoRowSelected()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_abc"_s);
        bind();
        QCOMPARE(m_viewModel->selectedItem(), std::nullopt);
        QVERIFY(!m_selection->hasSelection());
    }

    void aThemeRestoredWithoutItsNameShowsNoRowSelected()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_4242"_s);
        bind();
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem::catalogTheme(4242, QString())));
        QVERIFY(!m_selection->hasSelection());
    }

    void hidingTheSelectedRowKeepsTheSelectionUntilItIsShownAgain()
    {
        bind();
        click(SidebarItem(Kind::retired));

        SidebarVisibilitySettings::shared().setVisible(Kind::retired, false);
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem(Kind::retired)));
        QVERIFY(!m_selection->hasSelection());

        SidebarVisibilitySettings::shared().setVisible(Kind::retired, true);
        QCOMPARE(shownItem(), std::optional(SidebarItem(Kind::retired)));
    }

    void hidingAnotherRowKeepsTheSelectedRowSelected()
    {
        bind();
        click(SidebarItem(Kind::trash));
        SidebarVisibilitySettings::shared().setVisible(Kind::recentlyAdded, false);
        QCOMPARE(m_viewModel->selectedItem(), std::optional(SidebarItem(Kind::trash)));
        QCOMPARE(shownItem(), std::optional(SidebarItem(Kind::trash)));
    }

    void aCatalogRebuildKeepsTheSelectedThemeSelected()
    {
        bind();
        const SidebarItem ucs = SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s);
        click(ucs);

        RebrickableCatalog::replaceShared(m_rebuiltCatalog);
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();
        QTRY_VERIFY(!m_viewModel->isLoadingThemeTree());

        QCOMPARE(m_viewModel->selectedItem(), std::optional(ucs));
        QCOMPARE(shownItem(), std::optional(ucs));
    }
};

QTEST_GUILESS_MAIN(SidebarSelectionBinderTest)
#include "SidebarSelectionBinderTest.moc"
