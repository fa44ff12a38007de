// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CategoryFilterChip.h"

#include <QPainter>
#include <QPalette>

CategoryFilterChip::CategoryFilterChip(const QString &name, bool isSelected, std::function<void()> action,
                                       QWidget *parent)
    : QAbstractButton(parent)
    , m_name(name)
    , m_isSelected(isSelected)
    , m_action(std::move(action))
{
    setText(name);
    setAccessibleName(name);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (m_action)
            m_action();
    });
}

void CategoryFilterChip::setSelected(bool isSelected)
{
    if (isSelected == m_isSelected)
        return;
    m_isSelected = isSelected;
    update();
}

QSize CategoryFilterChip::sizeHint() const
{
    const QFontMetrics metrics(font());
    return QSize(metrics.horizontalAdvance(m_name) + 20, metrics.height() + 8);
}

void CategoryFilterChip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = box.height() / 2;
    QColor fill = m_isSelected ? palette().color(QPalette::Highlight) : palette().color(QPalette::Button);
    if (isDown())
        fill = fill.darker(115);
    painter.setBrush(fill);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.drawRoundedRect(box, radius, radius);
    painter.setPen(m_isSelected ? palette().color(QPalette::HighlightedText) : palette().color(QPalette::ButtonText));
    painter.drawText(rect(), Qt::AlignCenter, m_name);
}
