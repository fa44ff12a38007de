// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CacheSettingsTab.h"

#include "Logging.h"
#include "Services/CSVDocument.h"
#include "Services/CSVExportImportService.h"
#include "Services/CatalogDatabaseService.h"
#include "Services/CatalogSyncService.h"
#include "Services/ImageCacheService.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreError.h"
#include "ViewModels/CollectionReset.h"
#include "ViewModels/SettingsViewModel.h"
#include "Views/SymbolIcon.h"

#include <QCoroFuture>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <QtConcurrent>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

struct CatalogFigures
{
    std::optional<qint64> size;
    std::optional<QDateTime> buildDate;
};

QLabel *helpText(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

CacheSettingsTab::CacheSettingsTab(PersistentContainer &container, CatalogDatabaseService &catalogService,
                                   ImageCacheService &imageCache, QWidget *parent)
    : QWidget(parent)
    , m_container(container)
    , m_catalogService(catalogService)
    , m_imageCache(imageCache)
    , m_viewModel(new SettingsViewModel(this))
    , m_sections(new QVBoxLayout(this))
    , m_refreshAllPrices([] { return CatalogSyncService::shared().refreshAllPrices(); })
    , m_confirmReset(&CacheSettingsTab::askWithDialog)
    , m_chooseFile([this](const QString &suggestedName) { return chooseWithDialog(suggestedName); })
    , m_confirmRebuild(&DestructiveConfirmation::askWithDialog)
    , m_openUrl([](const QUrl &url) { return QDesktopServices::openUrl(url); })
{
    m_sections->addWidget(buildCatalogSection());
    m_sections->addWidget(buildImageCacheSection());
    m_sections->addWidget(buildStorageSection());
    m_sections->addWidget(buildDataSection());
    m_sections->addStretch(1);

    connect(m_viewModel, &SettingsViewModel::imageCacheSizeChanged, m_imageCacheSizeLabel, &QLabel::setText);
    connect(&m_catalogService, &CatalogDatabaseService::catalogDatabaseDidUpdate, this,
            [this] { refreshCatalogFigures(); });
    connect(&m_catalogService, &CatalogDatabaseService::stateChanged, this,
            &CacheSettingsTab::setCatalogButtonsEnabled);
    setCatalogButtonsEnabled();
}

QPushButton *CacheSettingsTab::addButton(QVBoxLayout *layout, const QString &objectName, const QString &text)
{
    auto *button = new QPushButton(text, layout->parentWidget());
    button->setObjectName(objectName);
    button->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    layout->addWidget(button);
    return button;
}

QPushButton *CacheSettingsTab::button(const QString &objectName) const
{
    return findChild<QPushButton *>(objectName);
}

QGroupBox *CacheSettingsTab::buildCatalogSection()
{
    //% "Rebrickable Catalog"
    auto *section = new QGroupBox(qtTrId("settings.cache.rebrickableCatalog"), this);
    auto *layout = new QVBoxLayout(section);
    auto *form = new QFormLayout();
    m_databaseLabel = new QLabel(m_viewModel->imageCacheSize(), section);
    m_databaseLabel->setObjectName(u"databaseLabel"_s);
    //% "Database"
    form->addRow(qtTrId("settings.cache.database"), m_databaseLabel);
    layout->addLayout(form);

    auto *checkRow = new QHBoxLayout();
    //% "Check for Updates"
    auto *check = new QPushButton(qtTrId("settings.cache.checkForUpdates"), section);
    check->setObjectName(u"checkCatalogButton"_s);
    connect(check, &QPushButton::clicked, this, [this] { checkForCatalogUpdates(); });
    checkRow->addWidget(check);
    m_upToDateIcon = new QLabel(section);
    m_upToDateIcon->setObjectName(u"upToDateIcon"_s);
    const int iconSize = fontMetrics().height();
    m_upToDateIcon->setPixmap(SymbolIcon::icon(u"checkmark.circle.fill"_s).pixmap(iconSize, iconSize));
    m_upToDateIcon->hide();
    checkRow->addWidget(m_upToDateIcon);
    m_upToDateLabel = new QLabel(section);
    m_upToDateLabel->setObjectName(u"upToDateLabel"_s);
    m_upToDateLabel->hide();
    checkRow->addWidget(m_upToDateLabel, 1);
    layout->addLayout(checkRow);

    //% "Rebuild Database…"
    QPushButton *rebuild = addButton(layout, u"rebuildCatalogButton"_s, qtTrId("settings.cache.rebuildDatabase"));
    rebuild->setIcon(SymbolIcon::icon(u"exclamationmark.triangle"_s));
    connect(rebuild, &QPushButton::clicked, this, &CacheSettingsTab::rebuildCatalog);
    return section;
}

QGroupBox *CacheSettingsTab::buildImageCacheSection()
{
    //% "Image Cache"
    auto *section = new QGroupBox(qtTrId("settings.cache.imageCache"), this);
    auto *layout = new QVBoxLayout(section);
    auto *form = new QFormLayout();
    m_imageCacheSizeLabel = new QLabel(m_viewModel->imageCacheSize(), section);
    m_imageCacheSizeLabel->setObjectName(u"imageCacheSizeLabel"_s);
    //% "Disk Usage"
    form->addRow(qtTrId("settings.cache.diskUsage"), m_imageCacheSizeLabel);
    layout->addLayout(form);
    //% "Clear Image Cache"
    QPushButton *clear = addButton(layout, u"clearImageCacheButton"_s, qtTrId("settings.cache.clearImageCache"));
    connect(clear, &QPushButton::clicked, this, [this] { clearImageCache(); });
    return section;
}

QGroupBox *CacheSettingsTab::buildStorageSection()
{
    //% "Storage"
    auto *section = new QGroupBox(qtTrId("settings.cache.storage"), this);
    auto *layout = new QVBoxLayout(section);
    //% "Show in File Manager"
    QPushButton *show = addButton(layout, u"showInFileManagerButton"_s, qtTrId("settings.cache.showInFinder"));
    connect(show, &QPushButton::clicked, this, &CacheSettingsTab::showInFileManager);
    return section;
}

QGroupBox *CacheSettingsTab::buildDataSection()
{
    //% "Data"
    auto *section = new QGroupBox(qtTrId("settings.cache.data"), this);
    auto *layout = new QVBoxLayout(section);
    //% "Refresh All Prices"
    QPushButton *refresh = addButton(layout, u"refreshAllPricesButton"_s, qtTrId("settings.cache.refreshAllPrices"));
    connect(refresh, &QPushButton::clicked, this, [this] { refreshAllPrices(); });
    //% "Export Data…"
    QPushButton *exporting = addButton(layout, u"exportDataButton"_s, qtTrId("settings.cache.exportData"));
    connect(exporting, &QPushButton::clicked, this, &CacheSettingsTab::exportData);
    //% "Reset Collection…"
    QPushButton *reset = addButton(layout, u"resetCollectionButton"_s, qtTrId("settings.cache.resetCollection"));
    reset->setIcon(SymbolIcon::icon(u"trash"_s));
    connect(reset, &QPushButton::clicked, this, [this] { resetCollection(); });
    //% "Deletes every set of your collection, its parts inventory and your wishlist. The catalog stays."
    layout->addWidget(helpText(qtTrId("settings.cache.resetCollectionHelp"), section));
    m_resetMessage = new QLabel(section);
    m_resetMessage->setObjectName(u"resetMessage"_s);
    m_resetMessage->setWordWrap(true);
    m_resetMessage->hide();
    layout->addWidget(m_resetMessage);
    return section;
}

void CacheSettingsTab::addSection(QWidget *section)
{
    section->setParent(this);
    // Before the stretch that closes the tab's layout.
    m_sections->insertWidget(m_sections->count() - 1, section);
}

void CacheSettingsTab::setBackupBeforeReset(ResetStep step)
{
    m_backupBeforeReset = std::move(step);
}

QString CacheSettingsTab::applicationDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Tessaloom"_s;
}

