// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QComboBox;

// The general settings: the currency for new prices and totals, read from and written
// straight to the user setting "preferredCurrency" (default "USD").
class GeneralSettingsTab : public QWidget
{
    Q_OBJECT

public:
    static inline const QString preferredCurrencyKey = QStringLiteral("preferredCurrency");

    explicit GeneralSettingsTab(QWidget *parent = nullptr);

    QComboBox *currencyPicker() const { return m_currencyPicker; }

private:
    QComboBox *m_currencyPicker;
};
