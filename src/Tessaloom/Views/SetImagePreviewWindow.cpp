// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetImagePreviewWindow.h"

#include "Views/CachedAsyncImage.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SetImagePreviewWindow::SetImagePreviewWindow(QWidget *owner)
    : QWidget(owner, Qt::Window)
    , m_picture(new CachedAsyncImage(this))
{
    setObjectName(u"setImagePreview"_s);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->addWidget(m_picture);
    m_picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resize(defaultSize);
}

void SetImagePreviewWindow::setPicture(const QString &urlString, const QString &setName)
{
    setWindowTitle(setName);
    //% "Picture of %1"
    m_picture->setAccessibleName(qtTrId("accessibility.setImage.").arg(setName));
    m_picture->setSource(urlString);
}

void SetImagePreviewWindow::setImageCache(ImageCacheService *cache)
{
    m_picture->setImageCache(cache);
}

void SetImagePreviewWindow::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    if (event->isAccepted())
        Q_EMIT closed();
}

void SetImagePreviewWindow::keyPressEvent(QKeyEvent *event)
{
    // Space opened the preview from the picture; it closes it again, like Escape.
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Space) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}
