// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CompletionRing.h"

#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

CompletionRing::CompletionRing(double fraction, int size, QWidget *parent)
    : QWidget(parent)
    , m_fraction(std::clamp(fraction, 0.0, 1.0))
    , m_size(size)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CompletionRing::setFraction(double fraction)
{
    // A NaN would draw nothing and hide the ring: it counts as nothing done.
    const double held = std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0);
    if (held == m_fraction)
        return;
    m_fraction = held;
    update();
}

void CompletionRing::setRingSize(int size)
{
    if (size == m_size)
        return;
    m_size = size;
    updateGeometry();
    update();
}

void CompletionRing::setCentreText(const QString &text)
{
    if (text == m_centreText)
        return;
    m_centreText = text;
    update();
}

QSize CompletionRing::sizeHint() const
{
    return QSize(m_size, m_size);
}

void CompletionRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = std::min(width(), height());
    const qreal lineWidth = std::max(3.0, side / 10.0);
    const QRectF box = QRectF((width() - side) / 2.0, (height() - side) / 2.0, side, side)
                           .adjusted(lineWidth / 2, lineWidth / 2, -lineWidth / 2, -lineWidth / 2);

    QColor track = palette().color(QPalette::WindowText);
    track.setAlphaF(0.15f);
    painter.setPen(QPen(track, lineWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawEllipse(box);

    // Finished shows in green, anything short of it in the accent colour.
    const QColor fill = m_fraction >= 1.0 ? QColor(52, 168, 83) : palette().color(QPalette::Highlight);
    painter.setPen(QPen(fill, lineWidth, Qt::SolidLine, Qt::RoundCap));
    // Qt's angles are in sixteenths of a degree, counter-clockwise from three o'clock.
    painter.drawArc(box, 90 * 16, -int(std::lround(m_fraction * 360 * 16)));

    if (!m_centreText.isEmpty()) {
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(std::max(9, side / 5));
        painter.setFont(font);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignCenter, m_centreText);
    }
}
