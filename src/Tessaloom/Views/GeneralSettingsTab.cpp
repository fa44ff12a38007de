// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/GeneralSettingsTab.h"

#include "OfferedCurrencies.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSettings>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

GeneralSettingsTab::GeneralSettingsTab(QWidget *parent)
    : QWidget(parent)
    , m_currencyPicker(new QComboBox(this))
{
    //% "Currency"
    auto *section = new QGroupBox(qtTrId("settings.general.currency"), this);
    auto *form = new QFormLayout(section);
    m_currencyPicker->setObjectName(u"currencyPicker"_s);
    m_currencyPicker->addItems(OfferedCurrencies::codes());
    const QString stored = QSettings().value(preferredCurrencyKey, u"USD"_s).toString();
    // A stored code the picker does not offer shows no choice rather than a wrong one.
    m_currencyPicker->setCurrentIndex(m_currencyPicker->findText(stored));
    //% "Default Currency"
    form->addRow(qtTrId("settings.general.defaultCurrency"), m_currencyPicker);
    //% "Used for new prices and for totals. Amounts already stored keep their currency."
    auto *hint = new QLabel(qtTrId("settings.general.currencyHint"), section);
    hint->setObjectName(u"currencyHint"_s);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    form->addRow(hint);
    connect(m_currencyPicker, &QComboBox::currentTextChanged, this, [](const QString &code) {
        if (!code.isEmpty())
            QSettings().setValue(preferredCurrencyKey, code);
    });

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(section);
    layout->addStretch(1);
}
