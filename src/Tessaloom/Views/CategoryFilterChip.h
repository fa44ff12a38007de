// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QString>

#include <functional>

// A capsule with a category name that filters a list by that category. Clicking runs the
// chip's action; whether it shows as selected is set by its owner, who knows the filter.
class CategoryFilterChip : public QAbstractButton
{
    Q_OBJECT

public:
    CategoryFilterChip(const QString &name, bool isSelected, std::function<void()> action,
                       QWidget *parent = nullptr);

    QString name() const { return m_name; }
    bool isSelected() const { return m_isSelected; }
    void setSelected(bool isSelected);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    bool m_isSelected;
    std::function<void()> m_action;
};
