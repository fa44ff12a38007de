// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryEditorState.h"

#include "Logging.h"
#include "OfferedCurrencies.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreError.h"

#include <QCoreApplication>
#include <QScopedValueRollback>
#include <QSettings>

InventoryEditorState::InventoryEditorState(ManagedObjectContext &viewContext, QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
{
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelay);
    m_saveTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_saveTimer, &QTimer::timeout, this, &InventoryEditorState::writeCopy);
    // A window still open when the event loop ends may never be destroyed: write before.
    if (QCoreApplication *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &InventoryEditorState::flushPendingSave);
}

InventoryEditorState::~InventoryEditorState()
{
    flushPendingSave();
}

QString InventoryEditorState::preferredCurrency()
{
    return OfferedCurrencies::codeOrDefault(QSettings().value(preferredCurrencyKey.toString()).toString());
}

void InventoryEditorState::setBrickSet(const std::optional<ObjectID> &brickSet)
{
    if (brickSet == m_brickSet)
        return;
    // What was typed for the previous copy within the pause is dropped, not written: the
    // pending save is the form's, and the form now shows another copy.
    m_saveTimer.stop();
    m_brickSet = brickSet;
    load();
}

void InventoryEditorState::reload()
{
    flushPendingSave();
    load();
}

void InventoryEditorState::load()
{
    const QScopedValueRollback loading(m_isLoading, true);
    std::optional<BrickSet> copy;
    if (m_brickSet) {
        try {
            copy = m_viewContext.existingObject<BrickSet>(*m_brickSet);
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Reading the copy to edit failed:" << error.description();
        }
    }
    m_hasCopy = copy.has_value();
    m_fields = InventoryEditorFields::fromCopy(copy.value_or(BrickSet{}), preferredCurrency());
    Q_EMIT loaded();
    Q_EMIT fieldsChanged();
}

void InventoryEditorState::edit(const std::function<void(InventoryEditorFields &)> &change)
{
    InventoryEditorFields fields = m_fields;
    change(fields);
    setFields(fields);
}

void InventoryEditorState::setFields(const InventoryEditorFields &fields)
{
    if (fields == m_fields)
        return;
    const QStringList before = m_fields.watchedValues();
    m_fields = fields;
    Q_EMIT fieldsChanged();
    if (m_isLoading || !m_hasCopy || m_fields.watchedValues() == before)
        return;
    m_saveTimer.start(); // a running pause starts again
}

void InventoryEditorState::flushPendingSave()
{
    if (!m_saveTimer.isActive())
        return;
    m_saveTimer.stop();
    writeCopy();
}

void InventoryEditorState::writeCopy()
{
    if (!m_brickSet)
        return;
    try {
        // The copy as stored now, so that what the form does not show (favourite, rating,
        // trash state) keeps whatever it became meanwhile.
        std::optional<BrickSet> copy = m_viewContext.existingObject<BrickSet>(*m_brickSet);
        if (!copy)
            return;
        m_fields.writeTo(*copy);
        m_viewContext.update(*copy);
        m_viewContext.save();
    } catch (const StoreError &error) {
        // Dropped without a message: the form keeps its text, and the change still pending
        // in the context goes out with the next save.
        qCWarning(lcPersistence) << "Saving the edited copy failed:" << error.description();
        return;
    }
    Q_EMIT saved();
}
