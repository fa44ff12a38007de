// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ConditionBadge.h"

#include "OverallCondition.h"

#include <QApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {
constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 2;
} // namespace

ConditionBadge::ConditionBadge(int conditionRole, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_conditionRole(conditionRole)
{
}

QString ConditionBadge::text(const QString &rawValue)
{
    return Vocabulary::displayNameOfStored<OverallCondition>(rawValue);
}

QColor ConditionBadge::color(const QString &rawValue)
{
    const auto condition = Vocabulary::fromRawValue<OverallCondition>(rawValue);
    const QString name = overallConditionColorName(condition.value_or(OverallCondition::used));
    // The plain named colours are too loud behind text; these are their softer kin.
    return name == u"green" ? QColor(0x2e, 0x9d, 0x4f) : QColor(0x2f, 0x6f, 0xd6);
}

void ConditionBadge::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem panel = option;
    initStyleOption(&panel, index);
    panel.text.clear();
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &panel, painter, widget);

    const QString rawValue = index.data(m_conditionRole).toString();
    const QString label = text(rawValue);
    if (label.isEmpty())
        return;
    const QFontMetrics metrics(option.font);
    const int width = std::min(metrics.horizontalAdvance(label) + 2 * horizontalPadding, option.rect.width() - 4);
    const int height = metrics.height() + 2 * verticalPadding;
    const QRect capsule(option.rect.x() + 2, option.rect.center().y() - height / 2, width, height);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    // A faint fill of the condition's colour with the label in that colour: the badge tells
    // the condition at a glance without outshouting the row.
    const QColor tint = color(rawValue);
    QColor fill = tint;
    fill.setAlphaF(fillOpacity);
    painter->setBrush(fill);
    painter->drawRoundedRect(capsule, height / 2.0, height / 2.0);
    painter->setPen(tint);
    painter->drawText(capsule, Qt::AlignCenter, metrics.elidedText(label, Qt::ElideRight, width - horizontalPadding));
    painter->restore();
}

QSize ConditionBadge::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QFontMetrics metrics(option.font);
    const QString label = text(index.data(m_conditionRole).toString());
    return QSize(metrics.horizontalAdvance(label) + 2 * horizontalPadding + 4, metrics.height() + 2 * verticalPadding + 4);
}
