// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

// The blocking file work of the image cache, meant to run on worker threads: reading and
// decoding pictures, atomic writes, the failure stamps, sizes and wiping. Every function
// swallows its own errors and says so only through its result: a cache file that cannot
// be read or written costs a later download, never a failure.
class ImageFileStore
{
public:
    struct ReadImage
    {
        QImage image;       // null when the file is missing or is no picture
        qint64 fileSize = 0;
    };

    static QImage decode(const QByteArray &bytes);
    static ReadImage readImage(const QString &path);
    static QByteArray encodePng(const QImage &image);

    // Writes through a temporary file and a rename, so a crash never leaves half a file.
    static bool writeAtomically(const QString &path, const QByteArray &bytes);

    // The failure time written as the text of a double, seconds since 1970.
    static QByteArray failureStampText(double secondsSince1970);
    // The number in a failure stamp; absent when the file cannot be read or holds no number.
    static std::optional<double> readFailureStamp(const QString &path);
    static bool remove(const QString &path);

    // The sum of the sizes of the files in `directory` and below; 0 when it cannot be listed.
    static qint64 directorySize(const QString &directory);
    // Creates `directory` with its parents; false when that failed.
    static bool createDirectory(const QString &directory);
    // Removes `directory` with everything in it and creates it again, empty.
    static void recreateDirectory(const QString &directory);
};
