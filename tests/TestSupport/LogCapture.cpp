// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogCapture.h"

#include <atomic>

namespace {
std::atomic<LogCapture *> current = nullptr;
} // namespace

LogCapture::LogCapture()
{
    current = this;
    m_previous = qInstallMessageHandler(&LogCapture::record);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    current = nullptr;
}

QStringList LogCapture::messages() const
{
    QMutexLocker locker(&m_mutex);
    return m_messages;
}

void LogCapture::clear()
{
    QMutexLocker locker(&m_mutex);
    m_messages.clear();
}

qsizetype LogCapture::indexOfMessageStartingWith(const QString &start) const
{
    const QStringList all = messages();
    for (qsizetype index = 0; index < all.size(); ++index) {
        if (all.at(index).startsWith(start))
            return index;
    }
    return -1;
}

void LogCapture::record(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    LogCapture *capture = current;
    if (!capture)
        return;
    {
        QMutexLocker locker(&capture->m_mutex);
        capture->m_messages.append(message);
    }
    if (capture->m_previous)
        capture->m_previous(type, context, message);
}
