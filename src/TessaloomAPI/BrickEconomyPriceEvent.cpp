// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomyPriceEvent.h"

using namespace Qt::StringLiterals;

BrickEconomyPriceEvent BrickEconomyPriceEvent::decode(const JSONValue &value)
{
    BrickEconomyPriceEvent event;
    event.date = value.decode<QString>(u"date"_s);
    event.value = value.decode<double>(u"value"_s);
    return event;
}
