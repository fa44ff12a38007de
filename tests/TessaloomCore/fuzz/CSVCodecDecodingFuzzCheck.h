// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

// What the collection CSV decoding fuzzer checks on any file, shared with the test that
// replays kept inputs: the bytes are read as UTF-8 text and decoded, and end either in
// records and row errors that keep the reader's rules or in a DecodeError of the right
// kind. A header that names a column twice stops the process by design; it is recognised
// before decoding and reported as such. Any other exception, a crash or a hang is a failure.
class CSVCodecDecodingFuzzCheck
{
public:
    enum class Verdict {
        value,          // decoded; records and row errors keep every rule
        decodingError,  // refused with the DecodeError its text calls for
        repeatedColumn, // the header names a column twice: not decoded, as that stops
        broken,         // another exception, or a result that breaks a rule
    };

    static Verdict verdict(QByteArrayView bytes);
    static bool check(QByteArrayView bytes) { return verdict(bytes) != Verdict::broken; }
};
