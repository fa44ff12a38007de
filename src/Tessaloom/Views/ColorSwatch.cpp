// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ColorSwatch.h"

#include <QPainter>
#include <QPixmap>

using namespace Qt::StringLiterals;

ColorSwatch::ColorSwatch(const QString &hexCode, int diameter, QWidget *parent)
    : QWidget(parent)
    , m_hexCode(hexCode)
    , m_diameter(diameter)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorSwatch::setHexCode(const QString &hexCode)
{
    if (hexCode == m_hexCode)
        return;
    m_hexCode = hexCode;
    update();
}

QSize ColorSwatch::sizeHint() const
{
    return QSize(m_diameter, m_diameter);
}

QColor ColorSwatch::colorOf(const QString &hexCode)
{
    const QString digits = hexCode.startsWith(u'#') ? hexCode.mid(1) : hexCode;
    QColor color;
    if (digits.size() == 6)
        color = QColor::fromString(QString(u'#' + digits));
    return color.isValid() ? color : QColor(0x80, 0x80, 0x80);
}

void ColorSwatch::paint(QPainter &painter, const QRectF &box, const QColor &color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(color);
    painter.setPen(QPen(QColor(0, 0, 0, 90), 1));
    painter.drawEllipse(box.adjusted(0.5, 0.5, -0.5, -0.5));
    painter.restore();
}

QIcon ColorSwatch::icon(const QString &hexCode, int diameter)
{
    QPixmap pixmap(diameter, diameter);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(painter, QRectF(0, 0, diameter, diameter), colorOf(hexCode));
    painter.end();
    return QIcon(pixmap);
}

void ColorSwatch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const int side = qMin(width(), height());
    const QRectF box((width() - side) / 2.0, (height() - side) / 2.0, side, side);
    paint(painter, box, color());
}
