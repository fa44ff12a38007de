// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TrashRowDelegate.h"

#include "Services/ThumbnailScaler.h"
#include "Store/BrickSetListModel.h"
#include "Views/CellPictureLoader.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QLocale>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {
constexpr int margin = 6;
constexpr int textGap = 10;
} // namespace

TrashRowDelegate::TrashRowDelegate(const BrickSetListModel &copies, CellPictureLoader &pictures, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_copies(copies)
    , m_pictures(pictures)
{
}

QString TrashRowDelegate::nameText(const BrickSetWithCatalogSet &copy)
{
    if (copy.catalogSet) {
        if (copy.catalogSet->name && !copy.catalogSet->name->isEmpty())
            return *copy.catalogSet->name;
        if (copy.catalogSet->setNumber && !copy.catalogSet->setNumber->isEmpty())
            return *copy.catalogSet->setNumber;
    }
    return u"Unknown Set"_s;
}

QString TrashRowDelegate::trashedText(const QDateTime &trashedDate)
{
    //% "Trashed %1"
    return qtTrId("trash.trashedDate.").arg(QLocale().toString(trashedDate.toLocalTime().date(), QLocale::ShortFormat));
}

TrashRow TrashRowDelegate::row(const BrickSetWithCatalogSet &copy)
{
    TrashRow row;
    if (const std::optional<CatalogSet> &set = copy.catalogSet) {
        const std::optional<QString> &small = set->thumbnailURL;
        row.pictureURL = small && !small->isEmpty() ? *small : set->imageURL.value_or(QString());
        row.setNumber = set->setNumber.value_or(QString());
    }
    row.name = nameText(copy);
    if (copy.brickSet.trashedDate)
        row.trashedText = trashedText(*copy.brickSet.trashedDate);
    return row;
}

void TrashRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (index.row() < 0 || index.row() >= m_copies.count())
        return;
    QStyleOptionViewItem panel = option;
    initStyleOption(&panel, index);
    panel.text.clear();
    panel.icon = QIcon();
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &panel, painter, widget);

    const TrashRow content = row(m_copies.rowAt(index.row()));
    const QRect pictureBox(option.rect.x() + margin, option.rect.y() + margin, ThumbnailScaler::maximumWidth,
                           option.rect.height() - 2 * margin);
    // Painting has to stay const for the view; asking for a picture changes only the
    // loader's bookkeeping, never what the model or the view see.
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(widget));
    const QImage picture = content.pictureURL.isEmpty() ? QImage() : m_pictures.picture(content.pictureURL, index, view);
    painter->save();
    if (!picture.isNull()) {
        QSize fitted = picture.deviceIndependentSize().toSize();
        if (fitted.width() > pictureBox.width() || fitted.height() > pictureBox.height())
            fitted.scale(pictureBox.size(), Qt::KeepAspectRatio);
        const QRect target(pictureBox.x() + (pictureBox.width() - fitted.width()) / 2,
                           pictureBox.y() + (pictureBox.height() - fitted.height()) / 2, fitted.width(), fitted.height());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(target, picture);
    }

    const bool selected = option.state & QStyle::State_Selected;
    const QPalette &palette = option.palette;
    const QColor strong = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    QColor faint = selected ? strong : palette.color(QPalette::PlaceholderText);
    QRect text = option.rect.adjusted(pictureBox.right() + textGap - option.rect.x(), margin, -margin, -margin);
    QFont nameFont = option.font;
    nameFont.setBold(true);
    const QFontMetrics nameMetrics(nameFont);
    const QFontMetrics plainMetrics(option.font);
    const int lines = nameMetrics.height() + 2 * plainMetrics.height();
    text.setTop(text.top() + std::max(0, (text.height() - lines) / 2));
    painter->setFont(nameFont);
    painter->setPen(strong);
    painter->drawText(QRect(text.x(), text.y(), text.width(), nameMetrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                      nameMetrics.elidedText(content.name, Qt::ElideRight, text.width()));
    painter->setFont(option.font);
    painter->setPen(faint);
    int y = text.y() + nameMetrics.height();
    for (const QString &line : {content.setNumber, content.trashedText}) {
        painter->drawText(QRect(text.x(), y, text.width(), plainMetrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                          plainMetrics.elidedText(line, Qt::ElideRight, text.width()));
        y += plainMetrics.height();
    }
    painter->restore();
}

QSize TrashRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(index);
    const QFontMetrics metrics(option.font);
    const int textHeight = 3 * metrics.height() + 2;
    const int height = std::max(ThumbnailScaler::maximumHeight, textHeight) + 2 * margin;
    return QSize(ThumbnailScaler::maximumWidth + textGap + 200, height);
}
