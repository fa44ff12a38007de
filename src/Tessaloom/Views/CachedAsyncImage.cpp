// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CachedAsyncImage.h"

#include "AddressRedaction.h"
#include "Logging.h"
#include "Services/ImageCacheService.h"
#include "Views/SymbolIcon.h"

#include <QGridLayout>
#include <QIcon>
#include <QPainter>
#include <QProgressBar>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

QIcon failureIcon(const QStyle *style)
{
    QIcon icon = SymbolIcon::icon(u"photo"_s);
    if (icon.isNull())
        icon = QIcon::fromTheme(u"image-x-generic"_s);
    if (icon.isNull())
        icon = style->standardIcon(QStyle::SP_FileIcon);
    return icon;
}

} // namespace

CachedAsyncImage::CachedAsyncImage(QWidget *parent)
    : QWidget(parent)
    , m_progress(new QProgressBar(this))
{
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_progress->setRange(0, 0); // busy: the size of a picture is not known in advance
    m_progress->setTextVisible(false);
    m_progress->setMaximumWidth(64);
    //% "Loading picture"
    m_progress->setAccessibleName(qtTrId("image.loading"));
    m_progress->hide();
    layout->addWidget(m_progress, 0, 0, Qt::AlignCenter);
}

CachedAsyncImage::CachedAsyncImage(const QString &urlString, const QStringList &fallbackURLs, QWidget *parent)
    : CachedAsyncImage(parent)
{
    setSource(urlString, fallbackURLs);
}

CachedAsyncImage::~CachedAsyncImage()
{
    cancelLoad();
}

void CachedAsyncImage::setUrlString(const QString &urlString)
{
    setSource(urlString, m_fallbackURLs);
}

void CachedAsyncImage::setFallbackURLs(const QStringList &fallbackURLs)
{
    setSource(m_urlString, fallbackURLs);
}

void CachedAsyncImage::setSource(const QString &urlString, const QStringList &fallbackURLs)
{
    if (urlString == m_urlString && fallbackURLs == m_fallbackURLs)
        return;
    m_urlString = urlString;
    m_fallbackURLs = fallbackURLs;
    restart();
}

void CachedAsyncImage::setContent(Content content)
{
    m_content = std::move(content);
    if (m_phase == Phase::success)
        showImage(m_image);
}

void CachedAsyncImage::setImageCache(ImageCacheService *cache)
{
    m_cache = cache;
    restart();
}

ImageCacheService &CachedAsyncImage::cache()
{
    if (!m_cache)
        m_cache = &ImageCacheService::shared();
    return *m_cache;
}

void CachedAsyncImage::restart()
{
    cancelLoad();
    clearImage();
    setPhase(m_urlString.isEmpty() ? Phase::empty : Phase::loading);
    startLoadIfNeeded();
}

void CachedAsyncImage::startLoadIfNeeded()
{
    if (m_urlString.isEmpty() || m_loadRunning || !isVisible() || m_phase == Phase::success)
        return;
    setPhase(Phase::loading);
    m_loadRunning = true;
    m_stopSource = std::stop_source();
    load(QPointer<CachedAsyncImage>(this), QPointer<ImageCacheService>(&cache()), m_urlString,
         m_fallbackURLs, ++m_generation, m_stopSource.get_token());
}

void CachedAsyncImage::cancelLoad()
{
    if (!m_loadRunning)
        return;
    m_loadRunning = false;
    ++m_generation; // the running load's answer is no longer wanted
    m_stopSource.request_stop();
}

QCoro::Task<void> CachedAsyncImage::load(QPointer<CachedAsyncImage> self, QPointer<ImageCacheService> cache,
                                         QString urlString, QStringList fallbackURLs, quint64 generation,
                                         std::stop_token stop)
{
    qCDebug(lcCache, "CachedAsyncImage: task started for %s", qUtf8Printable(AddressRedaction::redacted(urlString)));
    QImage image;
    if (cache && fallbackURLs.isEmpty()) {
        image = co_await cache->image(urlString);
    } else if (cache) {
        const QStringList urls = QStringList{urlString} + fallbackURLs;
        image = co_await cache->image(urls, stop);
    }
    // Only the captured values are safe here: the widget may be gone or on another URL.
    if (!self || self->m_generation != generation || stop.stop_requested()) {
        qCDebug(lcCache, "CachedAsyncImage: task cancelled after fetch for %s", qUtf8Printable(AddressRedaction::redacted(urlString)));
        co_return;
    }
    self->m_loadRunning = false;
    if (image.isNull()) {
        qCCritical(lcCache, "CachedAsyncImage: got nil image for %s", qUtf8Printable(AddressRedaction::redacted(urlString)));
        self->setPhase(Phase::failure);
        co_return;
    }
    self->showImage(image);
}

void CachedAsyncImage::setPhase(Phase phase)
{
    if (m_phase == phase)
        return;
    m_phase = phase;
    m_progress->setVisible(phase == Phase::loading);
    //% "Picture unavailable"
    setToolTip(phase == Phase::failure ? qtTrId("image.unavailable") : QString());
    setAccessibleDescription(toolTip());
    update();
    Q_EMIT phaseChanged(phase);
}

void CachedAsyncImage::showImage(const QImage &image)
{
    clearImage();
    m_image = image;
    if (m_content) {
        m_contentWidget = m_content(image);
        if (m_contentWidget) {
            layout()->addWidget(m_contentWidget);
            m_contentWidget->show();
        }
    }
    setPhase(Phase::success);
    updateGeometry();
    update();
}

void CachedAsyncImage::clearImage()
{
    m_image = QImage();
    delete m_contentWidget;
    m_contentWidget = nullptr;
}

QSize CachedAsyncImage::sizeHint() const
{
    if (m_contentWidget)
        return m_contentWidget->sizeHint();
    if (!m_image.isNull())
        return m_image.deviceIndependentSize().toSize();
    return QSize(80, 60);
}

void CachedAsyncImage::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    if (m_phase == Phase::failure) {
        QPainter painter(this);
        const int side = std::min({width(), height(), 48});
        const QRect target(rect().center() - QPoint(side / 2, side / 2), QSize(side, side));
        failureIcon(style()).paint(&painter, target, Qt::AlignCenter, QIcon::Disabled);
        return;
    }
    if (m_phase != Phase::success || m_contentWidget || m_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize fitted = m_image.deviceIndependentSize().toSize().scaled(size(), Qt::KeepAspectRatio);
    const QRect target(QPoint((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
    painter.drawImage(target, m_image);
}

void CachedAsyncImage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    startLoadIfNeeded();
}

void CachedAsyncImage::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    cancelLoad();
}
