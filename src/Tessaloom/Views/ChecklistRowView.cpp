// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ChecklistRowView.h"

#include "Views/CellPictureLoader.h"
#include "Views/ChecklistRowModel.h"
#include "Views/ColorSwatch.h"
#include "Views/SymbolIcon.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr int margin = 6;
constexpr int markSide = 20;
constexpr int buttonSide = 24;
constexpr int swatchSide = 12;
constexpr int spacing = 6;

} // namespace

ChecklistRowView::ChecklistRowView(CellPictureLoader &pictures, const QFont &font, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_pictures(pictures)
    , m_font(font)
    , m_boldFont(font)
    , m_countWidth(QFontMetrics(font).horizontalAdvance(u"0000 / 0000"_s))
{
    m_boldFont.setBold(true);
}

QRect ChecklistRowView::buttonRect(const QRect &rowRect, Button button) const
{
    const int top = rowRect.top() + (rowRect.height() - buttonSide) / 2;
    const int incrementLeft = rowRect.right() - margin - buttonSide + 1;
    if (button == Button::increment)
        return {incrementLeft, top, buttonSide, buttonSide};
    return {incrementLeft - spacing - m_countWidth - spacing - buttonSide, top, buttonSide, buttonSide};
}

QSize ChecklistRowView::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(option)
    return {0, index.data(ChecklistRowModel::IsHeadingRole).toBool() ? headingHeight : rowHeight};
}

void ChecklistRowView::paintHeading(QPainter *painter, const QStyleOptionViewItem &option,
                                        const QModelIndex &index) const
{
    QRect text = option.rect.adjusted(margin, 10, -margin, -4);
    const QString hex = index.data(ChecklistRowModel::ColorHexRole).toString();
    if (!hex.isEmpty()) {
        const QRectF swatch(text.left(), text.center().y() - swatchSide / 2.0, swatchSide, swatchSide);
        ColorSwatch::paint(*painter, swatch, ColorSwatch::colorOf(hex));
        text.setLeft(text.left() + swatchSide + spacing);
    }
    painter->setFont(m_boldFont);
    painter->setPen(option.palette.color(QPalette::Text));
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      index.data(Qt::DisplayRole).toString());
}

void ChecklistRowView::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (index.data(ChecklistRowModel::IsHeadingRole).toBool()) {
        paintHeading(painter, option, index);
        painter->restore();
        return;
    }
    const QRect row = option.rect;
    int left = row.left() + margin;

    // The mark keeps its place when the row is not complete, so the pictures stay in one
    // column.
    const QRect mark(left, row.top() + (row.height() - markSide) / 2, markSide, markSide);
    if (index.data(ChecklistRowModel::IsCompleteRole).toBool())
        SymbolIcon::icon(u"checkmark.circle.fill"_s).paint(painter, mark);
    left = mark.right() + 1 + spacing;

    const QRect picture(left, row.top() + (row.height() - pictureSide) / 2, pictureSide, pictureSide);
    const QString url = index.data(ChecklistRowModel::PictureURLRole).toString();
    if (!url.isEmpty()) {
        m_requested.insert(url);
        auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget));
        // The loader hands out pictures already scaled to fit, and repaints the row when one
        // arrives.
        const QImage image = m_pictures.picture(url, index, view);
        if (!image.isNull()) {
            const QSize size = image.size().scaled(picture.size(), Qt::KeepAspectRatio);
            const QRect target(picture.left() + (picture.width() - size.width()) / 2,
                               picture.top() + (picture.height() - size.height()) / 2, size.width(), size.height());
            painter->drawImage(target, image);
        }
    }
    left = picture.right() + 1 + spacing;

    const QRect decrement = buttonRect(row, Button::decrement);
    const QRect increment = buttonRect(row, Button::increment);
    const QRect count(decrement.right() + 1 + spacing, row.top(), m_countWidth, row.height());
    const QRect facts(left, row.top() + 3, std::max(0, decrement.left() - spacing - left), row.height() - 6);

    const QPalette &palette = option.palette;
    painter->setFont(m_boldFont);
    painter->setPen(palette.color(QPalette::Text));
    const QRect nameLine(facts.left(), facts.top(), facts.width(), facts.height() / 2);
    painter->drawText(nameLine, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetrics(m_boldFont).elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideRight,
                                                          nameLine.width()));
    QRect detailLine(facts.left(), nameLine.bottom() + 1, facts.width(), facts.height() - nameLine.height());
    const QRectF swatch(detailLine.left(), detailLine.center().y() - swatchSide / 2.0, swatchSide, swatchSide);
    ColorSwatch::paint(*painter, swatch, ColorSwatch::colorOf(index.data(ChecklistRowModel::ColorHexRole).toString()));
    detailLine.setLeft(detailLine.left() + swatchSide + 4);
    painter->setFont(m_font);
    // The secondary text colour.
    painter->setPen(palette.color(QPalette::Disabled, QPalette::Text));
    painter->drawText(detailLine, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetrics(m_font).elidedText(index.data(ChecklistRowModel::DetailRole).toString(),
                                                      Qt::ElideRight, detailLine.width()));

    painter->setPen(palette.color(QPalette::Text));
    painter->drawText(count, Qt::AlignCenter | Qt::TextSingleLine, index.data(ChecklistRowModel::CountRole).toString());
    const auto paintButton = [painter](const QRect &place, const QString &symbol, bool enabled) {
        SymbolIcon::icon(symbol).paint(painter, place.adjusted(2, 2, -2, -2), Qt::AlignCenter,
                                       enabled ? QIcon::Normal : QIcon::Disabled);
    };
    paintButton(decrement, u"minus.circle"_s, index.data(ChecklistRowModel::CanDecrementRole).toBool());
    paintButton(increment, u"plus.circle"_s, index.data(ChecklistRowModel::CanIncrementRole).toBool());
    painter->restore();
}

bool ChecklistRowView::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                       const QModelIndex &index)
{
    Q_UNUSED(model)
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonRelease
        && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton || index.data(ChecklistRowModel::IsHeadingRole).toBool())
        return false;
    const QPoint point = mouse->position().toPoint();
    std::optional<Button> hit;
    if (buttonRect(option.rect, Button::decrement).contains(point))
        hit = Button::decrement;
    else if (buttonRect(option.rect, Button::increment).contains(point))
        hit = Button::increment;
    if (!hit)
        return false;
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        // A quick second click is one more click, as on a button.
        m_pressedIndex = index;
        m_pressedButton = *hit;
        return true;
    }
    const bool sameButton = m_pressedIndex == index && m_pressedButton == *hit;
    m_pressedIndex = QPersistentModelIndex();
    if (!sameButton)
        return true;
    if (*hit == Button::decrement && index.data(ChecklistRowModel::CanDecrementRole).toBool())
        Q_EMIT decrementRequested(index);
    else if (*hit == Button::increment && index.data(ChecklistRowModel::CanIncrementRole).toBool())
        Q_EMIT incrementRequested(index);
    return true;
}

bool ChecklistRowView::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                     const QModelIndex &index)
{
    if (event->type() == QEvent::ToolTip && !index.data(ChecklistRowModel::IsHeadingRole).toBool()) {
        int role = 0;
        if (buttonRect(option.rect, Button::decrement).contains(event->pos()))
            role = ChecklistRowModel::DecrementAccessibleNameRole;
        else if (buttonRect(option.rect, Button::increment).contains(event->pos()))
            role = ChecklistRowModel::IncrementAccessibleNameRole;
        if (role != 0) {
            QToolTip::showText(event->globalPos(), index.data(role).toString(), view);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}
