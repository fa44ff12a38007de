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

} // namespace

void GzipFileUnpacker::unpack(const QString &sourcePath, const QString &targetPath)
{
    const QString sourceName = QFileInfo(sourcePath).fileName();
    const GzipFile source = openForReading(sourcePath);
    if (!source)
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
    // A file cut short ends in an error of gzread ("unexpected end of file") rather than in
    // 0, once the part that did arrive has been handed out.
    if (read < 0)
        throw DownloadError::decompressionFailed(sourceName);
}

} // namespace RebrickableKit
