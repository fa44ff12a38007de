// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "JSONValue.h"

// The envelope of every BrickEconomy answer: the payload sits under "data", which must be
// there; an answer without it is a decoding failure, not an empty result.
template<typename Payload>
struct BrickEconomyResponse
{
    Payload data;

    static BrickEconomyResponse decode(const JSONValue &value)
    {
        return {value.decode<Payload>(QStringLiteral("data"))};
    }
};
