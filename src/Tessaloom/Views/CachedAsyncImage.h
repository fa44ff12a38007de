// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QImage>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <stop_token>

class ImageCacheService;
class QProgressBar;

// A picture loaded through the image cache. While it has none it shows a placeholder: a
// busy indicator while loading, the "photo" symbol after a failure. Once the picture is
// there, it is drawn to fit, or handed to a content function that builds the widget
// showing it.
//
// The load belongs to the widget and its URL: it starts when the widget is shown with a
// URL, and a new URL, hiding or destruction cancels it. A cancelled load never touches
// the widget again, even when its answer comes later; a download shared with others goes
// on for them.
class CachedAsyncImage : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString urlString READ urlString WRITE setUrlString)
    Q_PROPERTY(QStringList fallbackURLs READ fallbackURLs WRITE setFallbackURLs)

public:
    enum class Phase { empty, loading, success, failure };
    Q_ENUM(Phase)

    // Builds the widget that shows `image`; it becomes a child of this widget.
    using Content = std::function<QWidget *(const QImage &image)>;

    explicit CachedAsyncImage(QWidget *parent = nullptr);
    CachedAsyncImage(const QString &urlString, const QStringList &fallbackURLs, QWidget *parent = nullptr);
    ~CachedAsyncImage() override;

    QString urlString() const { return m_urlString; }
    QStringList fallbackURLs() const { return m_fallbackURLs; }
    void setUrlString(const QString &urlString);
    void setFallbackURLs(const QStringList &fallbackURLs);
    void setSource(const QString &urlString, const QStringList &fallbackURLs = {});
    void setContent(Content content);
    // The cache to load from; the shared one unless set.
    void setImageCache(ImageCacheService *cache);

    Phase phase() const { return m_phase; }
    QImage image() const { return m_image; }
    QWidget *contentWidget() const { return m_contentWidget; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void phaseChanged(CachedAsyncImage::Phase phase);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void restart();
    void startLoadIfNeeded();
    void cancelLoad();
    void setPhase(Phase phase);
    void showImage(const QImage &image);
    void clearImage();
    ImageCacheService &cache();

    static QCoro::Task<void> load(QPointer<CachedAsyncImage> self, QPointer<ImageCacheService> cache,
                                  QString urlString, QStringList fallbackURLs, quint64 generation,
                                  std::stop_token stop);

    QString m_urlString;
    QStringList m_fallbackURLs;
    Content m_content;
    QPointer<ImageCacheService> m_cache;
    Phase m_phase = Phase::empty;
    QImage m_image;
    QWidget *m_contentWidget = nullptr;
    QProgressBar *m_progress;
    quint64 m_generation = 0;     // the load whose answer the widget still wants
    bool m_loadRunning = false;
    std::stop_source m_stopSource;
};
