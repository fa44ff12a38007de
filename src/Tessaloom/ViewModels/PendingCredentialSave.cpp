// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/PendingCredentialSave.h"

#include <utility>

QPointer<PendingCredentialSave> PendingCredentialSave::start(Save save, QString value, QString key,
                                                             std::chrono::milliseconds pause)
{
    // Without a parent on purpose: it outlives the screen that started it (see the header).
    return new PendingCredentialSave(std::move(save), std::move(value), std::move(key), pause);
}

PendingCredentialSave::PendingCredentialSave(Save save, QString value, QString key, std::chrono::milliseconds pause)
    : m_save(std::move(save))
    , m_value(std::move(value))
    , m_key(std::move(key))
{
    // A precise timer: the pause is measured on a steady clock, not rounded to the
    // coarse timers' 5 % slack.
    m_pause.setTimerType(Qt::PreciseTimer);
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, [this] { saveNow(); });
    m_pause.start(pause);
}

void PendingCredentialSave::cancel()
{
    if (m_isSaving)
        return;
    m_pause.stop();
    deleteLater();
}

QCoro::Task<> PendingCredentialSave::saveNow()
{
    m_isSaving = true;
    try {
        co_await m_save(m_value, m_key);
    } catch (...) {
        // A refused save says nothing here: the store has logged it, naming the key only,
        // and the field still shows what the user typed.
    }
    deleteLater();
}
