// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/OptionalDateEdit.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

OptionalDateEdit::OptionalDateEdit(QWidget *parent)
    : QWidget(parent)
    , m_present(new QCheckBox(this))
    , m_edit(new QDateEdit(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_present);
    layout->addWidget(m_edit, 1);
    m_present->setObjectName(u"datePresent"_s);
    m_edit->setObjectName(u"dateEdit"_s);
    m_edit->setCalendarPopup(true);
    m_edit->setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat));
    setFocusProxy(m_present);
    setTabOrder(m_present, m_edit);
    setDate(std::nullopt);

    connect(m_present, &QCheckBox::toggled, this, [this](bool present) {
        m_edit->setEnabled(present);
        if (m_settingDate)
            return;
        if (present) {
            const QScopedValueRollback setting(m_settingDate, true);
            m_edit->setDate(QDate::currentDate());
        }
        userChanged();
    });
    connect(m_edit, &QDateEdit::dateChanged, this, [this] {
        if (!m_settingDate)
            userChanged();
    });
}

std::optional<QDate> OptionalDateEdit::date() const
{
    return m_present->isChecked() ? std::optional<QDate>(m_edit->date()) : std::nullopt;
}

void OptionalDateEdit::setDate(const std::optional<QDate> &date)
{
    const QScopedValueRollback setting(m_settingDate, true);
    m_present->setChecked(date.has_value());
    m_edit->setEnabled(date.has_value());
    m_edit->setDate(date.value_or(QDate::currentDate()));
}

void OptionalDateEdit::setAccessibleLabel(const QString &label)
{
    setAccessibleName(label);
    m_edit->setAccessibleName(label);
    m_present->setAccessibleName(label);
}

void OptionalDateEdit::userChanged()
{
    Q_EMIT dateEdited(date());
}