void CacheSettingsTab::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refreshImageCacheSize();
    refreshCatalogFigures();
}

QCoro::Task<> CacheSettingsTab::refreshImageCacheSize()
{
    QPointer<CacheSettingsTab> self(this);
    const int generation = ++m_sizeGeneration;
    // Walks the cache's folder on the thread pool; the main thread only waits for the answer.
    const qint64 bytes = co_await m_imageCache.diskCacheSize();
    // A later request (a clear in between) has the newer figure.
    if (!self || generation != m_sizeGeneration)
        co_return;
    m_viewModel->setImageCacheSize(QLocale().formattedDataSize(bytes));
}

QCoro::Task<> CacheSettingsTab::refreshCatalogFigures()
{
    QPointer<CacheSettingsTab> self(this);
    const int generation = ++m_catalogGeneration;
    CatalogDatabaseService *service = &m_catalogService;
    QFuture<CatalogFigures> reading = QtConcurrent::run([service] {
        return CatalogFigures{service->databaseFileSize(), service->lastBuildDate()};
    });
    const CatalogFigures figures = co_await reading;
    if (!self || generation != m_catalogGeneration)
        co_return;
    if (!figures.size) {
        //% "Not downloaded"
        m_databaseLabel->setText(qtTrId("settings.cache.notDownloaded"));
    } else {
        const QLocale locale;
        const QString date = figures.buildDate ? locale.toString(*figures.buildDate, QLocale::ShortFormat) : u"—"_s;
        //% "%1, built %2"
        m_databaseLabel->setText(qtTrId("settings.cache.databaseSizeAndDate").arg(locale.formattedDataSize(*figures.size), date));
    }
    Q_EMIT catalogFiguresShown();
}

