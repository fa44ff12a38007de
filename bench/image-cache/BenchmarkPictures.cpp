// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchmarkPictures.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QImage scene(QRandomGenerator &random, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const int shapes = 12 + random.bounded(20);
    for (int i = 0; i < shapes; ++i) {
        const QColor colour = QColor::fromHsv(random.bounded(360), 120 + random.bounded(135), 90 + random.bounded(165));
        const QRect box(random.bounded(size.width()), random.bounded(size.height()),
                        20 + random.bounded(size.width() / 2), 20 + random.bounded(size.height() / 2));
        QLinearGradient gradient(box.topLeft(), box.bottomRight());
        gradient.setColorAt(0, colour.lighter(140));
        gradient.setColorAt(1, colour.darker(160));
        painter.setBrush(gradient);
        if (i % 2 == 0)
            painter.drawRoundedRect(box, 6, 6);
        else
            painter.drawEllipse(box);
    }
    painter.end();
    // Real photographs are never flat: a little noise gives the files their usual weight.
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int noise = random.bounded(9) - 4;
            const QRgb pixel = line[x];
            line[x] = qRgb(std::clamp(qRed(pixel) + noise, 0, 255), std::clamp(qGreen(pixel) + noise, 0, 255),
                           std::clamp(qBlue(pixel) + noise, 0, 255));
        }
    }
    return image;
}

} // namespace

QStringList BenchmarkPictures::generate(const QString &directory, int count, Summary *summary)
{
    QDir().mkpath(directory);
    QRandomGenerator random(75192);
    QStringList names;
    Summary totals;
    for (int i = 0; i < count; ++i) {
        const bool jpeg = i % 2 == 0;
        // JPEG photographs at catalog size; PNG renders smaller, as the hosts serve them.
        const QSize size = jpeg ? QSize(560 + random.bounded(480), 420 + random.bounded(360))
                                : QSize(200 + random.bounded(180), 150 + random.bounded(130));
        const QImage image = scene(random, size);
        const QString name = QString::number(10000 + i) + (jpeg ? u"-1.jpg"_s : u"-1.png"_s);
        const QString path = QDir(directory).filePath(name);
        if (!image.save(path, jpeg ? "JPEG" : "PNG", jpeg ? 75 + random.bounded(16) : -1))
            continue;
        const qint64 bytes = QFile(path).size();
        totals.smallestBytes = totals.count == 0 ? bytes : std::min(totals.smallestBytes, bytes);
        totals.largestBytes = std::max(totals.largestBytes, bytes);
        totals.totalBytes += bytes;
        ++totals.count;
        names.append(name);
    }
    if (summary)
        *summary = totals;
    return names;
}
