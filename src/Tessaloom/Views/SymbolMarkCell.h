// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

// A table cell that carries a symbol while a yes/no role of its row holds: the star beside
// a favourite's name, the check mark of a catalog set already owned. The cell's own text,
// if any, stays; the symbol's spoken name goes to its tooltip.
class SymbolMarkCell : public QStyledItemDelegate
{
    Q_OBJECT

public:
    SymbolMarkCell(int flagRole, const QString &symbolName, const QString &accessibleText, QObject *parent = nullptr);

    bool isMarked(const QModelIndex &index) const;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    int m_flagRole;
    QString m_symbolName;
    QString m_accessibleText;
};
