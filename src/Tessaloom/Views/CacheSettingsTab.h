// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/DestructiveConfirmation.h"

#include <QCoroTask>
#include <QUrl>
#include <QWidget>

#include <functional>

class CatalogDatabaseService;
class ImageCacheService;
class PersistentContainer;
class QGroupBox;
class QLabel;
class QPushButton;
class QVBoxLayout;
class SettingsViewModel;

// The cache and data settings: the catalog's size and date with its update check and
// rebuild, the picture cache's disk usage with its clear, the data folder, and the
// collection's own actions: refresh every price, export, and reset.
//
// The figures are read off the main thread: the tab shows at once and fills them in when
// they arrive, however large the picture cache. Every action that cannot be undone asks
// first. The reset deletes every copy, its parts inventory and the wishlist; the catalog
// facts stay. Before it deletes, it can export the collection (the user's choice) and
// run a backup step (when one is installed): if either fails, nothing is deleted.
class CacheSettingsTab : public QWidget
{
    Q_OBJECT

public:
    enum class ResetChoice { reset, exportDataFirst, cancel };

    // The name the export suggests for its file.
    static inline const QString defaultExportName = QStringLiteral("Tessaloom Export.csv");

    // The user's answer to the reset question; `parent` is what the dialog is modal to.
    using ResetConfirmation = std::function<ResetChoice(QWidget *parent)>;
    // Asks where to write the export, suggesting `suggestedName`; empty when cancelled.
    using FileChooser = std::function<QString(const QString &suggestedName)>;
    // Opens a folder in the desktop's file manager.
    using UrlOpener = std::function<bool(const QUrl &url)>;
    // Runs before a reset deletes anything; false stops the reset.
    using ResetStep = std::function<QCoro::Task<bool>()>;

    CacheSettingsTab(PersistentContainer &container, CatalogDatabaseService &catalogService,
                     ImageCacheService &imageCache, QWidget *parent = nullptr);

    SettingsViewModel &viewModel() const { return *m_viewModel; }

    // Appends a group below the tab's own sections.
    void addSection(QWidget *section);
    // Installs the step awaited before a reset deletes anything. When it answers false,
    // nothing is deleted and the tab says that the collection could not be backed up.
    void setBackupBeforeReset(ResetStep step);

    // What the program does by default, replaceable for tests: the refresh of all prices
    // (CatalogSyncService::shared()), the reset question, the save dialog of the export,
    // the rebuild question, the desktop's file manager.
    void setRefreshAllPrices(std::function<QCoro::Task<>()> refresh) { m_refreshAllPrices = std::move(refresh); }
    void setResetConfirmation(ResetConfirmation confirmation) { m_confirmReset = std::move(confirmation); }
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void setRebuildConfirmation(DestructiveConfirmation::Asker asker) { m_confirmRebuild = std::move(asker); }
    void setUrlOpener(UrlOpener opener) { m_openUrl = std::move(opener); }

    // The folder "Tessaloom" in the user's application data, where the collection lives.
    static QString applicationDataFolder();

    // The actions behind the buttons, each also callable on its own.
    QCoro::Task<> refreshImageCacheSize();
    QCoro::Task<> refreshCatalogFigures();
    QCoro::Task<> clearImageCache();
    QCoro::Task<> checkForCatalogUpdates();
    void rebuildCatalog();
    // Opens the data folder; false (and nothing opens) when it does not exist.
    bool showInFileManager();
    QCoro::Task<> refreshAllPrices();
    // Asks for a file and writes the collection's CSV to it; whether a file was written.
    bool exportData();
    // Asks, then deletes the collection as chosen; whether anything was deleted.
    QCoro::Task<bool> resetCollection();

    QLabel *databaseLabel() const { return m_databaseLabel; }
    QLabel *imageCacheSizeLabel() const { return m_imageCacheSizeLabel; }
    QLabel *upToDateLabel() const { return m_upToDateLabel; }
    QLabel *upToDateIcon() const { return m_upToDateIcon; }
    QLabel *resetMessage() const { return m_resetMessage; }
    QPushButton *button(const QString &objectName) const;

    static ResetChoice askWithDialog(QWidget *parent);

Q_SIGNALS:
    void catalogFiguresShown();
    void collectionReset(int deletedObjects);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QGroupBox *buildCatalogSection();
    QGroupBox *buildImageCacheSection();
    QGroupBox *buildStorageSection();
    QGroupBox *buildDataSection();
    QPushButton *addButton(QVBoxLayout *layout, const QString &objectName, const QString &text);
    void setCatalogButtonsEnabled();
    QString chooseWithDialog(const QString &suggestedName);
    QCoro::Task<bool> deleteCollection();

    PersistentContainer &m_container;
    CatalogDatabaseService &m_catalogService;
    ImageCacheService &m_imageCache;
    SettingsViewModel *m_viewModel;
    QVBoxLayout *m_sections;
    QLabel *m_databaseLabel = nullptr;
    QLabel *m_upToDateIcon = nullptr;
    QLabel *m_upToDateLabel = nullptr;
    QLabel *m_imageCacheSizeLabel = nullptr;
    QLabel *m_resetMessage = nullptr;
    int m_sizeGeneration = 0;
    int m_catalogGeneration = 0;
    bool m_isCheckingCatalog = false;
    bool m_isResetting = false;
    std::function<QCoro::Task<>()> m_refreshAllPrices;
    ResetConfirmation m_confirmReset;
    FileChooser m_chooseFile;
    DestructiveConfirmation::Asker m_confirmRebuild;
    UrlOpener m_openUrl;
    ResetStep m_backupBeforeReset;
};
