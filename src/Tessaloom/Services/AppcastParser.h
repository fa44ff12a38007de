// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/AppcastItem.h"

#include <QByteArray>
#include <QList>

#include <optional>

// Reads an update feed in the RSS "appcast" format used by desktop updaters: each <item>
// is a release, with its version in the sparkle namespace (element or enclosure
// attribute) and a page in <link>, <sparkle:releaseNotesLink> or the enclosure's url.
class AppcastParser
{
public:
    // The releases in feed order; nothing when the document is not a readable feed.
    static std::optional<QList<AppcastItem>> parse(const QByteArray &document);
    // The release with the highest version, if any.
    static std::optional<AppcastItem> newest(const QList<AppcastItem> &items);
};
