// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>

namespace RebrickableKit {

// Thrown where a long operation looks for a stop request and finds one.
class CancellationError : public std::exception
{
public:
    QString description() const;
    const char *what() const noexcept override;
};

} // namespace RebrickableKit
