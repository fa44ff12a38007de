// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

// What the BrickEconomy decoding fuzzer checks on any body, shared with the test that
// replays kept inputs: the body is decoded as the set endpoint's answer and mapped to
// prices, and ends either in results that keep the mapping's rules or in a typed decoding
// error. Any other exception, a crash or a hang is a failure.
class BrickEconomyDecodingFuzzCheck
{
public:
    enum class Verdict {
        value,         // decoded; the results keep every rule
        decodingError, // refused with a JSONDecodingError
        broken,        // another exception, or results that break a rule
    };

    static Verdict verdict(QByteArrayView body);
    static bool check(QByteArrayView body) { return verdict(body) != Verdict::broken; }
};
