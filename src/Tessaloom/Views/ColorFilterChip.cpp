// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ColorFilterChip.h"

#include "Views/ColorSwatch.h"

#include <QGridLayout>
#include <QPainter>
#include <QPalette>

namespace {

constexpr int swatchDiameter = 18;
constexpr int ringGap = 3;

} // namespace

ColorFilterChip::ColorFilterChip(const QString &hexCode, bool isSelected, std::function<void()> action,
                                 QWidget *parent)
    : QAbstractButton(parent)
    , m_hexCode(hexCode)
    , m_isSelected(isSelected)
    , m_action(std::move(action))
    , m_swatch(new ColorSwatch(hexCode, swatchDiameter, this))
{
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(ringGap + 1, ringGap + 1, ringGap + 1, ringGap + 1);
    layout->addWidget(m_swatch, 0, 0, Qt::AlignCenter);
    // Clicks on the swatch belong to the button.
    m_swatch->setAttribute(Qt::WA_TransparentForMouseEvents);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (m_action)
            m_action();
    });
}

void ColorFilterChip::setSelected(bool isSelected)
{
    if (isSelected == m_isSelected)
        return;
    m_isSelected = isSelected;
    update();
}

void ColorFilterChip::setColorName(const QString &name)
{
    setToolTip(name);
    setAccessibleName(name);
}

QSize ColorFilterChip::sizeHint() const
{
    const int side = swatchDiameter + 2 * (ringGap + 1);
    return QSize(side, side);
}

void ColorFilterChip::paintEvent(QPaintEvent *)
{
    if (!m_isSelected && !isDown())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ring = m_isSelected ? palette().color(QPalette::Highlight) : palette().color(QPalette::Mid);
    painter.setPen(QPen(ring, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
}
