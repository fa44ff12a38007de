// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridCellPainter.h"

#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionViewItem>

using namespace Qt::StringLiterals;

namespace {

constexpr int pictureWidth = 160;
constexpr int pictureHeight = 120;
constexpr int margin = 6;
constexpr int badgeSize = 18;
constexpr int textLines = 4;

QRect pictureRect(const QRect &cell)
{
    return QRect(cell.x() + (cell.width() - pictureWidth) / 2, cell.y() + margin, pictureWidth, pictureHeight);
}

void drawPicture(QPainter *painter, const QRect &box, const QImage &picture, const QPalette &palette)
{
    if (picture.isNull()) {
        // The place the picture will take, so cells line up while pictures arrive.
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette.color(QPalette::AlternateBase));
        painter->drawRoundedRect(box, 6, 6);
        const QIcon placeholder = SymbolIcon::icon(u"photo"_s);
        const QRect iconBox(box.center().x() - 16, box.center().y() - 16, 32, 32);
        placeholder.paint(painter, iconBox, Qt::AlignCenter, QIcon::Disabled);
        return;
    }
    QSize fitted = picture.deviceIndependentSize().toSize();
    if (fitted.width() > box.width() || fitted.height() > box.height())
        fitted.scale(box.size(), Qt::KeepAspectRatio);
    const QRect target(box.x() + (box.width() - fitted.width()) / 2, box.y() + (box.height() - fitted.height()) / 2,
                       fitted.width(), fitted.height());
    painter->drawImage(target, picture);
}

void drawCapsule(QPainter *painter, const QRect &pictureBox, const QString &text, const QPalette &palette)
{
    const QFontMetrics metrics(painter->font());
    const int width = metrics.horizontalAdvance(text) + 12;
    const int height = metrics.height() + 4;
    const QRect capsule(pictureBox.right() - width - 2, pictureBox.bottom() - height - 2, width, height);
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette.color(QPalette::Highlight));
    painter->drawRoundedRect(capsule, height / 2.0, height / 2.0);
    painter->setPen(palette.color(QPalette::HighlightedText));
    painter->drawText(capsule, Qt::AlignCenter, text);
}

} // namespace

QSize SetGridCellPainter::cellSize()
{
    const QFontMetrics metrics(QApplication::font());
    return QSize(pictureWidth + 2 * margin + 8, margin + pictureHeight + margin + textLines * metrics.height() + margin);
}

QSize SetGridCellPainter::pictureSize()
{
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    return QSize(qRound(pictureWidth * ratio), qRound(pictureHeight * ratio));
}

void SetGridCellPainter::paint(QPainter *painter, const QStyleOptionViewItem &option, const SetGridCell &cell)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    // The styles fill a selected cell of an icon grid only behind its text; the whole cell
    // is marked here instead, softly, so that the picture and the text stay readable.
    const bool selected = option.state & QStyle::State_Selected;
    if (selected || (option.state & QStyle::State_MouseOver)) {
        QColor fill = option.palette.color(QPalette::Highlight);
        fill.setAlphaF(selected ? 0.28f : 0.10f);
        painter->setPen(selected ? QPen(option.palette.color(QPalette::Highlight), 1.5) : Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5), 8, 8);
    }
    const QRect picture = pictureRect(option.rect);
    drawPicture(painter, picture, cell.picture, option.palette);

    if (cell.isFavorite) {
        const QRect star(picture.right() - badgeSize - 2, picture.top() + 2, badgeSize, badgeSize);
        SymbolIcon::icon(u"star.fill"_s).paint(painter, star);
    }
    if (cell.isOwned) {
        const QRect check(picture.left() + 2, picture.top() + 2, badgeSize, badgeSize);
        SymbolIcon::icon(u"checkmark.circle.fill"_s).paint(painter, check);
    }
    if (!cell.copyCountText.isEmpty())
        drawCapsule(painter, picture, cell.copyCountText, option.palette);

    const QColor primary = option.palette.color(QPalette::Text);
    QColor secondary = primary;
    secondary.setAlphaF(0.65f);

    const QFontMetrics metrics(option.font);
    const int lineHeight = metrics.height();
    QRect line(option.rect.x() + margin, picture.bottom() + margin, option.rect.width() - 2 * margin, lineHeight);
    QFont nameFont = option.font;
    nameFont.setBold(true);
    painter->setFont(nameFont);
    painter->setPen(primary);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                      QFontMetrics(nameFont).elidedText(cell.name, Qt::ElideRight, line.width()));
    painter->setFont(option.font);
    painter->setPen(secondary);
    line.translate(0, lineHeight);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                      metrics.elidedText(cell.setNumber, Qt::ElideRight, line.width()));
    line.translate(0, lineHeight);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                      metrics.elidedText(cell.yearText, Qt::ElideRight, line.width()));
    line.translate(0, lineHeight);
    painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                      metrics.elidedText(cell.pieceCountText, Qt::ElideRight, line.width()));
    painter->restore();
}
