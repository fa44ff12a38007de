// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The pictures of the image cache benchmark, made on the spot: set-picture-like scenes of
// coloured shapes on white with a little sensor noise, alternately JPEG and PNG, sized so
// that their files weigh what real set pictures weigh (20 to 200 KB).
class BenchmarkPictures
{
public:
    struct Summary
    {
        int count = 0;
        qint64 smallestBytes = 0;
        qint64 largestBytes = 0;
        qint64 totalBytes = 0;
    };

    // Writes `count` files into `directory` and returns their names ("0000-1.jpg", ...).
    static QStringList generate(const QString &directory, int count, Summary *summary);
};
