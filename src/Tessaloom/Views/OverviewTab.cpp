// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/OverviewTab.h"

#include "Services/ImageCacheService.h"
#include "ViewModels/MoneyText.h"
#include "ViewModels/SetDetailViewModel.h"
#include "ViewModels/SetListColumnTitle.h"
#include "Views/CachedAsyncImage.h"
#include "Views/OwnedSetInstructionsView.h"
#include "Views/SetImagePreviewWindow.h"
#include "Views/SymbolIcon.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int pictureHeight = 240;
constexpr int iconSize = 16;

QLabel *sectionTitle(const QString &text, QWidget *parent)
{
    auto *title = new QLabel(text, parent);
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    return title;
}

void setTextColor(QLabel *label, const QColor &color)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

} // namespace

OverviewTab::OverviewTab(SetDetailViewModel &viewModel, LegoInstructionsService::Fetcher fetchInstructions,
                         QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_picture(new CachedAsyncImage(this))
    , m_setNumber(new QLabel(this))
    , m_theme(new QLabel(this))
    , m_year(new QLabel(this))
    , m_pieceCount(new QLabel(this))
    , m_retailPrice(new QLabel(this))
    , m_marketValue(new QLabel(this))
    , m_growthRow(new QWidget(this))
    , m_growthIcon(new QLabel(m_growthRow))
    , m_growthLabel(new QLabel(m_growthRow))
    , m_pricePaid(new QLabel(this))
    , m_priceGuideList(new QWidget(this))
    , m_priceGuideLayout(new QVBoxLayout(m_priceGuideList))
    , m_refreshButton(new QPushButton(this))
    , m_syncError(new QLabel(this))
    , m_inventoryNone(new QLabel(this))
    , m_inStock(new QLabel(this))
    , m_disposed(new QLabel(this))
    , m_instructions(new OwnedSetInstructionsView(viewModel, std::move(fetchInstructions), this))
    , m_notesSection(new QWidget(this))
    , m_notes(new QLabel(m_notesSection))
{
    setObjectName(u"overviewTab"_s);
    buildLayout();
    connect(&m_viewModel, &SetDetailViewModel::contentChanged, this, &OverviewTab::reload);
    connect(&m_viewModel, &SetDetailViewModel::refreshTokenChanged, this, &OverviewTab::reload);
    connect(&m_viewModel, &SetDetailViewModel::syncingChanged, this, &OverviewTab::reloadSyncState);
    connect(&m_viewModel, &SetDetailViewModel::syncErrorChanged, this, &OverviewTab::reloadSyncState);
    connect(m_refreshButton, &QPushButton::clicked, this, [this] { m_viewModel.refresh(); });
    reload();
}

OverviewTab::~OverviewTab() = default;

void OverviewTab::buildLayout()
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
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(10);
    const auto adopt = [content](QWidget *widget) { widget->setParent(content); };

    // 1. The picture; a click, or Space while it has the focus, opens it larger.
    adopt(m_picture);
    m_picture->setObjectName(u"setImage"_s);
    // A fixed height: a set's picture, often a thousand pixels tall, is scaled into the
    // area rather than pushing the facts below it out of sight.
    m_picture->setFixedHeight(pictureHeight);
    m_picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_picture->setFocusPolicy(Qt::StrongFocus);
    m_picture->setCursor(Qt::PointingHandCursor);
    m_picture->installEventFilter(this);
    layout->addWidget(m_picture);

    // 2. The facts.
    auto *facts = new QFormLayout;
    facts->setLabelAlignment(Qt::AlignRight);
    for (QLabel *label : {m_setNumber, m_theme, m_year}) {
        adopt(label);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setWordWrap(true);
    }
    facts->addRow(SetListColumnTitle::text(SetListColumnTitle::Kind::setNumber), m_setNumber);
    facts->addRow(SetListColumnTitle::text(SetListColumnTitle::Kind::theme), m_theme);
    facts->addRow(SetListColumnTitle::text(SetListColumnTitle::Kind::year), m_year);
    layout->addLayout(facts);
    auto *piecesRow = new QHBoxLayout;
    auto *piecesIcon = new QLabel(content);
    piecesIcon->setPixmap(SymbolIcon::icon(u"square.grid.3x3"_s).pixmap(iconSize, iconSize));
    piecesRow->addWidget(piecesIcon);
    adopt(m_pieceCount);
    piecesRow->addWidget(m_pieceCount, 1);
    layout->addLayout(piecesRow);

    // 3. The values.
    auto *values = new QFormLayout;
    values->setLabelAlignment(Qt::AlignRight);
    adopt(m_retailPrice);
    adopt(m_marketValue);
    adopt(m_pricePaid);
    adopt(m_growthRow);
    setTextColor(m_marketValue, positiveColor());
    QFont valueFont = m_marketValue->font();
    valueFont.setBold(true);
    m_marketValue->setFont(valueFont);
    auto *growthLayout = new QHBoxLayout(m_growthRow);
    growthLayout->setContentsMargins(0, 0, 0, 0);
    growthLayout->addWidget(m_growthIcon);
    growthLayout->addWidget(m_growthLabel, 1);
    auto *marketBox = new QVBoxLayout;
    marketBox->setSpacing(2);
    marketBox->addWidget(m_marketValue);
    marketBox->addWidget(m_growthRow);
    //% "Retail Price"
    values->addRow(qtTrId("detail.overview.retailPrice"), m_retailPrice);
    //% "Market Value"
    values->addRow(qtTrId("detail.overview.marketValue"), marketBox);
    //% "Price Paid"
    values->addRow(qtTrId("detail.overview.pricePaid"), m_pricePaid);
    layout->addLayout(values);

    // 4. The price guides and the refresh.
    //% "Price Guide"
    layout->addWidget(sectionTitle(qtTrId("detail.overview.priceGuide"), content));
    adopt(m_priceGuideList);
    m_priceGuideLayout->setContentsMargins(0, 0, 0, 0);
    m_priceGuideLayout->setSpacing(2);
    layout->addWidget(m_priceGuideList);
    auto *refreshRow = new QHBoxLayout;
    adopt(m_refreshButton);
    m_refreshButton->setObjectName(u"refresh"_s);
    //% "Refresh"
    m_refreshButton->setText(qtTrId("detail.overview.refresh"));
    m_refreshButton->setIcon(SymbolIcon::icon(u"arrow.clockwise"_s));
    refreshRow->addWidget(m_refreshButton);
    adopt(m_syncError);
    m_syncError->setObjectName(u"syncError"_s);
    m_syncError->setWordWrap(true);
    setTextColor(m_syncError, negativeColor());
    refreshRow->addWidget(m_syncError, 1);
    layout->addLayout(refreshRow);

    // 5. The copies of the set.
    //% "Inventory"
    layout->addWidget(sectionTitle(qtTrId("detail.overview.inventory"), content));
    for (QLabel *label : {m_inventoryNone, m_inStock, m_disposed}) {
        adopt(label);
        layout->addWidget(label);
    }
    //% "None in your collection"
    m_inventoryNone->setText(qtTrId("detail.overview.inventory.none"));

    // 6. The building instructions.
    //% "Instructions"
    layout->addWidget(sectionTitle(qtTrId("detail.overview.instructions"), content));
    adopt(m_instructions);
    layout->addWidget(m_instructions);

    // 7. The notes.
    adopt(m_notesSection);
    auto *notesLayout = new QVBoxLayout(m_notesSection);
    notesLayout->setContentsMargins(0, 0, 0, 0);
    //% "Notes"
    notesLayout->addWidget(sectionTitle(qtTrId("detail.overview.notes"), m_notesSection));
    m_notes->setWordWrap(true);
    m_notes->setTextInteractionFlags(Qt::TextSelectableByMouse);
    notesLayout->addWidget(m_notes);
    layout->addWidget(m_notesSection);
    layout->addStretch(1);
}

