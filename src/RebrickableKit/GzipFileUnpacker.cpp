// SPDX-License-Identifier: GPL-3.0-or-later
#include "GzipFileUnpacker.h"

#include "DownloadError.h"
#include "FileOperationError.h"

#include <QFile>
#include <QFileInfo>

#include <memory>
#include <vector>

#include <zlib.h>

namespace RebrickableKit {

namespace {

struct GzipFileCloser
{
    // The result of gzclose is of no use here: a read error has already been reported by
    // gzread, and nothing was written through this handle.
    void operator()(gzFile_s *file) const { gzclose(file); }
};

using GzipFile = std::unique_ptr<gzFile_s, GzipFileCloser>;

GzipFile openForReading(const QString &path)
{
#if defined(_WIN32)
    return GzipFile(gzopen_w(reinterpret_cast<const wchar_t *>(path.utf16()), "rb"));
#else
    return GzipFile(gzopen(QFile::encodeName(path).constData(), "rb"));
#endif
}

// Whether the file begins as every gzip file does. zlib itself would read anything else
// "transparently", copying it through as it stands: an error page or an empty body served
// in place of a dump would then become the dump.
bool startsWithGzipMagic(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    char magic[2] = {};
    return file.read(magic, 2) == 2 && static_cast<unsigned char>(magic[0]) == 0x1f
        && static_cast<unsigned char>(magic[1]) == 0x8b;
}

} // namespace

void GzipFileUnpacker::unpack(const QString &sourcePath, const QString &targetPath)
{
    const QString sourceName = QFileInfo(sourcePath).fileName();
    const GzipFile source = openForReading(sourcePath);
    if (!source)
        throw DownloadError::decompressionFailed(sourceName);
    // Checked before the target is touched: what was there stays as it was.
    if (!startsWithGzipMagic(sourcePath))
        throw DownloadError::decompressionFailed(sourceName);

    if (QFileInfo::exists(targetPath) && !QFile::remove(targetPath))
        throw FileOperationError(FileOperationError::Kind::removeFailed, targetPath);

    // Unbuffered: each 256 KiB block goes straight to the file, and a failed write shows
    // at once instead of at a later flush.
    QFile target(targetPath);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw DownloadError::decompressionFailed(QFileInfo(targetPath).fileName());

    std::vector<char> buffer(bufferSize);
    int read = 0;
    while ((read = gzread(source.get(), buffer.data(), unsigned(buffer.size()))) > 0) {
        if (target.write(buffer.data(), read) != read)
            throw FileOperationError(FileOperationError::Kind::writeFailed, targetPath);
    }
    if (read < 0)
        throw DownloadError::decompressionFailed(sourceName);
    // A file cut short is the trap: gzread hands out what did arrive and then reports 0, as
    // at a proper end, and only gzerror tells them apart (Z_BUF_ERROR, "unexpected end of
    // file"). Taken as success it would give a catalog quietly missing its last rows.
    int status = Z_OK;
    gzerror(source.get(), &status);
    if (status != Z_OK)
        throw DownloadError::decompressionFailed(sourceName);
}

} // namespace RebrickableKit
