// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/OwnedSetInstructionsView.h"

#include "Services/ImageCacheService.h"
#include "Services/InstructionLookupGate.h"
#include "ViewModels/SetDetailViewModel.h"
#include "Views/CachedAsyncImage.h"
#include "Views/CatalogSetInstructionsView.h"
#include "Views/SymbolIcon.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr QSize coverSize{36, 48};
}

OwnedSetInstructionsView::OwnedSetInstructionsView(SetDetailViewModel &viewModel,
                                                   LegoInstructionsService::Fetcher fetcher, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_fetcher(std::move(fetcher))
    , m_gate(std::make_shared<InstructionLookupGate>())
    , m_loadingLabel(new QLabel(this))
    , m_bookletsLayout(new QVBoxLayout)
    , m_viewOnLego(new QPushButton(this))
    , m_pdfFallback(new QLabel(this))
{
    setObjectName(u"ownedSetInstructions"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);

    //% "Looking for instruction booklets…"
    m_loadingLabel->setText(qtTrId("detail.overview.loadingBooklets"));
    m_loadingLabel->setForegroundRole(QPalette::PlaceholderText);
    m_loadingLabel->hide();
    layout->addWidget(m_loadingLabel);

    m_bookletsLayout->setContentsMargins(0, 0, 0, 0);
    m_bookletsLayout->setSpacing(2);
    layout->addLayout(m_bookletsLayout);

    //% "If a booklet does not open here, it opens as a PDF in your browser."
    m_pdfFallback->setText(qtTrId("detail.overview.pdfFallback"));
    m_pdfFallback->setWordWrap(true);
    m_pdfFallback->setForegroundRole(QPalette::PlaceholderText);
    m_pdfFallback->hide();
    layout->addWidget(m_pdfFallback);

    m_viewOnLego->setObjectName(u"viewOnLego"_s);
    //% "View on LEGO.com"
    m_viewOnLego->setText(qtTrId("detail.overview.viewOnLego"));
    m_viewOnLego->setIcon(SymbolIcon::icon(u"safari"_s));
    m_viewOnLego->setFlat(true);
    m_viewOnLego->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(m_viewOnLego, &QPushButton::clicked, this, [this] {
        const std::optional<CatalogSet> set = m_viewModel.catalogSet();
        if (!set || !set->setNumber)
            return;
        const QUrl url = CatalogSetInstructionsView::viewOnLegoUrl(*set->setNumber);
        if (m_urlOpener)
            m_urlOpener(url);
        else
            QDesktopServices::openUrl(url);
    });
    layout->addWidget(m_viewOnLego);
    reload();
}

OwnedSetInstructionsView::~OwnedSetInstructionsView() = default;

void OwnedSetInstructionsView::setUrlOpener(UrlOpener opener)
{
    m_urlOpener = std::move(opener);
}

void OwnedSetInstructionsView::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    reload();
}

void OwnedSetInstructionsView::reload()
{
    m_booklets = m_viewModel.sortedInstructions();
    qDeleteAll(m_bookletButtons);
    m_bookletButtons.clear();
    for (const CachedInstructionURL &booklet : std::as_const(m_booklets)) {
        auto *button = new QPushButton(this);
        button->setObjectName(u"instructionBooklet"_s);
        const QString label = booklet.descriptionText.value_or(QString());
        button->setAccessibleName(label);
        button->setToolTip(booklet.pdfURL.value_or(QString()));
        button->setFlat(true);
        auto *row = new QHBoxLayout(button);
        row->setContentsMargins(6, 4, 6, 4);
        if (booklet.coverImageURL && !booklet.coverImageURL->isEmpty()) {
            auto *cover = new CachedAsyncImage(button);
            cover->setFixedSize(coverSize);
            cover->setImageCache(m_imageCache);
            cover->setSource(*booklet.coverImageURL);
            cover->setAttribute(Qt::WA_TransparentForMouseEvents);
            row->addWidget(cover);
        } else {
            auto *icon = new QLabel(button);
            icon->setObjectName(u"bookClosed"_s);
            icon->setPixmap(SymbolIcon::icon(u"book.closed"_s).pixmap(coverSize.width() / 2));
            icon->setFixedSize(coverSize);
            icon->setAlignment(Qt::AlignCenter);
            icon->setAttribute(Qt::WA_TransparentForMouseEvents);
            row->addWidget(icon);
        }
        auto *title = new QLabel(label, button);
        title->setAttribute(Qt::WA_TransparentForMouseEvents);
        row->addWidget(title, 1);
        button->setMinimumHeight(coverSize.height() + 8);
        const QUrl url(booklet.pdfURL.value_or(QString()));
        connect(button, &QPushButton::clicked, this, [this, url] {
            if (m_urlOpener)
                m_urlOpener(url);
            else
                QDesktopServices::openUrl(url);
        });
        m_bookletsLayout->addWidget(button);
        m_bookletButtons.append(button);
    }
    m_pdfFallback->setVisible(!m_booklets.isEmpty());
    const std::optional<CatalogSet> set = m_viewModel.catalogSet();
    m_viewOnLego->setEnabled(set && set->setNumber);
}

void OwnedSetInstructionsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_fetcher || m_isLoading || !m_gate->shouldAsk(m_viewModel.viewContext(), m_viewModel.brickSet()))
        return;
    setLoading(true);
    lookUp(QPointer<OwnedSetInstructionsView>(this), m_gate, m_fetcher, &m_viewModel.viewContext(),
           m_viewModel.brickSet());
}

QCoro::Task<> OwnedSetInstructionsView::lookUp(QPointer<OwnedSetInstructionsView> self,
                                               std::shared_ptr<InstructionLookupGate> gate,
                                               LegoInstructionsService::Fetcher fetcher,
                                               ManagedObjectContext *viewContext, BrickSet copy)
{
    // The gate and the view context outlive the call: the gate is held here, the context
    // belongs to the store, which outlives every screen.
    const bool stored = co_await gate->lookUpIfNeeded(std::move(fetcher), *viewContext, std::move(copy));
    if (self)
        self->finishLookUp(stored);
}

void OwnedSetInstructionsView::finishLookUp(bool stored)
{
    setLoading(false);
    if (stored)
        m_viewModel.increaseRefreshToken();
    reload();
}

void OwnedSetInstructionsView::setLoading(bool isLoading)
{
    if (m_isLoading == isLoading)
        return;
    m_isLoading = isLoading;
    m_loadingLabel->setVisible(isLoading);
    Q_EMIT loadingChanged(isLoading);
}
