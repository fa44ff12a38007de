// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How the process asks the C library to manage its heap. Decoded set pictures are large
// (one to several megabytes each) and come and go by the hundred while a grid scrolls.
// glibc serves such blocks from the heap once a few have been freed, and a heap full of
// holes is not given back: a scrolled grid then kept some 60 MB more than it held. Large
// blocks are instead mapped one by one, so that each freed picture goes back at once.
class MemoryPolicy
{
public:
    // Call once at start-up, before the first picture is decoded. No effect outside glibc.
    static void returnLargeBlocksToSystem();

    // Blocks at least this large get their own mapping.
    static constexpr int largeBlockBytes = 256 * 1024;
};
