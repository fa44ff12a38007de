// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetDetailView.h"

#include "Services/ImageCacheService.h"
#include "ViewModels/CollectionTrash.h"
#include "Views/LazyTabContent.h"
#include "Views/OverviewTab.h"
#include "Views/PartsTab.h"
#include "Views/SymbolIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SetDetailView::SetDetailView(const BrickSet &copy, ManagedObjectContext &viewContext,
                             LegoInstructionsService::Fetcher fetchInstructions, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(copy, viewContext)
    , m_fetchInstructions(std::move(fetchInstructions))
    , m_title(new QLabel(this))
    , m_favoriteButton(new QToolButton(this))
    , m_tabBar(new QTabBar(this))
    , m_pages(new QStackedWidget(this))
{
    setObjectName(u"setDetail"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 8, 0, 0);
    layout->setSpacing(6);

    auto *header = new QHBoxLayout;
    header->setContentsMargins(16, 0, 12, 0);
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.4);
    m_title->setFont(titleFont);
    m_title->setWordWrap(true);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    header->addWidget(m_title, 1);
    m_favoriteButton->setObjectName(u"favorite"_s);
    m_favoriteButton->setAutoRaise(true);
    m_favoriteButton->setCheckable(true);
    //% "Favorite"
    m_favoriteButton->setText(qtTrId("detail.favorite"));
    connect(m_favoriteButton, &QToolButton::clicked, this, [this] { m_viewModel.toggleFavorite(); });
    header->addWidget(m_favoriteButton);
    layout->addLayout(header);

    m_tabBar->setObjectName(u"detailTabs"_s);
    m_tabBar->setDrawBase(false);
    m_tabBar->setExpanding(false);
    for (const DetailTab tab : SetDetailViewModel::allTabs())
        m_tabBar->addTab(SymbolIcon::icon(SetDetailViewModel::iconName(tab)), SetDetailViewModel::displayName(tab));
    layout->addWidget(m_tabBar);
    layout->addWidget(m_pages, 1);

    m_tabPages = {
        new LazyTabContent([this](QWidget *parent) { return buildOverview(parent); }, m_pages),
        new LazyTabContent([this](QWidget *parent) { return buildInventory(parent); }, m_pages),
        new LazyTabContent([this](QWidget *parent) { return buildParts(parent); }, m_pages),
    };
    for (LazyTabContent *page : m_tabPages)
        m_pages->addWidget(page);

    connect(m_tabBar, &QTabBar::currentChanged, this, [this](int index) {
        if (index >= 0 && index < int(m_tabPages.size()))
            selectTab(SetDetailViewModel::allTabs().at(index));
    });
    connect(&m_viewModel, &SetDetailViewModel::contentChanged, this, &SetDetailView::reloadHeader);

    reloadHeader();
    m_tabPages[0]->setSelected(true);
    m_pages->setCurrentWidget(m_tabPages[0]);
}

SetDetailView::~SetDetailView() = default;

void SetDetailView::reloadHeader()
{
    m_title->setText(m_viewModel.title());
    const bool favorite = m_viewModel.brickSet().isFavorite;
    m_favoriteButton->setChecked(favorite);
    m_favoriteButton->setIcon(SymbolIcon::icon(favorite ? u"star.fill"_s : u"star"_s));
    //% "Remove from Favorites"
    const QString remove = qtTrId("accessibility.favorite.remove");
    //% "Add to Favorites"
    const QString add = qtTrId("accessibility.favorite.add");
    m_favoriteButton->setAccessibleName(favorite ? remove : add);
    m_favoriteButton->setToolTip(favorite ? remove : add);
}

void SetDetailView::selectTab(DetailTab tab)
{
    const int index = int(SetDetailViewModel::allTabs().indexOf(tab));
    m_viewModel.setSelectedTab(tab);
    for (int other = 0; other < int(m_tabPages.size()); ++other)
        m_tabPages[other]->setSelected(other == index);
    m_pages->setCurrentWidget(m_tabPages[index]);
    const QSignalBlocker blocker(m_tabBar);
    m_tabBar->setCurrentIndex(index);
}

LazyTabContent *SetDetailView::tabPage(DetailTab tab) const
{
    return m_tabPages[SetDetailViewModel::allTabs().indexOf(tab)];
}

OverviewTab *SetDetailView::overviewTab() const
{
    return qobject_cast<OverviewTab *>(tabPage(DetailTab::overview)->content());
}

InventoryTab *SetDetailView::inventoryTab() const
{
    return qobject_cast<InventoryTab *>(tabPage(DetailTab::inventory)->content());
}

PartsTab *SetDetailView::partsTab() const
{
    return qobject_cast<PartsTab *>(tabPage(DetailTab::parts)->content());
}

QWidget *SetDetailView::buildOverview(QWidget *parent)
{
    auto *overview = new OverviewTab(m_viewModel, m_fetchInstructions, parent);
    overview->setImageCache(m_imageCache);
    if (m_urlOpener)
        overview->setUrlOpener(m_urlOpener);
    return overview;
}

QWidget *SetDetailView::buildInventory(QWidget *parent)
{
    auto *inventory = new InventoryTab(m_viewModel, parent);
    inventory->setEditorFactory(m_editorFactory);
    inventory->setCollectionTrash(m_trash);
    connect(inventory, &InventoryTab::partsChecklistRequested, this, &SetDetailView::partsChecklistRequested);
    return inventory;
}

QWidget *SetDetailView::buildParts(QWidget *parent)
{
    auto *parts = new PartsTab(parent);
    if (m_imageCache)
        parts->setImageCache(m_imageCache);
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    parts->setSetNumber(set ? set->setNumber.value_or(QString()) : QString());
    return parts;
}

void SetDetailView::setEditorFactory(EditorFactory factory)
{
    m_editorFactory = std::move(factory);
    if (InventoryTab *inventory = inventoryTab())
        inventory->setEditorFactory(m_editorFactory);
}

void SetDetailView::setCatalogSyncStep(SetDetailViewModel::CatalogSyncStep step)
{
    m_viewModel.setCatalogSyncStep(std::move(step));
}

void SetDetailView::setPriceSyncStep(SetDetailViewModel::PriceSyncStep step)
{
    m_viewModel.setPriceSyncStep(std::move(step));
}

void SetDetailView::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    if (OverviewTab *overview = overviewTab())
        overview->setImageCache(cache);
    if (PartsTab *parts = partsTab())
        parts->setImageCache(cache);
}

void SetDetailView::setUrlOpener(UrlOpener opener)
{
    m_urlOpener = std::move(opener);
    if (OverviewTab *overview = overviewTab())
        overview->setUrlOpener(m_urlOpener);
}

void SetDetailView::setCollectionTrash(CollectionTrash *trash)
{
    m_trash = trash;
    if (InventoryTab *inventory = inventoryTab())
        inventory->setCollectionTrash(trash);
}
