// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QWidget>

#include <optional>

class QCheckBox;
class QDateEdit;

// A day that may be absent: a check box that says whether there is one and the day itself,
// which can be edited only while the box is checked. Checking the box starts at today.
// dateEdited() reports the user's changes only, never those made through setDate().
class OptionalDateEdit : public QWidget
{
    Q_OBJECT

public:
    explicit OptionalDateEdit(QWidget *parent = nullptr);

    std::optional<QDate> date() const;
    void setDate(const std::optional<QDate> &date);
    // The name read out for both parts ("Date"), and for the check box "Date: set".
    void setAccessibleLabel(const QString &label);

    QCheckBox *presentBox() const { return m_present; }
    QDateEdit *dateEdit() const { return m_edit; }

Q_SIGNALS:
    void dateEdited(const std::optional<QDate> &date);

private:
    void userChanged();

    QCheckBox *m_present;
    QDateEdit *m_edit;
    bool m_settingDate = false;
};
