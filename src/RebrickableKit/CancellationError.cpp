// SPDX-License-Identifier: GPL-3.0-or-later
#include "CancellationError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

QString CancellationError::description() const
{
    return u"The operation was cancelled."_s;
}

const char *CancellationError::what() const noexcept
{
    return "The operation was cancelled.";
}

} // namespace RebrickableKit
