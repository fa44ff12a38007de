// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogSetDetailView.h"

#include "Logging.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetQueries.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreChanges.h"
#include "ViewModels/SetListColumnTitle.h"
#include "Views/CatalogSetAdder.h"
#include "Views/CachedAsyncImage.h"
#include "Views/CatalogSetInstructionsView.h"
#include "Views/SetImagePreviewWindow.h"
#include "Views/SymbolIcon.h"

#include <QAction>
#include <QFormLayout>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {

constexpr int pictureHeight = 280;
constexpr int iconSize = 16;

// "Add to Collection (Ctrl+Shift+A)": the shortcut is told where the button is.
QString withShortcut(const QString &text, const QAction *action)
{
    return u"%1 (%2)"_s.arg(text, action->shortcut().toString(QKeySequence::NativeText));
}

QLabel *symbolLabel(const QString &symbolName, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setPixmap(SymbolIcon::icon(symbolName).pixmap(iconSize, iconSize));
    return label;
}

} // namespace

CatalogSetDetailView::CatalogSetDetailView(PersistentContainer &container,
                                           LegoInstructionsService::Fetcher fetchInstructions, QWidget *parent)
    : QWidget(parent)
    , m_container(container)
    , m_sync(CatalogSetAdder::sharedSyncOperation())
    , m_picture(new CachedAsyncImage(this))
    , m_name(new QLabel(this))
    , m_setNumber(new QLabel(this))
    , m_theme(new QLabel(this))
    , m_year(new QLabel(this))
    , m_pieces(new QLabel(this))
    , m_inCollectionRow(new QWidget(this))
    , m_inCollectionLabel(new QLabel(this))
    , m_viewInCollectionButton(new QPushButton(this))
    , m_addButton(new QPushButton(this))
    , m_addingRow(new QWidget(this))
    , m_addingLabel(new QLabel(this))
    , m_wishlistButton(new QPushButton(this))
    , m_instructions(new CatalogSetInstructionsView(std::move(fetchInstructions), this))
    , m_addAction(new QAction(this))
    , m_viewInCollectionAction(new QAction(this))
    , m_wishlistAction(new QAction(this))
    , m_imagePreviewAction(new QAction(this))
{
    setObjectName(u"catalogSetDetail"_s);
    buildActions();
    buildLayout();
    connect(&m_container, &PersistentContainer::objectsDidChange, this, &CatalogSetDetailView::objectsChanged);
    connect(m_instructions, &CatalogSetInstructionsView::instructionsChanged, this, &CatalogSetDetailView::stateChanged);
    connect(m_instructions, &CatalogSetInstructionsView::loadingChanged, this, &CatalogSetDetailView::stateChanged);
    updateState();
}

CatalogSetDetailView::~CatalogSetDetailView() = default;

void CatalogSetDetailView::buildActions()
{
    // Window shortcuts, live only while the screen is on show (a hidden widget's actions
    // do not fire), so the list keeps the focus while the keyboard acts on the detail.
    const auto setUp = [this](QAction *action, const QKeySequence &shortcut, auto slot) {
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WindowShortcut);
        QWidget::addAction(action);
        connect(action, &QAction::triggered, this, slot);
    };
    setUp(m_addAction, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A), &CatalogSetDetailView::addToCollection);
    setUp(m_viewInCollectionAction, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C),
          &CatalogSetDetailView::viewInCollection);
    setUp(m_wishlistAction, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W), &CatalogSetDetailView::toggleWishlist);
    setUp(m_imagePreviewAction, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Y),
          &CatalogSetDetailView::openImagePreview);
}

