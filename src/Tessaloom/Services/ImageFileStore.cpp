// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageFileStore.h"

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>

using namespace Qt::StringLiterals;

QImage ImageFileStore::decode(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {};
    // The format is read from the bytes themselves: cache files have no extension, and
    // hosts send pictures under names and types that do not always match.
    return QImage::fromData(bytes);
}

ImageFileStore::ReadImage ImageFileStore::readImage(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return ReadImage{decode(bytes), bytes.size()};
}

QByteArray ImageFileStore::encodePng(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
        return {};
    return bytes;
}

bool ImageFileStore::writeAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QByteArray ImageFileStore::failureStampText(double secondsSince1970)
{
    // The shortest text that reads back as the same double, never in exponent form.
    return QByteArray::number(secondsSince1970, 'f', QLocale::FloatingPointShortest);
}

std::optional<double> ImageFileStore::readFailureStamp(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    bool isNumber = false;
    const double value = QString::fromUtf8(file.readAll()).toDouble(&isNumber);
    if (!isNumber)
        return std::nullopt;
    return value;
}

bool ImageFileStore::remove(const QString &path)
{
    return QFile::remove(path);
}

qint64 ImageFileStore::directorySize(const QString &directory)
{
    qint64 total = 0;
    QDirIterator files(directory, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo info = files.nextFileInfo();
        // A file that vanished or cannot be read reports no size and is left out.
        if (info.exists())
            total += info.size();
    }
    return total;
}

bool ImageFileStore::createDirectory(const QString &directory)
{
    return QDir().mkpath(directory);
}

void ImageFileStore::recreateDirectory(const QString &directory)
{
    QDir(directory).removeRecursively();
    createDirectory(directory);
}
