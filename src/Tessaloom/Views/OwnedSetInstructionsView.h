// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"
#include "Store/BrickSet.h"
#include "Store/CachedInstructionURL.h"

#include <QCoroTask>
#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>

class ImageCacheService;
class ManagedObjectContext;
class InstructionLookupGate;
class QLabel;
class QPushButton;
class QVBoxLayout;
class SetDetailViewModel;

// The building-instructions block of an owned copy's overview: the booklets kept in the
// store for its catalog set, each with its label and cover (a closed book where there is
// none), and the link to the set's page on LEGO's web site. When it first comes on screen
// and the set has no stored row at all, not even the "none" marker, it looks the booklets
// up once and stores the answer; a failed lookup stores nothing and shows nothing.
class OwnedSetInstructionsView : public QWidget
{
    Q_OBJECT

public:
    using UrlOpener = std::function<void(const QUrl &url)>;

    OwnedSetInstructionsView(SetDetailViewModel &viewModel, LegoInstructionsService::Fetcher fetcher,
                             QWidget *parent = nullptr);
    ~OwnedSetInstructionsView() override;

    void setUrlOpener(UrlOpener opener);
    void setImageCache(ImageCacheService *cache);

    // Lists the stored booklets again.
    void reload();

    bool isLoading() const { return m_isLoading; }
    QList<CachedInstructionURL> booklets() const { return m_booklets; }
    QList<QPushButton *> bookletButtons() const { return m_bookletButtons; }
    QLabel *loadingLabel() const { return m_loadingLabel; }
    QPushButton *viewOnLegoButton() const { return m_viewOnLego; }
    QLabel *pdfFallbackLabel() const { return m_pdfFallback; }

Q_SIGNALS:
    void loadingChanged(bool isLoading);

protected:
    void showEvent(QShowEvent *event) override;

private:
    static QCoro::Task<> lookUp(QPointer<OwnedSetInstructionsView> self, std::shared_ptr<InstructionLookupGate> gate,
                                LegoInstructionsService::Fetcher fetcher, ManagedObjectContext *viewContext,
                                BrickSet copy);
    void finishLookUp(bool stored);
    void setLoading(bool isLoading);

    SetDetailViewModel &m_viewModel;
    LegoInstructionsService::Fetcher m_fetcher;
    UrlOpener m_urlOpener;
    QPointer<ImageCacheService> m_imageCache;
    // Shared with a lookup on its way, which may outlive the block.
    std::shared_ptr<InstructionLookupGate> m_gate;
    bool m_isLoading = false;
    QList<CachedInstructionURL> m_booklets;

    QLabel *m_loadingLabel;
    QVBoxLayout *m_bookletsLayout;
    QList<QPushButton *> m_bookletButtons;
    QPushButton *m_viewOnLego;
    QLabel *m_pdfFallback;
};