void OverviewTab::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    m_picture->setImageCache(cache);
    m_instructions->setImageCache(cache);
    if (m_previewWindow)
        m_previewWindow->setImageCache(cache);
}

void OverviewTab::setUrlOpener(UrlOpener opener)
{
    m_instructions->setUrlOpener(std::move(opener));
}

void OverviewTab::reload()
{
    const QLocale locale;
    const BrickSet copy = m_viewModel.brickSet();
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    const QString name = m_viewModel.title();

    QStringList fallbacks;
    if (set && set->thumbnailURL)
        fallbacks.append(*set->thumbnailURL);
    m_picture->setSource(set ? set->imageURL.value_or(QString()) : QString(), fallbacks);
    //% "Picture of %1"
    m_picture->setAccessibleName(qtTrId("accessibility.setImage.").arg(name));
    if (m_previewWindow)
        m_previewWindow->setPicture(set ? set->imageURL.value_or(QString()) : QString(), name);

    m_setNumber->setText(set ? set->setNumber.value_or(QString()) : QString());
    m_theme->setText(set ? set->themeName.value_or(QString()) : QString());
    m_year->setText(set && set->year > 0 ? QString::number(set->year) : QString());
    //% "%1 pieces"
    m_pieceCount->setText(qtTrId("detail.overview.pieceCount.").arg(locale.toString(set ? set->pieceCount : 0)));

    m_retailPrice->setText(set ? MoneyText::text(set->retailPrice, set->retailPriceCurrency.value_or(QString()), locale)
                               : QString());
    const std::optional<SetDetailViewModel::MarketValue> market = m_viewModel.marketValue();
    m_marketValue->setText(market ? MoneyText::text(market->amount, market->currency, locale) : QString());
    const std::optional<Decimal> growth = m_viewModel.growthPercent();
    m_growthRow->setVisible(growth.has_value());
    if (growth) {
        const bool rising = !growth->isNegative();
        m_growthIconName = rising ? u"arrow.up"_s : u"arrow.down.right"_s;
        m_growthIcon->setPixmap(SymbolIcon::icon(m_growthIconName).pixmap(iconSize, iconSize));
        m_growthLabel->setText(SetDetailViewModel::growthText(*growth, locale));
        setTextColor(m_growthLabel, rising ? positiveColor() : negativeColor());
    } else {
        m_growthIconName.clear();
        m_growthIcon->clear();
        m_growthLabel->clear();
    }
    m_pricePaid->setText(MoneyText::text(copy.pricePaid, copy.priceCurrency.value_or(QString()), locale));

    reloadPriceGuides();
    reloadSyncState();

    const SetDetailViewModel::InventorySummary summary = m_viewModel.inventorySummary();
    m_inventoryNone->setVisible(summary.isEmpty());
    m_inStock->setVisible(!summary.isEmpty());
    m_disposed->setVisible(!summary.isEmpty());
    //% "%1 in stock"
    m_inStock->setText(qtTrId("detail.overview.inventory.inStock.").arg(locale.toString(summary.inStock)));
    //% "%1 disposed"
    m_disposed->setText(qtTrId("detail.overview.inventory.disposed.").arg(locale.toString(summary.disposed)));

    m_instructions->reload();

    const QString notes = copy.notes.value_or(QString());
    m_notes->setText(notes);
    m_notesSection->setVisible(!notes.isEmpty());
}

