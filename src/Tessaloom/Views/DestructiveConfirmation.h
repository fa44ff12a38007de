// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

class QWidget;

// The question asked before something that cannot be undone: a title, a message saying
// what will be lost, and the text of the destructive button; the other button cancels,
// and is the default, so a stray Return keeps everything.
struct DestructiveConfirmation
{
    QString title;
    QString message;
    QString destructiveButtonText;

    friend bool operator==(const DestructiveConfirmation &, const DestructiveConfirmation &) = default;

    // Whether the user chose the destructive button; `parent` is what the dialog is modal to.
    using Asker = std::function<bool(QWidget *parent, const DestructiveConfirmation &confirmation)>;

    // The dialog on screen: a modal message box with the destructive button and Cancel.
    static bool askWithDialog(QWidget *parent, const DestructiveConfirmation &confirmation);
};
