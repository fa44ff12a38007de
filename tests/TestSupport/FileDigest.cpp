// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileDigest.h"

#include <QCryptographicHash>
#include <QFile>

QByteArray FileDigest::of(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result();
}
