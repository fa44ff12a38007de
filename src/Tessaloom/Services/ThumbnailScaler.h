// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSize>

// Makes the small pictures of list rows: the source scaled by one factor so that it fits
// 80 by 60, keeping its proportions. Small sources are enlarged too, so every row shows a
// picture of the same height or width.
class ThumbnailScaler
{
public:
    static constexpr int maximumWidth = 80;
    static constexpr int maximumHeight = 60;
    // What a thumbnail costs in the memory cache: the largest one at 4 bytes a point.
    static constexpr qint64 memoryCost = qint64(maximumWidth) * maximumHeight * 4;

    // The size of the thumbnail of a picture of `source` size; a source without width or
    // height keeps its size, since no factor would make it fit.
    static QSize thumbnailSize(QSize source);
    static QImage thumbnail(const QImage &source);
};
