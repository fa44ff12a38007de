// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class CachedAsyncImage;
class ImageCacheService;

// A set's picture at a large size in a small window of its own, opened from the picture of
// a detail screen. Escape or the window's close button closes it; closed() tells the
// screen, which keeps whether its preview is shown.
class SetImagePreviewWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSize defaultSize{720, 560};

    // A top-level window owned by `owner`, so it goes when the screen goes.
    explicit SetImagePreviewWindow(QWidget *owner);

    // The picture at `urlString` under the title `setName`.
    void setPicture(const QString &urlString, const QString &setName);
    void setImageCache(ImageCacheService *cache);
    CachedAsyncImage *picture() const { return m_picture; }

Q_SIGNALS:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    CachedAsyncImage *m_picture;
};
