// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>

#include <chrono>
#include <optional>

// Writes one user setting that changes at typing speed (a search field's text) once the
// changes pause, rather than at every keystroke. The value waiting to be written is
// written at flush(), when the application is about to quit, and when this object goes
// away, so the last value is never lost with the window. Main thread only.
class DebouncedSettingWriter : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultPause{500};

    explicit DebouncedSettingWriter(QString key, std::chrono::milliseconds pause = defaultPause,
                                    QObject *parent = nullptr);
    ~DebouncedSettingWriter() override;

    // Keeps `value` to be written after the pause; each call starts the pause again.
    void setValue(const QVariant &value);
    // Writes the waiting value now, if there is one.
    void flush();
    bool hasPendingValue() const { return m_pending.has_value(); }

Q_SIGNALS:
    // After each write to the settings.
    void written(const QVariant &value);

private:
    QString m_key;
    QTimer m_pause;
    std::optional<QVariant> m_pending;
};
