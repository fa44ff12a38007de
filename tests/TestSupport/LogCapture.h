// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

// Records every message logged while it exists, from any thread, and passes each on to the
// handler that was in place before, so that tests can say what the log must or must never
// hold. One at a time: a capture replaces the handler until it goes away.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList messages() const;
    void clear();
    // The index of the first message that starts with `start`, or -1.
    qsizetype indexOfMessageStartingWith(const QString &start) const;

private:
    static void record(QtMsgType type, const QMessageLogContext &context, const QString &message);

    mutable QMutex m_mutex;
    QStringList m_messages;
    QtMessageHandler m_previous = nullptr;
};
