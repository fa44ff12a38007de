// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"

#include <QColor>
#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>

class CachedAsyncImage;
class ImageCacheService;
class OwnedSetInstructionsView;
class QLabel;
class QPushButton;
class QVBoxLayout;
class SetDetailViewModel;
class SetImagePreviewWindow;

// The first tab of an owned copy's detail: the set's picture (a click opens it larger),
// its facts, its values (retail price, market value with its growth, the price paid), the
// price guides of each provider with the refresh button, how many copies the collection
// holds, the building-instruction booklets and the copy's notes. It redraws whenever the
// view model reports a change, so a commit from anywhere shows at once.
class OverviewTab : public QWidget
{
    Q_OBJECT

public:
    using UrlOpener = std::function<void(const QUrl &url)>;

    // Market value and rising growth; falling growth.
    static QColor positiveColor() { return QColor(0x1f, 0x8a, 0x3b); }
    static QColor negativeColor() { return QColor(0xc6, 0x28, 0x28); }

    OverviewTab(SetDetailViewModel &viewModel, LegoInstructionsService::Fetcher fetchInstructions,
                QWidget *parent = nullptr);
    ~OverviewTab() override;

    void setImageCache(ImageCacheService *cache);
    void setUrlOpener(UrlOpener opener);

    // Reads everything shown again from the view model.
    void reload();
    void openImagePreview();

    // ---- Parts, for tests ----
    CachedAsyncImage *picture() const { return m_picture; }
    QLabel *setNumberLabel() const { return m_setNumber; }
    QLabel *themeLabel() const { return m_theme; }
    QLabel *yearLabel() const { return m_year; }
    QLabel *pieceCountLabel() const { return m_pieceCount; }
    QLabel *retailPriceLabel() const { return m_retailPrice; }
    QLabel *marketValueLabel() const { return m_marketValue; }
    QWidget *growthRow() const { return m_growthRow; }
    QLabel *growthIcon() const { return m_growthIcon; }
    QLabel *growthLabel() const { return m_growthLabel; }
    // The symbol name of the growth arrow shown ("arrow.up", "arrow.down.right").
    QString growthIconName() const { return m_growthIconName; }
    QLabel *pricePaidLabel() const { return m_pricePaid; }
    QWidget *priceGuideList() const { return m_priceGuideList; }
    // One line per guide, "provider: condition guide type: average", in the order shown.
    QStringList priceGuideLines() const { return m_priceGuideLines; }
    QPushButton *refreshButton() const { return m_refreshButton; }
    QLabel *syncErrorLabel() const { return m_syncError; }
    QLabel *inventoryNoneLabel() const { return m_inventoryNone; }
    QLabel *inStockLabel() const { return m_inStock; }
    QLabel *disposedLabel() const { return m_disposed; }
    OwnedSetInstructionsView *instructionsView() const { return m_instructions; }
    QWidget *notesSection() const { return m_notesSection; }
    QLabel *notesLabel() const { return m_notes; }
    SetImagePreviewWindow *imagePreviewWindow() const { return m_previewWindow; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildLayout();
    void reloadPriceGuides();
    void reloadSyncState();

    SetDetailViewModel &m_viewModel;
    QPointer<ImageCacheService> m_imageCache;

    CachedAsyncImage *m_picture;
    QLabel *m_setNumber;
    QLabel *m_theme;
    QLabel *m_year;
    QLabel *m_pieceCount;
    QLabel *m_retailPrice;
    QLabel *m_marketValue;
    QWidget *m_growthRow;
    QLabel *m_growthIcon;
    QLabel *m_growthLabel;
    QString m_growthIconName;
    QLabel *m_pricePaid;
    QWidget *m_priceGuideList;
    QVBoxLayout *m_priceGuideLayout;
    QStringList m_priceGuideLines;
    QPushButton *m_refreshButton;
    QLabel *m_syncError;
    QLabel *m_inventoryNone;
    QLabel *m_inStock;
    QLabel *m_disposed;
    OwnedSetInstructionsView *m_instructions;
    QWidget *m_notesSection;
    QLabel *m_notes;
    SetImagePreviewWindow *m_previewWindow = nullptr;
};
