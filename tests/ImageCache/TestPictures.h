// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QSize>

// Picture files made in the test itself, so no binary file has to be kept beside it.
class TestPictures
{
public:
    static QImage image(QSize size, QColor colour)
    {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(colour);
        return picture;
    }

    static QByteArray encoded(const QImage &picture, const char *format, int quality = -1)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, format, quality);
        return bytes;
    }

    static QByteArray png(QSize size = QSize(120, 90), QColor colour = QColor(200, 40, 40))
    {
        return encoded(image(size, colour), "PNG");
    }

    static QByteArray jpeg(QSize size = QSize(120, 90), QColor colour = QColor(40, 40, 200))
    {
        return encoded(image(size, colour), "JPEG", 90);
    }
};
