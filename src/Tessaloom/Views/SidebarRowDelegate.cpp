// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SidebarRowDelegate.h"

#include "ViewModels/SidebarTreeModel.h"

#include <QPainter>

void SidebarRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const QVariant badge = index.data(SidebarTreeModel::BadgeCountRole);
    if (!badge.isValid())
        return;
    const QString text = QString::number(badge.toLongLong());
    const QFontMetrics metrics(option.font);
    const int width = metrics.horizontalAdvance(text) + 12;
    const int height = metrics.height();
    const QRect badgeRect(option.rect.right() - width - 6, option.rect.center().y() - height / 2, width, height);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool selected = option.state & QStyle::State_Selected;
    QColor fill = option.palette.color(selected ? QPalette::HighlightedText : QPalette::Mid);
    fill.setAlphaF(selected ? 0.3 : 0.35);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(badgeRect, height / 2.0, height / 2.0);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(badgeRect, Qt::AlignCenter, text);
    painter->restore();
}
