// SPDX-License-Identifier: GPL-3.0-or-later
// Build-time tool: draws the application icon's SVG as a square PNG of the given size, for
// the icon theme's fixed-size folders.
//   render-icon ICON.svg SIZE OUT.png
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    if (argc != 4) {
        std::fputs("Usage: render-icon ICON.svg SIZE OUT.png\n", stderr);
        return 2;
    }
    const QString source = QString::fromLocal8Bit(argv[1]);
    bool sizeIsNumber = false;
    const int size = QString::fromLocal8Bit(argv[2]).toInt(&sizeIsNumber);
    const QString target = QString::fromLocal8Bit(argv[3]);
    if (!sizeIsNumber || size < 1 || size > 4096) {
        std::fprintf(stderr, "render-icon: The size must be a whole number of pixels from 1 to 4096, not %s.\n", argv[2]);
        return 2;
    }

    QSvgRenderer renderer(source);
    if (!renderer.isValid()) {
        std::fprintf(stderr, "render-icon: %s is no SVG image that can be drawn.\n", argv[1]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter, QRectF(0, 0, size, size));
    }

    // Written whole or not at all, so an interrupted build leaves no half picture to install.
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") || !file.commit()) {
        std::fprintf(stderr, "render-icon: %s could not be written.\n", argv[3]);
        return 1;
    }
    return 0;
}
