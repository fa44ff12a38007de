// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"

#include <QAbstractButton>

class CachedAsyncImage;
class ImageCacheService;
class QLabel;

// One building-instruction booklet as a button: its cover picture, through the image
// cache, beside its title. Clicking it, or Space while it has the focus, emits clicked();
// the instructions block opens the booklet's PDF.
class InstructionBookletButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr QSize coverSize{48, 64};

    explicit InstructionBookletButton(const LegoInstructionsService::Instruction &booklet, QWidget *parent = nullptr);

    const LegoInstructionsService::Instruction &booklet() const { return m_booklet; }
    void setImageCache(ImageCacheService *cache);
    CachedAsyncImage *cover() const { return m_cover; }
    QString title() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    LegoInstructionsService::Instruction m_booklet;
    CachedAsyncImage *m_cover;
    QLabel *m_title;
    bool m_hovered = false;
};
