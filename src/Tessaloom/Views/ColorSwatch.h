// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>
#include <QWidget>

class QPainter;

// A small filled circle in a part colour, with a thin outline so that white and
// near-background colours still show their edge.
class ColorSwatch : public QWidget
{
    Q_OBJECT

public:
    explicit ColorSwatch(const QString &hexCode = {}, int diameter = 14, QWidget *parent = nullptr);

    QString hexCode() const { return m_hexCode; }
    void setHexCode(const QString &hexCode);
    QColor color() const { return colorOf(m_hexCode); }
    int diameter() const { return m_diameter; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    // The colour of six hex digits, with or without "#"; grey when they are no colour.
    static QColor colorOf(const QString &hexCode);
    static void paint(QPainter &painter, const QRectF &box, const QColor &color);
    // The swatch as an icon, for item views.
    static QIcon icon(const QString &hexCode, int diameter = 14);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_hexCode;
    int m_diameter;
};