QCoro::Task<> CacheSettingsTab::clearImageCache()
{
    QPointer<CacheSettingsTab> self(this);
    if (QPushButton *clear = button(u"clearImageCacheButton"_s))
        clear->setEnabled(false);
    co_await m_imageCache.clearAll();
    if (!self)
        co_return;
    if (QPushButton *clear = button(u"clearImageCacheButton"_s))
        clear->setEnabled(true);
    co_await refreshImageCacheSize();
}

void CacheSettingsTab::setCatalogButtonsEnabled()
{
    // A check during a build would end the build's working state (and a second build
    // would not start anyway).
    const bool idle = m_catalogService.state().kind != CatalogDatabaseService::State::Kind::working;
    if (QPushButton *check = button(u"checkCatalogButton"_s))
        check->setEnabled(idle && !m_isCheckingCatalog);
    if (QPushButton *rebuild = button(u"rebuildCatalogButton"_s))
        rebuild->setEnabled(idle && !m_isCheckingCatalog);
}

QCoro::Task<> CacheSettingsTab::checkForCatalogUpdates()
{
    QPointer<CacheSettingsTab> self(this);
    CatalogDatabaseService &service = m_catalogService;
    m_isCheckingCatalog = true;
    m_upToDateLabel->hide();
    m_upToDateIcon->hide();
    setCatalogButtonsEnabled();
    const bool hasUpdates = co_await service.checkForUpdates();
    if (hasUpdates)
        service.startBuild(); // as the daily check does: a newer catalog builds without asking
    if (!self)
        co_return;
    m_isCheckingCatalog = false;
    setCatalogButtonsEnabled();
    if (hasUpdates) {
        //% "A newer catalog is available and is being built."
        m_upToDateLabel->setText(qtTrId("settings.cache.updateStarted"));
    } else {
        //% "Up to date"
        m_upToDateLabel->setText(qtTrId("settings.cache.upToDate"));
        m_upToDateIcon->show();
    }
    m_upToDateLabel->show();
}

void CacheSettingsTab::rebuildCatalog()
{
    const DestructiveConfirmation confirmation{
        //% "Rebuild the Catalog?"
        qtTrId("settings.cache.rebuildConfirmTitle"),
        //% "The catalog is downloaded again from Rebrickable and rebuilt. Your collection is not touched."
        qtTrId("settings.cache.rebuildConfirmMessage"),
        qtTrId("settings.cache.rebuildDatabase").remove(u'…'),
    };
    if (!m_confirmRebuild(this, confirmation))
        return;
    m_catalogService.startBuild();
}

bool CacheSettingsTab::showInFileManager()
{
    const QString folder = applicationDataFolder();
    if (!QDir(folder).exists())
        return false;
    return m_openUrl(QUrl::fromLocalFile(folder));
}

QCoro::Task<> CacheSettingsTab::refreshAllPrices()
{
    QPointer<CacheSettingsTab> self(this);
    QPushButton *refresh = button(u"refreshAllPricesButton"_s);
    refresh->setEnabled(false);
    // Copied: the refresh may outlive the tab, and its progress shows in the main window.
    const std::function<QCoro::Task<>()> run = m_refreshAllPrices;
    co_await run();
    if (self)
        refresh->setEnabled(true);
}

