// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogStatusIndicator.h"

#include "Services/RebrickableCatalog.h"

#include <QLocale>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int outcomeMessageMilliseconds = 15'000;
}

CatalogStatusIndicator::CatalogStatusIndicator(CatalogDatabaseService &service, QStatusBar *statusBar)
    : QWidget(statusBar)
    , m_service(service)
    , m_statusBar(statusBar)
    , m_label(new QLabel(this))
    , m_progressBar(new QProgressBar(this))
    //% "Restore the previous catalog"
    , m_restoreButton(new QPushButton(qtTrId("catalogStatus.restorePrevious"), statusBar))
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
    m_restoreButton->setObjectName(u"restorePreviousCatalogButton"_s);
    m_restoreButton->setFlat(true);
    m_restoreButton->hide();
    statusBar->addPermanentWidget(m_restoreButton);
    connect(m_restoreButton, &QPushButton::clicked, this, &CatalogStatusIndicator::restorePreviousCatalog);
    connect(&service, &CatalogDatabaseService::stateChanged, this, &CatalogStatusIndicator::showState);
    showState(service.state());
    if (service.state().kind != CatalogDatabaseService::State::Kind::failed && service.shouldOfferPreviousCatalog()) {
        //% "The catalog in use holds no sets or cannot be read."
        offerPreviousCatalog(qtTrId("catalogStatus.liveCatalogBroken"));
    }
}

void CatalogStatusIndicator::showState(const CatalogDatabaseService::State &state)
{
    using Kind = CatalogDatabaseService::State::Kind;
    setVisible(state.kind == Kind::working);
    m_restoreButton->hide();
    switch (state.kind) {
    case Kind::working:
        m_statusBar->setToolTip(QString());
        //% "Catalog: %1"
        m_label->setText(qtTrId("catalogStatus.working").arg(state.status));
        m_progressBar->setValue(int(state.progress * 100));
        break;
    case Kind::completed: {
        const auto catalog = RebrickableCatalog::shared();
        //% "The catalog is up to date: %1 sets."
        m_statusBar->showMessage(qtTrId("catalogStatus.completed").arg(QLocale().toString(catalog ? catalog->setCount() : 0)),
                                 outcomeMessageMilliseconds);
        break;
    }
    case Kind::failed: {
        const ErrorExplanation failure = m_service.lastFailure();
        //% "The catalog could not be updated: %1"
        const QString message = qtTrId("catalogStatus.failed").arg(failure.isEmpty() ? state.errorText : failure.sentence());
        // The status bar has no room for a disclosure: the technical text is its tool tip.
        m_statusBar->setToolTip(failure.details());
        if (m_service.shouldOfferPreviousCatalog())
            offerPreviousCatalog(message);
        else
            m_statusBar->showMessage(message, outcomeMessageMilliseconds);
        break;
    }
    case Kind::idle:
        break;
    }
}

// The message stays until the user acts on it or the next build starts: a catalog without
// sets is not something to read about for fifteen seconds and then forget.
void CatalogStatusIndicator::offerPreviousCatalog(const QString &message)
{
    m_statusBar->showMessage(message);
    m_restoreButton->show();
}

void CatalogStatusIndicator::restorePreviousCatalog()
{
    const CatalogDatabaseService::RestoreOutcome outcome = m_service.restorePreviousCatalog();
    if (outcome.restored)
        m_restoreButton->hide();
    m_statusBar->showMessage(outcome.text, outcomeMessageMilliseconds);
}

QString CatalogStatusIndicator::statusText() const
{
    return m_label->text();
}

int CatalogStatusIndicator::progressPercent() const
{
    return m_progressBar->value();
}
