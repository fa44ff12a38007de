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

InventoryYearChart::InventoryYearChart(QWidget *parent)
    : QChartView(parent)
{
    setObjectName(u"inventoryYearChart"_s);
    setRenderHint(QPainter::Antialiasing);
    chart()->legend()->setAlignment(Qt::AlignRight);
    chart()->setMargins(QMargins(4, 4, 4, 4));
    //% "Paid and Received per Year"
    chart()->setTitle(qtTrId("inventory.chart.title"));
}

void InventoryYearChart::setTotals(const InventoryYearTotals &totals)
{
    if (m_drawn && totals == m_totals)
        return;
    m_totals = totals;
    m_drawn = true;

    QChart *drawing = chart();
    drawing->removeAllSeries();
    m_series = nullptr;
    const QList<QAbstractAxis *> axes = drawing->axes();
    for (QAbstractAxis *axis : axes) {
        drawing->removeAxis(axis);
        delete axis;
    }
    if (totals.entries.isEmpty())
        return;

    QList<int> years;
    for (const InventoryYearTotals::Entry &entry : totals.entries)
        years.append(entry.year);
    std::sort(years.begin(), years.end());
    years.erase(std::unique(years.begin(), years.end()), years.end());
    QHash<int, qsizetype> column;
    QStringList categories;
    for (qsizetype index = 0; index < years.size(); ++index) {
        column.insert(years[index], index);
        categories.append(QString::number(years[index]));
    }

    auto *series = new QBarSeries;
    double highest = 0;
    for (const QString &currency : totals.currencies()) {
        //% "Paid (%1)"
        auto *paid = new QBarSet(qtTrId("inventory.chart.paid.").arg(currency));
        //% "Received (%1)"
        auto *received = new QBarSet(qtTrId("inventory.chart.received.").arg(currency));
        QList<qreal> paidValues(years.size(), 0);
        QList<qreal> receivedValues(years.size(), 0);
        for (const InventoryYearTotals::Entry &entry : totals.entries) {
            if (entry.currency != currency)
                continue;
            paidValues[column.value(entry.year)] = entry.paid.toDouble();
            receivedValues[column.value(entry.year)] = entry.received.toDouble();
        }
        for (qreal value : std::as_const(paidValues))
            highest = std::max(highest, value);
        for (qreal value : std::as_const(receivedValues))
            highest = std::max(highest, value);
        paid->append(paidValues);
        received->append(receivedValues);
        series->append(paid);
        series->append(received);
    }
    drawing->addSeries(series);
    m_series = series;

    auto *yearAxis = new QBarCategoryAxis;
    yearAxis->append(categories);
    drawing->addAxis(yearAxis, Qt::AlignBottom);
    series->attachAxis(yearAxis);
    auto *amountAxis = new QValueAxis;
    amountAxis->setRange(0, highest > 0 ? highest : 1);
    amountAxis->setLabelFormat(u"%.0f"_s);
    amountAxis->applyNiceNumbers();
    drawing->addAxis(amountAxis, Qt::AlignLeft);
    series->attachAxis(amountAxis);
}
