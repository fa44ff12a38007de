// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Services/LegoInstructionsService.h"
#include "Store/BrickSet.h"
#include "Store/ObjectID.h"
#include "Store/WishlistItem.h"
#include "Views/CatalogSetAdder.h"

#include <QCoroTask>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class CachedAsyncImage;
class CatalogSetInstructionsView;
class ImageCacheService;
class PersistentContainer;
class QAction;
class QLabel;
class QPushButton;
class SetImagePreviewWindow;
struct StoreChanges;

// The detail screen of a set from the catalog: its picture, what identifies it, whether
// the collection holds it (with the way to add it or to go to the copy), the wishlist
// toggle and its building-instruction booklets.
//
// Whether the set is owned follows the store: the copies with the set's number that are
// not in the trash, and the wishlist entries with that number, are read again after every
// commit that touches them, whichever screen or context made it. A copy in the trash does
// not count, so adding the set then makes a new copy.
//
// Every action has a button that Tab reaches and a shortcut that works while the screen is
// on show: Ctrl+Shift+A adds the set, Ctrl+Shift+C goes to the copy in the collection,
// Ctrl+Shift+W adds to or removes from the wishlist, Ctrl+Shift+Y (or Space on the focused
// picture) opens the large picture.
class CatalogSetDetailView : public QWidget
{
    Q_OBJECT

public:
    using SyncOperation = CatalogSetAdder::SyncOperation;
    // Opens a web page or a PDF.
    using UrlOpener = std::function<void(const QUrl &url)>;

    // `fetchInstructions` looks booklets up (LegoInstructionsService::sharedFetcher() in the
    // program). Adding syncs through CatalogSyncService::shared() unless set otherwise.
    CatalogSetDetailView(PersistentContainer &container, LegoInstructionsService::Fetcher fetchInstructions,
                         QWidget *parent = nullptr);
    ~CatalogSetDetailView() override;

    void setSyncOperation(SyncOperation operation);
    void setUrlOpener(UrlOpener opener);
    void setImageCache(ImageCacheService *cache);

    // Shows `set`. Every call is a new visit: the copy made on the last visit, the progress
    // of an add and the booklets are forgotten, and the booklets are asked for anew. An add
    // still running for the set before ends in the store all the same.
    void showCatalogSet(const CatalogSetResult &set);

    // ---- What the screen holds ----
    std::optional<CatalogSetResult> catalogSet() const { return m_catalogSet; }
    bool isAdding() const { return m_isAdding; }
    // The copy this visit made.
    std::optional<BrickSet> addedSet() const { return m_addedSet; }
    QList<LegoInstructionsService::Instruction> instructions() const;
    bool isLoadingInstructions() const;
    bool showImagePreview() const { return m_showImagePreview; }
    // Copies with the set's number that are not in the trash, oldest first.
    QList<BrickSet> existingOwnedSets() const { return m_existingOwnedSets; }
    // Wishlist entries with the set's number, in the order they were made.
    QList<WishlistItem> wishlistEntries() const { return m_wishlistEntries; }
    // A copy made here, or one in the collection.
    bool isOwned() const { return m_addedSet.has_value() || !m_existingOwnedSets.isEmpty(); }
    // The theme's path as the catalog names it ("Star Wars > Ultimate Collector Series"),
    // empty until it has been read or when the catalog does not know the theme.
    QString themePath() const { return m_themePath; }

    // ---- Actions ----
    // Adds the set to the collection as a new copy; nothing while an add runs.
    void addToCollection();
    // Asks the window for the copy made here, or else the first copy in the collection.
    void viewInCollection();
    // Removes the first wishlist entry of the set (and asks to close the screen), or adds
    // the set to the wishlist.
    void toggleWishlist();
    void openImagePreview();
    void closeImagePreview();

    // ---- Parts, for the window and for tests ----
    CachedAsyncImage *picture() const { return m_picture; }
    QLabel *nameLabel() const { return m_name; }
    QLabel *setNumberLabel() const { return m_setNumber; }
    QLabel *themeLabel() const { return m_theme; }
    QLabel *yearLabel() const { return m_year; }
    QLabel *piecesLabel() const { return m_pieces; }
    QWidget *inCollectionRow() const { return m_inCollectionRow; }
    QLabel *inCollectionLabel() const { return m_inCollectionLabel; }
    QPushButton *viewInCollectionButton() const { return m_viewInCollectionButton; }
    QPushButton *addToCollectionButton() const { return m_addButton; }
    QWidget *addingRow() const { return m_addingRow; }
    QLabel *addingLabel() const { return m_addingLabel; }
    QPushButton *wishlistButton() const { return m_wishlistButton; }
    CatalogSetInstructionsView *instructionsView() const { return m_instructions; }
    SetImagePreviewWindow *imagePreviewWindow() const { return m_previewWindow; }
    QAction *addToCollectionAction() const { return m_addAction; }
    QAction *viewInCollectionAction() const { return m_viewInCollectionAction; }
    QAction *wishlistAction() const { return m_wishlistAction; }
    QAction *imagePreviewAction() const { return m_imagePreviewAction; }

Q_SIGNALS:
    // "View in Collection": the window shows this copy (ContentView::showOwnedCopy).
    void viewInCollectionRequested(const ObjectID &brickSet);
    // The screen asks to be closed: after its wishlist entry was removed.
    void dismissRequested();
    // A copy was made by an add from this screen (for the window's Undo), also when the
    // screen had moved on to another set meanwhile.
    void copyAdded(const ObjectID &brickSet);
    void wishlistEntryAdded(const ObjectID &entry);
    void wishlistEntryRemoved(const ObjectID &entry);
    // Whatever the screen shows changed: ownership, progress, wishlist, booklets, preview.
    void stateChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static QCoro::Task<void> runAdd(QPointer<CatalogSetDetailView> self, QPointer<PersistentContainer> container,
                                    SyncOperation sync, QString setNumber, quint64 visit);
    void finishAdd(quint64 visit, const std::optional<BrickSet> &copy);
    void buildLayout();
    void buildActions();
    void objectsChanged(const StoreChanges &changes);
    void refetchOwnedSets();
    void refetchWishlistEntries();
    void lookUpThemePath();
    void updateState();
    QString themeNameForWishlist() const;

    PersistentContainer &m_container;
    SyncOperation m_sync;
    QPointer<ImageCacheService> m_imageCache;

    std::optional<CatalogSetResult> m_catalogSet;
    bool m_isAdding = false;
    std::optional<BrickSet> m_addedSet;
    bool m_showImagePreview = false;
    QList<BrickSet> m_existingOwnedSets;
    QList<WishlistItem> m_wishlistEntries;
    QString m_themePath;
    quint64 m_visit = 0; // answers for an earlier visit do not change what is shown

    CachedAsyncImage *m_picture;
    QLabel *m_name;
    QLabel *m_setNumber;
    QLabel *m_theme;
    QLabel *m_year;
    QLabel *m_pieces;
    QWidget *m_inCollectionRow;
    QLabel *m_inCollectionLabel;
    QPushButton *m_viewInCollectionButton;
    QPushButton *m_addButton;
    QWidget *m_addingRow;
    QLabel *m_addingLabel;
    QPushButton *m_wishlistButton;
    CatalogSetInstructionsView *m_instructions;
    SetImagePreviewWindow *m_previewWindow = nullptr;
    QAction *m_addAction;
    QAction *m_viewInCollectionAction;
    QAction *m_wishlistAction;
    QAction *m_imagePreviewAction;
};
