// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSet.h"

void BrickSet::setAcquisitionType(AcquisitionType type)
{
    acquisitionType = Vocabulary::rawValue(type);
}
