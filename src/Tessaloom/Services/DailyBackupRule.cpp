// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/DailyBackupRule.h"

bool DailyBackupRule::isDue(const std::optional<QDateTime> &newestBackup, const QDateTime &now)
{
    if (!newestBackup || !newestBackup->isValid())
        return true;
    return newestBackup->toLocalTime().date() != now.toLocalTime().date();
}
