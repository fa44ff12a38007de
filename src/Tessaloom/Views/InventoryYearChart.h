// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/InventoryYearTotals.h"

#include <QChartView>

class QBarSeries;
class QValueAxis;

// Money paid and money received per year as grouped bars: one category per year, and for
// each currency two bar sets, paid and received, so amounts in different currencies stand
// side by side and are never added together.
class InventoryYearChart : public QChartView
{
    Q_OBJECT

public:
    explicit InventoryYearChart(QWidget *parent = nullptr);

    // Draws `totals`; the same totals as on show leave the chart untouched.
    void setTotals(const InventoryYearTotals &totals);
    const InventoryYearTotals &totals() const { return m_totals; }
    // The series on show; null before the first totals with an entry.
    QBarSeries *series() const { return m_series; }

private:
    InventoryYearTotals m_totals;
    QList<int> m_years;
    QStringList m_currencies;
    QBarSeries *m_series = nullptr;
    QValueAxis *m_amountAxis = nullptr;
    double m_amountTop = 0; // the highest bar the axis was last fitted to
    bool m_drawn = false;
};
