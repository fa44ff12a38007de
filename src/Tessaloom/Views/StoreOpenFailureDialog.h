// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/StoreError.h"

#include <QMessageBox>

// The message a user sees when the collection store does not open, just before the
// program ends: which file, why in plain words, that the file was not changed, and what
// to do about it. Without it a program started from the desktop would vanish silently.
class StoreOpenFailureDialog : public QMessageBox
{
    Q_OBJECT

public:
    StoreOpenFailureDialog(const StoreError &error, const QString &path, QWidget *parent = nullptr);

    // The body of the message as plain paragraphs: the file, the reason, that it was not
    // changed, and what to do.
    static QString message(const StoreError &error, const QString &path);
    static QString reason(StoreError::Kind kind);
    static QString advice(StoreError::Kind kind);

    // Shows the dialog modally when the process has a graphical application and this is
    // its main thread; otherwise does nothing, and the log says it all.
    static void present(const StoreError &error, const QString &path);
    // Makes present() the store's failure presenter; call before the store first opens.
    static void install();
};
