// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogSetInstructionsView.h"

#include "Endpoints.h"
#include "Logging.h"
#include "Services/ImageCacheService.h"
#include "Views/InstructionBookletButton.h"
#include "Views/SymbolIcon.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <exception>

using namespace Qt::StringLiterals;

CatalogSetInstructionsView::CatalogSetInstructionsView(LegoInstructionsService::Fetcher fetcher, QWidget *parent)
    : QWidget(parent)
    , m_fetcher(std::move(fetcher))
    , m_urlOpener([](const QUrl &url) { QDesktopServices::openUrl(url); })
    , m_loadingRow(new QWidget(this))
    , m_loadingIndicator(new QProgressBar(m_loadingRow))
    , m_loadingLabel(new QLabel(m_loadingRow))
    , m_bookletsLayout(new QVBoxLayout)
    , m_viewOnLego(new QPushButton(this))
{
    setObjectName(u"instructions"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);

    //% "Building Instructions"
    auto *title = new QLabel(qtTrId("instructions.title"), this);
    title->setObjectName(u"instructionsTitle"_s);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    title->setFont(titleFont);
    layout->addWidget(title);

    auto *loadingLayout = new QHBoxLayout(m_loadingRow);
    loadingLayout->setContentsMargins(0, 0, 0, 0);
    m_loadingIndicator->setRange(0, 0); // busy, with no known end
    m_loadingIndicator->setTextVisible(false);
    m_loadingIndicator->setMaximumWidth(80);
    //% "Looking for instructions…"
    m_loadingLabel->setText(qtTrId("instructions.loading"));
    m_loadingLabel->setForegroundRole(QPalette::PlaceholderText);
    loadingLayout->addWidget(m_loadingIndicator);
    loadingLayout->addWidget(m_loadingLabel, 1);
    m_loadingRow->hide();
    layout->addWidget(m_loadingRow);

    m_bookletsLayout->setContentsMargins(0, 0, 0, 0);
    m_bookletsLayout->setSpacing(2);
    layout->addLayout(m_bookletsLayout);

    m_viewOnLego->setObjectName(u"viewOnLego"_s);
    //% "View on LEGO.com"
    m_viewOnLego->setText(qtTrId("instructions.viewOnLego"));
    m_viewOnLego->setIcon(SymbolIcon::icon(u"safari"_s));
    m_viewOnLego->setFlat(true);
    m_viewOnLego->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    m_viewOnLego->setEnabled(false);
    connect(m_viewOnLego, &QPushButton::clicked, this, &CatalogSetInstructionsView::openViewOnLego);
    layout->addWidget(m_viewOnLego);
}

void CatalogSetInstructionsView::setUrlOpener(UrlOpener opener)
{
    m_urlOpener = std::move(opener);
}

void CatalogSetInstructionsView::setImageCache(ImageCacheService *cache)
{
    m_imageCache = cache;
    for (InstructionBookletButton *button : std::as_const(m_bookletButtons))
        button->setImageCache(cache);
}

QUrl CatalogSetInstructionsView::viewOnLegoUrl(const QString &setNumber)
{
    return Endpoints::url(Endpoints::Service::lego,
                          u"/en-au/service/building-instructions/"_s + setNumber);
}

void CatalogSetInstructionsView::showSet(const QString &setNumber)
{
    m_setNumber = setNumber;
    const quint64 lookup = ++m_lookup;
    m_viewOnLego->setEnabled(!setNumber.trimmed().isEmpty());
    m_viewOnLego->setToolTip(viewOnLegoUrl(setNumber).toDisplayString());
    if (!m_instructions.isEmpty()) {
        m_instructions.clear();
        rebuildBooklets();
        Q_EMIT instructionsChanged();
    }
    setLoading(true);
    fetch(QPointer<CatalogSetInstructionsView>(this), m_fetcher, setNumber, lookup);
}

QCoro::Task<void> CatalogSetInstructionsView::fetch(QPointer<CatalogSetInstructionsView> self,
                                                    LegoInstructionsService::Fetcher fetcher, QString setNumber,
                                                    quint64 lookup)
{
    QList<LegoInstructionsService::Instruction> instructions;
    try {
        instructions = co_await fetcher(setNumber);
    } catch (const std::exception &error) {
        // The screen shows no booklets and no message; the next visit asks again.
        qCInfo(lcInstructions, "Looking up the instructions of %s failed: %s", qUtf8Printable(setNumber), error.what());
        instructions.clear();
    }
    // Only the captured values are safe here: the block may be gone or show another set.
    if (!self || self->m_lookup != lookup)
        co_return;
    self->finishLookup(instructions);
}

void CatalogSetInstructionsView::finishLookup(const QList<LegoInstructionsService::Instruction> &instructions)
{
    m_instructions = instructions;
    rebuildBooklets();
    setLoading(false);
    Q_EMIT instructionsChanged();
}

void CatalogSetInstructionsView::setLoading(bool isLoading)
{
    m_loadingRow->setVisible(isLoading);
    if (m_isLoading == isLoading)
        return;
    m_isLoading = isLoading;
    Q_EMIT loadingChanged(isLoading);
}

void CatalogSetInstructionsView::rebuildBooklets()
{
    qDeleteAll(m_bookletButtons);
    m_bookletButtons.clear();
    for (const LegoInstructionsService::Instruction &booklet : std::as_const(m_instructions)) {
        auto *button = new InstructionBookletButton(booklet, this);
        if (m_imageCache)
            button->setImageCache(m_imageCache);
        connect(button, &QAbstractButton::clicked, this, [this, booklet] { openBooklet(booklet); });
        m_bookletsLayout->addWidget(button);
        button->show(); // a child added to a visible widget is not shown by itself
        m_bookletButtons.append(button);
    }
    // New buttons join the end of the window's tab chain; Tab should reach them where they
    // stand, between what comes before this block and the link to LEGO's page.
    QWidget *previous = m_viewOnLego->previousInFocusChain();
    for (InstructionBookletButton *button : std::as_const(m_bookletButtons)) {
        QWidget::setTabOrder(previous, button);
        previous = button;
    }
    if (!m_bookletButtons.isEmpty())
        QWidget::setTabOrder(previous, m_viewOnLego);
}

void CatalogSetInstructionsView::openViewOnLego()
{
    if (m_setNumber.trimmed().isEmpty())
        return;
    m_urlOpener(viewOnLegoUrl(m_setNumber));
}

void CatalogSetInstructionsView::openBooklet(const LegoInstructionsService::Instruction &booklet)
{
    m_urlOpener(booklet.pdfURL);
}