void OverviewTab::reloadPriceGuides()
{
    const QLocale locale;
    m_priceGuideLines.clear();
    while (QLayoutItem *item = m_priceGuideLayout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const CatalogSetAccessors::ProviderGuides &provider : m_viewModel.priceGuidesByProvider()) {
        auto *title = new QLabel(provider.providerName, m_priceGuideList);
        QFont font = title->font();
        font.setItalic(true);
        title->setFont(font);
        m_priceGuideLayout->addWidget(title);
        for (const CachedPriceGuide &guide : provider.guides) {
            const QString kind = u"%1 %2"_s.arg(guide.conditionType.value_or(QString()),
                                                guide.guideType.value_or(QString()));
            const QString price = MoneyText::text(guide.avgPrice, guide.currency.value_or(QString()), locale);
            auto *line = new QLabel(u"%1: %2"_s.arg(kind, price), m_priceGuideList);
            line->setIndent(12);
            m_priceGuideLayout->addWidget(line);
            m_priceGuideLines.append(u"%1: %2: %3"_s.arg(provider.providerName, kind, price));
        }
    }
}

void OverviewTab::reloadSyncState()
{
    m_refreshButton->setEnabled(!m_viewModel.isSyncing());
    const std::optional<QString> error = m_viewModel.syncError();
    m_syncError->setText(error.value_or(QString()));
    m_syncError->setVisible(error.has_value());
}

void OverviewTab::openImagePreview()
{
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    if (!m_previewWindow) {
        m_previewWindow = new SetImagePreviewWindow(this);
        if (m_imageCache)
            m_previewWindow->setImageCache(m_imageCache);
    }
    m_previewWindow->setPicture(set ? set->imageURL.value_or(QString()) : QString(), m_viewModel.title());
    m_previewWindow->show();
    m_previewWindow->raise();
    m_previewWindow->activateWindow();
}

bool OverviewTab::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_picture) {
        if (event->type() == QEvent::MouseButtonRelease
            && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
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
