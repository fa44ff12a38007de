// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QSet>
#include <QStyledItemDelegate>

class CellPictureLoader;

// Paints one row of a copy's parts checklist from ChecklistRowModel's roles: a completion
// mark, the part's picture, its name above its number, colour and category, and on the
// right the owned count of the required quantity between a button for one fewer and one
// for one more. The buttons are places in the row, hit-tested here on a click; the row
// only asks, through its signals, and the view model changes the count.
//
// Headings of blocks are painted in bold, with the colour's swatch for a colour block.
class ChecklistRowView : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum class Button { decrement, increment };

    static constexpr int rowHeight = 50;
    static constexpr int headingHeight = 30;
    static constexpr int pictureSide = 44;

    ChecklistRowView(CellPictureLoader &pictures, const QFont &font, QObject *parent = nullptr);

    // Where `button` sits in a row drawn in `rowRect`.
    QRect buttonRect(const QRect &rowRect, Button button) const;
    // Whether the picture of `urlString` has been asked for, which happens when its row is
    // first painted: rows far out of sight never ask.
    bool isPictureRequested(const QString &urlString) const { return m_requested.contains(urlString); }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
    // Over a button, its name ("Remove one", "Add one"); elsewhere the part's name.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

Q_SIGNALS:
    void decrementRequested(const QModelIndex &index);
    void incrementRequested(const QModelIndex &index);

private:
    void paintHeading(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;

    CellPictureLoader &m_pictures;
    QFont m_font;
    QFont m_boldFont;
    int m_countWidth;
    mutable QSet<QString> m_requested;
    // The button pressed, so that only a release on the same button counts as a click.
    QPersistentModelIndex m_pressedIndex;
    Button m_pressedButton = Button::increment;
};
