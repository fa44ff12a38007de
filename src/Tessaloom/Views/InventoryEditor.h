// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class CollectionTrash;
class InventoryEditorState;
class ManagedObjectContext;
class OptionalDateEdit;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

// The form that edits one owned copy: how it was acquired, its condition, whether and how
// it left the collection, and notes, in that order, with "Move to Trash" at the bottom.
// It saves by itself (see InventoryEditorState) and writes what is pending at once when
// its window closes, when the application quits, or when it is destroyed, so nothing typed
// is lost at exit. Prices are typed with "." as the decimal point; beside each, the amount
// read from it is shown in the user's number format. Each time it appears (a tab shown
// again), the form is filled from the stored copy anew.
//
// Embedding: `new InventoryEditor(viewContext, copyID, parent)`, then setBrickSet() when
// the selected copy changes. It must not outlive the store of `viewContext`.
class InventoryEditor : public QWidget
{
    Q_OBJECT

public:
    InventoryEditor(ManagedObjectContext &viewContext, const std::optional<ObjectID> &brickSet,
                    QWidget *parent = nullptr);
    ~InventoryEditor() override;

    // The copy edited. Another copy drops what is pending for the previous one.
    std::optional<ObjectID> brickSet() const;
    void setBrickSet(const std::optional<ObjectID> &brickSet);

    // Writes what was typed now rather than after the pause.
    void flushPendingSave();

    // Where "Move to Trash" sends the copy; without one the button is hidden.
    void setTrash(CollectionTrash *trash);

    InventoryEditorState &state() const { return *m_state; }

Q_SIGNALS:
    // After the copy was written and saved.
    void saved();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildAcquisitionSection(QWidget *content);
    void buildConditionSection(QWidget *content);
    void buildDisposalSection(QWidget *content);
    void buildNotesSection(QWidget *content);
    void orderTabs();
    void fillFromState();
    void showReadPrices();
    void watchWindow();
    void moveToTrash();

    InventoryEditorState *m_state;
    QPointer<CollectionTrash> m_trash;
    QPointer<QWidget> m_watchedWindow;
    bool m_filling = false;
    bool m_hasAppeared = false;

    QScrollArea *m_scrollArea = nullptr;
    QGroupBox *m_acquisitionSection = nullptr;
    QComboBox *m_acquisitionType = nullptr;
    QLineEdit *m_pricePaid = nullptr;
    QComboBox *m_priceCurrency = nullptr;
    QLabel *m_pricePaidRead = nullptr;
    OptionalDateEdit *m_acquisitionDate = nullptr;
    QLineEdit *m_source = nullptr;
    QGroupBox *m_conditionSection = nullptr;
    QComboBox *m_overallCondition = nullptr;
    QComboBox *m_completeness = nullptr;
    QComboBox *m_boxCondition = nullptr;
    QComboBox *m_instructionsCondition = nullptr;
    QComboBox *m_builtStatus = nullptr;
    QComboBox *m_stickerStatus = nullptr;
    QGroupBox *m_disposalSection = nullptr;
    QCheckBox *m_isDisposed = nullptr;
    QWidget *m_disposalDetails = nullptr;
    QComboBox *m_disposalType = nullptr;
    OptionalDateEdit *m_disposalDate = nullptr;
    QLineEdit *m_disposalPrice = nullptr;
    QComboBox *m_disposalCurrency = nullptr;
    QLabel *m_disposalPriceRead = nullptr;
    QLineEdit *m_disposalNotes = nullptr;
    QGroupBox *m_notesSection = nullptr;
    QPlainTextEdit *m_notes = nullptr;
    QPushButton *m_moveToTrash = nullptr;
};
