// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>

// One credential typed into the settings, waiting out the pause after the last keystroke
// before it goes to the secret store. It belongs to nobody: the window and its view model
// may close within the pause, and the value the user typed last must still be saved. It
// deletes itself once the save has ended, or at once when cancelled during the pause.
// When the application quits within the pause, the save runs at once and the quit waits
// for it (finishAll()). Main thread only.
class PendingCredentialSave : public QObject
{
    Q_OBJECT

public:
    // Writes one value under one key; may throw, and its failure is dropped.
    using Save = std::function<QCoro::Task<>(QString value, QString key)>;

    // Starts the pause for `value` under `key`; the caller keeps the pointer to cancel it.
    static QPointer<PendingCredentialSave> start(Save save, QString value, QString key,
                                                 std::chrono::milliseconds pause);

    // Drops the save while it still waits; once it has reached the store it runs to its end.
    void cancel();
    QString key() const { return m_key; }
    bool isSaving() const { return m_isSaving; }

    // Saves every waiting value now and waits, running the event loop, until all saves
    // have ended or `patience` ran out; whether all ended. The application runs it when it
    // is about to quit, so that a key typed just before is not lost with the process.
    static bool finishAll(std::chrono::milliseconds patience = std::chrono::seconds(5));
    // How many saves wait or run.
    static int pendingCount();

Q_SIGNALS:
    void finished();

private:
    ~PendingCredentialSave() override;
    PendingCredentialSave(Save save, QString value, QString key, std::chrono::milliseconds pause);
    QCoro::Task<> saveNow();

    Save m_save;
    QString m_value;
    QString m_key;
    QTimer m_pause;
    bool m_isSaving = false;
};
