// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// Tells whether a file changed, byte for byte, without holding it in memory twice.
class FileDigest
{
public:
    // The SHA-256 of the file's bytes; empty when the file cannot be read.
    static QByteArray of(const QString &path);
};
