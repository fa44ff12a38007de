// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Looks for a secret (an API key) in files, as the leak tests do after the program has
// run: a key must live only in the secret service, never in a settings file, a log or a
// cache.
class SecretFileSearch
{
public:
    // The files under `folder` (hidden ones and subfolders included) whose bytes hold
    // `secret` in UTF-8, UTF-16 or Latin-1.
    static QStringList filesHolding(const QString &folder, const QString &secret);
};
