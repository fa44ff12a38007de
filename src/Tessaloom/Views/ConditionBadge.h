// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

// A copy's overall condition as a small coloured capsule in a table cell: green for
// "New/Sealed", blue for "Used", with the condition's name. An unknown stored text is shown
// as it stands, in the used colour; no condition leaves the cell empty. Reads the raw
// value under `conditionRole`.
class ConditionBadge : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ConditionBadge(int conditionRole, QObject *parent = nullptr);

    // The capsule's text and colour for a stored raw value; empty text for none.
    static QString text(const QString &rawValue);
    static QColor color(const QString &rawValue);
    // How much of the colour the badge's fill takes.
    static constexpr float fillOpacity = 0.15f;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    int m_conditionRole;
};
