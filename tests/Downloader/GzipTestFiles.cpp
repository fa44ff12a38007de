// SPDX-License-Identifier: GPL-3.0-or-later
#include "GzipTestFiles.h"

#include <QFile>

#include <zlib.h>

namespace GzipTestFiles {

QByteArray compress(const QByteArray &plain)
{
    z_stream stream{};
    // 15 window bits plus 16: a gzip header and trailer instead of zlib's own.
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    QByteArray packed(qsizetype(deflateBound(&stream, uLong(plain.size())) + 64), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(plain.constData()));
    stream.avail_in = uInt(plain.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = uInt(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.resize(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return result == Z_STREAM_END ? packed : QByteArray();
}

qint64 recordedUnpackedSize(const QString &gzipPath)
{
    const QByteArray bytes = readAll(gzipPath);
    if (bytes.size() < 4)
        return -1;
    const auto *trailer = reinterpret_cast<const unsigned char *>(bytes.constData() + bytes.size() - 4);
    return qint64(trailer[0]) | qint64(trailer[1]) << 8 | qint64(trailer[2]) << 16 | qint64(trailer[3]) << 24;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

} // namespace GzipTestFiles
