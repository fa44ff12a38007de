// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

// A ring that fills clockwise from the top with how far a checklist is done, with a short
// text in its centre. The fraction is held between 0 and 1.
class CompletionRing : public QWidget
{
    Q_OBJECT

public:
    explicit CompletionRing(double fraction = 0, int size = 64, QWidget *parent = nullptr);

    double fraction() const { return m_fraction; }
    void setFraction(double fraction);
    int ringSize() const { return m_size; }
    void setRingSize(int size);
    QString centreText() const { return m_centreText; }
    void setCentreText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_fraction;
    int m_size;
    QString m_centreText;
};
