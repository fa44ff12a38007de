// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImageCacheKey.h"

std::uint64_t ImageCacheKey::fnv1a(QByteArrayView bytes)
{
    std::uint64_t hash = offsetBasis;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= prime; // wraps modulo 2^64, as the hash intends
    }
    return hash;
}

QString ImageCacheKey::forUrl(const QString &urlString)
{
    return QString::number(fnv1a(urlString.toUtf8()), 16);
}
