// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class InventorySpreadsheetViewModel;
class OptionalDateEdit;
class QLabel;
class QPushButton;

// The inventory sheet's date bar: its caption, the first and the last day of the range,
// each of which may be left out, and a button that clears both. Edits go to the view
// model at once; dates changed there are shown here.
class InventoryDateFilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit InventoryDateFilterBar(InventorySpreadsheetViewModel &viewModel, QWidget *parent = nullptr);

    QLabel *captionLabel() const { return m_caption; }
    OptionalDateEdit *fromPicker() const { return m_from; }
    OptionalDateEdit *toPicker() const { return m_to; }
    QPushButton *clearButton() const { return m_clear; }

private:
    void showDates();

    InventorySpreadsheetViewModel &m_viewModel;
    QLabel *m_caption;
    OptionalDateEdit *m_from;
    OptionalDateEdit *m_to;
    QPushButton *m_clear;
};
