// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "JSONValue.h"

#include <QByteArray>

// Reads an answer body as a value of a response type: the bytes are taken as UTF-8 JSON
// whatever character set the server names, every object key is converted from snake case
// (SnakeCaseKeyConverter), then the type reads its fields under their declared keys. The
// same rules hold for every response type; there is no per-type setting.
class JSONDecoder
{
public:
    // The converted document. Fails with dataCorrupted when `body` is not a JSON object or
    // array (an empty body, an HTML page, a cut-off document).
    static JSONValue parse(const QByteArray &body);

    template<typename T>
    static T decode(const QByteArray &body)
    {
        return parse(body).as<T>();
    }
};
