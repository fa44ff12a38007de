// SPDX-License-Identifier: GPL-3.0-or-later
#include "TableImportReport.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

QString rowCount(qint64 count)
{
    return QString::number(count) + (count == 1 ? u" row"_s : u" rows"_s);
}

} // namespace

bool TableImportReport::isClean() const
{
    return rowsRefused() == 0 && headerMatches() && rowsWithOtherFieldCount == 0 && rowsSpanningLines == 0
        && !endsInsideQuotes;
}

QStringList TableImportReport::problems() const
{
    QStringList problems;
    if (rowsRefusedByRules > 0)
        problems.append(rowCount(rowsRefusedByRules) + u" refused by the row rules"_s);
    if (rowsNotStored > 0)
        problems.append(rowCount(rowsNotStored) + u" not stored by SQLite (such as a repeated key)"_s);
    if (!missingColumns.isEmpty())
        problems.append(u"header lacks "_s + missingColumns.join(u", "_s));
    if (rowsWithOtherFieldCount > 0)
        problems.append(rowCount(rowsWithOtherFieldCount) + u" with another number of fields than the header"_s);
    if (rowsSpanningLines > 0)
        problems.append(rowCount(rowsSpanningLines) + u" spanning several lines"_s);
    if (endsInsideQuotes)
        problems.append(u"the file ends inside quotes (a stray quote?)"_s);
    return problems;
}

QString TableImportReport::summary() const
{
    QString text = u"Table "_s + tableName + u": "_s + rowCount(rowsRead) + u" read, "_s
        + QString::number(rowsStored) + u" stored, "_s + QString::number(rowsRefused()) + u" refused"_s;
    const QStringList found = problems();
    if (!found.isEmpty())
        text += u"; "_s + found.join(u"; "_s);
    return text;
}

} // namespace RebrickableKit
