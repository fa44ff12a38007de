// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CatalogSearchDebounce.h"

CatalogSearchDebounce::CatalogSearchDebounce(std::chrono::milliseconds pause, QObject *parent)
    : QObject(parent)
{
    m_wait.setSingleShot(true);
    // A coarse timer may fire a little early; the pause is a lower bound.
    m_wait.setTimerType(Qt::PreciseTimer);
    m_wait.setInterval(pause);
    connect(&m_wait, &QTimer::timeout, this, &CatalogSearchDebounce::searchDue);
}

void CatalogSearchDebounce::textChanged(const QString &text)
{
    m_wait.stop();
    if (text.isEmpty())
        Q_EMIT searchDue();
    else
        m_wait.start();
}