void CatalogSetDetailView::buildLayout()
{
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto *scroller = new QScrollArea(this);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    outer->addWidget(scroller);
    auto *content = new QWidget(scroller);
    scroller->setWidget(content);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(10);

    // 1. The picture; a click, or Space while it has the focus, opens the large preview.
    m_picture->setObjectName(u"setImage"_s);
    // A fixed height: a set's picture, often a thousand pixels tall, is scaled into the
    // area rather than pushing the facts below it out of sight.
    m_picture->setFixedHeight(pictureHeight);
    m_picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_picture->setFocusPolicy(Qt::StrongFocus);
    m_picture->setCursor(Qt::PointingHandCursor);
    m_picture->installEventFilter(this);
    // The picture sets its own tool tip when it fails to load; the hint about the preview
    // sits on a frame around it, which shows it whenever the picture has none.
    auto *pictureFrame = new QWidget(content);
    auto *pictureLayout = new QVBoxLayout(pictureFrame);
    pictureLayout->setContentsMargins(0, 0, 0, 0);
    pictureLayout->addWidget(m_picture);
    layout->addWidget(pictureFrame);

    // 2. What identifies the set.
    QFont nameFont = m_name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.5);
    m_name->setFont(nameFont);
    m_name->setWordWrap(true);
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_setNumber->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_setNumber->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_name);
    layout->addWidget(m_setNumber);
    auto *facts = new QFormLayout;
    facts->setContentsMargins(0, 4, 0, 4);
    facts->setLabelAlignment(Qt::AlignRight);
    m_theme->setWordWrap(true);
    facts->addRow(SetListColumnTitle::text(SetListColumnTitle::Kind::theme), m_theme);
    facts->addRow(SetListColumnTitle::text(SetListColumnTitle::Kind::year), m_year);
    layout->addLayout(facts);
    auto *piecesRow = new QHBoxLayout;
    piecesRow->addWidget(symbolLabel(u"square.grid.3x3"_s, content));
    piecesRow->addWidget(m_pieces, 1);
    layout->addLayout(piecesRow);

    // 3. The collection state: owned, adding, or the add button.
    auto *ownedLayout = new QHBoxLayout(m_inCollectionRow);
    ownedLayout->setContentsMargins(0, 8, 0, 0);
    ownedLayout->addWidget(symbolLabel(u"checkmark.circle.fill"_s, m_inCollectionRow));
    //% "In Collection"
    m_inCollectionLabel->setText(qtTrId("catalog.detail.inCollection"));
    ownedLayout->addWidget(m_inCollectionLabel);
    ownedLayout->addStretch(1);
    m_viewInCollectionButton->setObjectName(u"viewInCollection"_s);
    //% "View in Collection"
    m_viewInCollectionButton->setText(qtTrId("catalog.detail.viewInCollection"));
    m_viewInCollectionButton->setIcon(SymbolIcon::icon(u"arrow.right.circle"_s));
    m_viewInCollectionButton->setToolTip(withShortcut(m_viewInCollectionButton->text(), m_viewInCollectionAction));
    connect(m_viewInCollectionButton, &QPushButton::clicked, this, &CatalogSetDetailView::viewInCollection);
    ownedLayout->addWidget(m_viewInCollectionButton);
    layout->addWidget(m_inCollectionRow);

    m_addButton->setObjectName(u"addToCollection"_s);
    //% "Add to Collection"
    m_addButton->setText(qtTrId("catalog.detail.addToCollection"));
    m_addButton->setIcon(SymbolIcon::icon(u"plus.circle.fill"_s));
    m_addButton->setToolTip(withShortcut(m_addButton->text(), m_addAction));
    connect(m_addButton, &QPushButton::clicked, this, &CatalogSetDetailView::addToCollection);
    layout->addWidget(m_addButton);

    auto *addingLayout = new QHBoxLayout(m_addingRow);
    addingLayout->setContentsMargins(0, 8, 0, 0);
    auto *busy = new QProgressBar(m_addingRow);
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setMaximumWidth(80);
    addingLayout->addWidget(busy);
    //% "Adding Set…"
    m_addingLabel->setText(qtTrId("catalog.detail.addingSet"));
    addingLayout->addWidget(m_addingLabel, 1);
    layout->addWidget(m_addingRow);

    // 4. The wishlist toggle.
    m_wishlistButton->setObjectName(u"wishlistToggle"_s);
    connect(m_wishlistButton, &QPushButton::clicked, this, &CatalogSetDetailView::toggleWishlist);
    layout->addWidget(m_wishlistButton);

    // 5. The building instructions.
    layout->addSpacing(8);
    layout->addWidget(m_instructions);
    layout->addStretch(1);

    //% "Show the picture larger"
    pictureFrame->setToolTip(withShortcut(qtTrId("catalog.detail.showPicture"), m_imagePreviewAction));
}

void CatalogSetDetailView::setSyncOperation(SyncOperation operation)
{
    m_sync = std::move(operation);
}

void CatalogSetDetailView::setUrlOpener(UrlOpener opener)
{
    m_instructions->setUrlOpener(std::move(opener));
}

void CatalogSetDetailView::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    m_picture->setImageCache(cache);
    m_instructions->setImageCache(cache);
    if (m_previewWindow)
        m_previewWindow->setImageCache(cache);
}

QList<LegoInstructionsService::Instruction> CatalogSetDetailView::instructions() const
{
    return m_instructions->instructions();
}

bool CatalogSetDetailView::isLoadingInstructions() const
{
    return m_instructions->isLoadingInstructions();
}

