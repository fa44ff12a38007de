// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/PendingCredentialSave.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSet>

#include <utility>

namespace {

QSet<PendingCredentialSave *> &unfinished()
{
    static QSet<PendingCredentialSave *> saves;
    return saves;
}

} // namespace

QPointer<PendingCredentialSave> PendingCredentialSave::start(Save save, QString value, QString key,
                                                             std::chrono::milliseconds pause)
{
    // Without a parent on purpose: it outlives the screen that started it (see the header).
    static const bool quitHookInstalled = [] {
        if (QCoreApplication *application = QCoreApplication::instance())
            QObject::connect(application, &QCoreApplication::aboutToQuit, [] { finishAll(); });
        return true;
    }();
    Q_UNUSED(quitHookInstalled);
    return new PendingCredentialSave(std::move(save), std::move(value), std::move(key), pause);
}

PendingCredentialSave::~PendingCredentialSave()
{
    unfinished().remove(this);
}

int PendingCredentialSave::pendingCount()
{
    return int(unfinished().size());
}

bool PendingCredentialSave::finishAll(std::chrono::milliseconds patience)
{
    const QList<PendingCredentialSave *> saves = unfinished().values();
    for (PendingCredentialSave *pending : saves) {
        if (!pending->m_isSaving) {
            pending->m_pause.stop();
            pending->saveNow();
        }
    }
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(patience);
    // A save leaves the set as it ends; the loop wakes at each end and at the timeout.
    while (!unfinished().isEmpty() && timeout.isActive()) {
        PendingCredentialSave *next = *unfinished().cbegin();
        const QMetaObject::Connection wake =
            QObject::connect(next, &PendingCredentialSave::finished, &loop, &QEventLoop::quit);
        loop.exec();
        QObject::disconnect(wake);
    }
    return unfinished().isEmpty();
}

PendingCredentialSave::PendingCredentialSave(Save save, QString value, QString key, std::chrono::milliseconds pause)
    : m_save(std::move(save))
    , m_value(std::move(value))
    , m_key(std::move(key))
{
    unfinished().insert(this);
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
    unfinished().remove(this);
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
    unfinished().remove(this);
    Q_EMIT finished();
    deleteLater();
}
