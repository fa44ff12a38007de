// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUrl>

// Turns web addresses into text that may be shown or logged. Keys and passwords travel in
// an address's query string and user info (an endpoint pointed elsewhere for staging may
// well carry "?apikey=…"), so every address that reaches a log line, an error text or a
// dialog passes through here first and keeps only its scheme, host, port and path.
class AddressRedaction
{
public:
    // The address without query, fragment and user info, in its readable (decoded) form.
    static QString redacted(const QUrl &url);
    // The same for an address held as text. Text that is no valid address still loses
    // everything from the first "?" or "#" and anything before an "@" in its host part.
    static QString redacted(const QString &address);
    // Free text such as a network layer's error sentence, with every address inside it
    // ("scheme://…" up to the next blank or quote) replaced by its redacted form.
    static QString redactAddressesIn(const QString &text);
};
