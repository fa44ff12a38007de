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
    // what was there. Throws DownloadError::decompressionFailed naming the source when it
    // can't be opened, is empty or isn't gzip at all (an error page, plain text), or can't be
    // read to its proper end (a file cut short or damaged); naming the target when that
    // can't be created; FileOperationError when a leftover target can't be removed or a
    // write fails. A source that isn't gzip leaves the target untouched; a target left half
    // written by a later failure stays on disk.
    static void unpack(const QString &sourcePath, const QString &targetPath);
};

} // namespace RebrickableKit
