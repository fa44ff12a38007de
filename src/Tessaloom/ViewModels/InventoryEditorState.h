// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "ViewModels/InventoryEditorFields.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

class ManagedObjectContext;

// The state behind the copy editor: the form's fields for one copy, filled from the store
// without writing anything, and written back by themselves once the user pauses, all
// fields in one save, with no save button.
//
// Each edit that changes the watched values starts the pause again, so a burst of typing
// ends in one save 0.3 s after the last keystroke. The pending save belongs to the copy
// being edited: moving to another copy within the pause drops it, so the form that loads
// for the new copy never writes into it, and the old copy keeps what it had (the cost of
// the pause, accepted). Closing the window or quitting is different: flushPendingSave()
// writes what was typed at once, and runs by itself when the application is about to quit
// and when this object goes away. Changes of the copy made elsewhere reach the form only
// when it is filled again (another copy, or reload() when the editor appears), so the
// user's typing is never overwritten under the cursor. Main thread only.
class InventoryEditorState : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds saveDelay{300};
    // The settings key of the currency a price without one is shown in.
    static constexpr QStringView preferredCurrencyKey = u"preferredCurrency";

    explicit InventoryEditorState(ManagedObjectContext &viewContext, QObject *parent = nullptr);
    ~InventoryEditorState() override;

    ManagedObjectContext &viewContext() const { return m_viewContext; }

    // The copy edited, or none. Choosing another copy drops the pending save and fills
    // the form from the new copy; choosing the same one again changes nothing.
    std::optional<ObjectID> brickSet() const { return m_brickSet; }
    void setBrickSet(const std::optional<ObjectID> &brickSet);
    // Fills the form from the stored copy again, as when the editor appears, after writing
    // what is pending so that nothing typed is lost to the stored values.
    void reload();
    // Whether the copy was found when the form was last filled.
    bool hasCopy() const { return m_hasCopy; }

    const InventoryEditorFields &fields() const { return m_fields; }
    // Applies a change of the user to the form. When it changes the watched values (and the
    // form is not being filled), the save waits for the next pause.
    void edit(const std::function<void(InventoryEditorFields &)> &change);
    void setFields(const InventoryEditorFields &fields);

    // True while the form is being filled from the copy: edits then start no save.
    bool isLoading() const { return m_isLoading; }
    bool hasPendingSave() const { return m_saveTimer.isActive(); }
    // Writes the pending save now, if there is one.
    void flushPendingSave();

    // The currency an absent price currency is shown in: the "preferredCurrency" setting.
    static QString preferredCurrency();

Q_SIGNALS:
    // While the form is filled from the copy (isLoading() is true): the widgets follow.
    void loaded();
    // After each change of the fields, whoever made it.
    void fieldsChanged();
    // After the copy was written and saved (or the save queued behind another context's
    // write, in which case the store saves it as soon as the write turn is free).
    void saved();

private:
    void load();
    void writeCopy();

    ManagedObjectContext &m_viewContext;
    std::optional<ObjectID> m_brickSet;
    InventoryEditorFields m_fields;
    bool m_hasCopy = false;
    bool m_isLoading = false;
    QTimer m_saveTimer;
};
