// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SidebarRowDelegate.h"

#include "ViewModels/SidebarTreeModel.h"

#include <QApplication>
#include <QPainter>

namespace {
constexpr int badgePadding = 12;
constexpr int badgeMargin = 6;
} // namespace

void SidebarRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QVariant badge = index.data(SidebarTreeModel::BadgeCountRole);
    const QString badgeText = badge.isValid() ? QString::number(badge.toLongLong()) : QString();
    const QFontMetrics metrics(row.font);
    const int badgeWidth = badgeText.isEmpty() ? 0 : metrics.horizontalAdvance(badgeText) + badgePadding;

    // The title gives way to the badge rather than running under it.
    if (badgeWidth > 0) {
        const int reserved = badgeWidth + 2 * badgeMargin + row.decorationSize.width() + badgeMargin;
        row.text = metrics.elidedText(row.text, Qt::ElideRight, std::max(0, row.rect.width() - reserved));
    }
    const QStyle *style = row.widget ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
    if (badgeWidth == 0)
        return;

    const int height = metrics.height();
    const QRect badgeRect(row.rect.right() - badgeWidth - badgeMargin, row.rect.center().y() - height / 2, badgeWidth,
                          height);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool selected = row.state & QStyle::State_Selected;
    QColor fill = row.palette.color(selected ? QPalette::HighlightedText : QPalette::Mid);
    fill.setAlphaF(selected ? 0.3 : 0.35);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(badgeRect, height / 2.0, height / 2.0);
    painter->setPen(row.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(badgeRect, Qt::AlignCenter, badgeText);
    painter->restore();
}
