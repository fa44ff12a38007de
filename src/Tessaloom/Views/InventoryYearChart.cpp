// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/InventoryYearChart.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QHash>
#include <QValueAxis>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QList<int> yearsOf(const InventoryYearTotals &totals)
{
    QList<int> years;
    for (const InventoryYearTotals::Entry &entry : totals.entries)
        years.append(entry.year);
    std::sort(years.begin(), years.end());
    years.erase(std::unique(years.begin(), years.end()), years.end());
    return years;
}

} // namespace

InventoryYearChart::InventoryYearChart(QWidget *parent)
    : QChartView(parent)
{
    setObjectName(u"inventoryYearChart"_s);
    // Bars are upright rectangles: smoothing their edges costs paint time and shows nothing.
    setRenderHint(QPainter::Antialiasing, false);
    chart()->legend()->setAlignment(Qt::AlignRight);
    chart()->setMargins(QMargins(4, 4, 4, 4));
    //% "Paid and Received per Year"
    chart()->setTitle(qtTrId("inventory.chart.title"));
}

void InventoryYearChart::setTotals(const InventoryYearTotals &totals)
{
    if (m_drawn && totals == m_totals)
        return;
    const QList<int> years = yearsOf(totals);
    const QStringList currencies = totals.currencies();
    // The same years and currencies as on show (a filter that narrows the rows often
    // keeps them): only the bar heights change, without building the chart anew.
    const bool sameShape = m_series && years == m_years && currencies == m_currencies;
    m_totals = totals;
    m_drawn = true;
    m_years = years;
    m_currencies = currencies;

    QHash<int, qsizetype> column;
    for (qsizetype index = 0; index < years.size(); ++index)
        column.insert(years[index], index);
    QList<QList<qreal>> values; // per currency: paid, then received
    double highest = 0;
    for (const QString &currency : currencies) {
        QList<qreal> paid(years.size(), 0);
        QList<qreal> received(years.size(), 0);
        for (const InventoryYearTotals::Entry &entry : totals.entries) {
            if (entry.currency != currency)
                continue;
            paid[column.value(entry.year)] = entry.paid.toDouble();
            received[column.value(entry.year)] = entry.received.toDouble();
        }
        for (qreal value : std::as_const(paid))
            highest = std::max(highest, value);
        for (qreal value : std::as_const(received))
            highest = std::max(highest, value);
        values.append(paid);
        values.append(received);
    }

    if (sameShape) {
        const QList<QBarSet *> sets = m_series->barSets();
        // Each replaced bar lays the chart out again: a single changed copy moves one bar.
        for (qsizetype index = 0; index < sets.size(); ++index) {
            for (qsizetype year = 0; year < values[index].size(); ++year) {
                if (sets[index]->at(int(year)) != values[index][year])
                    sets[index]->replace(int(year), values[index][year]);
            }
        }
        const double top = highest > 0 ? highest : 1;
        if (top != m_amountTop) {
            m_amountTop = top;
            m_amountAxis->setRange(0, top);
            m_amountAxis->applyNiceNumbers();
        }
        return;
    }

    QChart *drawing = chart();
    drawing->removeAllSeries();
    m_series = nullptr;
    m_amountAxis = nullptr;
    const QList<QAbstractAxis *> axes = drawing->axes();
    for (QAbstractAxis *axis : axes) {
        drawing->removeAxis(axis);
        delete axis;
    }
    if (totals.entries.isEmpty())
        return;

    auto *series = new QBarSeries;
    for (qsizetype index = 0; index < currencies.size(); ++index) {
        //% "Paid (%1)"
        auto *paid = new QBarSet(qtTrId("inventory.chart.paid.").arg(currencies[index]));
        //% "Received (%1)"
        auto *received = new QBarSet(qtTrId("inventory.chart.received.").arg(currencies[index]));
        paid->append(values[index * 2]);
        received->append(values[index * 2 + 1]);
        series->append(paid);
        series->append(received);
    }
    drawing->addSeries(series);
    m_series = series;

    QStringList categories;
    for (int year : years)
        categories.append(QString::number(year));
    auto *yearAxis = new QBarCategoryAxis;
    yearAxis->append(categories);
    drawing->addAxis(yearAxis, Qt::AlignBottom);
    series->attachAxis(yearAxis);
    m_amountAxis = new QValueAxis;
    m_amountTop = highest > 0 ? highest : 1;
    m_amountAxis->setRange(0, m_amountTop);
    m_amountAxis->setLabelFormat(u"%.0f"_s);
    m_amountAxis->applyNiceNumbers();
    drawing->addAxis(m_amountAxis, Qt::AlignLeft);
    series->attachAxis(m_amountAxis);
}
