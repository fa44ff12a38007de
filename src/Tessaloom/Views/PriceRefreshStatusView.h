// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QWidget>

#include <chrono>
#include <optional>

class PriceRefreshProgress;
class QLabel;
class QPushButton;

// The status bar's word on a running refresh of all prices, "Prices 12 of 480 — about 2 h
// left", with a Cancel button. Hidden while no refresh runs.
class PriceRefreshStatusView : public QWidget
{
    Q_OBJECT

public:
    explicit PriceRefreshStatusView(PriceRefreshProgress &progress, QWidget *parent = nullptr);

    QLabel *label() const { return m_label; }
    QPushButton *cancelButton() const { return m_cancelButton; }

    // The sentence for `done` of `total` sets, with the time left when it is known. Hours
    // from one hour on, rounded; below that whole minutes, rounded up, at least one.
    static QString statusText(int done, int total, std::optional<std::chrono::milliseconds> timeLeft,
                              const QLocale &locale = QLocale());

private:
    void showProgress();

    PriceRefreshProgress &m_progress;
    QLabel *m_label;
    QPushButton *m_cancelButton;
};
