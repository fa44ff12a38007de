// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

// What the CSV fuzzer checks on any input, shared with the test that replays kept inputs:
// the whole-text parse runs to its end, every row parser takes every row, and the
// streaming tokenizer gives the same rows whichever way the input is cut.
class CSVParserFuzzCheck
{
public:
    // False when the streamed and whole-text rows differ.
    static bool check(QByteArrayView input);
};
