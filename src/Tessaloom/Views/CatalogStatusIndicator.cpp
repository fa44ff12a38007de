// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogStatusIndicator.h"

#include "Services/RebrickableCatalog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int outcomeMessageMilliseconds = 15'000;
}

CatalogStatusIndicator::CatalogStatusIndicator(CatalogDatabaseService &service, QStatusBar *statusBar)
    : QWidget(statusBar)
    , m_statusBar(statusBar)
    , m_label(new QLabel(this))
    , m_progressBar(new QProgressBar(this))
{
    setObjectName(u"catalogStatusIndicator"_s);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label);
    layout->addWidget(m_progressBar);
    m_progressBar->setRange(0, 100);
    m_progressBar->setMaximumWidth(160);
    m_progressBar->setTextVisible(false);
    statusBar->addPermanentWidget(this);
    connect(&service, &CatalogDatabaseService::stateChanged, this, &CatalogStatusIndicator::showState);
    showState(service.state());
}

void CatalogStatusIndicator::showState(const CatalogDatabaseService::State &state)
{
    using Kind = CatalogDatabaseService::State::Kind;
    setVisible(state.kind == Kind::working);
    switch (state.kind) {
    case Kind::working:
        //% "Catalog: %1"
        m_label->setText(qtTrId("catalogStatus.working").arg(state.status));
        m_progressBar->setValue(int(state.progress * 100));
        break;
    case Kind::completed: {
        const auto catalog = RebrickableCatalog::shared();
        //% "The catalog is up to date: %1 sets."
        m_statusBar->showMessage(qtTrId("catalogStatus.completed").arg(catalog ? catalog->setCount() : 0),
                                 outcomeMessageMilliseconds);
        break;
    }
    case Kind::failed:
        //% "The catalog could not be updated: %1"
        m_statusBar->showMessage(qtTrId("catalogStatus.failed").arg(state.errorText), outcomeMessageMilliseconds);
        break;
    case Kind::idle:
        break;
    }
}

QString CatalogStatusIndicator::statusText() const
{
    return m_label->text();
}

int CatalogStatusIndicator::progressPercent() const
{
    return m_progressBar->value();
}
