// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

// What the fuzzers of the two set list readers check on any file, shared with the test that
// replays kept inputs. The bytes are read as UTF-8 text (a byte-order mark kept as U+FEFF,
// for the readers to deal with) and given to recognises() and read(). Whatever the text,
// every entry has a set number that is not empty and is trimmed, and a quantity from 1 to
// the maximum; skipped rows have one of the readers' texts; lines count from 1 and never go
// back; an unreadable file gives nothing else. For Rebrickable's CSV, every line after the
// header is an entry or a skipped row, no number holds a line end, and the entries written
// with write() read back as the same numbers and quantities. A crash or a hang is a failure
// too.
class SetListReadersFuzzCheck
{
public:
    enum class Verdict {
        value,         // read into entries and skipped rows that keep every rule
        notRecognised, // Rebrickable's CSV only: not such a file, and read() gives nothing
        unreadable,    // BrickLink's XML only: not well formed, and nothing but the reason
        broken,        // a result that breaks a rule
    };

    static Verdict rebrickableVerdict(QByteArrayView bytes);
    static Verdict brickLinkVerdict(QByteArrayView bytes);

    static bool checkRebrickable(QByteArrayView bytes) { return rebrickableVerdict(bytes) != Verdict::broken; }
    static bool checkBrickLink(QByteArrayView bytes) { return brickLinkVerdict(bytes) != Verdict::broken; }
};
