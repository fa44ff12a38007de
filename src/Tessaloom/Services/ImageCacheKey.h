// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdint>

// The name of a picture in the image cache: the 64-bit FNV-1a hash of the URL text's
// UTF-8 bytes in lower-case hexadecimal without padding. The same text names the file in
// every cache directory and the entry in both memory caches, so a picture found under one
// URL can be stored under the key of another (the fallback lands under the first URL).
class ImageCacheKey
{
public:
    static constexpr std::uint64_t offsetBasis = 0xcbf29ce484222325ULL;
    static constexpr std::uint64_t prime = 0x100000001b3ULL;

    static std::uint64_t fnv1a(QByteArrayView bytes);
    static QString forUrl(const QString &urlString);
};
