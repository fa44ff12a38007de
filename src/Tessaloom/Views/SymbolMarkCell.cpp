// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SymbolMarkCell.h"

#include "Views/SymbolIcon.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

SymbolMarkCell::SymbolMarkCell(int flagRole, const QString &symbolName, const QString &accessibleText,
                               QObject *parent)
    : QStyledItemDelegate(parent)
    , m_flagRole(flagRole)
    , m_symbolName(symbolName)
    , m_accessibleText(accessibleText)
{
}

bool SymbolMarkCell::isMarked(const QModelIndex &index) const
{
    return index.data(m_flagRole).toBool();
}

void SymbolMarkCell::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (!isMarked(index))
        return;
    option->icon = SymbolIcon::icon(m_symbolName);
    option->features |= QStyleOptionViewItem::HasDecoration;
    if (option->text.isEmpty()) {
        // A cell with only the mark: centre it.
        option->decorationAlignment = Qt::AlignCenter;
        option->displayAlignment = Qt::AlignCenter;
    } else {
        option->decorationPosition = QStyleOptionViewItem::Right;
    }
}

bool SymbolMarkCell::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                               const QModelIndex &index)
{
    if (event->type() == QEvent::ToolTip && isMarked(index) && index.data(Qt::ToolTipRole).isNull()) {
        QToolTip::showText(event->globalPos(), m_accessibleText, view);
        return true;
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}
