// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace RebrickableKit {

// Unpacks one gzip file into a plain file through a fixed buffer, so the memory it takes
// stays the same whatever the size of the dump. It blocks: callers on the main thread run
// it on a worker.
class GzipFileUnpacker
{
public:
    static constexpr qsizetype bufferSize = 0x40000; // 256 KiB

    // Replaces `targetPath` with the unpacked content of `sourcePath`, never appending to
    // what was there. Throws DownloadError::decompressionFailed when the source can't be
    // opened or read to its proper end (a file cut short or damaged), naming the source; when the target
    // can't be created, naming the target; FileOperationError when a leftover target can't
    // be removed or a write fails. A target left half written by a failure stays on disk.
    static void unpack(const QString &sourcePath, const QString &targetPath);
};

} // namespace RebrickableKit
