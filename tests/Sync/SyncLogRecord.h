// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMutex>
#include <QString>
#include <QtGlobal>

#include <atomic>

// Records the lines logged on the sync category while it exists, from any thread, with
// their level, so that a test can say exactly which lines the sync wrote. Other lines pass
// on to the handler that was in place before. One at a time.
class SyncLogRecord
{
public:
    struct Line
    {
        QtMsgType type;
        QString text;

        friend bool operator==(const Line &, const Line &) = default;
    };

    SyncLogRecord()
    {
        current() = this;
        m_previous = qInstallMessageHandler(&SyncLogRecord::record);
    }
    ~SyncLogRecord()
    {
        qInstallMessageHandler(m_previous);
        current() = nullptr;
    }
    SyncLogRecord(const SyncLogRecord &) = delete;
    SyncLogRecord &operator=(const SyncLogRecord &) = delete;

    QList<Line> lines() const
    {
        const QMutexLocker locker(&m_mutex);
        return m_lines;
    }

private:
    static std::atomic<SyncLogRecord *> &current()
    {
        static std::atomic<SyncLogRecord *> record = nullptr;
        return record;
    }

    static void record(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        SyncLogRecord *self = current();
        if (!self)
            return;
        if (qstrcmp(context.category, "com.tessaloom.app.sync") == 0) {
            const QMutexLocker locker(&self->m_mutex);
            self->m_lines.append(Line{type, message});
        }
        if (self->m_previous)
            self->m_previous(type, context, message);
    }

    mutable QMutex m_mutex;
    QList<Line> m_lines;
    QtMessageHandler m_previous = nullptr;
};

// Lets QCOMPARE print a line that differs.
inline char *toString(const SyncLogRecord::Line &line)
{
    static const char *const levels[] = {"debug", "warning", "critical", "fatal", "info"};
    const int level = int(line.type);
    return qstrdup(QByteArray(levels[level >= 0 && level < 5 ? level : 0]).append(": ").append(line.text.toUtf8()).constData());
}
