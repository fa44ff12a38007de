// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CollectionBackupName.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
const QString dateTimeFormat = u"yyyy-MM-dd HH-mm-ss"_s;
} // namespace

QString CollectionBackupName::fileName(const QDateTime &createdAt, int sequence)
{
    const QString stamp = createdAt.toLocalTime().toString(dateTimeFormat);
    if (sequence <= 1)
        return u"Tessaloom %1.sqlite"_s.arg(stamp);
    return u"Tessaloom %1 (%2).sqlite"_s.arg(stamp).arg(sequence);
}

std::optional<CollectionBackupName::Parsed> CollectionBackupName::parse(const QString &fileName)
{
    static const QRegularExpression pattern(
        u"^Tessaloom (\\d{4}-\\d{2}-\\d{2} \\d{2}-\\d{2}-\\d{2})(?: \\((\\d{1,6})\\))?\\.sqlite$"_s);
    const QRegularExpressionMatch match = pattern.match(fileName);
    if (!match.hasMatch())
        return std::nullopt;
    QDateTime createdAt = QDateTime::fromString(match.captured(1), dateTimeFormat);
    if (!createdAt.isValid())
        return std::nullopt;
    Parsed parsed{createdAt, 1};
    if (match.hasCaptured(2)) {
        parsed.sequence = match.captured(2).toInt();
        if (parsed.sequence < 2)
            return std::nullopt; // the first of a second carries no number
    }
    return parsed;
}

QString CollectionBackupName::partialSuffix()
{
    return u".partial"_s;
}
