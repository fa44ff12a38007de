// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/ImportResultMessage.h"

#include <QStringList>

using namespace Qt::StringLiterals;

QString ImportResultMessage::text(const CSVExportImportService::ImportResult &result)
{
    // Each part is the number in decimal, a blank and the key's text; the texts carry no
    // number of their own, so one text serves every count.
    QStringList parts;
    if (result.created > 0) {
        //% "set(s) added"
        parts.append(QString::number(result.created) + u' ' + qtTrId("import.result.setsAdded"));
    }
    if (result.updated > 0) {
        //% "set(s) updated"
        parts.append(QString::number(result.updated) + u' ' + qtTrId("import.result.setsUpdated"));
    }
    if (!result.errors.isEmpty()) {
        //% "row(s) skipped"
        parts.append(QString::number(result.errors.size()) + u' ' + qtTrId("import.result.rowsSkipped"));
    }
    if (parts.isEmpty()) {
        //% "No changes were made."
        return qtTrId("import.result.noChanges");
    }
    return parts.join(u", "_s) + u'.';
}

QString ImportResultMessage::completeTitle()
{
    //% "Import Complete"
    return qtTrId("import.complete.title");
}

QString ImportResultMessage::failedTitle()
{
    //% "Import Failed"
    return qtTrId("import.failed.title");
}

QString ImportResultMessage::okButton()
{
    //% "OK"
    return qtTrId("general.ok");
}

QString ImportResultMessage::fileAccessError()
{
    //% "Tessaloom could not get access to the selected file."
    return qtTrId("import.error.fileAccess");
}
