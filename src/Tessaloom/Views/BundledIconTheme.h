// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The icon theme embedded in the program (Breeze SVGs under :/icons/tessaloom-breeze).
// Without a desktop icon theme the program would draw the style's stock pictures, the
// same "?" or folder for unrelated things; with this theme it looks the same on every
// desktop.
class BundledIconTheme
{
public:
    static constexpr const char *name = "tessaloom-breeze";

    // Makes the bundled theme the icon theme when the desktop has none, and the fallback
    // theme when it has one. Call once, after the application object exists.
    static void install();
};
