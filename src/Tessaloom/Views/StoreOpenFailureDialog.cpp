// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/StoreOpenFailureDialog.h"

#include "Store/PersistenceController.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QThread>

using namespace Qt::StringLiterals;

namespace {

// Whether the failure came before anything was written. The others (the store opened,
// then could not be brought up to date) end inside a transaction that was rolled back,
// so the collection held in the file is what it was.
bool failedBeforeWriting(StoreError::Kind kind)
{
    switch (kind) {
    case StoreError::Kind::openFailed:
    case StoreError::Kind::migrationFailed:
    case StoreError::Kind::queryFailed:
    case StoreError::Kind::saveFailed:
        return false;
    default:
        return true;
    }
}

QString unchangedText(StoreError::Kind kind)
{
    if (kind == StoreError::Kind::directoryNotCreatable) {
        //% "Tessaloom has not changed or created any file."
        return qtTrId("storeFailure.unchanged.nothingCreated");
    }
    if (failedBeforeWriting(kind)) {
        //% "Tessaloom has not changed the file."
        return qtTrId("storeFailure.unchanged.file");
    }
    //% "Tessaloom has not changed the collection kept in the file."
    return qtTrId("storeFailure.unchanged.collection");
}

} // namespace

StoreOpenFailureDialog::StoreOpenFailureDialog(const StoreError &error, const QString &path, QWidget *parent)
    : QMessageBox(parent)
{
    setObjectName(u"storeOpenFailureDialog"_s);
    setIcon(QMessageBox::Critical);
    //% "Tessaloom Cannot Open Your Collection"
    setWindowTitle(qtTrId("storeFailure.title"));
    setTextFormat(Qt::PlainText);
    //% "Tessaloom cannot open the file that holds your collection and has to quit."
    setText(qtTrId("storeFailure.headline"));
    // Rich text only to keep the paragraphs apart; every value in it is escaped, so a file
    // name with "<" in it reads as written.
    QStringList paragraphs = message(error, path).split(u"\n\n"_s);
    for (QString &paragraph : paragraphs)
        paragraph = u"<p>"_s + paragraph.toHtmlEscaped() + u"</p>"_s;
    setInformativeText(paragraphs.join(QString()));
    setDetailedText(PersistenceController::unresolvedErrorText(error, path));
    //% "Quit"
    QPushButton *quit = addButton(qtTrId("storeFailure.quit"), QMessageBox::AcceptRole);
    setDefaultButton(quit);
    setEscapeButton(quit);
}

QString StoreOpenFailureDialog::message(const StoreError &error, const QString &path)
{
    //% "File: %1"
    const QString file = qtTrId("storeFailure.file.").arg(QDir::toNativeSeparators(path));
    return QStringList{file, reason(error.kind()), unchangedText(error.kind()), advice(error.kind())}.join(u"\n\n"_s);
}

QString StoreOpenFailureDialog::reason(StoreError::Kind kind)
{
    switch (kind) {
    case StoreError::Kind::directoryNotCreatable:
        //% "The folder for the file could not be created."
        return qtTrId("storeFailure.reason.directoryNotCreatable");
    case StoreError::Kind::pathIsFolder:
        //% "A folder stands where the file should be."
        return qtTrId("storeFailure.reason.pathIsFolder");
    case StoreError::Kind::unreadable:
        //% "Tessaloom is not allowed to read the file."
        return qtTrId("storeFailure.reason.unreadable");
    case StoreError::Kind::readOnly:
        //% "Tessaloom is not allowed to write to the file, or the disk it is on is read-only."
        return qtTrId("storeFailure.reason.readOnly");
    case StoreError::Kind::notADatabase:
        //% "The file is not a database. Something else may have been saved under its name."
        return qtTrId("storeFailure.reason.notADatabase");
    case StoreError::Kind::damaged:
        //% "The file is damaged: parts of it are missing or unreadable, for example because a copy of it stopped half-way."
        return qtTrId("storeFailure.reason.damaged");
    case StoreError::Kind::foreignFile:
        //% "The file belongs to another program: it is a database, but not a Tessaloom collection."
        return qtTrId("storeFailure.reason.foreignFile");
    case StoreError::Kind::newerVersion:
        //% "The file was written by a newer version of Tessaloom, which this version cannot read."
        return qtTrId("storeFailure.reason.newerVersion");
    case StoreError::Kind::openFailed:
    case StoreError::Kind::migrationFailed:
    case StoreError::Kind::queryFailed:
    case StoreError::Kind::saveFailed:
        break;
    }
    //% "The file could not be opened or brought up to date."
    return qtTrId("storeFailure.reason.other");
}

QString StoreOpenFailureDialog::advice(StoreError::Kind kind)
{
    switch (kind) {
    case StoreError::Kind::directoryNotCreatable:
        //% "Make sure the folder can be created (a file with its name, a missing permission or a full disk can prevent it), then start Tessaloom again."
        return qtTrId("storeFailure.advice.directoryNotCreatable");
    case StoreError::Kind::pathIsFolder:
        //% "Move or rename the folder, then start Tessaloom again."
        return qtTrId("storeFailure.advice.pathIsFolder");
    case StoreError::Kind::unreadable:
    case StoreError::Kind::readOnly:
        //% "Give your user account permission to read and write the file, or restore it from a backup, then start Tessaloom again."
        return qtTrId("storeFailure.advice.permissions");
    case StoreError::Kind::foreignFile:
        //% "Move the file to another folder (the program it belongs to may still need it), or restore your collection from a backup, then start Tessaloom again."
        return qtTrId("storeFailure.advice.foreignFile");
    case StoreError::Kind::newerVersion:
        //% "Start the newer version of Tessaloom instead, or restore a backup made with this version, then start Tessaloom again."
        return qtTrId("storeFailure.advice.newerVersion");
    case StoreError::Kind::notADatabase:
    case StoreError::Kind::damaged:
        //% "Move the file to another folder or restore it from a backup, then start Tessaloom again. Without the file, Tessaloom starts with a new, empty collection."
        return qtTrId("storeFailure.advice.moveAside");
    case StoreError::Kind::openFailed:
    case StoreError::Kind::migrationFailed:
    case StoreError::Kind::queryFailed:
    case StoreError::Kind::saveFailed:
        break;
    }
    //% "Make sure the disk has free space and can be written to, then start Tessaloom again. If this message comes back, move the file to another folder or restore it from a backup."
    return qtTrId("storeFailure.advice.other");
}

void StoreOpenFailureDialog::present(const StoreError &error, const QString &path)
{
    // The command-line tools and the store's own tests run without widgets; a dialog
    // there would abort before the log line that tells what happened.
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (!application || QThread::currentThread() != application->thread())
        return;
    StoreOpenFailureDialog dialog(error, path);
    dialog.exec();
}

void StoreOpenFailureDialog::install()
{
    PersistenceController::setLoadFailurePresenter(&StoreOpenFailureDialog::present);
}
