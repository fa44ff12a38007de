// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>

#include <optional>

// When the start-up backup is due: on the first start of a calendar day (local time), told
// by the newest backup in the Backups folder, whatever made it. The folder is the record,
// not a stored date: a backup taken before an import counts as that day's, and a folder
// the user emptied gets a backup at the next start. A newest backup dated after today (the
// clock was set back) is not today's either.
class DailyBackupRule
{
public:
    static bool isDue(const std::optional<QDateTime> &newestBackup, const QDateTime &now);
};