void CatalogSetDetailView::showCatalogSet(const CatalogSetResult &set)
{
    ++m_visit;
    m_catalogSet = set;
    m_isAdding = false;
    m_addedSet.reset();
    m_themePath.clear();

    const QString name = set.name.isEmpty() ? set.setNum : set.name;
    m_name->setText(name);
    m_setNumber->setText(set.setNum);
    m_theme->clear();
    m_year->setText(set.year > 0 ? QString::number(set.year) : QString());
    //% "%1 pieces"
    m_pieces->setText(qtTrId("catalog.detail.pieces ").arg(QLocale().toString(set.numParts)));
    //% "Picture of %1"
    m_picture->setAccessibleName(qtTrId("accessibility.setImage.").arg(name));
    m_picture->setSource(set.imgURL.value_or(QString()));
    if (m_previewWindow)
        m_previewWindow->setPicture(set.imgURL.value_or(QString()), name);

    refetchOwnedSets();
    refetchWishlistEntries();
    updateState();
    lookUpThemePath();
    // Last: a fetcher that answers at once finishes the lookup within this call.
    m_instructions->showSet(set.setNum);
}

void CatalogSetDetailView::lookUpThemePath()
{
    // The catalog's lock is never taken on the main thread for this: the path is read on
    // the pool and filled in when it lands, if this visit is still on.
    const quint64 visit = m_visit;
    auto *watcher = new QFutureWatcher<QString>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, visit] {
        watcher->deleteLater();
        if (visit != m_visit)
            return;
        m_themePath = watcher->result();
        m_theme->setText(m_themePath);
        Q_EMIT stateChanged();
    });
    const int themeID = m_catalogSet->themeID;
    watcher->setFuture(QtConcurrent::run([themeID] {
        const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
        return catalog ? catalog->themePath(themeID) : QString();
    }));
}

void CatalogSetDetailView::objectsChanged(const StoreChanges &changes)
{
    if (!m_catalogSet)
        return;
    bool changed = false;
    // The copy made here may be taken back (the window's Undo): then it no longer counts.
    if (m_addedSet && changes.deleted.contains(m_addedSet->objectID))
        m_addedSet.reset();
    if (changes.touches(EntityType::BrickSet) || changes.touches(EntityType::CatalogSet)) {
        refetchOwnedSets();
        changed = true;
    }
    if (changes.touches(EntityType::WishlistItem)) {
        refetchWishlistEntries();
        changed = true;
    }
    if (changed)
        updateState();
}

void CatalogSetDetailView::refetchOwnedSets()
{
    m_existingOwnedSets.clear();
    if (!m_catalogSet)
        return;
    try {
        const FetchRequest<BrickSet> request(
            BrickSetQueries::setNumber(m_catalogSet->setNum) && BrickSetQueries::notTrashed(),
            {SortDescriptor{u"dateAdded"_s, true}});
        m_existingOwnedSets = m_container.viewContext().fetch(request);
    } catch (const StoreError &error) {
        // Shown as not owned; the next change notice reads again.
        qCWarning(lcPersistence) << "Reading the copies of a catalog set failed:" << error.description();
    }
}

void CatalogSetDetailView::refetchWishlistEntries()
{
    m_wishlistEntries.clear();
    if (!m_catalogSet)
        return;
    try {
        const FetchRequest<WishlistItem> request(Predicate::equal(u"setNumber"_s, m_catalogSet->setNum));
        m_wishlistEntries = m_container.viewContext().fetch(request);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the wishlist entries of a catalog set failed:" << error.description();
    }
}

void CatalogSetDetailView::updateState()
{
    const bool shown = m_catalogSet.has_value();
    const bool owned = isOwned();
    m_inCollectionRow->setVisible(shown && owned);
    m_addButton->setVisible(shown && !owned && !m_isAdding);
    m_addingRow->setVisible(shown && !owned && m_isAdding);
    m_addAction->setEnabled(shown && !owned && !m_isAdding);
    m_viewInCollectionAction->setEnabled(shown && owned);
    m_wishlistAction->setEnabled(shown);
    m_wishlistButton->setEnabled(shown);
    m_imagePreviewAction->setEnabled(shown);

    const bool onWishlist = !m_wishlistEntries.isEmpty();
    //% "Remove from Wishlist"
    const QString remove = qtTrId("catalog.detail.removeFromWishlist");
    //% "Add to Wishlist"
    const QString add = qtTrId("catalog.detail.addToWishlist");
    m_wishlistButton->setText(onWishlist ? remove : add);
    m_wishlistButton->setIcon(SymbolIcon::icon(onWishlist ? u"heart.fill"_s : u"heart"_s));
    m_wishlistButton->setToolTip(withShortcut(m_wishlistButton->text(), m_wishlistAction));
    Q_EMIT stateChanged();
}