QString CacheSettingsTab::chooseWithDialog(const QString &suggestedName)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QFileDialog dialog(this, qtTrId("settings.cache.exportData").remove(u'…'), folder,
                       qtTrId("file.filter.csv"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(u"csv"_s);
    dialog.selectFile(suggestedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().first();
}

bool CacheSettingsTab::exportData()
{
    const QString path = m_chooseFile(defaultExportName);
    if (path.isEmpty())
        return false;
    try {
        // The same file as File → Export…: every copy and the wishlist.
        CSVDocument(CSVExportImportService::exportCSV(m_container.viewContext())).write(path);
        return true;
    } catch (const CSVDocument::FileError &error) {
        qCWarning(lcApp).noquote() << u"CSV export failed: %1"_s.arg(error.description());
        //% "The export failed: %1"
        m_resetMessage->setText(qtTrId("settings.cache.exportFailed.").arg(error.description()));
        m_resetMessage->show();
        return false;
    }
}

CacheSettingsTab::ResetChoice CacheSettingsTab::askWithDialog(QWidget *parent)
{
    //% "Reset Collection?"
    QMessageBox box(QMessageBox::Warning, qtTrId("settings.cache.resetConfirmTitle"),
                    //% "Every set of your collection, its parts inventory and your wishlist will be deleted. This cannot be undone."
                    qtTrId("settings.cache.resetConfirmMessage"), QMessageBox::NoButton, parent);
    QPushButton *reset = box.addButton(qtTrId("settings.cache.resetCollection").remove(u'…'), QMessageBox::DestructiveRole);
    //% "Export Data First…"
    QPushButton *exportFirst = box.addButton(qtTrId("settings.cache.exportDataFirst"), QMessageBox::ActionRole);
    //% "Cancel"
    QPushButton *cancel = box.addButton(qtTrId("settings.cache.cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == reset)
        return ResetChoice::reset;
    if (box.clickedButton() == exportFirst)
        return ResetChoice::exportDataFirst;
    return ResetChoice::cancel;
}

QCoro::Task<bool> CacheSettingsTab::resetCollection()
{
    if (m_isResetting)
        co_return false;
    const ResetChoice choice = m_confirmReset(this);
    if (choice == ResetChoice::cancel)
        co_return false;
    m_resetMessage->hide();
    // A cancelled or failed export deletes nothing: the user asked for a copy first.
    if (choice == ResetChoice::exportDataFirst && !exportData())
        co_return false;
    co_return co_await deleteCollection();
}

QCoro::Task<bool> CacheSettingsTab::deleteCollection()
{
    QPointer<CacheSettingsTab> self(this);
    PersistentContainer &container = m_container;
    m_isResetting = true;
    button(u"resetCollectionButton"_s)->setEnabled(false);
    const auto finish = [self] {
        if (!self)
            return;
        self->m_isResetting = false;
        self->button(u"resetCollectionButton"_s)->setEnabled(true);
    };

    if (m_backupBeforeReset) {
        const ResetStep backup = m_backupBeforeReset;
        const bool backedUp = co_await backup();
        if (!backedUp) {
            finish();
            if (self) {
                //% "The collection could not be backed up, so nothing was deleted."
                m_resetMessage->setText(qtTrId("settings.cache.resetNotBackedUp"));
                m_resetMessage->show();
            }
            co_return false;
        }
    }

    // The user confirmed: the delete runs to its end even when the window closes meanwhile.
    QString failure;
    QList<ObjectID> deleted;
    try {
        deleted = co_await CollectionReset::deleteCollection(container);
    } catch (const StoreError &error) {
        failure = error.description();
        qCWarning(lcPersistence).noquote() << u"Collection reset failed: %1"_s.arg(failure);
    }
    finish();
    if (!self)
        co_return failure.isEmpty();
    if (!failure.isEmpty()) {
        //% "The collection could not be reset: %1"
        m_resetMessage->setText(qtTrId("settings.cache.resetFailed.").arg(failure));
        m_resetMessage->show();
        co_return false;
    }
    //% "The collection is empty. The catalog stays as it was."
    m_resetMessage->setText(qtTrId("settings.cache.resetDone"));
    m_resetMessage->show();
    Q_EMIT collectionReset(int(deleted.size()));
    co_return true;
}
