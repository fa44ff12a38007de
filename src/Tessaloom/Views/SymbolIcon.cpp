// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SymbolIcon.h"

#include <QApplication>
#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

struct SymbolMapping
{
    QString themeName;
    QStyle::StandardPixmap fallback;
};

const QHash<QString, SymbolMapping> &mappings()
{
    static const QHash<QString, SymbolMapping> table{
        {u"square.grid.2x2"_s, {u"view-grid"_s, QStyle::SP_FileDialogContentsView}},
        {u"square.grid.2x2.fill"_s, {u"view-list-icons"_s, QStyle::SP_FileDialogListView}},
        {u"list.bullet"_s, {u"view-list-details"_s, QStyle::SP_FileDialogDetailedView}},
        {u"folder"_s, {u"folder"_s, QStyle::SP_DirIcon}},
        {u"trash"_s, {u"user-trash"_s, QStyle::SP_TrashIcon}},
        {u"star"_s, {u"non-starred"_s, QStyle::SP_DialogNoButton}},
        {u"star.fill"_s, {u"starred"_s, QStyle::SP_DialogYesButton}},
        {u"magnifyingglass"_s, {u"edit-find"_s, QStyle::SP_FileDialogContentsView}},
        {u"arrow.clockwise"_s, {u"view-refresh"_s, QStyle::SP_BrowserReload}},
        {u"plus"_s, {u"list-add"_s, QStyle::SP_FileDialogNewFolder}},
        {u"shippingbox"_s, {u"package-x-generic"_s, QStyle::SP_DriveFDIcon}},
        {u"exclamationmark.triangle"_s, {u"dialog-warning"_s, QStyle::SP_MessageBoxWarning}},
        {u"heart"_s, {u"emblem-favorite"_s, QStyle::SP_DialogYesButton}},
        {u"clock"_s, {u"appointment-soon"_s, QStyle::SP_BrowserReload}},
        {u"questionmark.circle"_s, {u"help-about"_s, QStyle::SP_MessageBoxQuestion}},
        {u"questionmark.diamond"_s, {u"dialog-question"_s, QStyle::SP_MessageBoxQuestion}},
        {u"tag"_s, {u"tag"_s, QStyle::SP_FileDialogInfoView}},
        {u"dollarsign.circle"_s, {u"accessories-calculator"_s, QStyle::SP_FileDialogListView}},
        {u"clock.badge.exclamationmark"_s, {u"appointment-missed"_s, QStyle::SP_MessageBoxWarning}},
        {u"tablecells"_s, {u"x-office-spreadsheet"_s, QStyle::SP_FileDialogDetailedView}},
        {u"books.vertical"_s, {u"accessories-dictionary"_s, QStyle::SP_DirOpenIcon}},
        {u"folder.badge.gearshape"_s, {u"folder-saved-search"_s, QStyle::SP_DirLinkIcon}},
        {u"photo"_s, {u"image-x-generic"_s, QStyle::SP_FileIcon}},
        {u"info.circle"_s, {u"dialog-information"_s, QStyle::SP_MessageBoxInformation}},
        {u"gearshape"_s, {u"preferences-system"_s, QStyle::SP_FileDialogInfoView}},
        {u"square.stack.3d.up"_s, {u"package-x-generic"_s, QStyle::SP_DriveHDIcon}},
        {u"checkmark.circle.fill"_s, {u"emblem-ok"_s, QStyle::SP_DialogApplyButton}},
        {u"arrow.right.circle"_s, {u"go-next"_s, QStyle::SP_ArrowRight}},
        {u"plus.circle.fill"_s, {u"list-add"_s, QStyle::SP_FileDialogNewFolder}},
        {u"heart.fill"_s, {u"emblem-favorite"_s, QStyle::SP_DialogYesButton}},
        {u"safari"_s, {u"internet-web-browser"_s, QStyle::SP_DriveNetIcon}},
        {u"doc.richtext"_s, {u"application-pdf"_s, QStyle::SP_FileIcon}},
        {u"exclamationmark.triangle.fill"_s, {u"dialog-warning"_s, QStyle::SP_MessageBoxWarning}},
        {u"checklist"_s, {u"view-task"_s, QStyle::SP_FileDialogDetailedView}},
        {u"ellipsis.circle"_s, {u"overflow-menu"_s, QStyle::SP_ToolBarHorizontalExtensionButton}},
        {u"square.grid.3x3"_s, {u"view-grid"_s, QStyle::SP_FileDialogContentsView}},
        {u"line.3.horizontal.decrease.circle"_s, {u"view-filter"_s, QStyle::SP_FileDialogListView}},
        {u"minus.circle"_s, {u"list-remove"_s, QStyle::SP_ArrowDown}},
        {u"plus.circle"_s, {u"list-add"_s, QStyle::SP_ArrowUp}},
        {u"arrow.uturn.backward"_s, {u"edit-undo"_s, QStyle::SP_ArrowBack}},
        {u"key"_s, {u"dialog-password"_s, QStyle::SP_DialogOkButton}},
        {u"sidebar.left"_s, {u"sidebar-show"_s, QStyle::SP_FileDialogListView}},
        {u"internaldrive"_s, {u"drive-harddisk"_s, QStyle::SP_DriveHDIcon}},
        {u"arrow.down.circle.fill"_s, {u"go-down"_s, QStyle::SP_ArrowDown}},
    };
    return table;
}

// The styles have no star, and a favourite marked with a "yes" button reads wrongly.
QIcon drawnStar()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath star;
        const QPointF centre(size / 2.0, size / 2.0 + size * 0.04);
        for (int point = 0; point < 10; ++point) {
            const double radius = (point % 2 == 0 ? 0.48 : 0.2) * size;
            const double angle = -M_PI / 2 + point * M_PI / 5;
            const QPointF corner = centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
            if (point == 0)
                star.moveTo(corner);
            else
                star.lineTo(corner);
        }
        star.closeSubpath();
        painter.setPen(QPen(QColor(0xb8, 0x86, 0x0b), size / 16.0));
        painter.setBrush(QColor(0xff, 0xc1, 0x07));
        painter.drawPath(star);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

QString SymbolIcon::themeName(const QString &symbolName)
{
    return mappings().value(symbolName).themeName;
}

QIcon SymbolIcon::icon(const QString &symbolName)
{
    // Cells ask for their star or check mark at every paint; the theme lookup (and
    // drawing the star) is done once per symbol. Icons are used on the main thread only.
    static QHash<QString, QIcon> resolved;
    const auto known = resolved.constFind(symbolName);
    if (known != resolved.cend())
        return *known;
    return resolved.insert(symbolName, resolve(symbolName)).value();
}

QIcon SymbolIcon::resolve(const QString &symbolName)
{
    const auto mapping = mappings().constFind(symbolName);
    if (mapping == mappings().cend())
        return QIcon::fromTheme(symbolName);
    const QIcon themed = QIcon::fromTheme(mapping->themeName);
    if (!themed.isNull())
        return themed;
    if (symbolName == u"star.fill")
        return drawnStar();
    return QApplication::style()->standardIcon(mapping->fallback);
}
