// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/DestructiveConfirmation.h"

#include <QMessageBox>
#include <QPushButton>

bool DestructiveConfirmation::askWithDialog(QWidget *parent, const DestructiveConfirmation &confirmation)
{
    QMessageBox box(parent);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(confirmation.title);
    box.setText(confirmation.title);
    box.setInformativeText(confirmation.message);
    QPushButton *destructive = box.addButton(confirmation.destructiveButtonText, QMessageBox::DestructiveRole);
    QPushButton *cancel = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == destructive;
}