void CatalogSetDetailView::addToCollection()
{
    if (!m_catalogSet || m_isAdding)
        return;
    m_isAdding = true;
    updateState();
    runAdd(QPointer<CatalogSetDetailView>(this), QPointer<PersistentContainer>(&m_container), m_sync,
           m_catalogSet->setNum, m_visit);
}

QCoro::Task<void> CatalogSetDetailView::runAdd(QPointer<CatalogSetDetailView> self,
                                               QPointer<PersistentContainer> container, SyncOperation sync,
                                               QString setNumber, quint64 visit)
{
    // The screen may be gone or on another set when the sync ends; the copy the user asked
    // for is made all the same.
    const std::optional<BrickSet> copy = co_await CatalogSetAdder::add(container, std::move(sync), setNumber);
    if (self)
        self->finishAdd(visit, copy);
}

void CatalogSetDetailView::finishAdd(quint64 visit, const std::optional<BrickSet> &copy)
{
    if (copy)
        Q_EMIT copyAdded(copy->objectID);
    if (visit != m_visit)
        return;
    m_isAdding = false;
    if (copy)
        m_addedSet = copy;
    // A save that failed is not announced; the pending copy is read back all the same.
    refetchOwnedSets();
    updateState();
}

void CatalogSetDetailView::viewInCollection()
{
    if (m_addedSet)
        Q_EMIT viewInCollectionRequested(m_addedSet->objectID);
    else if (!m_existingOwnedSets.isEmpty())
        Q_EMIT viewInCollectionRequested(m_existingOwnedSets.constFirst().objectID);
}

void CatalogSetDetailView::toggleWishlist()
{
    if (!m_catalogSet)
        return;
    ManagedObjectContext &context = m_container.viewContext();
    if (!m_wishlistEntries.isEmpty()) {
        // Only the first entry goes: with two entries for one number, one remains.
        const ObjectID entry = m_wishlistEntries.constFirst().objectID;
        try {
            context.deleteObject(entry);
            context.save();
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Removing a wishlist entry failed:" << error.description();
        }
        refetchWishlistEntries();
        updateState();
        Q_EMIT wishlistEntryRemoved(entry);
        // Closed whether the save went through or not.
        Q_EMIT dismissRequested();
        return;
    }
    WishlistItem item;
    item.setNumber = m_catalogSet->setNum;
    item.setName = m_catalogSet->name;
    item.year = qint16(m_catalogSet->year);
    item.pieceCount = m_catalogSet->numParts;
    item.imageURL = m_catalogSet->imgURL;
    item.dateAdded = QDateTime::currentDateTimeUtc();
    const QString themeName = themeNameForWishlist();
    if (!themeName.isEmpty())
        item.themeName = themeName;
    std::optional<ObjectID> added;
    try {
        added = context.insert(item).objectID;
        context.save();
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Adding a wishlist entry failed:" << error.description();
    }
    refetchWishlistEntries();
    updateState();
    if (added)
        Q_EMIT wishlistEntryAdded(*added);
}

QString CatalogSetDetailView::themeNameForWishlist() const
{
    // One short look-up by key, which the catalog's look-up connection serves on the main
    // thread without waiting behind a search.
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog)
        return {};
    const std::optional<CatalogThemeResult> theme = catalog->theme(m_catalogSet->themeID);
    return theme ? theme->name : QString();
}

void CatalogSetDetailView::openImagePreview()
{
    if (!m_catalogSet)
        return;
    if (!m_previewWindow) {
        m_previewWindow = new SetImagePreviewWindow(this);
        if (m_imageCache)
            m_previewWindow->setImageCache(m_imageCache);
        connect(m_previewWindow, &SetImagePreviewWindow::closed, this, [this] {
            m_showImagePreview = false;
            Q_EMIT stateChanged();
        });
    }
    m_previewWindow->setPicture(m_catalogSet->imgURL.value_or(QString()), m_name->text());
    m_previewWindow->show();
    m_previewWindow->raise();
    m_previewWindow->activateWindow();
    m_showImagePreview = true;
    Q_EMIT stateChanged();
}

void CatalogSetDetailView::closeImagePreview()
{
    if (m_previewWindow && m_previewWindow->isVisible())
        m_previewWindow->close();
}

bool CatalogSetDetailView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_picture) {
        if (event->type() == QEvent::MouseButtonRelease
            && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton
            && m_picture->rect().contains(static_cast<QMouseEvent *>(event)->position().toPoint())) {
            openImagePreview();
            return true;
        }
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent *>(event)->key();
            if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter) {
                openImagePreview();
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}
