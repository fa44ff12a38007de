// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InstructionBookletButton.h"

#include "Views/CachedAsyncImage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

using namespace Qt::StringLiterals;

InstructionBookletButton::InstructionBookletButton(const LegoInstructionsService::Instruction &booklet, QWidget *parent)
    : QAbstractButton(parent)
    , m_booklet(booklet)
    , m_cover(new CachedAsyncImage(this))
    , m_title(new QLabel(booklet.displayTitle(), this))
{
    setObjectName(u"instructionBooklet"_s);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setText(booklet.displayTitle());
    setAccessibleName(booklet.displayTitle());
    QString tip = booklet.pdfURL.toDisplayString();
    if (booklet.fileSize > 0)
        tip += u" · "_s + QLocale().formattedDataSize(booklet.fileSize);
    setToolTip(tip);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(10);
    m_cover->setFixedSize(coverSize);
    m_cover->setSource(booklet.coverImageURL.value_or(QString()));
    layout->addWidget(m_cover);
    layout->addWidget(m_title, 1);
    // The whole row is the button: a click on the cover or the title is a click on it.
    m_cover->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_title->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void InstructionBookletButton::setImageCache(ImageCacheService *cache)
{
    m_cover->setImageCache(cache);
}

QString InstructionBookletButton::title() const
{
    return m_title->text();
}

void InstructionBookletButton::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    if (m_hovered || isDown()) {
        QColor shade = palette().color(QPalette::Highlight);
        shade.setAlphaF(isDown() ? 0.25f : 0.12f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(shade);
        painter.drawRoundedRect(rect(), 6, 6);
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.backgroundColor = palette().color(QPalette::Window);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
}

void InstructionBookletButton::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void InstructionBookletButton::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}
