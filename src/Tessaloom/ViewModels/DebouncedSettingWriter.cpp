// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/DebouncedSettingWriter.h"

#include <QCoreApplication>
#include <QSettings>

#include <utility>

DebouncedSettingWriter::DebouncedSettingWriter(QString key, std::chrono::milliseconds pause, QObject *parent)
    : QObject(parent)
    , m_key(std::move(key))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pause);
    connect(&m_pause, &QTimer::timeout, this, &DebouncedSettingWriter::flush);
    // A window still open when the event loop ends may never be destroyed: write before.
    if (QCoreApplication *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &DebouncedSettingWriter::flush);
}

DebouncedSettingWriter::~DebouncedSettingWriter()
{
    flush();
}

void DebouncedSettingWriter::setValue(const QVariant &value)
{
    m_pending = value;
    m_pause.start();
}

void DebouncedSettingWriter::flush()
{
    m_pause.stop();
    if (!m_pending)
        return;
    const QVariant value = *std::exchange(m_pending, std::nullopt);
    QSettings().setValue(m_key, value);
    Q_EMIT written(value);
}
