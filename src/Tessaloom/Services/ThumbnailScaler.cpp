// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ThumbnailScaler.h"

#include <QtMath>

#include <algorithm>

QSize ThumbnailScaler::thumbnailSize(QSize source)
{
    if (source.width() <= 0 || source.height() <= 0)
        return source;
    const double scale = std::min(double(maximumWidth) / source.width(), double(maximumHeight) / source.height());
    return QSize(std::max(1, qRound(source.width() * scale)), std::max(1, qRound(source.height() * scale)));
}

QImage ThumbnailScaler::thumbnail(const QImage &source)
{
    const QSize size = thumbnailSize(source.size());
    if (source.isNull() || size == source.size())
        return source;
    return source.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
