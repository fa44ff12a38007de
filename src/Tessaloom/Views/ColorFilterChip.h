// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QString>

#include <functional>

class ColorSwatch;

// A round button showing a part colour's swatch that filters a list by that colour. A
// selected chip wears a ring in the accent colour. Clicking runs the chip's action; the
// owner sets whether it shows as selected. The colour's name, when given, is its tooltip
// and accessible name, since the swatch alone says nothing to a screen reader.
class ColorFilterChip : public QAbstractButton
{
    Q_OBJECT

public:
    ColorFilterChip(const QString &hexCode, bool isSelected, std::function<void()> action,
                    QWidget *parent = nullptr);

    QString hexCode() const { return m_hexCode; }
    bool isSelected() const { return m_isSelected; }
    void setSelected(bool isSelected);
    void setColorName(const QString &name);
    ColorSwatch *swatch() const { return m_swatch; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_hexCode;
    bool m_isSelected;
    std::function<void()> m_action;
    ColorSwatch *m_swatch;
};
