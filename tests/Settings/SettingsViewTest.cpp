// SPDX-License-Identifier: GPL-3.0-or-later
// The settings window offscreen with a real store, catalog service and picture cache:
// the tabs in order, the currency picker, the sidebar toggles reaching an open sidebar,
// the cache tab's figures and actions, the reset of the collection with its confirmation,
// export first and the backup step, the about tab, and Edit → Preferences….
#include "DumpServer.h"
#include "Services/AppUpdateService.h"
#include "Services/CollectionBackupFolder.h"
#include "Services/CollectionBackupService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/ImageCacheService.h"
#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogColor.h"
#include "Store/CatalogPart.h"
#include "Store/CatalogSetPart.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PartInventoryEntry.h"
#include "Store/PersistenceController.h"
#include "Store/WishlistItem.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"
#include "ViewModels/SidebarTreeModel.h"
#include "ViewModels/SidebarViewModel.h"
#include "ViewModels/SidebarVisibilitySettings.h"
#include "Views/APIKeysSettingsTab.h"
#include "Views/AboutSettingsTab.h"
#include "Views/CacheSettingsTab.h"
#include "Views/CollectionBackupsView.h"
#include "Views/GeneralSettingsTab.h"
#include "Views/MainWindow.h"
#include "Views/SettingsView.h"
#include "Views/SidebarSettingsTab.h"
#include "Views/SidebarView.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QFutureInterface>
#include <QCoroFuture>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLocale>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QTabWidget>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;

namespace {

const QString setNumber = u"75192-1"_s;

template<typename T>
qint64 countOf(ManagedObjectContext &context)
{
    return context.count(FetchRequest<T>());
}

QCoro::Task<bool> answer(bool value)
{
    co_return value;
}

} // namespace

class SettingsViewTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;
    std::unique_ptr<AppUpdateService> m_updates;
    std::unique_ptr<ImageCacheService> m_imageCache;
    QString m_root;

    ManagedObjectContext &context() const { return m_store->container().viewContext(); }

    std::unique_ptr<SettingsView> makeView()
    {
        return std::make_unique<SettingsView>(m_store->container(), *m_catalogService, *m_updates, *m_imageCache);
    }

    // A catalog set with one parts line and a price guide, two copies of it (one with an
    // inventory entry) and a wishlist item.
    void fillCollection()
    {
        ManagedObjectContext &c = context();
        CatalogSet catalogSet;
        catalogSet.setNumber = setNumber;
        catalogSet.name = u"Millennium Falcon"_s;
        catalogSet = c.insert(catalogSet);
        CatalogPart part;
        part.partNumber = u"3001"_s;
        part = c.insert(part);
        CatalogColor color;
        color.colorID = 4;
        color.name = u"Red"_s;
        color = c.insert(color);
        CatalogSetPart line;
        line.quantity = 2;
        line.catalogSet = catalogSet.objectID;
        line.catalogPart = part.objectID;
        line.catalogColor = color.objectID;
        line = c.insert(line);
        CachedPriceGuide guide;
        guide.conditionType = u"new"_s;
        guide.guideType = u"sold"_s;
        guide.currency = u"USD"_s;
        guide.providerName = u"brickeconomy"_s;
        guide.catalogSet = catalogSet.objectID;
        c.insert(guide);
        for (int copyNumber = 0; copyNumber < 2; ++copyNumber) {
            BrickSet copy;
            copy.id = QUuid::createUuid();
            copy.dateAdded = QDateTime::currentDateTimeUtc();
            copy.catalogSet = catalogSet.objectID;
            copy = c.insert(copy);
            if (copyNumber == 0) {
                PartInventoryEntry entry;
                entry.quantityOwned = 1;
                entry.brickSet = copy.objectID;
                entry.catalogSetPart = line.objectID;
                c.insert(entry);
            }
        }
        WishlistItem wish;
        wish.setNumber = u"10305-1"_s;
        wish.setName = u"Lion Knights' Castle"_s;
        c.insert(wish);
        c.save();
    }

    void emptyCollection()
    {
        for (const EntityType entity : allEntityTypes)
            context().batchDelete(entity);
    }

    void writePictureFiles(int count, int bytesEach)
    {
        QDir().mkpath(m_imageCache->diskCacheDirectory());
        for (int index = 0; index < count; ++index) {
            QFile file(m_imageCache->diskCacheDirectory() + u"/picture-%1.jpg"_s.arg(index));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(bytesEach, 'x'));
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_root = TestEnvironment::temporaryRoot();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        m_store = PersistenceController::open(QString(), true);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_root + u"/app"_s, QUrl(u"http://127.0.0.1:9"_s));
        m_updates = std::make_unique<AppUpdateService>(QUrl(u"http://127.0.0.1:9/appcast.xml"_s), QVersionNumber(0, 1));
        m_imageCache = std::make_unique<ImageCacheService>(m_root + u"/caches"_s);
    }

    void init()
    {
        QSettings().clear();
        emptyCollection();
    }

    void theFiveTabsStandInOrderWithTheirLabelsAndIcons()
    {
        const auto view = makeView();
        QVERIFY(!view->isModal());
        QTabWidget *tabs = view->tabs();
        QCOMPARE(tabs->count(), 5);
        const QStringList labels{u"General"_s, u"API Keys"_s, u"Sidebar"_s, u"Cache"_s, u"About"_s};
        for (int index = 0; index < 5; ++index) {
            QCOMPARE(tabs->tabText(index), labels.at(index));
            QVERIFY(!tabs->tabIcon(index).isNull());
        }
        QCOMPARE(tabs->widget(0), view->generalTab());
        QVERIFY(tabs->widget(1)->isAncestorOf(view->apiKeysTab()));
        QCOMPARE(tabs->widget(2), view->sidebarTab());
        QVERIFY(tabs->widget(3)->isAncestorOf(view->cacheTab()));
        QCOMPARE(tabs->widget(4), view->aboutTab());
    }

    void theCurrencyPickerOffersTheTenCurrenciesAndWritesThePreferredCurrency()
    {
        {
            const auto view = makeView();
            QComboBox *picker = view->generalTab()->currencyPicker();
            QStringList codes;
            for (int index = 0; index < picker->count(); ++index)
                codes << picker->itemText(index);
            QCOMPARE(codes, QStringList({u"USD"_s, u"EUR"_s, u"GBP"_s, u"CAD"_s, u"AUD"_s, u"JPY"_s, u"CHF"_s,
                                         u"SEK"_s, u"DKK"_s, u"NOK"_s}));
            QCOMPARE(picker->currentText(), u"USD"_s); // nothing stored yet
            picker->setCurrentIndex(picker->findText(u"CHF"_s));
            QCOMPARE(QSettings().value(u"preferredCurrency"_s).toString(), u"CHF"_s);
            QVERIFY(!view->generalTab()->findChild<QLabel *>(u"currencyHint"_s)->text().isEmpty());
        }
        const auto again = makeView();
        QCOMPARE(again->generalTab()->currencyPicker()->currentText(), u"CHF"_s);
    }

    void theSidebarTogglesHideAndShowTheRowsOfAnOpenSidebar()
    {
        SidebarViewModel sidebarModel(context(), *m_catalogService,
                                      [] { return std::optional<QList<ThemeNode>>(QList<ThemeNode>{}); });
        SidebarView sidebar(sidebarModel);
        const auto view = makeView();
        SidebarSettingsTab *tab = view->sidebarTab();
        const QList<Kind> kinds{Kind::recentlyAdded, Kind::unknownAcquisition, Kind::unknownCondition,
                                Kind::retired, Kind::noPricing, Kind::outdatedPricing};
        for (const Kind kind : kinds) {
            QCheckBox *toggle = tab->toggle(kind);
            QVERIFY(toggle);
            QCOMPARE(toggle->text(), SidebarItem(kind).rowText());
            QVERIFY(toggle->isChecked());
            QVERIFY(sidebar.treeModel()->indexOf(SidebarItem(kind)).isValid());
        }
        // In the sidebar's order, top to bottom.
        QLayout *toggles = tab->toggle(kinds.first())->parentWidget()->layout();
        for (int index = 1; index < kinds.size(); ++index)
            QVERIFY(toggles->indexOf(tab->toggle(kinds.at(index - 1))) < toggles->indexOf(tab->toggle(kinds.at(index))));

        tab->toggle(Kind::retired)->click();
        QVERIFY(!sidebar.treeModel()->indexOf(SidebarItem(Kind::retired)).isValid());
        QCOMPARE(QSettings().value(u"sidebar.show.retired"_s).toBool(), false);
        QVERIFY(sidebar.treeModel()->indexOf(SidebarItem(Kind::noPricing)).isValid());
        tab->toggle(Kind::retired)->click();
        QVERIFY(sidebar.treeModel()->indexOf(SidebarItem(Kind::retired)).isValid());
        QCOMPARE(QSettings().value(u"sidebar.show.retired"_s).toBool(), true);
    }

    void theCatalogRowSaysNotDownloadedWithoutACatalog()
    {
        QFile::remove(m_catalogService->liveDatabasePath());
        const auto view = makeView();
        view->tabs()->setCurrentWidget(view->tabs()->widget(3));
        QSignalSpy shown(view->cacheTab(), &CacheSettingsTab::catalogFiguresShown);
        view->show();
        QTRY_VERIFY(!shown.isEmpty());
        QCOMPARE(view->cacheTab()->databaseLabel()->text(), u"Not downloaded"_s);
    }

    void theCatalogRowShowsTheSizeAndBuildDate()
    {
        QDir().mkpath(m_catalogService->applicationDirectory());
        QFile file(m_catalogService->liveDatabasePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(4096, '\0'));
        file.close();
        const QDateTime built(QDate(2026, 4, 2), QTime(8, 30));
        QSettings().setValue(u"catalog.lastBuildDate"_s, built);
        const auto view = makeView();
        QSignalSpy shown(view->cacheTab(), &CacheSettingsTab::catalogFiguresShown);
        view->tabs()->setCurrentWidget(view->tabs()->widget(3));
        view->show();
        QTRY_VERIFY(!shown.isEmpty());
        const QLocale locale;
        QCOMPARE(view->cacheTab()->databaseLabel()->text(),
                 u"%1, built %2"_s.arg(locale.formattedDataSize(4096), locale.toString(built, QLocale::ShortFormat)));
        QFile::remove(m_catalogService->liveDatabasePath());
    }

    void checkingForCatalogUpdatesShowsUpToDate()
    {
        DumpServer dumps;
        QVERIFY(dumps.serveCsvDirectory(QStringLiteral(TESSALOOM_SAMPLE_CATALOG_DIR), m_root + u"/dumps"_s));
        CatalogDatabaseService service(m_root + u"/app-checked"_s, dumps.baseUrl());
        QSettings().setValue(u"catalog.lastModifiedHeader"_s, u"Wed, 02 Apr 2026 06:00:00 GMT"_s);
        CacheSettingsTab tab(m_store->container(), service, *m_imageCache);
        tab.show();
        QVERIFY(!tab.upToDateLabel()->isVisible());
        QCoro::waitFor(tab.checkForCatalogUpdates());
        QVERIFY(tab.upToDateLabel()->isVisible());
        QCOMPARE(tab.upToDateLabel()->text(), u"Up to date"_s);
        QVERIFY(tab.upToDateIcon()->isVisible());
        QCOMPARE(service.state().kind, CatalogDatabaseService::State::Kind::idle);
        QVERIFY(tab.button(u"checkCatalogButton"_s)->isEnabled());
    }

    void rebuildingTheCatalogAsksFirst()
    {
        CatalogDatabaseService service(m_root + u"/app-rebuilt"_s, QUrl(u"http://127.0.0.1:9"_s));
        CacheSettingsTab tab(m_store->container(), service, *m_imageCache);
        QList<DestructiveConfirmation> asked;
        bool confirm = false;
        tab.setRebuildConfirmation([&](QWidget *, const DestructiveConfirmation &confirmation) {
            asked << confirmation;
            return confirm;
        });
        tab.button(u"rebuildCatalogButton"_s)->click();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.first().title, u"Rebuild the Catalog?"_s);
        QVERIFY(!service.hasCurrentTask());
        confirm = true;
        tab.button(u"rebuildCatalogButton"_s)->click();
        QVERIFY(service.hasCurrentTask());
        service.cancelCurrentTask();
        QTRY_VERIFY(service.state().kind != CatalogDatabaseService::State::Kind::working);
    }

    void theImageCacheFigureArrivesAfterTheTabShowsAndClearingUpdatesIt()
    {
        writePictureFiles(3, 10'000);
        const auto view = makeView();
        CacheSettingsTab *tab = view->cacheTab();
        QCOMPARE(tab->imageCacheSizeLabel()->text(), u"Calculating..."_s);
        view->tabs()->setCurrentWidget(view->tabs()->widget(3));
        view->show();
        const QLocale locale;
        QTRY_COMPARE(tab->imageCacheSizeLabel()->text(), locale.formattedDataSize(30'000));
        QCOMPARE(tab->viewModel().imageCacheSize(), locale.formattedDataSize(30'000));
        tab->button(u"clearImageCacheButton"_s)->click();
        QTRY_COMPARE(tab->imageCacheSizeLabel()->text(), locale.formattedDataSize(0));
        QVERIFY(QDir(m_imageCache->diskCacheDirectory()).entryList(QDir::Files).isEmpty());
    }

    void showInFileManagerOpensTheDataFolderOnlyWhenItExists()
    {
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        QList<QUrl> opened;
        tab.setUrlOpener([&opened](const QUrl &url) {
            opened << url;
            return true;
        });
        const QString folder = CacheSettingsTab::applicationDataFolder();
        QVERIFY(folder.endsWith(u"/Tessaloom"_s));
        QDir(folder).removeRecursively();
        tab.button(u"showInFileManagerButton"_s)->click();
        QVERIFY(opened.isEmpty());
        QVERIFY(QDir().mkpath(folder));
        tab.button(u"showInFileManagerButton"_s)->click();
        QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile(folder)});
    }

    void refreshAllPricesRunsTheRefreshWithTheButtonOffMeanwhile()
    {
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        QFutureInterface<void> running;
        running.reportStarted();
        int calls = 0;
        tab.setRefreshAllPrices([&]() -> QCoro::Task<> {
            ++calls;
            co_await running.future();
        });
        QPushButton *button = tab.button(u"refreshAllPricesButton"_s);
        button->click();
        QCOMPARE(calls, 1);
        QVERIFY(!button->isEnabled());
        running.reportFinished();
        QTRY_VERIFY(button->isEnabled());
    }

    void exportWritesTheCollectionUnderTheSuggestedName()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        const QString path = m_root + u"/export.csv"_s;
        QString suggested;
        tab.setFileChooser([&](const QString &name) {
            suggested = name;
            return path;
        });
        tab.button(u"exportDataButton"_s)->click();
        QCOMPARE(suggested, u"Tessaloom Export.csv"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains(setNumber.toUtf8()));
    }

    void cancellingTheResetQuestionDeletesNothing()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::cancel; });
        QVERIFY(!QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(countOf<BrickSet>(context()), 2);
        QCOMPARE(countOf<WishlistItem>(context()), 1);
    }

    void resetDeletesExactlyTheCopiesTheirInventoryAndTheWishlist()
    {
        fillCollection();
        BrickSetListModel liveList(m_store->container());
        liveList.setFetchRequest(FetchRequest<BrickSet>());
        QCOMPARE(liveList.count(), 2);
        const ObjectID firstCopy = liveList.rowAt(0).brickSet.objectID;
        QVERIFY(context().existingObject<BrickSet>(firstCopy));

        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::reset; });
        QSignalSpy reset(&tab, &CacheSettingsTab::collectionReset);
        QVERIFY(QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(reset.size(), 1);
        QCOMPARE(reset.first().first().toInt(), 4); // one entry, two copies, one wish

        QCOMPARE(countOf<PartInventoryEntry>(context()), 0);
        QCOMPARE(countOf<BrickSet>(context()), 0);
        QCOMPARE(countOf<WishlistItem>(context()), 0);
        QCOMPARE(countOf<CatalogSet>(context()), 1);
        QCOMPARE(countOf<CatalogPart>(context()), 1);
        QCOMPARE(countOf<CatalogColor>(context()), 1);
        QCOMPARE(countOf<CatalogSetPart>(context()), 1);
        QCOMPARE(countOf<CachedPriceGuide>(context()), 1);
        QVERIFY(!context().existingObject<BrickSet>(firstCopy));
        QTRY_COMPARE(liveList.count(), 0);
        QCOMPARE(tab.resetMessage()->text(), u"The collection is empty. The catalog stays as it was."_s);
    }

    void resetWithExportFirstWritesTheFileBeforeDeleting()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::exportDataFirst; });
        const QString path = m_root + u"/before-reset.csv"_s;
        QFile::remove(path);
        qint64 copiesWhenAsked = -1;
        tab.setFileChooser([&](const QString &) {
            copiesWhenAsked = countOf<BrickSet>(context());
            return path;
        });
        QVERIFY(QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(copiesWhenAsked, 2);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        QVERIFY(written.contains(setNumber.toUtf8()));
        QVERIFY(written.contains("10305-1"));
        QCOMPARE(countOf<BrickSet>(context()), 0);
        QCOMPARE(countOf<WishlistItem>(context()), 0);
    }

    void aCancelledExportFirstDeletesNothing()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::exportDataFirst; });
        tab.setFileChooser([](const QString &) { return QString(); });
        QVERIFY(!QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(countOf<BrickSet>(context()), 2);
        QCOMPARE(countOf<PartInventoryEntry>(context()), 1);
    }

    void aFailedExportFirstDeletesNothing()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::exportDataFirst; });
        // A folder that does not exist: the file cannot be written.
        tab.setFileChooser([this](const QString &) -> QString { return m_root + u"/missing/folder/export.csv"_s; });
        const TaskOutcome<bool> outcome = waitForOutcome(tab.resetCollection());
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(outcome.value, false);
        QCOMPARE(countOf<BrickSet>(context()), 2);
        QVERIFY(tab.resetMessage()->text().startsWith(u"The export failed: "_s));
    }

    void theBackupStepRunsBeforeTheDelete()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::reset; });
        qint64 copiesDuringBackup = -1;
        tab.setBackupBeforeReset([&]() -> QCoro::Task<bool> {
            copiesDuringBackup = countOf<BrickSet>(context());
            co_return co_await answer(true);
        });
        QVERIFY(QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(copiesDuringBackup, 2);
        QCOMPARE(countOf<BrickSet>(context()), 0);
    }

    void aFailedBackupDeletesNothingAndSaysSo()
    {
        fillCollection();
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        tab.setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::reset; });
        tab.setBackupBeforeReset([] { return answer(false); });
        tab.show();
        QVERIFY(!QCoro::waitFor(tab.resetCollection()));
        QCOMPARE(countOf<BrickSet>(context()), 2);
        QCOMPARE(countOf<PartInventoryEntry>(context()), 1);
        QCOMPARE(countOf<WishlistItem>(context()), 1);
        QVERIFY(tab.resetMessage()->isVisible());
        QCOMPARE(tab.resetMessage()->text(), u"The collection could not be backed up, so nothing was deleted."_s);
        QVERIFY(tab.button(u"resetCollectionButton"_s)->isEnabled());
    }

    void theCacheTabListsTheBackupsAndAResetThroughItKeepsACopyOfTheCollection()
    {
        QTemporaryDir folder(m_root + u"/reset-XXXXXX"_s);
        QVERIFY(folder.isValid());
        const QString storePath = folder.filePath(u"Tessaloom.sqlite"_s);
        {
            auto store = PersistenceController::open(storePath);
            auto &viewContext = store->container().viewContext();
            for (int copy = 0; copy < 3; ++copy) {
                BrickSet brickSet;
                brickSet.id = QUuid::createUuid();
                brickSet.dateAdded = QDateTime::currentDateTimeUtc();
                viewContext.insert(brickSet);
            }
            viewContext.save();

            SettingsView view(store->container(), *m_catalogService, *m_updates, *m_imageCache);
            QVERIFY(view.backupsView());
            QVERIFY(view.cacheTab()->isAncestorOf(view.backupsView()));
            view.cacheTab()->setResetConfirmation([](QWidget *) { return CacheSettingsTab::ResetChoice::reset; });
            QVERIFY(QCoro::waitFor(view.cacheTab()->resetCollection()));
            QCOMPARE(countOf<BrickSet>(viewContext), 0);
            QTRY_COMPARE(view.backupsView()->list()->topLevelItemCount(), 1);
        }
        const QList<CollectionBackup> backups = CollectionBackupFolder(folder.filePath(u"Backups"_s)).list();
        QCOMPARE(backups.size(), 1);
        auto backup = PersistenceController::open(backups.first().path);
        QCOMPARE(countOf<BrickSet>(backup->container().viewContext()), 3);
    }

    void anAddedSectionStandsBelowTheTabsOwnSections()
    {
        CacheSettingsTab tab(m_store->container(), *m_catalogService, *m_imageCache);
        auto *backups = new QGroupBox(u"Backups"_s);
        tab.addSection(backups);
        tab.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tab));
        QCOMPARE(backups->parentWidget(), &tab);
        QVERIFY(backups->isVisible());
        const QList<QGroupBox *> sections = tab.findChildren<QGroupBox *>(Qt::FindDirectChildrenOnly);
        QCOMPARE(sections.size(), 5);
        for (QGroupBox *section : sections) {
            if (section != backups)
                QVERIFY(section->geometry().bottom() < backups->geometry().top());
        }
    }

    void theAboutTabShowsTheProgramAndChecksForUpdates()
    {
        const auto view = makeView();
        AboutSettingsTab *tab = view->aboutTab();
        QCOMPARE(tab->findChild<QLabel *>(u"applicationTitle"_s)->text(), u"Tessaloom"_s);
        QVERIFY(tab->findChild<QLabel *>(u"applicationTitle"_s)->font().bold());
        QVERIFY(!tab->findChild<QLabel *>(u"applicationIcon"_s)->pixmap().isNull());
        const QString version = QApplication::applicationVersion();
        QCOMPARE(tab->findChild<QLabel *>(u"versionLine"_s)->text(), u"Version %1 (%1)"_s.arg(version));
        QVERIFY(!tab->findChild<QLabel *>(u"copyright"_s)->text().isEmpty());
        auto *sources = tab->findChild<QGroupBox *>(u"dataSources"_s);
        QCOMPARE(sources->title(), u"Data Sources"_s);
        QCOMPARE(sources->findChildren<QLabel *>().size(), 4); // two names, two descriptions
        QPushButton *check = tab->checkForUpdatesButton();
        QVERIFY(check->isEnabled());
        QCoro::waitFor(tab->checkForUpdates());
        QVERIFY(!tab->updateResultLabel()->text().isEmpty()); // 127.0.0.1:9 refuses: the failure is shown
        QVERIFY(check->isEnabled());
    }

    void editPreferencesOpensOneSettingsWindowWithCtrlComma()
    {
        MainWindow window(m_store->container(), *m_catalogService, *m_updates);
        QAction *preferences = window.preferencesAction();
        QVERIFY(preferences);
        QVERIFY(preferences->shortcuts().contains(QKeySequence(u"Ctrl+,"_s)));
        QCOMPARE(preferences->menuRole(), QAction::PreferencesRole);
        QCOMPARE(preferences->text(), u"Preferences…"_s);
        QMenu *edit = nullptr;
        for (QAction *menu : window.menuBar()->actions()) {
            if (menu->menu() && menu->menu()->actions().contains(preferences))
                edit = menu->menu();
        }
        QVERIFY(edit);
        QCOMPARE(edit->title(), u"&Edit"_s);
        QVERIFY(!window.settingsView());
        preferences->trigger();
        QPointer<SettingsView> first = window.settingsView();
        QVERIFY(first && first->isVisible());
        preferences->trigger();
        QCOMPARE(window.settingsView(), first.data()); // raised, not a second one
        first->close();
        QTRY_VERIFY(!first);
        preferences->trigger();
        QVERIFY(window.settingsView() && window.settingsView()->isVisible());
        window.settingsView()->close();
    }
};

QTEST_MAIN(SettingsViewTest)
#include "SettingsViewTest.moc"
