// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUrl>
#include <QVersionNumber>

// One release announced by the application's update feed.
struct AppcastItem
{
    QString title;
    QVersionNumber version; // the human version ("1.2.0"), the build number when absent
    QString displayVersion;
    QUrl pageUrl;           // where the user reads about and downloads the release

    friend bool operator==(const AppcastItem &, const AppcastItem &) = default;
};
