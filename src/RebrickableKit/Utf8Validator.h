// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

namespace RebrickableKit {

// Strict UTF-8 validation that can be fed a text in pieces: a multi-byte character may be
// split between two pieces. Overlong forms, surrogates and code points above U+10FFFF are
// invalid, as is a text that ends inside a character.
class Utf8Validator
{
public:
    // False from the first invalid byte on.
    bool feed(QByteArrayView bytes);
    // False when the text is invalid or ended inside a character.
    bool finish() const { return m_valid && m_remaining == 0; }

    static bool isValid(QByteArrayView bytes);

private:
    bool m_valid = true;
    // Continuation bytes still expected, and the range allowed for the next one (the
    // first continuation byte is narrower for E0, ED, F0 and F4 lead bytes).
    int m_remaining = 0;
    unsigned char m_low = 0x80;
    unsigned char m_high = 0xBF;
};

} // namespace RebrickableKit
