// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PriceRefreshStatusView.h"

#include "Services/PriceRefreshProgress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

QString durationText(std::chrono::milliseconds timeLeft, const QLocale &locale)
{
    constexpr qint64 minute = 60'000;
    constexpr qint64 hour = 60 * minute;
    const qint64 milliseconds = timeLeft.count();
    if (milliseconds >= hour) {
        //% "%1 h"
        return qtTrId("status.priceRefresh.hours.").arg(locale.toString((milliseconds + hour / 2) / hour));
    }
    // Rounded up: "about 0 min left" would promise an end that has not come.
    const qint64 minutes = qMax<qint64>(1, (milliseconds + minute - 1) / minute);
    //% "%1 min"
    return qtTrId("status.priceRefresh.minutes.").arg(locale.toString(minutes));
}

} // namespace

PriceRefreshStatusView::PriceRefreshStatusView(PriceRefreshProgress &progress, QWidget *parent)
    : QWidget(parent)
    , m_progress(progress)
    , m_label(new QLabel(this))
    , m_cancelButton(new QPushButton(this))
{
    setObjectName(u"priceRefreshStatusView"_s);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label);
    layout->addWidget(m_cancelButton);
    //% "Cancel"
    m_cancelButton->setText(qtTrId("status.priceRefresh.cancel"));
    m_cancelButton->setFlat(true);
    connect(m_cancelButton, &QPushButton::clicked, &m_progress, &PriceRefreshProgress::cancel);
    connect(&m_progress, &PriceRefreshProgress::progressChanged, this, &PriceRefreshStatusView::showProgress);
    showProgress();
}

QString PriceRefreshStatusView::statusText(int done, int total, std::optional<std::chrono::milliseconds> timeLeft,
                                           const QLocale &locale)
{
    if (!timeLeft) {
        //% "Prices %1 of %2"
        return qtTrId("status.priceRefresh.progress.").arg(locale.toString(done), locale.toString(total));
    }
    //% "Prices %1 of %2 — about %3 left"
    return qtTrId("status.priceRefresh.progressWithTimeLeft.")
        .arg(locale.toString(done), locale.toString(total), durationText(*timeLeft, locale));
}

void PriceRefreshStatusView::showProgress()
{
    if (!m_progress.isRunning()) {
        m_label->clear();
        hide();
        return;
    }
    m_label->setText(statusText(m_progress.setsDone(), m_progress.targetCount(), m_progress.estimatedTimeLeft()));
    // Once asked, the refresh stops at its next request; a second press would change nothing.
    m_cancelButton->setEnabled(!m_progress.isCancelRequested());
    show();
}
